#pragma once

#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <expected>
#include <memory>
#include <span>
#include <string_view>
#include <vector>

namespace vantry {

enum class EntryKind { regularFile, directory, other, unknown };

struct DirectoryEntry {
    const char* name = nullptr; ///< valid until the next read
    EntryKind kind = EntryKind::unknown;
};

/// Reads folders in large pieces into one buffer.
class DirectoryReader {
public:
    /// The next entries of the folder that is open as `fd`, "." and ".." left out; empty at its end. The error is an
    /// errno.
    [[nodiscard]] std::expected<std::span<const DirectoryEntry>, int> read(int fd) {
        entries_.clear();
        while (entries_.empty()) {
            const ssize_t length = getdents64(fd, buffer_.get(), bufferSize);
            if (length < 0 && errno == EINTR)
                continue;
            if (length < 0)
                return std::unexpected(errno);
            if (length == 0)
                break;
            for (ssize_t at = 0; at < length;) {
                const auto* entry = reinterpret_cast<const dirent64*>(buffer_.get() + at);
                at += entry->d_reclen;
                const std::string_view name(entry->d_name);
                if (name != "." && name != "..")
                    entries_.push_back({entry->d_name, kindOf(entry->d_type)});
            }
        }
        return entries_;
    }

private:
    static constexpr std::size_t bufferSize = 128 * 1024;

    static EntryKind kindOf(unsigned char type) {
        switch (type) {
        case DT_REG: return EntryKind::regularFile;
        case DT_DIR: return EntryKind::directory;
        case DT_UNKNOWN: return EntryKind::unknown;
        default: return EntryKind::other;
        }
    }

    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(bufferSize);
    std::vector<DirectoryEntry> entries_;
};

} // namespace vantry
