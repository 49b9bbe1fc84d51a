#include "base/StandardizedPath.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(StandardizedPath, HasNoDotsNoDoubledSlashesAndNoSlashAtItsEnd) {
    const struct {
        const char* path;
        const char* standardized;
    } cases[] = {
        {"/a/b", "/a/b"},
        {"/a/b/", "/a/b"},
        {"/a/b//", "/a/b"},
        {"/a//b", "/a/b"},
        {"//a/b", "/a/b"},
        {"/a/./b/.", "/a/b"},
        {"/a/c/../b", "/a/b"},
        {"/a/b/c/..", "/a/b"},
        {"/a/b/c/../", "/a/b"},
        {"/../a", "/a"},
        {"/a/..", "/"},
        {"/", "/"},
        {"///", "/"},
        {"/.", "/"},
        {"", ""},
        {"/a/...", "/a/..."}, // a name
        {"/a/.b", "/a/.b"},
        {"/a/b.", "/a/b."},
        {"/a/b ", "/a/b "},
        {"/a/\xff\n\"\\", "/a/\xff\n\"\\"}, // not valid UTF-8
    };
    for (const auto& [path, standardized] : cases)
        EXPECT_EQ(standardizedPath(path).native(), standardized) << path;
}

} // namespace vantry
