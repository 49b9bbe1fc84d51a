#include "storage/StorageReader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <limits>
#include <sys/statvfs.h>

namespace vantry {

namespace {

constexpr auto smallest = std::numeric_limits<std::int64_t>::min();
constexpr auto largest = std::numeric_limits<std::int64_t>::max();
constexpr auto absent = std::nullopt;
constexpr SystemTime moment{std::chrono::seconds(1'700'000'000)};

using Amount = std::optional<std::int64_t>;

VolumeCapacity said(Amount total, Amount available, Amount important,
                    std::optional<std::string> name = std::string("Disk")) {
    return {.name = std::move(name),
            .totalBytes = total,
            .availableBytes = available,
            .availableForImportantUsageBytes = important};
}

} // namespace

TEST(StorageReadError, DescribesItselfToTheUser) {
    EXPECT_EQ(errorDescription(StorageReadError::missingCapacity), "The total disk capacity is unavailable.");
    EXPECT_EQ(errorDescription(StorageReadError::missingAvailableCapacity),
              "The available disk capacity is unavailable.");
}

TEST(StorageReadFailure, DescribesItsCause) {
    EXPECT_EQ(StorageReadFailure{StorageReadError::missingCapacity}.localizedDescription(),
              "The total disk capacity is unavailable.");
    EXPECT_EQ(StorageReadFailure{StorageReadError::missingAvailableCapacity}.localizedDescription(),
              "The available disk capacity is unavailable.");
    EXPECT_EQ((StorageReadFailure{Error{ErrorKind::permissionDenied, "/: Permission denied"}}.localizedDescription()),
              "/: Permission denied");
}

TEST(StrictReader, ReturnsTheFiguresOfTheSystem) {
    const auto read = StorageReader::strictSnapshot(said(100, 40, absent), moment);
    ASSERT_TRUE(read);
    EXPECT_EQ(*read, (StorageSnapshot{"Disk", 100, 40, moment}));
}

TEST(StrictReader, NeedsATotalOfAtLeastOneByte) {
    for (const Amount total : {Amount(), Amount(0), Amount(-1), Amount(smallest)}) {
        // The total is judged first, so a missing available figure does not matter.
        for (const auto& capacity : {said(total, 40, 40), said(total, absent, absent)}) {
            const auto read = StorageReader::strictSnapshot(capacity, moment);
            ASSERT_FALSE(read) << total.value_or(-2);
            EXPECT_EQ(read.error(), StorageReadFailure{StorageReadError::missingCapacity});
        }
    }
    EXPECT_TRUE(StorageReader::strictSnapshot(said(1, 0, absent), moment));
}

TEST(StrictReader, NeedsOneOfTheTwoAvailableFigures) {
    const auto read = StorageReader::strictSnapshot(said(100, absent, absent), moment);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error(), StorageReadFailure{StorageReadError::missingAvailableCapacity});
}

TEST(StrictReader, PrefersTheFigureForImportantUsageAndClampsWhatItChose) {
    const struct {
        Amount available;
        Amount important;
        std::int64_t chosen;
        std::int64_t used;
        double fraction;
    } cases[] = {
        {40, absent, 40, 60, 0.6},       // plain only
        {absent, 70, 70, 30, 0.3},       // important only
        {40, 70, 70, 30, 0.3},           // both
        {70, 40, 40, 60, 0.6},           // also when it is the smaller one
        {40, 0, 0, 100, 1.0},            // zero is a figure
        {40, -1, 0, 100, 1.0},           // so is a negative one
        {101, absent, 100, 0, 0.0},      // more than there is
        {largest, absent, 100, 0, 0.0},  //
        {40, 101, 100, 0, 0.0},          //
        {-1, absent, 0, 100, 1.0},       // less than nothing
        {smallest, absent, 0, 100, 1.0}, //
        {absent, smallest, 0, 100, 1.0}, //
        {0, absent, 0, 100, 1.0},        // the bounds themselves
        {100, absent, 100, 0, 0.0},      //
    };
    for (const auto& [available, important, chosen, used, fraction] : cases) {
        const auto read = StorageReader::strictSnapshot(said(100, available, important), moment);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->totalBytes, 100);
        EXPECT_EQ(read->availableBytes, chosen) << available.value_or(-2) << " " << important.value_or(-2);
        EXPECT_EQ(read->usedBytes(), used);
        EXPECT_EQ(read->usedFraction(), fraction);
    }
}

TEST(StrictReader, HoldsTheLargestAmounts) {
    const auto read = StorageReader::strictSnapshot(said(largest, largest, absent), moment);
    ASSERT_TRUE(read);
    EXPECT_EQ(read->totalBytes, largest);
    EXPECT_EQ(read->availableBytes, largest);
}

TEST(StrictReader, AnUnnamedVolumeIsCalledMacintoshHD) {
    EXPECT_EQ(StorageReader::strictSnapshot(said(100, 40, absent, absent), moment)->volumeName, "Macintosh HD");
    EXPECT_EQ(StorageReader::strictSnapshot(said(100, 40, absent, "Größe 🖴"), moment)->volumeName, "Größe 🖴");
}

TEST(StrictReader, ReturnsTheErrorOfTheSystemUnchanged) {
    const Error error{ErrorKind::timedOut, "/: Connection timed out"};
    const auto read = StorageReader::strictSnapshot(std::unexpected(error), moment);
    ASSERT_FALSE(read);
    EXPECT_EQ(read.error(), StorageReadFailure{error});
    EXPECT_EQ(read.error().localizedDescription(), "/: Connection timed out");
}

TEST(BasicReader, ReturnsTheFiguresOfTheSystem) {
    EXPECT_EQ(StorageReader::basicSnapshot(said(100, 40, absent), moment), (StorageSnapshot{"Disk", 100, 40, moment}));
}

TEST(BasicReader, GivesNothingOnAnyFailure) {
    const Result<VolumeCapacity> cases[] = {
        std::unexpected(Error{ErrorKind::permissionDenied, "/: Permission denied"}),
        said(absent, 40, absent),
        said(0, 40, absent),
        said(-1, 40, absent),
        said(smallest, 40, absent),
        said(100, absent, absent),
        said(100, absent, 40), // the figure for important usage is none of its own
        said(absent, absent, absent),
    };
    for (const auto& capacity : cases)
        EXPECT_FALSE(StorageReader::basicSnapshot(capacity, moment)) << &capacity - cases;
    EXPECT_TRUE(StorageReader::basicSnapshot(said(1, 0, absent), moment));
}

TEST(BasicReader, ClampsTheFreeFigureAndIgnoresTheOneForImportantUsage) {
    const struct {
        std::int64_t available;
        Amount important;
        std::int64_t chosen;
    } cases[] = {
        {40, absent, 40}, {40, 70, 40},       {0, absent, 0}, {100, absent, 100},
        {101, 40, 100},   {largest, 40, 100}, {-1, 40, 0},    {smallest, absent, 0},
    };
    for (const auto& [available, important, chosen] : cases) {
        const auto read = StorageReader::basicSnapshot(said(100, available, important), moment);
        ASSERT_TRUE(read);
        EXPECT_EQ(read->availableBytes, chosen) << available;
        EXPECT_EQ(read->totalBytes, 100);
    }
}

TEST(BasicReader, AnUnnamedVolumeIsCalledMacStorage) {
    EXPECT_EQ(StorageReader::basicSnapshot(said(100, 40, absent, absent), moment)->volumeName, "Mac Storage");
    EXPECT_EQ(StorageReader::basicSnapshot(said(100, 40, absent, "Disk"), moment)->volumeName, "Disk");
}

// Other processes write while the tests run, so the figures of two readings agree to a share of the volume only.
TEST(StorageReader, BothReadersSeeTheVolumeOfTheRootFolder) {
    struct statvfs facts = {};
    ASSERT_EQ(statvfs("/", &facts), 0);
    const auto total =
        static_cast<double>(facts.f_blocks - facts.f_bfree + facts.f_bavail) * static_cast<double>(facts.f_frsize);
    const auto available = static_cast<double>(facts.f_bavail) * static_cast<double>(facts.f_frsize);

    const auto before = std::chrono::system_clock::now();
    const auto strict = StorageReader::readSystemVolume();
    const auto basic = StorageReader::readBasicSystemVolume();
    const auto after = std::chrono::system_clock::now();

    ASSERT_TRUE(strict) << strict.error().localizedDescription();
    ASSERT_TRUE(basic);
    for (const StorageSnapshot& read : {*strict, *basic}) {
        EXPECT_NEAR(static_cast<double>(read.totalBytes), total, total * 0.05);
        EXPECT_NEAR(static_cast<double>(read.reservedBytes.value()),
                    static_cast<double>(facts.f_bfree - facts.f_bavail) * static_cast<double>(facts.f_frsize),
                    total * 0.05);
        EXPECT_GE(static_cast<double>(read.availableBytes), available - total * 0.05);
        EXPECT_LE(read.availableBytes, read.totalBytes);
        EXPECT_FALSE(read.volumeName.empty());
        EXPECT_GE(read.updatedAt, before);
        EXPECT_LE(read.updatedAt, after);
    }
    EXPECT_NEAR(static_cast<double>(basic->availableBytes), available, total * 0.05);
}

} // namespace vantry
