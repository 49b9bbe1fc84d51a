#pragma once

#include "platform/UserSession.h"

#include <cstdlib>
#include <filesystem>
#include <optional>

namespace vantry {

/// A folder of the XDG base directory specification: the one that the environment variable names, or else `usual` in
/// the home folder. Relative paths do not count. Absent when there is no home folder either.
[[nodiscard]] inline std::optional<std::filesystem::path> baseFolder(const char* variable, const char* usual) {
    if (const char* named = std::getenv(variable); named && *named == '/')
        return named;
    const auto home = homeFolder();
    return home && home->is_absolute() ? std::optional(*home / usual) : std::nullopt;
}

} // namespace vantry
