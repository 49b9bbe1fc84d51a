#pragma once

#include <cstddef>
#include <cstdint>

// getattrlist(2) and getattrlistbulk(2): what this product asks for.

using attrgroup_t = std::uint32_t;
using fsobj_type_t = std::uint32_t;

struct attrlist {
    std::uint16_t bitmapcount;
    std::uint16_t reserved;
    attrgroup_t commonattr;
    attrgroup_t volattr;
    attrgroup_t dirattr;
    attrgroup_t fileattr;
    attrgroup_t forkattr;
};

struct attribute_set_t {
    attrgroup_t commonattr;
    attrgroup_t volattr;
    attrgroup_t dirattr;
    attrgroup_t fileattr;
    attrgroup_t forkattr;
};

struct attrreference_t {
    std::int32_t attr_dataoffset; ///< from this structure's own place
    std::uint32_t attr_length;
};

constexpr int ATTR_BIT_MAP_COUNT = 5;
constexpr int FSOPT_NOFOLLOW = 0x1;

constexpr attrgroup_t ATTR_CMN_NAME = 0x1;
constexpr attrgroup_t ATTR_CMN_OBJTYPE = 0x8;
constexpr attrgroup_t ATTR_CMN_MODTIME = 0x400;
constexpr attrgroup_t ATTR_CMN_FLAGS = 0x40000;
constexpr attrgroup_t ATTR_CMN_ERROR = 0x20000000;
constexpr attrgroup_t ATTR_CMN_RETURNED_ATTRS = 0x80000000;
constexpr attrgroup_t ATTR_FILE_ALLOCSIZE = 0x4;
constexpr attrgroup_t ATTR_FILE_DATAALLOCSIZE = 0x400;

extern "C" int getattrlistbulk(int folder, void* wanted, void* buffer, std::size_t size, std::uint64_t options);
