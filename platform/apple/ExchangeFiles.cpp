#include "platform/ExchangeFiles.h"

#include <cerrno>
#include <fcntl.h>
#include <stdio.h>

namespace vantry {

int exchangeFiles(const std::filesystem::path& one, const std::filesystem::path& other) {
    return renameatx_np(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_SWAP) == 0 ? 0 : errno;
}

} // namespace vantry
