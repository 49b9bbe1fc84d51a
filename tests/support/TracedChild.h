#pragma once

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <functional>
#include <string>
#include <sys/ptrace.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry {

/// A system call that a traced process is about to make.
struct TracedCall {
    pid_t process = 0;
    std::uint64_t number = 0;
    std::array<std::uint64_t, 6> arguments{};

    /// The text that the argument `which` points to.
    [[nodiscard]] std::string text(std::size_t which) const {
        std::string all;
        for (std::uint64_t address = arguments.at(which);; address += sizeof(long)) {
            errno = 0;
            const long word = ptrace(PTRACE_PEEKDATA, process, address, nullptr);
            std::array<char, sizeof word> bytes{};
            std::memcpy(bytes.data(), &word, sizeof word);
            for (const char byte : bytes) {
                if (errno != 0 || byte == 0)
                    return all;
                all += byte;
            }
        }
    }
};

/// What `run` answers in a copy of this process, its exit status, while `before` is called before each system call of
/// that copy; -1 when it did not end by itself or cannot be traced. Only from a process with one thread.
[[nodiscard]] inline int traceCalls(const std::function<int()>& run,
                                    const std::function<void(const TracedCall&)>& before) {
    const pid_t child = fork();
    if (child == 0) {
        if (ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0 || raise(SIGSTOP) != 0)
            _exit(-1);
        _exit(run());
    }
    int status = 0;
    if (child < 0 || waitpid(child, &status, 0) != child || !WIFSTOPPED(status) ||
        ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACESYSGOOD | PTRACE_O_EXITKILL) != 0)
        return -1;
    constexpr int atCall = SIGTRAP | 0x80;
    for (int signal = 0; ptrace(PTRACE_SYSCALL, child, nullptr, signal) == 0 && waitpid(child, &status, 0) == child;) {
        if (!WIFSTOPPED(status))
            return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
        signal = WSTOPSIG(status) == atCall ? 0 : WSTOPSIG(status);
        struct __ptrace_syscall_info info = {};
        if (signal == 0 && ptrace(PTRACE_GET_SYSCALL_INFO, child, sizeof info, &info) > 0 &&
            info.op == PTRACE_SYSCALL_INFO_ENTRY) {
            TracedCall call{.process = child, .number = info.entry.nr};
            std::memcpy(call.arguments.data(), info.entry.args, sizeof call.arguments);
            before(call);
        }
    }
    return -1;
}

} // namespace vantry
