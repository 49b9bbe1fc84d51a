#pragma once

#include "base/Time.h"

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

/// What the measuring worker writes: {"size":…,"newestModificationTime":…,"complete":…}, the time in seconds since 1970
/// and left out when no date was seen.
struct DirectoryMetricsPayload {
    std::int64_t size = 0;
    std::optional<double> newestModificationTime;
    bool complete = false;

    bool operator==(const DirectoryMetricsPayload&) const = default;
};

/// What the worker writes that measures a folder and those in it: a line for each of these, its name as base64, a space
/// and its payload as above, and a last line, without an end, with the payload of the whole.
struct ChildrenMetricsPayload {
    std::map<std::string, DirectoryMetricsPayload> children;
    DirectoryMetricsPayload whole;

    bool operator==(const ChildrenMetricsPayload&) const = default;
};

/// What the listing worker writes: {"names":[…],"complete":…}. Names that are no UTF-8, which cannot stand in JSON,
/// follow as base64 in one further array, "encodedNames", which is present only when there are any.
struct ShallowChildrenPayload {
    std::vector<std::string> names;
    bool complete = false;

    bool operator==(const ShallowChildrenPayload&) const = default;
};

[[nodiscard]] std::string encoded(const DirectoryMetricsPayload& payload);
[[nodiscard]] std::string encoded(const ChildrenMetricsPayload& payload);
[[nodiscard]] std::string encoded(const ShallowChildrenPayload& payload);

/// The decoders trust nothing: they give a payload for exactly what the encoders write, JSON in any layout and order,
/// with a size that is not negative, a time that `SystemTime` can hold and names that a folder can hold; for anything
/// else nothing. They take memory in proportion to the text at most.
[[nodiscard]] std::optional<DirectoryMetricsPayload> decodedDirectoryMetrics(std::string_view json);
[[nodiscard]] std::optional<ChildrenMetricsPayload> decodedChildrenMetrics(std::string_view text);
[[nodiscard]] std::optional<ShallowChildrenPayload> decodedShallowChildren(std::string_view json);

/// A moment as seconds since 1970, and back; absent for what `SystemTime` cannot hold.
[[nodiscard]] double secondsSince1970(SystemTime time);
[[nodiscard]] std::optional<SystemTime> timeFromSecondsSince1970(double seconds);

} // namespace vantry
