#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <optional>
#include <sys/prctl.h>

namespace vantry {

/// From here on the kernel answers the system call `number` with the error `errorNumber`, in this process and in those
/// that it starts; not when the call's first argument is `unlessFirst`. False when it cannot be asked for that.
/// For a child process, as there is no way back.
[[nodiscard]] inline bool refuseCall(long number, int errorNumber, std::optional<std::uint32_t> unlessFirst = {}) {
    constexpr auto load = static_cast<std::uint16_t>(BPF_LD | BPF_W | BPF_ABS);
    constexpr auto jumpIfEqual = static_cast<std::uint16_t>(BPF_JMP | BPF_JEQ | BPF_K);
    constexpr auto answer = static_cast<std::uint16_t>(BPF_RET | BPF_K);
    // Without a value that is let through, one that no call here has.
    const std::uint32_t exception = unlessFirst.value_or(std::numeric_limits<std::uint32_t>::max() - 1);
    sock_filter program[] = {
        {load, 0, 0, offsetof(seccomp_data, nr)},
        {jumpIfEqual, 0, 3, static_cast<std::uint32_t>(number)},
        {load, 0, 0, offsetof(seccomp_data, args)}, // the lower half, on a little-endian machine
        {jumpIfEqual, 1, 0, exception},
        {answer, 0, 0, SECCOMP_RET_ERRNO | static_cast<std::uint32_t>(errorNumber)},
        {answer, 0, 0, SECCOMP_RET_ALLOW},
    };
    const sock_fprog filter = {sizeof program / sizeof *program, program};
    return prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) == 0 && prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter) == 0;
}

} // namespace vantry
