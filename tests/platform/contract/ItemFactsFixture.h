#pragma once

#include "platform/ItemFacts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

class Items : public testing::Test {
protected:
    std::filesystem::path file(const char* name, std::int64_t bytes = 0) {
        const auto path = folder / name;
        const int fd = open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        EXPECT_TRUE(fd >= 0 && (bytes == 0 || posix_fallocate(fd, 0, bytes) == 0));
        close(fd);
        return path;
    }
    std::filesystem::path directory(const char* name, mode_t mode = 0700) {
        const auto path = folder / name;
        EXPECT_EQ(mkdir(path.c_str(), mode), 0);
        EXPECT_EQ(chmod(path.c_str(), mode), 0);
        return path;
    }
    // What an ordinary user is told, since the superuser may read everything.
    template <class Ask>
    static int asNobody(Ask ask) {
        if (geteuid() != 0)
            return static_cast<int>(ask());
        const pid_t child = fork();
        if (child == 0)
            _exit(setgid(65534) == 0 && setuid(65534) == 0 ? static_cast<int>(ask()) : 99);
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WEXITSTATUS(status);
    }
    static FolderAccess accessOfNobody(const std::filesystem::path& path) {
        return static_cast<FolderAccess>(asNobody([&] { return folderAccess(path); }));
    }

    TemporaryFolder folder;
};

} // namespace vantry
