#include "platform/ChildProcess.h"

#include "base/Deadline.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <utility>

extern "C" { // glibc 2.36 forgot it
#include <sys/pidfd.h>
}

namespace vantry {

namespace {

constexpr int signalStatusOffset = 256;
constexpr const char* nullDevice = "/dev/null";

// Collects the failures of a sequence of calls that return an errno; later ones are not made.
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
    [[nodiscard]] int spawn(pid_t& pid, const char* program, char* const* arguments) {
        return failure_ != 0 ? failure_ : posix_spawn(&pid, program, &actions_, &attributes_, arguments, environ);
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    int failure_ = 0;
};

void startWithDefaultSignals(SpawnPlan& plan) {
    sigset_t none;
    sigemptyset(&none);
    sigset_t changeable;
    sigfillset(&changeable);
    plan.attribute(posix_spawnattr_setsigmask, &none);
    plan.attribute(posix_spawnattr_setsigdefault, &changeable);
    plan.attribute(posix_spawnattr_setflags, static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
}

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

// The child's standard streams are made one after the other: an end that has the number of one of them, in a process
// without it, would be replaced before it is used.
Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (pipe2(ends.data(), O_CLOEXEC) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    Pipe made{UniqueFd(ends[0]), UniqueFd(ends[1])};
    if (made.writeEnd.get() <= STDERR_FILENO)
        made.writeEnd.reset(fcntl(made.writeEnd.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!made.writeEnd || fcntl(made.readEnd.get(), F_SETFL, O_NONBLOCK) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    return made;
}

// For a child that cannot be watched. Once killed it ends at once; the bound is for one that a file system holds.
void killAndReap(pid_t pid) {
    constexpr std::chrono::milliseconds patience{100};
    kill(pid, SIGKILL);
    for (const auto deadline = deadlineIn(patience); waitpid(pid, nullptr, WNOHANG) == 0 && !hasPassed(deadline);)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace

Result<ChildProcess> ChildProcess::start(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments, ChildOutput output) {
    Pipe pipe;
    if (output == ChildOutput::pipe) {
        auto made = makePipe();
        if (!made)
            return std::unexpected(made.error());
        pipe = std::move(*made);
    }
    // Keeps a place for the child's: a process that has no descriptor left starts no child.
    UniqueFd exit(pidfd_open(getpid(), 0));
    if (!exit)
        return std::unexpected(errorFromErrno(errno, "pidfd_open"));

    SpawnPlan plan;
    plan.action(posix_spawn_file_actions_addopen, STDIN_FILENO, nullDevice, O_RDONLY, mode_t{0});
    if (pipe.writeEnd)
        plan.action(posix_spawn_file_actions_adddup2, pipe.writeEnd.get(), STDOUT_FILENO);
    else
        plan.action(posix_spawn_file_actions_addopen, STDOUT_FILENO, nullDevice, O_WRONLY, mode_t{0});
    plan.action(posix_spawn_file_actions_addopen, STDERR_FILENO, nullDevice, O_WRONLY, mode_t{0});
    plan.action(posix_spawn_file_actions_addclosefrom_np, STDERR_FILENO + 1);
    startWithDefaultSignals(plan);

    std::vector<std::string> copies{program.native()};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);

    pid_t pid = -1;
    if (const int failure = plan.spawn(pid, program.c_str(), pointers.data()); failure != 0)
        return std::unexpected(errorFromErrno(failure, program.native()));
    exit.reset();
    exit.reset(pidfd_open(pid, 0));
    if (!exit) {
        // Without a way to see it end, the child is of no use. Where the ends of children are ignored it may be gone
        // already, and its number another's.
        const int failure = errno;
        if (failure != ESRCH)
            killAndReap(pid);
        return std::unexpected(errorFromErrno(failure, "pidfd_open"));
    }
    return ChildProcess(pid, std::move(exit), std::move(pipe.readEnd));
}

ChildProcess::ChildProcess(int pid, UniqueFd exit, UniqueFd output)
    : pid_(pid),
      exit_(std::move(exit)),
      output_(std::move(output)) {}

std::optional<int> ChildProcess::exitStatus() {
    if (status_)
        return status_;
    siginfo_t info = {};
    if (waitid(P_PIDFD, static_cast<id_t>(exit_.get()), &info, WEXITED | WNOHANG) != 0)
        status_ = signalStatusOffset; // somebody else has reaped it
    else if (info.si_pid == pid_)
        status_ = info.si_code == CLD_EXITED ? info.si_status : signalStatusOffset + info.si_status;
    return status_;
}

void ChildProcess::sendSignal(int signal) {
    if (!status_)
        pidfd_send_signal(exit_.get(), signal, nullptr, 0);
}

// The link leads to the file that runs, also when it has no name any more; the child follows it before it is replaced.
Result<std::filesystem::path> ownExecutable() { return "/proc/self/exe"; }

} // namespace vantry
