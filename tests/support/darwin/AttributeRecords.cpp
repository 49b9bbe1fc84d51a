// getattrlistbulk(2), over getdents64 and statx. A record begins with its length, then come the set of returned
// attributes and the error, then the other attributes in the order of their bits, those of files last; getattrlist(2)
// aligns each to four bytes. Guesses, where the manual is silent: records are aligned to eight bytes, every second
// entry tells an error of 0, an entry that vanishes while it is read tells ENOENT, and what is neither file nor folder
// has sizes, too.

#include "tests/support/darwin/Darwin.h"
#include "tests/support/darwin/DarwinSystem.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <dirent.h>
#include <string_view>
#include <sys/attr.h>
#include <sys/sysmacros.h>
#include <sys/vnode.h>
#include <vector>

namespace vantry {

namespace {

class Packer {
public:
    /// Gives back where the value stands.
    template <class Value>
    std::size_t put(Value value) {
        const std::size_t at = bytes_.size();
        bytes_.resize(at + (sizeof value + 3) / 4 * 4);
        set(at, value);
        return at;
    }
    template <class Value>
    void set(std::size_t at, Value value) {
        std::memcpy(bytes_.data() + at, &value, sizeof value);
    }
    void putText(std::size_t reference, std::string_view text) {
        set(reference, attrreference_t{.attr_dataoffset = static_cast<std::int32_t>(bytes_.size() - reference),
                                       .attr_length = static_cast<std::uint32_t>(text.size() + 1)});
        bytes_.insert(bytes_.end(), text.begin(), text.end());
        bytes_.push_back(0);
    }
    std::vector<char> record() {
        bytes_.resize((bytes_.size() + 7) / 8 * 8);
        set(0, static_cast<std::uint32_t>(bytes_.size()));
        return std::move(bytes_);
    }

private:
    std::vector<char> bytes_ = std::vector<char>(sizeof(std::uint32_t)); // at first its length
};

fsobj_type_t typeOf(unsigned mode) {
    switch (mode & S_IFMT) {
    case S_IFREG: return VREG;
    case S_IFDIR: return VDIR;
    case S_IFLNK: return VLNK;
    case S_IFBLK: return VBLK;
    case S_IFCHR: return VCHR;
    case S_IFSOCK: return VSOCK;
    case S_IFIFO: return VFIFO;
    default: return VNON;
    }
}

std::vector<char> recordOf(int folder, const char* name, const attrlist& wanted) {
    const DarwinSystem& system = DarwinSystem::get();
    struct statx facts = {};
    int error = system.errorOfEntry ? system.errorOfEntry(name) : 0;
    if (error == 0 && statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS, &facts) != 0)
        error = errno;

    Packer packer;
    attribute_set_t returned = {};
    const auto gives = [&](attrgroup_t attribute) {
        returned.commonattr |= wanted.commonattr & attribute;
        return (wanted.commonattr & attribute) != 0;
    };
    const auto givesOfFile = [&](attrgroup_t attribute) {
        returned.fileattr |= wanted.fileattr & attribute;
        return (wanted.fileattr & attribute) != 0;
    };
    const std::size_t set = packer.put(returned);
    gives(ATTR_CMN_RETURNED_ATTRS);
    if ((error != 0 || facts.stx_ino % 2 == 0) && gives(ATTR_CMN_ERROR))
        packer.put(static_cast<std::uint32_t>(error));
    gives(ATTR_CMN_NAME);
    const std::size_t reference = packer.put(attrreference_t{});
    if (error == 0) {
        if (system.tellsTypes && gives(ATTR_CMN_OBJTYPE))
            packer.put(typeOf(facts.stx_mode));
        if (gives(ATTR_CMN_MODTIME))
            packer.put(timespec{facts.stx_mtime.tv_sec, facts.stx_mtime.tv_nsec});
        if (gives(ATTR_CMN_FLAGS))
            packer.put(system.flagsOf(makedev(facts.stx_dev_major, facts.stx_dev_minor), facts.stx_ino));
        // Of everything but folders. A block of each file that has some is in a fork beside its data.
        const auto bytes = static_cast<off_t>(facts.stx_blocks) * 512;
        if (!S_ISDIR(facts.stx_mode) && system.tellsTotalSizes && givesOfFile(ATTR_FILE_ALLOCSIZE))
            packer.put(bytes);
        if (!S_ISDIR(facts.stx_mode) && givesOfFile(ATTR_FILE_DATAALLOCSIZE))
            packer.put(bytes > 0 ? bytes - 512 : 0);
    }
    packer.putText(reference, name);
    packer.set(set, returned);
    return packer.record();
}

} // namespace

} // namespace vantry

extern "C" int getattrlistbulk(int folder, void* list, void* buffer, std::size_t size, std::uint64_t options) {
    using namespace vantry;
    const auto& wanted = *static_cast<const attrlist*>(list);
    constexpr attrgroup_t needed = ATTR_CMN_NAME | ATTR_CMN_RETURNED_ATTRS;
    constexpr attrgroup_t known = needed | ATTR_CMN_ERROR | ATTR_CMN_OBJTYPE | ATTR_CMN_MODTIME | ATTR_CMN_FLAGS;
    constexpr attrgroup_t knownOfFiles = ATTR_FILE_ALLOCSIZE | ATTR_FILE_DATAALLOCSIZE;
    if (wanted.bitmapcount != ATTR_BIT_MAP_COUNT || wanted.reserved != 0 || (wanted.commonattr & needed) != needed ||
        (wanted.commonattr & ~known) != 0 || (wanted.fileattr & ~knownOfFiles) != 0 ||
        (wanted.volattr | wanted.dirattr | wanted.forkattr) != 0 || (options & ~std::uint64_t{FSOPT_NOFOLLOW}) != 0)
        return errno = EINVAL, -1;
    DarwinSystem& system = DarwinSystem::get();
    ++system.readings;
    if (const int refusal = system.beforeReading ? system.beforeReading(system.readings) : 0; refusal != 0)
        return errno = refusal, -1;

    alignas(dirent64) std::array<char, 32768> entries;
    std::size_t used = 0;
    int count = 0;
    for (;;) {
        off_t place = lseek(folder, 0, SEEK_CUR);
        const ssize_t length = getdents64(folder, entries.data(), entries.size());
        if (length <= 0)
            return length < 0 && count == 0 ? -1 : count;
        for (ssize_t at = 0; at < length;) {
            const auto& entry = *reinterpret_cast<const dirent64*>(entries.data() + at);
            at += entry.d_reclen;
            if (const std::string_view name(entry.d_name); name != "." && name != "..") {
                auto record = recordOf(folder, entry.d_name, wanted);
                if (record.size() > size - used) {
                    lseek(folder, place, SEEK_SET); // it comes first the next time
                    return count > 0 ? count : (errno = ERANGE, -1);
                }
                if (system.changeRecord)
                    system.changeRecord(name, record);
                std::memcpy(static_cast<char*>(buffer) + used, record.data(), record.size());
                used += record.size();
                ++count;
            }
            place = entry.d_off;
        }
    }
}
