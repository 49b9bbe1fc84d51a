#include "platform/Sandbox.h"

#include "base/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <fstream>
#include <linux/landlock.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

// Sanitizers reserve terabytes of address space.
#if defined(OMBREL_ADDRESS_SANITIZER) || defined(OMBREL_THREAD_SANITIZER)
#define OMBREL_IS_SANITIZED 1
#else
#define OMBREL_IS_SANITIZED 0
#endif

namespace vantry {

namespace {

// Missing in the headers of the oldest system that Ombrel builds on.
constexpr std::uint64_t accessRefer = 1ULL << 13;    // ABI 2
constexpr std::uint64_t accessTruncate = 1ULL << 14; // ABI 3

std::uint64_t changingRights(long abi) {
    std::uint64_t rights = LANDLOCK_ACCESS_FS_WRITE_FILE | LANDLOCK_ACCESS_FS_REMOVE_DIR |
                           LANDLOCK_ACCESS_FS_REMOVE_FILE | LANDLOCK_ACCESS_FS_MAKE_CHAR | LANDLOCK_ACCESS_FS_MAKE_DIR |
                           LANDLOCK_ACCESS_FS_MAKE_REG | LANDLOCK_ACCESS_FS_MAKE_SOCK | LANDLOCK_ACCESS_FS_MAKE_FIFO |
                           LANDLOCK_ACCESS_FS_MAKE_BLOCK | LANDLOCK_ACCESS_FS_MAKE_SYM;
    if (abi >= 2)
        rights |= accessRefer;
    if (abi >= 3)
        rights |= accessTruncate;
    return rights;
}

} // namespace

Result<void> giveUpChangingFiles() {
    const long abi = syscall(SYS_landlock_create_ruleset, nullptr, 0, LANDLOCK_CREATE_RULESET_VERSION);
    if (abi < 1)
        return std::unexpected(Error{ErrorKind::unsupported, "The kernel offers no Landlock."});
    // A right that the ruleset handles and no rule grants is gone everywhere.
    const landlock_ruleset_attr ruleset{.handled_access_fs = changingRights(abi)};
    const UniqueFd fd(static_cast<int>(syscall(SYS_landlock_create_ruleset, &ruleset, sizeof ruleset, 0)));
    if (!fd || prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 || syscall(SYS_landlock_restrict_self, fd.get(), 0) != 0)
        return std::unexpected(errorFromErrno(errno, "Landlock"));
    return {};
}

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
