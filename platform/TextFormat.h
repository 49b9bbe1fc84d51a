#pragma once

#include "base/Time.h"

#include <cstdint>
#include <optional>
#include <string>

namespace vantry {

/// Which units a byte text may use.
enum class ByteUnits { all, gigabytesAndTerabytes };

/// A byte count as the system writes a file's size: on macOS its byte-count formatter in the file count style;
/// elsewhere by the same rules: decimal units, "1 byte" and "512 bytes", no fraction digits for kilobytes, up to one
/// for megabytes and up to two for larger units, no padding zeros, the locale's decimal separator. Halves round away
/// from zero, and a figure that rounds up to 1000 takes the next unit. Zero is "0 B". Any thread; never fails.
[[nodiscard]] std::string byteCountText(std::int64_t bytes, ByteUnits units = ByteUnits::all);

/// A fraction as a percentage with 0 to 1 fraction digits in the user's locale, halves rounded to even; absent for
/// NaN and infinities. Any thread; never fails otherwise.
[[nodiscard]] std::optional<std::string> percentText(double fraction);

/// The time of day without seconds, as the user's locale writes it, in their time zone. Any thread; never fails.
[[nodiscard]] std::string shortTimeText(SystemTime time);

/// Date and time to the second in the user's locale and time zone. Any thread; never fails.
[[nodiscard]] std::string dateTimeText(SystemTime time);

/// ISO 8601 in UTC, to the second ("2026-01-31T08:15:00Z"), whatever the locale. Any thread; never fails.
[[nodiscard]] std::string iso8601Text(SystemTime time);

} // namespace vantry
