#include "platform/Picture.h"

#include "base/Deadline.h"
#include "base/UniqueFd.h"

#include <AVFoundation/AVFoundation.h>
#include <CoreGraphics/CoreGraphics.h>
#include <CoreMedia/CoreMedia.h>
#include <Foundation/Foundation.h>
#include <ImageIO/ImageIO.h>
#include <algorithm>
#include <array>
#include <chrono>
#include <dispatch/dispatch.h>
#include <fcntl.h>
#include <memory>
#include <string>
#include <sys/stat.h>
#include <type_traits>

namespace vantry {

namespace {

constexpr std::chrono::seconds longestDecoding{25};
constexpr long long mostPixels = (768LL << 20) / 4; // that fit into 768 MB, four bytes each
constexpr int detail = 1024;                        // pixels of the longer side before the square is drawn
constexpr off_t largestPictureFile = off_t{1} << 30;
constexpr std::array seconds{75, 10, 0};

struct ReleaseObject {
    void operator()(CFTypeRef object) const { CFRelease(object); }
};
template <class Reference>
using Owned = std::unique_ptr<std::remove_pointer_t<Reference>, ReleaseObject>;

// O_NONBLOCK: does not wait for the other end of a FIFO.
std::optional<off_t> sizeOfRegularFile(const std::filesystem::path& path) {
    const UniqueFd file(open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts = {};
    if (!file || fstat(file.get(), &facts) != 0 || !S_ISREG(facts.st_mode) || facts.st_size <= 0)
        return std::nullopt;
    return facts.st_size;
}

NSURL* urlOf(const std::filesystem::path& file) {
    return [NSURL fileURLWithFileSystemRepresentation:file.c_str() isDirectory:NO relativeToURL:nil];
}

bool fitsIntoMemory(CGImageSourceRef source, std::size_t index) {
    NSDictionary* facts = CFBridgingRelease(CGImageSourceCopyPropertiesAtIndex(source, index, nullptr));
    NSNumber* width = facts[(__bridge NSString*)kCGImagePropertyPixelWidth];
    NSNumber* height = facts[(__bridge NSString*)kCGImagePropertyPixelHeight];
    const long long columns = width.longLongValue;
    const long long rows = height.longLongValue;
    return columns > 0 && rows > 0 && columns <= mostPixels / rows;
}

// ImageIO fills the missing part of a picture that was cut off with grey.
bool isWhole(CGImageSourceRef source, std::size_t index) {
    const auto status = CGImageSourceGetStatusAtIndex(source, index);
    return status != kCGImageStatusUnexpectedEOF && status != kCGImageStatusInvalidData;
}

Owned<CGImageRef> reducedPicture(const std::filesystem::path& file) {
    NSDictionary* reading = @{(__bridge NSString*)kCGImageSourceShouldCache : @NO};
    const Owned<CGImageSourceRef> source(
        CGImageSourceCreateWithURL((__bridge CFURLRef)urlOf(file), (__bridge CFDictionaryRef)reading));
    if (!source)
        return nullptr;
    const std::size_t index = CGImageSourceGetPrimaryImageIndex(source.get());
    if (!fitsIntoMemory(source.get(), index))
        return nullptr;
    // Always from the picture: an embedded thumbnail may be smaller than the square, or cropped.
    NSDictionary* reducing = @{
        (__bridge NSString*)kCGImageSourceCreateThumbnailFromImageAlways : @YES,
        (__bridge NSString*)kCGImageSourceCreateThumbnailWithTransform : @YES,
        (__bridge NSString*)kCGImageSourceThumbnailMaxPixelSize : @(detail),
        (__bridge NSString*)kCGImageSourceShouldCacheImmediately : @YES,
    };
    Owned<CGImageRef> picture(
        CGImageSourceCreateThumbnailAtIndex(source.get(), index, (__bridge CFDictionaryRef)reducing));
    return isWhole(source.get(), index) ? std::move(picture) : nullptr;
}

/// A frame that a thread of the system delivers, perhaps after the wait was given up.
struct ArrivedFrame {
    Owned<CGImageRef> image;
    dispatch_semaphore_t arrived = dispatch_semaphore_create(0);
};

Owned<CGImageRef> frameAt(AVAssetImageGenerator* generator, int time, Deadline deadline) {
    const auto frame = std::make_shared<ArrivedFrame>();
    [generator generateCGImageAsynchronouslyForTime:CMTimeMakeWithSeconds(time, 600)
                                  completionHandler:^(CGImageRef image, CMTime, NSError*) {
                                      if (image)
                                          frame->image.reset(CGImageRetain(image));
                                      dispatch_semaphore_signal(frame->arrived);
                                  }];
    const std::chrono::nanoseconds left = deadline - std::chrono::steady_clock::now();
    if (dispatch_semaphore_wait(frame->arrived,
                                dispatch_time(DISPATCH_TIME_NOW, std::max<std::int64_t>(left.count(), 0))) == 0)
        return std::move(frame->image);
    [generator cancelAllCGImageGeneration];
    return nullptr;
}

Owned<CGImageRef> filmFrame(const std::filesystem::path& file) {
    const auto deadline = deadlineIn(longestDecoding);
    // A film may refer to other files. They are not opened.
    AVURLAsset* asset =
        [AVURLAsset URLAssetWithURL:urlOf(file)
                            options:@{
                                AVURLAssetReferenceRestrictionsKey : @(AVAssetReferenceRestrictionForbidAll)
                            }];
    AVAssetImageGenerator* generator = [AVAssetImageGenerator assetImageGeneratorWithAsset:asset];
    generator.appliesPreferredTrackTransform = YES;
    generator.maximumSize = CGSizeMake(detail, detail);
    generator.requestedTimeToleranceBefore = kCMTimePositiveInfinity;
    generator.requestedTimeToleranceAfter = kCMTimePositiveInfinity;
    for (const int time : seconds) {
        auto image = frameAt(generator, time, deadline);
        if (image || hasPassed(deadline))
            return image;
    }
    return nullptr;
}

std::uint8_t divided(std::uint8_t premultiplied, std::uint8_t alpha) {
    constexpr int full = 255;
    return static_cast<std::uint8_t>(std::min(full, (premultiplied * full + alpha / 2) / alpha));
}

std::optional<PicturePixels> squareOf(CGImageRef image) {
    PicturePixels pixels(pictureSide * pictureSide, PicturePixel{.alpha = 0});
    static_assert(sizeof(PicturePixel) == 4);
    const Owned<CGColorSpaceRef> space(CGColorSpaceCreateWithName(kCGColorSpaceSRGB));
    const Owned<CGContextRef> context(CGBitmapContextCreate(pixels.data(), pictureSide, pictureSide, 8,
                                                            pictureSide * sizeof(PicturePixel), space.get(),
                                                            static_cast<CGBitmapInfo>(kCGImageAlphaPremultipliedLast)));
    if (!context)
        return std::nullopt;
    CGContextSetInterpolationQuality(context.get(), kCGInterpolationHigh);
    CGContextSetBlendMode(context.get(), kCGBlendModeCopy);
    CGContextDrawImage(context.get(), CGRectMake(0, 0, pictureSide, pictureSide), image);
    CGContextFlush(context.get());
    for (auto& pixel : pixels)
        if (pixel.alpha != 0)
            pixel = {divided(pixel.red, pixel.alpha), divided(pixel.green, pixel.alpha),
                     divided(pixel.blue, pixel.alpha), pixel.alpha};
    return pixels;
}

} // namespace

std::optional<PicturePixels> readPicture(const std::filesystem::path& file) {
    @autoreleasepool {
        const auto size = sizeOfRegularFile(file);
        if (!size || (!isFilm(file) && *size > largestPictureFile))
            return std::nullopt;
        const auto image = isFilm(file) ? filmFrame(file) : reducedPicture(file);
        return image ? squareOf(image.get()) : std::nullopt;
    }
}

std::optional<int> runPictureWorkerIfRequested(std::span<const std::string> /*arguments*/) { return std::nullopt; }

} // namespace vantry
