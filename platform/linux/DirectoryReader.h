#pragma once

#include <array>
#include <cerrno>
#include <cstddef>
#include <dirent.h>
#include <expected>
#include <memory>
#include <span>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace vantry {

enum class EntryKind : char { regularFile, directory, other, unknown };

struct DirectoryEntry {
    const char* name = nullptr; ///< valid until the next read
    EntryKind kind = EntryKind::unknown;
};

/// Reads folders in large pieces into one buffer.
class DirectoryReader {
public:
    static constexpr ssize_t largestPiece = 128 * 1024; ///< bytes: some thousands of entries

    /// The next entries of the folder that is open as `fd`, without "." and ".."; empty at its end. The error is an
    /// errno.
    [[nodiscard]] std::expected<std::span<const DirectoryEntry>, int> read(int fd, ssize_t pieceSize = largestPiece) {
        entries_.clear();
        while (entries_.empty()) {
            length_ = getdents64(fd, buffer_.get(), static_cast<std::size_t>(pieceSize));
            if (length_ < 0 && errno == EINTR)
                continue;
            if (length_ < 0 && errno == EINVAL && pieceSize < largestPiece) { // too small for the next name
                pieceSize = largestPiece;
                continue;
            }
            pieceSize_ = pieceSize;
            if (length_ < 0)
                return std::unexpected(errno);
            if (length_ == 0)
                break;
            for (ssize_t at = 0; at < length_;) {
                const auto* entry = reinterpret_cast<const dirent64*>(buffer_.get() + at);
                at += entry->d_reclen;
                end_ = entry->d_off;
                const std::string_view name(entry->d_name);
                if (name != "." && name != "..")
                    entries_.push_back({entry->d_name, kindOf(entry->d_type)});
            }
        }
        return entries_;
    }

    /// Whether the last read is known to have reached the end of the folder. Changes neither the entries nor the
    /// position of the next read. The error is an errno.
    [[nodiscard]] std::expected<bool, int> atEnd(int fd) {
        if (length_ == 0)
            return true;
        if (piecesAreShort_ || length_ > pieceSize_ - largestEntry)
            return false;
        std::array<char, largestEntry> next; // NOLINT(cppcoreguidelines-pro-type-member-init): written by the call
        const ssize_t more = getdents64(fd, next.data(), next.size());
        if (more == 0)
            return true;
        // This file system does not fill the buffer. Do not ask again: seeking back costs more than is saved.
        piecesAreShort_ = true;
        if (more > 0 && lseek(fd, end_, SEEK_SET) != end_)
            return std::unexpected(errno);
        return false;
    }

private:
    static constexpr ssize_t largestEntry = 1024; // more than the longest name of local file systems takes

    static EntryKind kindOf(unsigned char type) {
        switch (type) {
        case DT_REG: return EntryKind::regularFile;
        case DT_DIR: return EntryKind::directory;
        case DT_UNKNOWN: return EntryKind::unknown;
        default: return EntryKind::other;
        }
    }

    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(largestPiece);
    std::vector<DirectoryEntry> entries_;
    ssize_t length_ = 0;          ///< of the last piece
    ssize_t pieceSize_ = 0;       ///< the room that it had
    off64_t end_ = 0;             ///< position behind the last piece
    bool piecesAreShort_ = false; ///< even when more follows
};

} // namespace vantry
