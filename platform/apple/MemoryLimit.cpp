#include "platform/MemoryLimit.h"

#include <cerrno>
#include <sys/resource.h>

namespace vantry {

Result<void> limitMemory(std::size_t /*bytes*/) {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_CORE, &none) != 0)
        return std::unexpected(errorFromErrno(errno, "RLIMIT_CORE"));
    return std::unexpected(Error{ErrorKind::unsupported, "macOS does not hold programs to a limit of their memory."});
}

} // namespace vantry
