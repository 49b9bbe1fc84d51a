#include "platform/FoundItem.h"

#include "base/UniqueFd.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <filesystem>

namespace vantry {

TEST(AppleFileFingerprint, OfADescriptorIsReadByThePathOfTheItem) {
    namespace fs = std::filesystem;
    const TemporaryFolder folder;
    writeFile(folder / "file", "text");
    const UniqueFd opened(open((folder / "file").c_str(), O_RDONLY | O_CLOEXEC));
    const FileFingerprint before = readFileFingerprint(folder / "file");
    EXPECT_TRUE(before.resourceIdentifier);
    EXPECT_EQ(readFileFingerprint(opened.get()), before);
    fs::rename(folder / "file", folder / "moved");
    writeFile(folder / "file", "another");
    EXPECT_EQ(readFileFingerprint(opened.get()), before);
    fs::remove(folder / "moved");
    EXPECT_EQ(readFileFingerprint(opened.get()), FileFingerprint()) << "it has no path left";
    EXPECT_EQ(readFileFingerprint(-1), FileFingerprint());
}

} // namespace vantry
