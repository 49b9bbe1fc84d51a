#include "cleanup/measuring/DiskUsage.h"

#include "base/ByteSum.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdint>
#include <fts.h>
#include <memory>
#include <string_view>
#include <sys/stat.h>
#include <unordered_set>

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

bool isCounted(const FTSENT& entry, std::span<const std::string> endings) {
    const std::string_view name(entry.fts_name, entry.fts_namelen);
    return endings.empty() || (entry.fts_info == FTS_F && std::ranges::any_of(endings, [&](const auto& ending) {
                                   return name.ends_with(ending);
                               }));
}

} // namespace

DirectoryMetrics diskUsageInProcess(const std::filesystem::path& path, std::span<const std::string> endings,
                                    Deadline deadline) {
    std::string root = path.native();
    const std::array<char*, 2> roots{root.data(), nullptr};
    const std::unique_ptr<FTS, decltype([](FTS* walk) { fts_close(walk); })> walk(
        fts_open(roots.data(), FTS_PHYSICAL | FTS_XDEV | FTS_NOCHDIR, nullptr));
    if (!walk)
        return {};
    DirectoryMetrics usage{.complete = true};
    SeenFiles seen;
    for (;;) {
        errno = 0;
        const FTSENT* entry = fts_read(walk.get());
        if (!entry) {
            usage.complete = usage.complete && errno == 0;
            return usage;
        }
        switch (entry->fts_info) {
        case FTS_D: // counted when it is left: then it is known whether it could be read
        case FTS_DC: continue;
        case FTS_NS:
        case FTS_ERR:
            usage.complete = usage.complete && entry->fts_level > 0 && entry->fts_errno == ENOENT; // gone since
            continue;
        case FTS_DNR: usage.complete = false; break;
        default: break;
        }
        if (isCounted(*entry, endings) && seen.isFirst(*entry->fts_statp) &&
            !addBytes(usage.size, bytesInBlock * entry->fts_statp->st_blocks))
            usage.complete = false;
        if (hasPassed(deadline))
            return {.size = usage.size, .complete = false};
    }
}

} // namespace vantry::CleanupScanner
