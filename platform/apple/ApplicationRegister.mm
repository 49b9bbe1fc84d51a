#include "platform/ApplicationRegister.h"

#include "platform/apple/FoundationValues.h"

#include <CoreServices/CoreServices.h>
#include <Foundation/Foundation.h>

namespace vantry {

namespace {

bool isRegistered(const std::string& bundleIdentifier) {
    @autoreleasepool {
        NSString* identifier = foundationText(bundleIdentifier);
        if (!identifier)
            return false; // identifiers are text
        CFErrorRef error = nullptr;
        NSArray<NSURL*>* applications =
            CFBridgingRelease(LSCopyApplicationURLsForBundleIdentifier((__bridge CFStringRef)identifier, &error));
        NSError* failure = CFBridgingRelease(error);
        if (applications)
            return applications.count > 0;
        return ![failure.domain isEqualToString:NSOSStatusErrorDomain] || failure.code != kLSApplicationNotFoundErr;
    }
}

} // namespace

ApplicationRegister applicationRegister() { return isRegistered; }

} // namespace vantry
