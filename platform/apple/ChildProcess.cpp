#include "platform/ChildProcess.h"

#include <array>
#include <cerrno>
#include <climits>
#include <crt_externs.h>
#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <mach-o/dyld.h>
#include <memory>
#include <spawn.h>
#include <sys/event.h>
#include <sys/wait.h>
#include <unistd.h>
#include <utility>

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
        return failure_ != 0 ? failure_
                             : posix_spawn(&pid, program, &actions_, &attributes_, arguments, *_NSGetEnviron());
    }

private:
    posix_spawn_file_actions_t actions_{};
    posix_spawnattr_t attributes_{};
    int failure_ = 0;
};

void connectStandardStreams(SpawnPlan& plan, const UniqueFd& output) {
    plan.action(posix_spawn_file_actions_addopen, STDIN_FILENO, nullDevice, O_RDONLY, mode_t{0});
    if (!output)
        plan.action(posix_spawn_file_actions_addopen, STDOUT_FILENO, nullDevice, O_WRONLY, mode_t{0});
    else if (output.get() == STDOUT_FILENO) // of a process without one, to which dup2 would change nothing
        plan.action(posix_spawn_file_actions_addinherit_np, STDOUT_FILENO);
    else
        plan.action(posix_spawn_file_actions_adddup2, output.get(), STDOUT_FILENO);
    plan.action(posix_spawn_file_actions_addopen, STDERR_FILENO, nullDevice, O_WRONLY, mode_t{0});
}

// All descriptors but those that the plan's actions make are closed.
void startClean(SpawnPlan& plan) {
    sigset_t none;
    sigemptyset(&none);
    sigset_t changeable;
    sigfillset(&changeable);
    sigdelset(&changeable, SIGKILL);
    sigdelset(&changeable, SIGSTOP);
    plan.attribute(posix_spawnattr_setsigmask, &none);
    plan.attribute(posix_spawnattr_setsigdefault, &changeable);
    plan.attribute(posix_spawnattr_setflags,
                   static_cast<short>(POSIX_SPAWN_CLOEXEC_DEFAULT | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF));
}

bool setCloseOnExec(const UniqueFd& fd) { return fcntl(fd.get(), F_SETFD, FD_CLOEXEC) == 0; }

struct Pipe {
    UniqueFd readEnd;
    UniqueFd writeEnd;
};

Result<Pipe> makePipe() {
    std::array<int, 2> ends{};
    if (::pipe(ends.data()) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    Pipe made{UniqueFd(ends[0]), UniqueFd(ends[1])};
    if (!setCloseOnExec(made.readEnd) || !setCloseOnExec(made.writeEnd) ||
        fcntl(made.readEnd.get(), F_SETFL, O_NONBLOCK) != 0)
        return std::unexpected(errorFromErrno(errno, "pipe"));
    return made;
}

// Makes `queue` readable once the child has ended. The result is an errno.
int watchExit(const UniqueFd& queue, pid_t pid) {
    struct kevent exit = {};
    EV_SET(&exit, static_cast<std::uintptr_t>(pid), EVFILT_PROC, EV_ADD, NOTE_EXIT, 0, nullptr);
    if (kevent(queue.get(), &exit, 1, nullptr, 0, nullptr) == 0)
        return 0;
    if (errno != ESRCH)
        return errno;
    // It has ended already: an event of our own stands for the one that will not come.
    std::array<struct kevent, 2> ended = {};
    EV_SET(&ended[0], 0, EVFILT_USER, EV_ADD, 0, 0, nullptr);
    EV_SET(&ended[1], 0, EVFILT_USER, 0, NOTE_TRIGGER, 0, nullptr);
    return kevent(queue.get(), ended.data(), static_cast<int>(ended.size()), nullptr, 0, nullptr) == 0 ? 0 : errno;
}

} // namespace

Result<ChildProcess> ChildProcess::start(const std::filesystem::path& program,
                                         const std::vector<std::string>& arguments, ChildOutput output) {
    UniqueFd exit(kqueue());
    if (!exit || !setCloseOnExec(exit))
        return std::unexpected(errorFromErrno(errno, "kqueue"));
    Pipe pipe;
    if (output == ChildOutput::pipe) {
        auto made = makePipe();
        if (!made)
            return std::unexpected(made.error());
        pipe = std::move(*made);
    }

    SpawnPlan plan;
    connectStandardStreams(plan, pipe.writeEnd);
    startClean(plan);

    std::vector<std::string> copies{program.native()};
    copies.insert(copies.end(), arguments.begin(), arguments.end());
    std::vector<char*> pointers;
    for (auto& copy : copies)
        pointers.push_back(copy.data());
    pointers.push_back(nullptr);

    pid_t pid = -1;
    if (const int failure = plan.spawn(pid, program.c_str(), pointers.data()); failure != 0)
        return std::unexpected(errorFromErrno(failure, program.native()));
    if (const int failure = watchExit(exit, pid); failure != 0) {
        // Without a way to see it end, the child is of no use.
        kill(pid, SIGKILL);
        waitpid(pid, nullptr, WNOHANG);
        return std::unexpected(errorFromErrno(failure, "kevent"));
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
    int status = 0;
    pid_t ended = 0;
    do
        ended = waitpid(pid_, &status, WNOHANG);
    while (ended < 0 && errno == EINTR);
    if (ended < 0)
        status_ = signalStatusOffset; // somebody else has reaped it
    else if (ended == pid_)
        status_ = WIFEXITED(status) ? WEXITSTATUS(status) : signalStatusOffset + WTERMSIG(status);
    return status_;
}

// Until it is reaped here, the number is the child's and no other process's.
void ChildProcess::sendSignal(int signal) {
    if (!status_)
        kill(pid_, signal);
}

Result<std::filesystem::path> ownExecutable() {
    std::uint32_t size = PATH_MAX;
    std::string path(size, '\0');
    if (_NSGetExecutablePath(path.data(), &size) != 0) {
        path.assign(size, '\0');
        if (_NSGetExecutablePath(path.data(), &size) != 0)
            return std::unexpected(errorFromErrno(ENAMETOOLONG, "executable"));
    }
    const std::unique_ptr<char, void (*)(void*)> resolved(realpath(path.c_str(), nullptr), std::free);
    if (!resolved)
        return std::unexpected(errorFromErrno(errno, path.c_str()));
    return resolved.get();
}

} // namespace vantry
