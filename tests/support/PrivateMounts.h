#pragma once

#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <unistd.h>

namespace vantry {

/// From here on the mounts of this process are private to it and end with it. An ordinary user gets the right to
/// mount, in a user namespace in which everybody keeps their number. False where there is no such right. For a child
/// process, as there is no way back.
[[nodiscard]] inline bool keepMountsPrivate() {
    const uid_t user = geteuid();
    const gid_t group = getegid();
    if (unshare(user == 0 ? CLONE_NEWNS : CLONE_NEWNS | CLONE_NEWUSER) != 0)
        return false;
    if (user != 0) {
        std::ofstream("/proc/self/setgroups") << "deny";
        std::ofstream("/proc/self/uid_map") << user << ' ' << user << " 1\n";
        std::ofstream("/proc/self/gid_map") << group << ' ' << group << " 1\n";
    }
    return mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

} // namespace vantry
