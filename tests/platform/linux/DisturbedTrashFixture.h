#pragma once

#include "tests/platform/linux/TrashFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/RefusedCall.h"

#include <cstdio>
#include <exception>
#include <functional>
#include <sys/syscall.h>
#include <unistd.h>

namespace vantry {

/// Moves whose system calls fail, or in which somebody acts before one of them.
class DisturbedTrashFixture : public TrashFixture {
protected:
    /// What comes of a move when each call `number` fails.
    [[nodiscard]] std::string moveWithout(long number, int errorNumber) const {
        return inChildProcess([=, this]() -> std::string {
            const PinnedFile item = pinned(file);
            return refuseCall(number, errorNumber) ? move(item) : "not refused";
        });
    }

    /// What comes of a move when `before` is called before each of its renames, or calls `number`, with the how manyeth
    /// it is, from 1. It may not make that call.
    [[nodiscard]] std::string moveWhile(const std::function<void(int)>& before, long number = SYS_renameat2) const {
        return inChildProcess([&]() -> std::string {
            const PinnedFile item = pinned(file);
            return interceptCall(number, orNeverReturn(before)) ? move(item) : "not intercepted";
        });
    }

    /// From the move on each fsync fails. For the renames of a move.
    [[nodiscard]] static std::function<void(int)> failsToSync(int errorNumber) {
        return [errorNumber](int count) {
            if (count == 1 && !refuseCall(SYS_fsync, errorNumber))
                _exit(1);
        };
    }

    void SetUp() override {
        writeFile(other, "another file");
        if (inChildProcess([] { return interceptCall(SYS_getppid, [](int) {}) ? "yes" : "no"; }) != "yes")
            GTEST_SKIP() << "no calls are intercepted here";
    }

    std::filesystem::path other = root / "other";
    std::filesystem::path aside = root / "aside";
    std::filesystem::path inTrash = trash / "files/report.log";
    std::filesystem::path info = trash / "info/report.log.trashinfo";

private:
    /// A copy of this process that throws must not go on with its tests.
    [[nodiscard]] static std::function<void(int)> orNeverReturn(const std::function<void(int)>& block) {
        return [block](int count) {
            try {
                block(count);
            } catch (const std::exception& problem) {
                std::fputs(problem.what(), stderr);
                _exit(1);
            }
        };
    }
};

} // namespace vantry
