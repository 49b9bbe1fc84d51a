# The disk image that users get: Ombrel.app beside a link to the folder of applications. `cpack` in the build folder makes
# it as it was built; sign-and-notarize makes the one that is delivered.
set(CPACK_GENERATOR DragNDrop)
set(CPACK_PACKAGE_NAME Ombrel)
set(CPACK_PACKAGE_VENDOR "The Ombrel authors")
set(CPACK_PACKAGE_FILE_NAME "Ombrel-${PROJECT_VERSION}")
set(CPACK_DMG_VOLUME_NAME Ombrel)
set(CPACK_DMG_FORMAT UDZO)
set(CPACK_VERBATIM_VARIABLES ON)
include(CPack)
