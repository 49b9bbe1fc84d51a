// A picture that is cut off, and a film that refers to nothing.
#include <AVFoundation/AVFoundation.h>
#include <ImageIO/ImageIO.h>
#include <string>

bool isCutOff(const std::string &path) {
  @autoreleasepool {
    NSURL *url = [NSURL fileURLWithPath:@(path.c_str())];
    CGImageSourceRef source = CGImageSourceCreateWithURL((__bridge CFURLRef)url, nullptr);
    if (!source) return true;
    const bool cut = CGImageSourceGetStatusAtIndex(source, CGImageSourceGetPrimaryImageIndex(source)) == kCGImageStatusUnexpectedEOF;
    CFRelease(source);
    return cut;
  }
}

AVURLAsset *film(NSURL *url) {
  return [AVURLAsset URLAssetWithURL:url options:@{AVURLAssetReferenceRestrictionsKey : @(AVAssetReferenceRestrictionForbidAll)}];
}
