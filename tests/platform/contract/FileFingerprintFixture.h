#pragma once

#include "tests/support/PrivateMounts.h"

#include <gtest/gtest.h>

#include <ctime>
#include <fcntl.h>
#include <filesystem>
#include <sched.h>
#include <string>
#include <sys/mount.h>
#include <sys/stat.h>

namespace vantry {

inline void setModified(const std::filesystem::path& file, timespec time) {
    const timespec times[2] = {{0, UTIME_OMIT}, time};
    ASSERT_EQ(utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW), 0);
}

[[nodiscard]] inline bool mountPrivately(const char* type, const std::filesystem::path& point,
                                         const std::string& options) {
    return keepMountsPrivate() && mount(type, point.c_str(), type, 0, options.c_str()) == 0;
}

} // namespace vantry
