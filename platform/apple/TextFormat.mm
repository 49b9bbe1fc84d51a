#include "platform/TextFormat.h"

#include "base/Format.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <cmath>
#include <ctime>

namespace vantry {

namespace {

// Whole seconds, rounded down: a `double` would round the last nanoseconds of a second up.
std::chrono::sys_seconds wholeSeconds(SystemTime time) { return std::chrono::floor<std::chrono::seconds>(time); }

std::string localizedText(SystemTime time, NSDateFormatterStyle dateStyle, NSDateFormatterStyle timeStyle) {
    const auto seconds = static_cast<NSTimeInterval>(wholeSeconds(time).time_since_epoch().count());
    NSDate* date = [NSDate dateWithTimeIntervalSince1970:seconds];
    return textFromFoundation([NSDateFormatter localizedStringFromDate:date dateStyle:dateStyle timeStyle:timeStyle]);
}

} // namespace

// Each text gets its own formatter: a shared one would need a lock and would keep an outdated locale.

std::string byteCountText(std::int64_t bytes, ByteUnits units) {
    @autoreleasepool {
        if (bytes == 0)
            return "0 B";
        NSByteCountFormatter* formatter = [[NSByteCountFormatter alloc] init];
        formatter.countStyle = NSByteCountFormatterCountStyleFile;
        if (units == ByteUnits::gigabytesAndTerabytes)
            formatter.allowedUnits = NSByteCountFormatterUseGB | NSByteCountFormatterUseTB;
        formatter.allowsNonnumericFormatting = NO;
        formatter.includesUnit = YES;
        formatter.includesCount = YES;
        formatter.adaptive = YES;
        return textFromFoundation([formatter stringFromByteCount:bytes]);
    }
}

std::optional<std::string> percentText(double fraction) {
    @autoreleasepool {
        if (!std::isfinite(fraction))
            return std::nullopt;
        NSNumberFormatter* formatter = [[NSNumberFormatter alloc] init];
        formatter.numberStyle = NSNumberFormatterPercentStyle;
        formatter.minimumFractionDigits = 0;
        formatter.maximumFractionDigits = 1;
        NSString* text = [formatter stringFromNumber:[NSNumber numberWithDouble:fraction]];
        if (!text)
            return std::nullopt;
        return textFromFoundation(text);
    }
}

std::string shortTimeText(SystemTime time) {
    @autoreleasepool {
        return localizedText(time, NSDateFormatterNoStyle, NSDateFormatterShortStyle);
    }
}

std::string dateTimeText(SystemTime time) {
    @autoreleasepool {
        return localizedText(time, NSDateFormatterMediumStyle, NSDateFormatterMediumStyle);
    }
}

std::string iso8601Text(SystemTime time) {
    const std::time_t seconds = wholeSeconds(time).time_since_epoch().count();
    std::tm moment = {};
    gmtime_r(&seconds, &moment);
    return formatted("{:04}-{:02}-{:02}T{:02}:{:02}:{:02}Z", moment.tm_year + 1900, moment.tm_mon + 1, moment.tm_mday,
                     moment.tm_hour, moment.tm_min, moment.tm_sec);
}

} // namespace vantry
