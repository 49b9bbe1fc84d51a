#pragma once

#include "base/Time.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// What the measuring worker writes: {"size":…,"newestModificationTime":…,"complete":…}, the time in seconds since
/// 1970, left out if there was no date.
struct DirectoryMetricsPayload {
    std::int64_t size = 0;
    std::optional<double> newestModificationTime;
    bool complete = false;

    bool operator==(const DirectoryMetricsPayload&) const = default;
};

/// What the worker writes that measures a folder and the folders in it: for each of these a line with its name as
/// base64, a space and its payload as above; then, without a line break, the payload of the whole.
struct ChildrenMetricsPayload {
    std::map<std::string, DirectoryMetricsPayload> children;
    DirectoryMetricsPayload whole;

    bool operator==(const ChildrenMetricsPayload&) const = default;
};

/// What the listing worker writes: {"names":[…],"complete":…}. Names that are not valid UTF-8 cannot stand in JSON;
/// they follow as base64 in a further array, "encodedNames", which is present only if there are any.
struct ShallowChildrenPayload {
    std::vector<std::string> names;
    bool complete = false;

    bool operator==(const ShallowChildrenPayload&) const = default;
};

[[nodiscard]] std::string encoded(const DirectoryMetricsPayload& payload);
[[nodiscard]] std::string encoded(const ChildrenMetricsPayload& payload);
[[nodiscard]] std::string encoded(const ShallowChildrenPayload& payload);

/// The decoders trust nothing. They accept only what the encoders write, as JSON in any layout and order, with a size
/// that is not negative, a time that `SystemTime` can hold and names that a folder can hold; they give nothing for
/// anything else. Their memory is bounded by a multiple of the text.
[[nodiscard]] std::optional<DirectoryMetricsPayload> decodedDirectoryMetrics(std::string_view json);
[[nodiscard]] std::optional<ChildrenMetricsPayload> decodedChildrenMetrics(std::string_view text);
[[nodiscard]] std::optional<ShallowChildrenPayload> decodedShallowChildren(std::string_view json);

/// Converts a moment to seconds since 1970, and back; absent if `SystemTime` cannot hold it.
[[nodiscard]] double secondsSince1970(SystemTime time);
[[nodiscard]] std::optional<SystemTime> timeFromSecondsSince1970(double seconds);

} // namespace vantry
