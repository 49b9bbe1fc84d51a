#include "cleanup/measuring/DiskUsage.h"

#include "base/ByteSum.h"
#include "base/Format.h"
#include "base/UniqueFd.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <tuple>
#include <unordered_set>
#include <utility>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

constexpr std::int64_t bytesInBlock = 512; // of st_blocks, whatever the file system's blocks are

// Which of several names of a file is the first. All of them lie on one file system.
class SeenFiles {
public:
    [[nodiscard]] bool isFirst(const struct stat& facts) {
        return S_ISDIR(facts.st_mode) || facts.st_nlink < 2 || inodes_.insert(facts.st_ino).second;
    }

private:
    std::unordered_set<ino_t> inodes_;
};

bool isCounted(std::string_view name, const struct stat& facts, std::span<const std::string> endings) {
    return endings.empty() || (S_ISREG(facts.st_mode) && std::ranges::any_of(endings, [&](const auto& ending) {
                                   return name.ends_with(ending);
                               }));
}

} // namespace

DirectoryMetrics diskUsageInProcess(const std::filesystem::path& path, std::span<const std::string> endings,
                                    Deadline deadline) {
    struct stat root = {};
    if (lstat(path.c_str(), &root) != 0)
        return {};
    DirectoryMetrics usage{.complete = true};
    SeenFiles seen;
    std::vector<std::string> folders; // whose entries are still to be counted
    const auto count = [&](std::string_view name, const struct stat& facts) {
        if (isCounted(name, facts, endings) && seen.isFirst(facts) &&
            !addBytes(usage.size, bytesInBlock * facts.st_blocks))
            usage.complete = false;
    };
    count(path.filename().native(), root);
    bool isEmpty = S_ISDIR(root.st_mode);
    if (isEmpty)
        folders.push_back(path.native());
    while (!folders.empty()) {
        const auto folder = std::move(folders.back());
        folders.pop_back();
        UniqueFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        const std::unique_ptr<DIR, decltype([](DIR* list) { closedir(list); })> list(fd ? fdopendir(fd.get())
                                                                                        : nullptr);
        if (!list) {
            usage.complete = usage.complete && errno == ENOENT; // gone since
            isEmpty = false;
            continue;
        }
        std::ignore = fd.release(); // the list owns it
        for (;;) {
            errno = 0;
            const auto* entry = readdir(list.get());
            if (!entry)
                break;
            const std::string_view name(entry->d_name);
            if (name == "." || name == "..")
                continue;
            isEmpty = false;
            struct stat facts = {};
            if (fstatat(dirfd(list.get()), entry->d_name, &facts, AT_SYMLINK_NOFOLLOW) != 0)
                usage.complete = usage.complete && errno == ENOENT;
            else if (facts.st_dev == root.st_dev) { // else something is mounted there
                count(name, facts);
                if (S_ISDIR(facts.st_mode))
                    folders.push_back(formatted("{}/{}", folder, name));
            }
            if (hasPassed(deadline)) // a single folder may hold millions
                return {.size = usage.size, .complete = false};
        }
        usage.complete = usage.complete && errno == 0;
    }
    if (isEmpty)
        usage.size = 0;
    usage.complete = usage.complete && !hasPassed(deadline);
    return usage;
}

} // namespace vantry::CleanupScanner
