#pragma once

#include "tests/support/darwin/Darwin.h"

#include <dlfcn.h>

// Included before everything else in a source of platform/apple that is compiled on Linux. The functions keep their
// names, which members of ours have too, and get other symbols.

extern "C" {
extern int open(const char* path, int flags, ...) __asm__("darwinOpen");
extern int openat(int folder, const char* path, int flags, ...) __asm__("darwinOpenat");
extern int fcntl(int fd, int command, ...) __asm__("darwinFcntl");
extern std::size_t confstr(int name, char* buffer, std::size_t size) noexcept __asm__("darwinConfstr");
extern void* dlsym(void* handle, const char* symbol) noexcept __asm__("darwinDlsym");
extern int posix_spawnattr_setflags(posix_spawnattr_t* attributes, short flags) noexcept __asm__("darwinSpawnSetFlags");
extern int posix_spawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                       const posix_spawnattr_t* attributes, char* const* arguments,
                       char* const* environment) __asm__("darwinSpawn");
}
