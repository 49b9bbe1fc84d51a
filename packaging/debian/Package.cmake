# The Debian package: `cpack` in the build folder makes it of what is built there.
set(changelog ${CMAKE_CURRENT_LIST_DIR}/changelog)
file(STRINGS ${changelog} signature REGEX "^ -- " LIMIT_COUNT 1)
string(REGEX MATCH "^ -- (.*)  (.*)$" signature "${signature}")
set(maintainer ${CMAKE_MATCH_1})
set(released ${CMAKE_MATCH_2})

# What no other installation has. A package without a revision of its own has one changelog.
set(debian_file COMPONENT debian EXCLUDE_FROM_ALL DESTINATION)
add_custom_command(OUTPUT ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz DEPENDS ${changelog} VERBATIM
                   COMMAND gzip -9 -n -c ${changelog} > changelog.gz)
add_custom_target(ombrel_changelog ALL DEPENDS ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz)
install(FILES ${CMAKE_CURRENT_BINARY_DIR}/changelog.gz ${debian_file} ${CMAKE_INSTALL_DATADIR}/doc/ombrel)
install(FILES ${PROJECT_SOURCE_DIR}/LICENSE ${debian_file} ${CMAKE_INSTALL_DATADIR}/doc/ombrel RENAME copyright)
install(FILES completion.zsh ${debian_file} ${CMAKE_INSTALL_DATADIR}/zsh/vendor-completions RENAME _ombrel)

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME ombrel)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_INSTALL_CMAKE_PROJECTS "${CMAKE_BINARY_DIR};ombrel;Unspecified;/;${CMAKE_BINARY_DIR};ombrel;debian;/")
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ
                                                WORLD_EXECUTE)
set(CPACK_STRIP_FILES ON)
set(CPACK_VERBATIM_VARIABLES ON)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_COMPRESSION_TYPE xz)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_PACKAGE_MAINTAINER ${maintainer})
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "coloured bar in the tray that shows how full the startup volume is")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Ombrel keeps a thin coloured bar in the tray that shows how full the startup
volume is, and beside it, if you like, the percentage used.

When space runs short, a window shows what in the home folder could go:
caches, old downloads, what developer tools leave behind. Files of low risk
can be moved to the Trash from there; nothing is deleted outright.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# What is loaded at run time: the symbols of the window, and Qt's reader for them.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "breeze-icon-theme, libqt6svg6")
# Wallpapers in TIFF, what opens folders and web pages, the bus on which panels are told about tray items, and the font that
# the bar is laid out for.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "qt6-image-formats-plugins, xdg-utils, default-dbus-session-bus | dbus-session-bus, fonts-inter")

# The same bytes whenever it is made: what has a date in the package has the one of the changelog.
execute_process(COMMAND date --date=${released} +%s OUTPUT_VARIABLE epoch OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_BINARY_DIR}/date.cmake)
file(WRITE ${CPACK_PROJECT_CONFIG_FILE} "set(ENV{SOURCE_DATE_EPOCH} ${epoch})\n")
include(CPack)
