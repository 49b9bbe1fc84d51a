#pragma once

#include "base/Time.h"

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <expected>
#include <memory>
#include <optional>
#include <span>
#include <sys/attr.h>
#include <sys/vnode.h>
#include <unistd.h>
#include <vector>

namespace vantry {

enum class EntryKind { regularFile, directory, other, unknown };

struct DirectoryEntry {
    const char* name = nullptr; ///< valid until the next read
    int error = 0;              ///< an errno: why only the name is known
    EntryKind kind = EntryKind::unknown;
    std::uint32_t flags = 0; ///< of `st_flags`
    std::int64_t allocatedBytes = 0;
    std::optional<SystemTime> modification;
};

/// What the system wrote about one entry: one value after the other, aligned to four bytes. Values beyond its end are
/// read as zero, and `isWhole` is false from then on.
class Record {
public:
    explicit Record(std::span<const char> bytes) : bytes_(bytes) {}

    template <class Value>
    Value take() {
        Value value = {};
        if (const auto place = placeOf(at_, sizeof value))
            std::memcpy(&value, place, sizeof value);
        at_ += sizeof value;
        return value;
    }
    // The record refers to the name by its distance from here.
    const char* takeName() {
        const std::size_t from = at_;
        const auto reference = take<attrreference_t>();
        const char* name = placeOf(from + static_cast<std::size_t>(reference.attr_dataoffset), reference.attr_length);
        isWhole_ = isWhole_ && name && std::memchr(name, 0, reference.attr_length);
        return isWhole_ ? name : nullptr;
    }
    [[nodiscard]] bool isWhole() const { return isWhole_; }

private:
    const char* placeOf(std::size_t begin, std::size_t size) {
        isWhole_ = isWhole_ && begin <= bytes_.size() && size <= bytes_.size() - begin;
        return isWhole_ ? bytes_.data() + begin : nullptr;
    }

    std::span<const char> bytes_;
    std::size_t at_ = 0;
    bool isWhole_ = true;
};

/// Reads folders in large pieces, with the facts about each entry.
class DirectoryReader {
public:
    static constexpr std::size_t largestPiece =
        64 * 1024; // bytes: some 700 entries, so that deadlines are checked in between

    /// The next entries of the folder that is open as `fd`, without "." and ".."; empty at its end. The error is an
    /// errno.
    [[nodiscard]] std::expected<std::span<const DirectoryEntry>, int> read(int fd, std::size_t size = largestPiece) {
        int count = 0;
        do
            count = getattrlistbulk(fd, &wanted_, buffer_.get(), size, FSOPT_NOFOLLOW);
        while (count < 0 && errno == EINTR);
        if (count < 0)
            return std::unexpected(errno);
        entries_.clear();
        std::span<const char> rest(buffer_.get(), size);
        for (; count > 0; --count) {
            const std::size_t length = Record(rest).take<std::uint32_t>();
            const auto entry = length <= rest.size() ? entryIn(rest.first(length)) : std::nullopt;
            if (!entry)
                return std::unexpected(EIO);
            entries_.push_back(*entry);
            rest = rest.subspan(length);
        }
        return entries_;
    }

private:
    // The values come in the order of their bits, after the length and the set of what was returned.
    static std::optional<DirectoryEntry> entryIn(std::span<const char> bytes) {
        Record record(bytes);
        record.take<std::uint32_t>(); // its length
        const auto returned = record.take<attribute_set_t>();
        const auto has = [&](attrgroup_t attribute) { return (returned.commonattr & attribute) != 0; };
        const auto hasOfFile = [&](attrgroup_t attribute) { return (returned.fileattr & attribute) != 0; };
        DirectoryEntry entry;
        if (has(ATTR_CMN_ERROR))
            entry.error = static_cast<int>(record.take<std::uint32_t>());
        if (has(ATTR_CMN_NAME))
            entry.name = record.takeName();
        if (has(ATTR_CMN_OBJTYPE))
            entry.kind = kindOf(record.take<fsobj_type_t>());
        if (has(ATTR_CMN_MODTIME)) {
            const auto time = record.take<timespec>();
            entry.modification = systemTimeFromUnix(time.tv_sec, time.tv_nsec);
        }
        if (has(ATTR_CMN_FLAGS))
            entry.flags = record.take<std::uint32_t>();
        if (hasOfFile(ATTR_FILE_ALLOCSIZE))
            entry.allocatedBytes = record.take<off_t>();
        if (hasOfFile(ATTR_FILE_DATAALLOCSIZE))
            if (const auto dataBytes = record.take<off_t>(); !hasOfFile(ATTR_FILE_ALLOCSIZE))
                entry.allocatedBytes = dataBytes;
        return record.isWhole() && entry.name ? std::optional(entry) : std::nullopt;
    }

    static EntryKind kindOf(fsobj_type_t type) {
        switch (type) {
        case VREG: return EntryKind::regularFile;
        case VDIR: return EntryKind::directory;
        default: return EntryKind::other;
        }
    }

    attrlist wanted_{.bitmapcount = ATTR_BIT_MAP_COUNT,
                     .reserved = 0,
                     .commonattr = ATTR_CMN_RETURNED_ATTRS | ATTR_CMN_ERROR | ATTR_CMN_NAME | ATTR_CMN_OBJTYPE |
                                   ATTR_CMN_MODTIME | ATTR_CMN_FLAGS,
                     .volattr = 0,
                     .dirattr = 0,
                     .fileattr = ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATAALLOCSIZE,
                     .forkattr = 0};
    std::unique_ptr<char[]> buffer_ = std::make_unique_for_overwrite<char[]>(largestPiece);
    std::vector<DirectoryEntry> entries_;
};

} // namespace vantry
