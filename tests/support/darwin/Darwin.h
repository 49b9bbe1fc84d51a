#pragma once

#include <cstdint>
#include <fcntl.h>
#include <spawn.h>
#include <sys/param.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

// What Darwin adds to the headers that Linux has too. The values are Apple's, but for those of `open`, where Linux uses
// some of Apple's for something else.

#define st_mtimespec st_mtim // stat(2)

// open(2), fcntl(2), rename(2)
constexpr int O_EVTONLY = 0x10000000;
constexpr int O_NOFOLLOW_ANY = 0x20000000;
constexpr int F_GETPATH = 50;
constexpr unsigned RENAME_SWAP = 0x2;
constexpr unsigned RENAME_EXCL = 0x4;
extern "C" int renameatx_np(int from, const char* fromName, int to, const char* toName, unsigned flags);

// chflags(2), sys/stat.h; the contents of what has SF_DATALESS have to be fetched first
constexpr std::uint32_t UF_HIDDEN = 0x8000;
constexpr std::uint32_t SF_DATALESS = 0x40000000;

// getfsstat(2): what this product reads
struct statfs {
    char f_fstypename[16];
    char f_mntonname[MAXPATHLEN];
};
constexpr int MNT_NOWAIT = 2;
extern "C" int getfsstat(struct statfs* mounts, int size, int flags);

// getiopolicy_np(3)
constexpr int IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES = 3;
constexpr int IOPOL_SCOPE_THREAD = 1;
constexpr int IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT = 0;
constexpr int IOPOL_MATERIALIZE_DATALESS_FILES_OFF = 1;
extern "C" int getiopolicy_np(int type, int scope);
extern "C" int setiopolicy_np(int type, int scope, int policy);

// posix_spawnattr_setflags(3)
constexpr short POSIX_SPAWN_CLOEXEC_DEFAULT = 0x4000;

// confstr(3)
constexpr int _CS_DARWIN_USER_TEMP_DIR = 65537;

// dlsym(3)
inline void* const RTLD_MAIN_ONLY = reinterpret_cast<void*>(std::intptr_t{-5});

// The functions of both systems that do more on Darwin. ReplacedCalls.h makes sources call them.
extern "C" {
int darwinOpen(const char* path, int flags, ...);
int darwinOpenat(int folder, const char* path, int flags, ...);
int darwinFcntl(int fd, int command, ...);
std::size_t darwinConfstr(int name, char* buffer, std::size_t size) noexcept;
void* darwinDlsym(void* handle, const char* symbol) noexcept;
int darwinSpawnSetFlags(posix_spawnattr_t* attributes, short flags) noexcept;
int darwinSpawn(pid_t* pid, const char* path, const posix_spawn_file_actions_t* actions,
                const posix_spawnattr_t* attributes, char* const* arguments, char* const* environment);
}
