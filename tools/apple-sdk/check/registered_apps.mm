// Which applications are registered under a bundle identifier.
#include <CoreServices/CoreServices.h>
#include <Foundation/Foundation.h>

bool isUnknown(NSString* identifier) {
  CFErrorRef error = nullptr;
  CFArrayRef found = LSCopyApplicationURLsForBundleIdentifier((__bridge CFStringRef)identifier, &error);
  NSArray<NSURL*>* urls = CFBridgingRelease(found);
  NSError* failure = CFBridgingRelease(error);
  return urls.count == 0 && failure.code == kLSApplicationNotFoundErr;
}
