#pragma once

#include <QByteArray>
#include <filesystem>

namespace vantry {

/// The URI of a file by the bytes of its path, which need not be UTF-8. `path` is absolute.
[[nodiscard]] QByteArray fileUri(const std::filesystem::path& path);

} // namespace vantry
