#include "platform/ExchangeFiles.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>

namespace vantry {

int exchangeFiles(const std::filesystem::path& one, const std::filesystem::path& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0 ? 0 : errno;
}

} // namespace vantry
