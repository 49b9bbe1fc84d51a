#include "tests/support/TestSystem.h"

#include <cstdio>
#include <fcntl.h>
#include <fstream>
#include <sched.h>
#include <string>

namespace vantry {

bool allocate(int fd, std::int64_t bytes) { return posix_fallocate(fd, 0, bytes) == 0; }

bool exchange(int oneFolder, const char* one, int otherFolder, const char* other) {
    return renameat2(oneFolder, one, otherFolder, other, RENAME_EXCHANGE) == 0;
}

long peakMemory() {
    std::ifstream status("/proc/self/status");
    for (std::string line; std::getline(status, line);)
        if (line.starts_with("VmHWM:"))
            return std::stol(line.substr(6));
    return 0;
}

std::int64_t modificationTime(const struct stat& facts) {
    return std::int64_t{facts.st_mtim.tv_sec} * 1'000'000'000 + facts.st_mtim.tv_nsec;
}

bool namesMayBeAnyBytes() { return true; }

bool becomeUser(uid_t user) {
    if (geteuid() == 0)
        return setresgid(user, user, user) == 0 && setresuid(user, user, user) == 0;
    const uid_t before = geteuid();
    if (unshare(CLONE_NEWUSER) != 0)
        return false;
    std::ofstream("/proc/self/uid_map") << user << ' ' << before << " 1\n";
    return getuid() == user;
}

} // namespace vantry
