#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>

namespace vantry {

namespace {

ErrorKind kindOfCocoaCode(NSInteger code) {
    switch (code) {
    case NSFileNoSuchFileError:
    case NSFileReadNoSuchFileError: return ErrorKind::notFound;
    case NSFileReadNoPermissionError:
    case NSFileWriteNoPermissionError:
    case NSFileWriteVolumeReadOnlyError: return ErrorKind::permissionDenied;
    case NSFileWriteOutOfSpaceError: return ErrorKind::noSpace;
    case NSFeatureUnsupportedError: return ErrorKind::unsupported;
    default: return ErrorKind::system;
    }
}

ErrorKind kindOf(NSError* error) {
    if ([error.domain isEqualToString:NSCocoaErrorDomain])
        return kindOfCocoaCode(error.code);
    if ([error.domain isEqualToString:NSPOSIXErrorDomain])
        return errorFromErrno(static_cast<int>(error.code)).kind;
    return ErrorKind::system;
}

} // namespace

std::string textFromFoundation(NSString* text) {
    @autoreleasepool {
        const char* bytes = text.UTF8String;
        if (!bytes)
            return {};
        return {bytes, [text lengthOfBytesUsingEncoding:NSUTF8StringEncoding]};
    }
}

NSString* foundationText(std::string_view text) {
    @autoreleasepool {
        return [[NSString alloc] initWithBytes:text.data() length:text.size() encoding:NSUTF8StringEncoding];
    }
}

Error errorFromFoundation(NSError* error) {
    @autoreleasepool {
        if (!error)
            return {ErrorKind::system, "The operation could not be completed."};
        return {kindOf(error), textFromFoundation(error.localizedDescription)};
    }
}

} // namespace vantry
