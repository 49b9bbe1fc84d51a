#include "platform/ChildProcess.h"

#include "platform/ChildProcessSystem.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <utility>

namespace vantry {

namespace {

constexpr int signalStatusOffset = 256;
constexpr const char* nullDevice = "/dev/null";

void startWithDefaultSignals(SpawnPlan& plan, short moreFlags) {
    sigset_t none;
    sigemptyset(&none);
    sigset_t changeable;
    sigfillset(&changeable);
    sigdelset(&changeable, SIGKILL);
    sigdelset(&changeable, SIGSTOP);
    plan.attribute(posix_spawnattr_setsigmask, &none);
    plan.attribute(posix_spawnattr_setsigdefault, &changeable);
    plan.attribute(posix_spawnattr_setflags,
                   static_cast<short>(POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | moreFlags));
}

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

// In a process that lacks a standard stream, an end could get its number, and setting up the child's streams would
// overwrite it. Hence the write end is moved out of the way.
Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (const int failure = ChildProcessSystem::openPipe(ends); failure != 0)
        return std::unexpected(errorFromErrno(failure, "pipe"));
    Pipe made{UniqueFd(ends[0]), UniqueFd(ends[1])};
    if (made.writeEnd.get() <= STDERR_FILENO)
        made.writeEnd.reset(fcntl(made.writeEnd.get(), F_DUPFD_CLOEXEC, STDERR_FILENO + 1));
    if (!made.writeEnd || fcntl(made.readEnd.get(), F_SETFL, O_NONBLOCK) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    return made;
}

// Blocks all signals while a thread is started; the thread inherits that. SIGTERM must reach a thread that cleans up,
// not one that only waits.
class SignalsBlocked {
public:
    SignalsBlocked() {
        sigset_t all;
        sigfillset(&all);
        pthread_sigmask(SIG_SETMASK, &all, &before_);
    }
    SignalsBlocked(const SignalsBlocked&) = delete;
    SignalsBlocked& operator=(const SignalsBlocked&) = delete;
    ~SignalsBlocked() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

private:
    sigset_t before_{};
};

// Nobody else waits for `pid`. A child in a hung file system ends when that answers again, maybe much later.
void reapWhenItEnds(pid_t pid) {
    const SignalsBlocked blocked;
    try {
        std::thread([pid] {
            while (waitpid(pid, nullptr, 0) < 0 && errno == EINTR) {
            }
        }).detach();
    } catch (const std::system_error&) {
        // It stays a zombie until this process ends.
    }
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
    auto exit = ChildProcessSystem::prepareExitWatch();
    if (!exit)
        return std::unexpected(exit.error());

    SpawnPlan plan;
    plan.action(posix_spawn_file_actions_addopen, STDIN_FILENO, nullDevice, O_RDONLY, mode_t{0});
    if (pipe.writeEnd)
        plan.action(posix_spawn_file_actions_adddup2, pipe.writeEnd.get(), STDOUT_FILENO);
    else
        plan.action(posix_spawn_file_actions_addopen, STDOUT_FILENO, nullDevice, O_WRONLY, mode_t{0});
    plan.action(posix_spawn_file_actions_addopen, STDERR_FILENO, nullDevice, O_WRONLY, mode_t{0});
    startWithDefaultSignals(plan, ChildProcessSystem::inheritStandardStreamsOnly(plan));

    std::vector<std::string> copies{program.native()};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);

    pid_t pid = -1;
    if (const int failure = plan.spawn(pid, program.c_str(), pointers.data(), ChildProcessSystem::environment());
        failure != 0)
        return std::unexpected(errorFromErrno(failure, program.native()));
    if (const int failure = ChildProcessSystem::watchExit(*exit, pid); failure != 0) {
        // A child that cannot be watched is of no use. After ESRCH (SIGCHLD is ignored) it was reaped, and its number
        // may belong to another process.
        if (failure != ESRCH) {
            kill(pid, SIGKILL);
            reapWhenItEnds(pid);
        }
        return std::unexpected(errorFromErrno(failure, "child exit"));
    }
    return ChildProcess(pid, std::move(*exit), std::move(pipe.readEnd));
}

ChildProcess::ChildProcess(pid_t pid, UniqueFd exit, UniqueFd output)
    : pid_(pid),
      exit_(std::move(exit)),
      output_(std::move(output)) {}

// The moved-from object counts as ended.
ChildProcess::ChildProcess(ChildProcess&& other) noexcept
    : pid_(other.pid_),
      exit_(std::move(other.exit_)),
      output_(std::move(other.output_)),
      status_(std::exchange(other.status_, signalStatusOffset)) {}

ChildProcess& ChildProcess::operator=(ChildProcess&& other) noexcept {
    ChildProcess taken(std::move(other));
    std::swap(pid_, taken.pid_);
    std::swap(exit_, taken.exit_);
    std::swap(output_, taken.output_);
    std::swap(status_, taken.status_);
    return *this;
}

ChildProcess::~ChildProcess() {
    if (!exitStatus())
        reapWhenItEnds(pid_);
}

std::optional<int> ChildProcess::exitStatus() {
    if (status_)
        return status_;
    int status = 0;
    const pid_t ended = waitpid(pid_, &status, WNOHANG);
    if (ended < 0 && errno != EINTR)
        status_ = signalStatusOffset; // reaped by somebody else
    else if (ended == pid_)
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : signalStatusOffset + WTERMSIG(status);
    return status_;
}

void ChildProcess::sendSignal(int signal) {
    if (!status_)
        ChildProcessSystem::sendSignal(exit_, pid_, signal);
}

} // namespace vantry
