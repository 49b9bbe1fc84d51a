#pragma once

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <optional>
#include <sys/prctl.h>
#include <ucontext.h>
#include <unistd.h>
#include <utility>

namespace vantry {

/// What is done before each call of one kind.
struct InterceptedCall {
    static inline std::function<void(int)> before; ///< is passed the number of the call, from 1
    static inline long number = 0;
    static inline int count = 0;
    static inline std::int64_t firstArgument = 0; ///< of the call that is about to be made
    static inline std::int64_t secondArgument = 0;
    /// Set by `before`: the errno that the call is answered with, 0 for success, instead of being made.
    static inline std::optional<int> answer;
    /// A sixth argument that no caller gives: the call is let through.
    static constexpr std::uint32_t pass = 0x5ca1ab1e;

    static void onCall(int /*signal*/, siginfo_t* /*info*/, void* context) {
        auto& machine = static_cast<ucontext_t*>(context)->uc_mcontext;
#if defined(__x86_64__)
        auto& all = machine.gregs;
        firstArgument = static_cast<std::int64_t>(all[REG_RDI]);
        secondArgument = static_cast<std::int64_t>(all[REG_RSI]);
        before(++count);
        if (const auto given = std::exchange(answer, {})) {
            all[REG_RAX] = -*given;
            return;
        }
        const long result = syscall(number, all[REG_RDI], all[REG_RSI], all[REG_RDX], all[REG_R10], all[REG_R8], pass);
        all[REG_RAX] = result < 0 ? -errno : result;
#elif defined(__aarch64__)
        auto& all = machine.regs;
        firstArgument = static_cast<std::int64_t>(all[0]);
        secondArgument = static_cast<std::int64_t>(all[1]);
        before(++count);
        if (const auto given = std::exchange(answer, {})) {
            all[0] = static_cast<std::uint64_t>(-*given);
            return;
        }
        const long result = syscall(number, all[0], all[1], all[2], all[3], all[4], pass);
        all[0] = static_cast<std::uint64_t>(result < 0 ? -errno : result);
#else
        static_cast<void>(machine);
#endif
    }
};

/// From here on `before` is called each time this process is about to make the system call `number`, one of at most
/// five arguments, and then the call is made. False where that is not possible. For a child process, as there is no way
/// back; `before` must not make that call itself.
[[nodiscard]] inline bool interceptCall(long number, std::function<void(int)> before) {
#if (!defined(__x86_64__) && !defined(__aarch64__)) || defined(OMBREL_THREAD_SANITIZER) // which delays signals
    static_cast<void>(number);
    static_cast<void>(before);
    return false;
#else
    InterceptedCall::before = std::move(before);
    InterceptedCall::number = number;
    struct sigaction action = {};
    action.sa_sigaction = InterceptedCall::onCall;
    action.sa_flags = SA_SIGINFO;
    sock_filter program[] = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr)),
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<std::uint32_t>(number), 0, 3),
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, args[5])), // the lower half: little-endian machines
        BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, InterceptedCall::pass, 1, 0),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_TRAP),
        BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW),
    };
    const sock_fprog filter{sizeof program / sizeof *program, program};
    return sigaction(SIGSYS, &action, nullptr) == 0 && prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 &&
           prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
#endif
}

} // namespace vantry
