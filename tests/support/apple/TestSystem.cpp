#include "tests/support/TestSystem.h"

#include <fcntl.h>

namespace vantry {

bool allocate(int fd, std::int64_t bytes) {
    fstore_t space{.fst_flags = F_ALLOCATEALL, .fst_posmode = F_PEOFPOSMODE, .fst_offset = 0, .fst_length = bytes};
    return fcntl(fd, F_PREALLOCATE, &space) == 0 && ftruncate(fd, bytes) == 0;
}

std::int64_t modificationTime(const struct stat& facts) {
    return std::int64_t{facts.st_mtimespec.tv_sec} * 1'000'000'000 + facts.st_mtimespec.tv_nsec;
}

bool becomeUser(uid_t user) { return geteuid() == 0 && setregid(user, user) == 0 && setreuid(user, user) == 0; }

} // namespace vantry
