#include "shell/qt/FileUri.h"

namespace vantry {

QByteArray fileUri(const std::filesystem::path& path) {
    const std::string& bytes = path.native();
    return "file://" + QByteArray(bytes.data(), static_cast<qsizetype>(bytes.size())).toPercentEncoding("/");
}

} // namespace vantry
