#include "platform/apple/PromptLookup.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <climits>
#include <cstddef>
#include <list>
#include <string>
#include <string_view>
#include <strings.h>
#include <sys/mount.h>
#include <sys/param.h>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

using namespace std::string_view_literals;

// File systems on a disk of this machine or in its memory. "autofs" waits for a server, "lifs" and "macfuse" for a
// process.
constexpr std::array promptTypes{"apfs"sv,  "cd9660"sv, "devfs"sv, "exfat"sv, "hfs"sv,
                                 "msdos"sv, "ntfs"sv,   "tmpfs"sv, "udf"sv,   "ufs"sv};

// Where the others are mounted. MNT_NOWAIT: from the kernel's cache, without asking any file system (getfsstat(2)).
std::expected<std::vector<std::string>, int> slowMounts() {
    std::vector<struct statfs> mounts(64);
    for (;;) {
        const auto room = mounts.size();
        const int count = getfsstat(mounts.data(), static_cast<int>(room * sizeof(struct statfs)), MNT_NOWAIT);
        if (count < 0)
            return std::unexpected(errno);
        mounts.resize(static_cast<std::size_t>(count));
        if (mounts.size() < room)
            break;
        mounts.resize(2 * room); // there may be more
    }
    std::vector<std::string> slow;
    for (const auto& mount : mounts)
        if (std::ranges::count(promptTypes, std::string_view(mount.f_fstypename)) == 0)
            slow.emplace_back(mount.f_mntonname);
    return slow;
}

using Components = std::list<std::string>;

void putBefore(Components& rest, const std::filesystem::path& path) {
    Components parts;
    for (const auto& part : path.relative_path())
        if (!part.empty())
            parts.push_back(part.native());
    rest.splice(rest.begin(), parts);
}

} // namespace

std::expected<std::filesystem::path, int> promptPath(const std::filesystem::path& path, FinalLink link) {
    if (path.empty())
        return std::unexpected(ENOENT);
    const auto slow = slowMounts();
    if (!slow)
        return std::unexpected(slow.error());
    // Most volumes ignore the case of names.
    const auto isSlow = [&](const std::string& at) {
        return std::ranges::any_of(*slow,
                                   [&](const auto& mount) { return strcasecmp(mount.c_str(), at.c_str()) == 0; });
    };
    std::filesystem::path found = "/";
    Components rest;
    putBefore(rest, path);
    for (int links = 0; !rest.empty();) {
        const std::string name = std::move(rest.front());
        rest.pop_front();
        if (name == ".") // also at the end: "link/." follows the link
            continue;
        if (name == "..") {
            found = found.parent_path();
            continue;
        }
        const auto next = found / name;
        if (isSlow(next.native()))
            return std::unexpected(EAGAIN);
        struct stat facts = {};
        if (lstat(next.c_str(), &facts) != 0)
            return std::unexpected(errno);
        if (!S_ISLNK(facts.st_mode) || (rest.empty() && link == FinalLink::isKept)) {
            found = next;
            continue;
        }
        std::array<char, PATH_MAX> target{};
        const ssize_t length = readlink(next.c_str(), target.data(), target.size());
        if (length < 0)
            return std::unexpected(errno);
        if (++links > MAXSYMLINKS)
            return std::unexpected(ELOOP);
        const std::filesystem::path leadsTo(std::string(target.data(), static_cast<std::size_t>(length)));
        if (leadsTo.is_absolute())
            found = "/";
        putBefore(rest, leadsTo);
    }
    return found;
}

} // namespace vantry
