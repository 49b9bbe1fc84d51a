#include "platform/MemoryLimit.h"

#include <algorithm>
#include <cerrno>
#include <fstream>
#include <sys/resource.h>
#include <unistd.h>

// Sanitizers take terabytes of address space that they never touch.
#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
#define OMBREL_IS_SANITIZED 1
#else
#define OMBREL_IS_SANITIZED 0
#endif

namespace vantry {

Result<void> limitMemory(std::size_t bytes) {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_CORE, &none) != 0)
        return std::unexpected(errorFromErrno(errno, "RLIMIT_CORE"));
    if (OMBREL_IS_SANITIZED)
        return std::unexpected(Error{ErrorKind::unsupported, "A sanitizer needs the address space."});
    rlim_t pages = 0;
    rlimit limit = {};
    if (!(std::ifstream("/proc/self/statm") >> pages) || getrlimit(RLIMIT_AS, &limit) != 0)
        return std::unexpected(Error{ErrorKind::system, "The size of this process is not known."});
    const rlim_t wanted = pages * static_cast<rlim_t>(sysconf(_SC_PAGESIZE)) + bytes;
    limit.rlim_cur = limit.rlim_max = std::min(limit.rlim_cur, wanted);
    if (setrlimit(RLIMIT_AS, &limit) != 0)
        return std::unexpected(errorFromErrno(errno, "RLIMIT_AS"));
    return {};
}

} // namespace vantry
