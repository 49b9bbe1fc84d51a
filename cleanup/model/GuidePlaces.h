#pragma once

#include <filesystem>
#include <span>
#include <string>
#include <string_view>

namespace vantry {

/// The path that a pattern of a `CleanupAvenue::Place` stands for, standardized; an asterisk in it stands for any
/// characters of one visible name. "~" at the beginning is `home`, and "${NAME:-pattern}" the variable's value if that
/// is absolute and neither is nor holds the home folder, else the pattern. Of a list, as in GOPATH, the first element
/// counts. Reads the environment; any thread.
[[nodiscard]] std::filesystem::path expandedPlace(std::string_view pattern, const std::filesystem::path& home);

/// Whether `name` is what `pattern` stands for, in which an asterisk stands for any characters.
[[nodiscard]] bool matchesPattern(std::string_view name, std::string_view pattern);

/// The names in the cache folder that `CleanupAvenue::Place::Kind::oldCaches` leaves out, with asterisks: those that
/// another avenue measures, and those that are in use, or hold more than a cache.
[[nodiscard]] std::span<const std::string_view> cachesOfOthers();

} // namespace vantry
