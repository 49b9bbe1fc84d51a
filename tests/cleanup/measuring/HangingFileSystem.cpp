// Mounts a file system on a folder that answers some questions and never the others, until it is killed or the
// connection aborted. It holds "folder" and, in it, "file". Prints a line once it is mounted.
//   hanging_file_system MOUNT-POINT getattr   never says what stands below the mount point
//   hanging_file_system MOUNT-POINT readdir   never says what stands in a folder

#define FUSE_USE_VERSION 31

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <fuse_lowlevel.h>
#include <string>
#include <string_view>
#include <sys/stat.h>

namespace {

enum class Hangs { getattr, readdir };

constexpr fuse_ino_t folderNumber = 2;
constexpr fuse_ino_t fileNumber = 3;
constexpr double never = 0; // seconds for which an answer may be kept: everything is asked again

Hangs hangs(fuse_req_t request) { return *static_cast<const Hangs*>(fuse_req_userdata(request)); }

struct stat facts(fuse_ino_t number) {
    struct stat facts = {};
    facts.st_ino = number;
    facts.st_mode = number == fileNumber ? S_IFREG | 0644 : S_IFDIR | 0755;
    facts.st_nlink = 1;
    return facts;
}

void lookup(fuse_req_t request, fuse_ino_t parent, const char* name) {
    if (hangs(request) == Hangs::getattr)
        return; // for ever
    const std::string_view wanted(name);
    const fuse_ino_t number = parent == FUSE_ROOT_ID && wanted == "folder" ? folderNumber
                              : parent == folderNumber && wanted == "file" ? fileNumber
                                                                           : 0;
    if (number == 0) {
        fuse_reply_err(request, ENOENT);
        return;
    }
    fuse_entry_param entry = {};
    entry.ino = number;
    entry.attr = facts(number);
    entry.attr_timeout = never;
    entry.entry_timeout = never;
    fuse_reply_entry(request, &entry);
}

void getattr(fuse_req_t request, fuse_ino_t number, fuse_file_info* /*file*/) {
    if (hangs(request) == Hangs::getattr && number != FUSE_ROOT_ID)
        return; // for ever
    const struct stat answer = facts(number);
    fuse_reply_attr(request, &answer, never);
}

void readdir(fuse_req_t request, fuse_ino_t number, std::size_t size, off_t offset, fuse_file_info* /*file*/) {
    if (hangs(request) == Hangs::readdir)
        return; // for ever
    std::array<char, 256> entries{};
    const bool inFolder = number == folderNumber;
    const struct stat entry = facts(inFolder ? fileNumber : folderNumber);
    const std::size_t length = offset != 0 ? 0
                                           : fuse_add_direntry(request, entries.data(), entries.size(),
                                                               inFolder ? "file" : "folder", &entry, 1);
    fuse_reply_buf(request, entries.data(), std::min(size, length));
}

} // namespace

int main(int count, char** values) {
    const std::string_view mode = count == 3 ? values[2] : "";
    if (mode != "getattr" && mode != "readdir")
        return EXIT_FAILURE;
    Hangs hangs = mode == "getattr" ? Hangs::getattr : Hangs::readdir;
    fuse_lowlevel_ops operations = {};
    operations.lookup = lookup;
    operations.getattr = getattr;
    operations.readdir = readdir;
    std::array<char*, 2> name{values[0], nullptr};
    fuse_args arguments = FUSE_ARGS_INIT(1, name.data());
    fuse_session* session = fuse_session_new(&arguments, &operations, sizeof operations, &hangs);
    if (!session || fuse_session_mount(session, values[1]) != 0)
        return EXIT_FAILURE;
    std::puts("mounted");
    std::fflush(stdout);
    const int ended = fuse_session_loop(session);
    fuse_session_unmount(session);
    fuse_session_destroy(session);
    // A sanitizer that looks for leaks would keep the process from being reaped when it is killed meanwhile.
    std::_Exit(ended == 0 ? EXIT_SUCCESS : EXIT_FAILURE);
}
