#include "platform/linux/VolumeCapacity.h"

#include "tests/support/ChildProcess.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <sched.h>
#include <string>
#include <string_view>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/statvfs.h>

namespace vantry {

namespace {

constexpr auto largestAmount = std::numeric_limits<std::int64_t>::max();
constexpr auto largestCount = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t singleBit = 1;

constexpr const char* notMounted = "may not mount a file system";

/// Where an ext4 image made with `options` is mounted for this process; empty when that may not be.
std::filesystem::path mountedImage(const std::filesystem::path& folder, const std::string& options) {
    const auto image = (folder / "image").native();
    const auto point = folder / "point";
    std::filesystem::create_directory(point);
    // The mount tool sets the loop device up so that it goes with the mount.
    const std::string commands = "PATH=$PATH:/usr/sbin:/sbin; exec >/dev/null 2>&1; truncate -s 4M " + image +
                                 " && mkfs.ext4 -q -F " + options + " " + image + " && mount -o loop,ro " + image +
                                 " " + point.native();
    return keepMountsPrivate() && std::system(commands.c_str()) == 0 ? point : std::filesystem::path();
}

} // namespace

TEST(CapacityFromStatvfs, CountsWhatAUserCanFillAndHoldsWhatOverflows) {
    const struct {
        std::uint64_t fragmentSize;
        std::uint64_t blockSize;
        std::uint64_t blocks;
        std::uint64_t free;
        std::uint64_t available;
        std::int64_t totalBytes;
        std::int64_t availableBytes;
        std::int64_t reservedBytes;
    } cases[] = {
        {4096, 4096, 1000, 250, 250, 4'096'000, 1'024'000, 0},
        {4096, 4096, 1000, 300, 250, 3'891'200, 1'024'000, 204'800},
        {4096, 4096, 1000, 500, 0, 2'048'000, 0, 2'048'000}, // full, but for root
        {512, 65536, 1000, 250, 250, 512'000, 128'000, 0},   // the counts are in fragments
        {0, 1024, 1000, 250, 250, 1'024'000, 256'000, 0},    // a file system that leaves the fragment size out
        {0, 0, 1000, 260, 250, 0, 0, 0},                     // or both
        {4096, 4096, 0, 0, 0, 0, 0, 0},                      // a virtual file system without blocks
        {4096, 4096, 10, 5, 20, 40'960, 81'920, 0},          // nothing is judged here
        {4096, 4096, 10, 50, 20, 0, 81'920, 122'880},
        {1, 1, singleBit << 62, 1, 1, std::int64_t{1} << 62, 1, 0},
        {1, 1, largestAmount, largestAmount, largestAmount, largestAmount, largestAmount, 0}, // the largest that fits
        {1, 1, singleBit << 63, 1, 1, largestAmount, 1, 0}, // too large for a signed number
        {1, 1, largestCount, largestCount, largestCount, largestAmount, largestAmount, 0},
        {1, 1, largestCount, largestCount, 0, 0, 0, largestAmount},
        {2, 2, singleBit << 62, 5, 5, largestAmount, 10, 0},
        {4096, 4096, singleBit << 52, singleBit << 51, singleBit << 51, largestAmount, largestAmount,
         0}, // 2^64: its low 64 bits are all zero
        {4096, 4096, (singleBit << 52) + 1, 1, 1, largestAmount, 4096, 0},
        {largestCount, 512, largestCount, 1, 1, largestAmount, largestAmount, 0},
    };
    for (const auto& [fragmentSize, blockSize, blocks, free, available, totalBytes, availableBytes, reservedBytes] :
         cases) {
        struct statvfs said = {};
        said.f_frsize = fragmentSize;
        said.f_bsize = blockSize;
        said.f_blocks = blocks;
        said.f_bfree = free;
        said.f_bavail = available;
        const VolumeCapacity capacity = capacityFromStatvfs(said);
        EXPECT_EQ(capacity.totalBytes, totalBytes) << blocks << " of " << fragmentSize;
        EXPECT_EQ(capacity.availableBytes, availableBytes) << available << " of " << fragmentSize;
        EXPECT_EQ(capacity.reservedBytes, reservedBytes) << free << " of " << fragmentSize;
        EXPECT_EQ(capacity.availableForImportantUsageBytes, std::nullopt);
        EXPECT_EQ(capacity.name, std::nullopt);
    }
}

TEST(DecodedUdevName, ReplacesEscapedBytesAndNothingElse) {
    const struct {
        std::string name;
        std::string decoded;
    } cases[] = {
        {"", ""},
        {"Data", "Data"},
        {"My\\x20Disk", "My Disk"},
        {"\\x20", " "},
        {"a\\x2fb", "a/b"},
        {"a\\x2Fb", "a/b"},
        {"Gr\\xc3\\xb6\\xc3\\x9fe", "Größe"},
        {"Größe", "Größe"},
        {"\\x5cx20", "\\x20"}, // what was decoded is not decoded again
        {"\\x41\\x42", "AB"},
        {"\\x41B", "AB"},
        {"\\x4", "\\x4"}, // cut short
        {"\\x", "\\x"},
        {"\\", "\\"},
        {"\\x4g", "\\x4g"}, // no number
        {"\\xg4", "\\xg4"},
        {"\\x-1", "\\x-1"},
        {"\\x 4", "\\x 4"},
        {"\\X20", "\\X20"},
        {"x20", "x20"},
        {"/x20", "/x20"},
        {"\\\\x20", "\\ "},
        {"\\x00end", std::string("\0end", 4)},
    };
    for (const auto& [name, decoded] : cases)
        EXPECT_EQ(decodedUdevName(name), decoded) << name;
}

TEST(DecodedUdevName, DoesNotReadBeyondItsEnd) {
    const std::string_view longer = "a\\x41";
    EXPECT_EQ(decodedUdevName(longer.substr(0, 4)), "a\\x4");
    EXPECT_EQ(decodedUdevName(longer.substr(0, 3)), "a\\x");
    EXPECT_EQ(decodedUdevName(longer.substr(0, 2)), "a\\");
}

// Other processes write while the tests run, so what is available agrees to a share of the volume only.
TEST(VolumeCapacity, OfTheRootFolderIsWhatStatvfsSays) {
    struct statvfs facts = {};
    ASSERT_EQ(statvfs("/", &facts), 0);
    for (const auto& read : {readVolumeCapacity("/"), readFileSystemAttributes("/")}) {
        ASSERT_TRUE(read) << read.error().message;
        EXPECT_EQ(read->totalBytes, capacityFromStatvfs(facts).totalBytes);
        EXPECT_NEAR(static_cast<double>(read->availableBytes.value()),
                    static_cast<double>(capacityFromStatvfs(facts).availableBytes.value()),
                    static_cast<double>(read->totalBytes.value()) * 0.05);
        EXPECT_EQ(read->availableForImportantUsageBytes, std::nullopt);
        EXPECT_NE(read->name, "");
    }
}

TEST(VolumeCapacity, OfAMissingPathIsNotFound) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    for (const auto& path :
         {folder / "missing", folder / "missing/deeper", folder / "file/below", std::filesystem::path()})
        for (const auto& read : {readVolumeCapacity(path), readFileSystemAttributes(path)}) {
            ASSERT_FALSE(read) << path;
            EXPECT_EQ(read.error().kind, ErrorKind::notFound) << path;
            EXPECT_EQ(read.error().message.find(path.native() + ":"), std::string::npos) << read.error().message;
        }
}

TEST(VolumeCapacity, OfAFileIsThatOfTheVolumeThatHoldsIt) {
    const TemporaryFolder folder;
    writeFile(folder / "file", "");
    EXPECT_EQ(readVolumeCapacity(folder / "file")->totalBytes, readVolumeCapacity(folder.path())->totalBytes);
}

TEST(VolumeCapacity, AFileSystemWithoutALabelIsCalledAsFileManagersCallIt) {
    const TemporaryFolder folder;
    const std::string answer = inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() || mount("tmpfs", folder.path().c_str(), "tmpfs", 0, "size=1m") != 0)
            return notMounted;
        const auto read = readVolumeCapacity(folder.path());
        return read->name.value_or("unnamed") + " " + std::to_string(read->totalBytes.value()) + " " +
               std::to_string(read->availableBytes.value());
    });
    if (answer == notMounted)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "File System 1048576 1048576");
}

TEST(VolumeCapacity, TheLabelOfAFileSystemIsItsName) {
    const TemporaryFolder folder;
    const std::string answer = inChildProcess([&]() -> std::string {
        const auto point = mountedImage(folder.path(), "-L 'My Disk'");
        return point.empty() ? notMounted : readVolumeCapacity(point)->name.value_or("unnamed");
    });
    if (answer == notMounted)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "My Disk");
}

/// Makes a file system, puts files on it, and tells the share in per cent that is used: as read here, and as df(1)
/// says. Empty when this machine cannot do it.
std::string sharesUsed(const std::string& make, const std::string& mountOptions, const std::string& fill) {
    const TemporaryFolder folder;
    return inChildProcess([&]() -> std::string {
        const auto image = (folder / "image").native();
        const auto point = (folder / "point").native();
        std::filesystem::create_directory(point);
        const auto run = [](const std::string& commands) {
            return std::system(("PATH=$PATH:/usr/sbin:/sbin; exec >/dev/null 2>&1; set -e; " + commands).c_str()) == 0;
        };
        if (!keepMountsPrivate() || !run("truncate -s 400M " + image + "; " + make + " " + image + "; mount " +
                                         mountOptions + " " + image + " " + point))
            return {};
        if (!run("cd " + point + "; " + fill + "; sync -f ."))
            return "cannot be filled";
        const auto read = readVolumeCapacity(point);
        const auto basic = readFileSystemAttributes(point);
        if (!read || read != basic)
            return "cannot be read";
        const auto total = static_cast<double>(*read->totalBytes);
        const int used = static_cast<int>(100 * (total - static_cast<double>(*read->availableBytes)) / total + 0.5);
        if (!run("df --output=pcent " + point + " | tail -n 1 | tr -d ' %' >" + (folder / "said").native()))
            return "no df";
        return std::to_string(used) + " " + readFile(folder / "said");
    });
}

TEST(VolumeCapacity, TheShareThatIsUsedIsTheOneThatDfTells) {
    const char* const half = "head -c 150M /dev/zero >file";
    const struct {
        const char* make;
        const char* mountOptions;
        const char* fill;
    } cases[] = {
        {"mkfs.ext4 -q -F -m 0", "-o loop", ":"},
        {"mkfs.ext4 -q -F -m 0", "-o loop", half},
        {"mkfs.ext4 -q -F -m 5", "-o loop", half},
        {"mkfs.ext4 -q -F -m 50", "-o loop", ":"},
        {"mkfs.ext4 -q -F -m 50", "-o loop", half},
        {"mkfs.xfs -q", "-o loop", half},
        {"mkfs.btrfs -q", "-o loop",
         "head -c 100M /dev/zero >file; btrfs subvolume snapshot . kept; "
         "head -c 50M /dev/zero >file"},
        {": ", "-t tmpfs -o size=200m", half},
    };
    int tried = 0;
    for (const auto& [make, mountOptions, fill] : cases) {
        const auto answer = sharesUsed(make, mountOptions, fill);
        if (answer.empty())
            continue; // there is no such tool here, or no right to mount
        int read = -1;
        int said = -100;
        EXPECT_EQ(std::sscanf(answer.c_str(), "%d %d", &read, &said), 2) << make << ": " << answer;
        EXPECT_NEAR(read, said, 1) << make << ", " << fill;
        ++tried;
    }
    if (tried == 0)
        GTEST_SKIP() << notMounted;
    RecordProperty("fileSystems", tried);
}

TEST(VolumeCapacity, AFileSystemThatDoesNotTellItsLabelHasTheNameThatUdevFound) {
    const TemporaryFolder folder;
    const std::string answer = inChildProcess([&]() -> std::string {
        const auto point = mountedImage(folder.path(), "");
        struct stat volume = {};
        // A folder of devices of the child's own, where only the links are looked at.
        if (point.empty() || stat(point.c_str(), &volume) != 0 || mount("tmpfs", "/dev", "tmpfs", 0, "size=64k") != 0 ||
            mknod("/dev/volume", S_IFBLK, volume.st_dev) != 0 || mknod("/dev/other", S_IFBLK, volume.st_dev + 1) != 0 ||
            mknod("/dev/character", S_IFCHR, volume.st_dev) != 0)
            return notMounted;
        std::filesystem::create_directories("/dev/disk/by-label");
        const auto link = [](const char* target, const char* name) {
            std::filesystem::create_symlink(target, std::filesystem::path("/dev/disk/by-label") / name);
        };
        link("../../other", "Other");
        link("../../character", "Character");
        link("../../missing", "Missing");
        std::string names = readVolumeCapacity(point)->name.value_or("unnamed");
        link("../../volume", "My\\x20Disk");
        return names + ", " + readVolumeCapacity(point)->name.value_or("unnamed");
    });
    if (answer == notMounted)
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "File System, My Disk");
}

} // namespace vantry
