// Declaration-only subset of the public API for type-checking; see README.md.
#pragma once
#pragma clang system_header
#include <CoreFoundation/CoreFoundation.h>
#include <SdkAvailability.h>
#ifdef __cplusplus
extern "C" {
#endif

SDK_IN_13_BEGIN
enum { kLSApplicationNotFoundErr = -10814 };

CFArrayRef LSCopyApplicationURLsForBundleIdentifier(CFStringRef inBundleIdentifier, CFErrorRef *outError);

#ifdef __cplusplus
}
#endif
SDK_IN_13_END
