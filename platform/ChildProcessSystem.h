#pragma once

#include "base/Result.h"
#include "base/UniqueFd.h"

#include <array>
#include <spawn.h>
#include <sys/types.h>

namespace vantry {

/// How a child is started. After a call has failed, later ones are skipped and `spawn` returns the errno.
class SpawnPlan {
public:
    SpawnPlan() {
        failure_ = posix_spawn_file_actions_init(&actions_);
        if (failure_ == 0)
            failure_ = posix_spawnattr_init(&attributes_);
    }
    SpawnPlan(const SpawnPlan&) = delete;
    SpawnPlan& operator=(const SpawnPlan&) = delete;
    ~SpawnPlan() {
        posix_spawn_file_actions_destroy(&actions_);
        posix_spawnattr_destroy(&attributes_);
    }

    template <class Function, class... Arguments>
    void action(Function function, Arguments... arguments) {
        if (failure_ == 0)
            failure_ = function(&actions_, arguments...);
    }
    template <class Function, class... Arguments>
    void attribute(Function function, Arguments... arguments) {
        if (failure_ == 0)
            failure_ = function(&attributes_, arguments...);
    }
    /// The result is an errno.
    [[nodiscard]] int spawn(pid_t& pid, const char* program, char* const* arguments, char* const* environment) {
        return failure_ != 0 ? failure_ : posix_spawn(&pid, program, &actions_, &attributes_, arguments, environment);
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    int failure_ = 0;
};

/// The parts of child processes that differ between systems.
namespace ChildProcessSystem {

/// Both ends are close-on-exec. The result is an errno.
[[nodiscard]] int openPipe(std::array<int, 2>& ends);

[[nodiscard]] char* const* environment();

/// Makes the child inherit only its three standard descriptors. Returns flags to add to the plan's.
[[nodiscard]] short inheritStandardStreamsOnly(SpawnPlan& plan);

/// Reserves a descriptor for `watchExit`, so that a process without free ones starts no child.
[[nodiscard]] Result<UniqueFd> prepareExitWatch();
/// Makes `watch` readable once the child has ended. The result is an errno, ESRCH when the system has already reaped
/// the child.
[[nodiscard]] int watchExit(UniqueFd& watch, pid_t pid);

/// The child must not have been reaped.
void sendSignal(const UniqueFd& watch, pid_t pid, int signal);

} // namespace ChildProcessSystem

} // namespace vantry
