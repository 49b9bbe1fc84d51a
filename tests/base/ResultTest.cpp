#include "base/Result.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>

namespace vantry {

TEST(ErrorFromErrno, GivesTheKindThatACallerBranchesOn) {
    const struct {
        int errorNumber;
        ErrorKind kind;
    } cases[] = {
        {ENOENT, ErrorKind::notFound},
        {ENOTDIR, ErrorKind::notFound},
        {EACCES, ErrorKind::permissionDenied},
        {EPERM, ErrorKind::permissionDenied},
        {EROFS, ErrorKind::permissionDenied},
        {ENOSPC, ErrorKind::noSpace},
        {EDQUOT, ErrorKind::noSpace},
        {ETIMEDOUT, ErrorKind::timedOut},
        {ENOSYS, ErrorKind::unsupported},
        {ENOTSUP, ErrorKind::unsupported},
        {EINVAL, ErrorKind::invalid},
        {ENAMETOOLONG, ErrorKind::invalid},
        {EIO, ErrorKind::system},
        {ELOOP, ErrorKind::system},
        {EEXIST, ErrorKind::system},
        {EMFILE, ErrorKind::system},
        {EINTR, ErrorKind::system},
        {0, ErrorKind::system},
        {-1, ErrorKind::system},
        {123'456, ErrorKind::system},
    };
    for (const auto& [errorNumber, kind] : cases)
        EXPECT_EQ(errorFromErrno(errorNumber).kind, kind) << errorNumber;
}

TEST(ErrorFromErrno, NamesWhatFailedAndTheReason) {
    const std::string said = std::strerror(ENOENT);
    ASSERT_FALSE(said.empty());
    EXPECT_EQ(errorFromErrno(ENOENT, "/missing").message, "/missing: " + said);
    EXPECT_EQ(errorFromErrno(ENOENT).message, said);
    EXPECT_EQ(errorFromErrno(ENOENT, "").message, said);
}

TEST(ErrorFromErrno, SaysSomethingAboutAnUnknownNumber) {
    EXPECT_NE(errorFromErrno(123'456, "volume").message, "volume: ");
    EXPECT_TRUE(errorFromErrno(123'456, "volume").message.starts_with("volume: "));
}

TEST(ErrorFromErrno, DependsOnItsArgumentAndNotOnErrno) {
    errno = EACCES;
    EXPECT_EQ(errorFromErrno(ENOENT), (Error{ErrorKind::notFound, std::strerror(ENOENT)}));
}

} // namespace vantry
