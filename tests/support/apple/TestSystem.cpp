#include "tests/support/TestSystem.h"

#include <fcntl.h>
#include <stdio.h>
#include <sys/resource.h>

namespace vantry {

bool allocate(int fd, std::int64_t bytes) {
    fstore_t space{.fst_flags = F_ALLOCATEALL, .fst_posmode = F_PEOFPOSMODE, .fst_offset = 0, .fst_length = bytes};
    return fcntl(fd, F_PREALLOCATE, &space) == 0 && ftruncate(fd, bytes) == 0;
}

bool exchange(int oneFolder, const char* one, int otherFolder, const char* other) {
    return renameatx_np(oneFolder, one, otherFolder, other, RENAME_SWAP) == 0;
}

long peakMemory() {
    rusage used = {};
    return getrusage(RUSAGE_SELF, &used) == 0 ? used.ru_maxrss / 1024 : 0; // bytes here
}

std::int64_t modificationTime(const struct stat& facts) {
    return std::int64_t{facts.st_mtimespec.tv_sec} * 1'000'000'000 + facts.st_mtimespec.tv_nsec;
}

bool namesMayBeAnyBytes() { return false; }

bool becomeUser(uid_t user) { return geteuid() == 0 && setregid(user, user) == 0 && setreuid(user, user) == 0; }

} // namespace vantry
