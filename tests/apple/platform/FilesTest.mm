// What is asked about files, volumes and applications, with answers that a true file system gives seldom.

#include "platform/ApplicationRegister.h"
#include "platform/FileCoordinator.h"
#include "platform/FoundItem.h"
#include "platform/LoginItem.h"
#include "platform/VolumeCapacity.h"
#include "platform/apple/FoundationValues.h"
#include "tests/apple/platform/FoundationFixture.h"

#include <limits>
#include <thread>

namespace vantry::apple {

namespace {

namespace fs = std::filesystem;
using AppleFiles = FoundationFixture;

constexpr long long terabyte = 1'000'000'000'000;

} // namespace

TEST_F(AppleFiles, AValueThatIsMissingOrOfAnotherKindIsAbsent) {
    @autoreleasepool {
        system.values = {{"NSURLIsPackageKey", nil}, {"NSURLTotalFileAllocatedSizeKey", @"text"}};
        const auto facts = pinnedFile().facts();
        ASSERT_TRUE(facts);
        EXPECT_EQ(facts->isPackage, std::nullopt);
        EXPECT_EQ(facts->totalAllocated, std::nullopt);
        EXPECT_EQ(facts->isUbiquitousItem, false);
        EXPECT_EQ(facts->allocatedBytes, 512 * statOf(file).st_blocks);
        EXPECT_EQ(readItemFacts(file)->allocatedBytes, facts->allocatedBytes) << "the second best";
        system.values = {{"NSURLContentModificationDateKey", nil}, {"NSURLFileResourceIdentifierKey", nil}};
        EXPECT_EQ(readFileFingerprint(file).contentModificationDate, std::nullopt);
        EXPECT_EQ(readFileFingerprint(file).resourceIdentifier, std::nullopt);
        EXPECT_TRUE(readFileFingerprint(file).volumeIdentifier);
        system.values.clear();
    }
}

TEST_F(AppleFiles, WhatThePathLeadsToMeanwhileIsNotTakenForThePinnedFile) {
    const PinnedFile pinned = pinnedFile();
    system.beforeReading = [&](const fs::path&) {
        fs::rename(file, folder / "renamed");
        fs::rename(folder / "other", file);
        system.beforeReading = nullptr;
    };
    EXPECT_EQ(pinned.facts(), std::nullopt);
    EXPECT_EQ(pinned.facts(), std::nullopt);
    fs::rename(folder / "renamed", file);
    EXPECT_TRUE(pinned.facts());
}

TEST_F(AppleFiles, AFingerprintIsNoneWhereThePathLeadsElsewhereMeanwhile) {
    const PinnedFile pinned = pinnedFile();
    system.beforeReading = [&](const fs::path&) {
        fs::rename(file, folder / "renamed");
        fs::rename(folder / "other", file);
        system.beforeReading = nullptr;
    };
    EXPECT_EQ(readFileFingerprint(pinned.descriptor()), FileFingerprint());
    EXPECT_NE(readFileFingerprint(pinned.descriptor()), FileFingerprint());
}

TEST_F(AppleFiles, APinnedFolderTellsWhatItIsAndOnWhichVolume) {
    const auto facts = pinnedFolder()->facts();
    ASSERT_TRUE(facts);
    EXPECT_EQ(facts->isDirectory, true);
    EXPECT_EQ(facts->isSymbolicLink, false);
    EXPECT_EQ(facts->volumeIdentifier, readFileFingerprint(folder).volumeIdentifier);
}

TEST_F(AppleFiles, AVolumeTellsItsCapacity) {
    @autoreleasepool {
        system.values = {{"NSURLVolumeNameKey", @"Data"},
                         {"NSURLVolumeTotalCapacityKey", @(2 * terabyte)},
                         {"NSURLVolumeAvailableCapacityKey", @(terabyte)},
                         {"NSURLVolumeAvailableCapacityForImportantUsageKey", @(terabyte + 1)},
                         {"NSFileSystemSize", [NSNumber numberWithUnsignedLongLong:~0ULL]},
                         {"NSFileSystemFreeSize", nil}};
        EXPECT_EQ(readVolumeCapacity(root).value(), (VolumeCapacity{"Data", 2 * terabyte, terabyte, terabyte + 1}));
        EXPECT_EQ(readFileSystemAttributes(root).value(),
                  (VolumeCapacity{"Data", std::numeric_limits<std::int64_t>::max(), std::nullopt, std::nullopt}));
        system.values = {{"NSURLVolumeNameKey", @5}, {"NSURLVolumeTotalCapacityKey", @"much"}};
        const auto capacity = readVolumeCapacity(root).value();
        EXPECT_EQ(capacity.name, std::nullopt);
        EXPECT_EQ(capacity.totalBytes, std::nullopt);
        EXPECT_TRUE(capacity.availableBytes);
        system.values.clear();
    }
    EXPECT_EQ(readVolumeCapacity(root / "missing").error().kind, ErrorKind::notFound);
    EXPECT_EQ(readFileSystemAttributes(root / "missing").error().kind, ErrorKind::notFound);
}

TEST_F(AppleFiles, OneMoveIsCoordinatedWhereTheFileIsThen) {
    const auto coordinated = [&] { // on a thread of its own, as it may wait for other processes
        std::vector<fs::path> places;
        Result<void> result;
        std::thread([&] {
            result = coordinateMoving(file, [&](const fs::path& place) { places.push_back(place); });
        }).join();
        return std::pair(places, result ? std::nullopt : std::optional(result.error().kind));
    };
    using Places = std::vector<fs::path>;
    EXPECT_EQ(coordinated(), std::pair(Places{file}, std::optional<ErrorKind>()));
    system.coordinate = [&](const fs::path&) { return Places{folder / "elsewhere", folder / "again"}; };
    EXPECT_EQ(coordinated(), std::pair(Places{folder / "elsewhere"}, std::optional<ErrorKind>()));
    system.coordinate = [](const fs::path&) { return Places(); };
    EXPECT_EQ(coordinated(), std::pair(Places(), std::optional(ErrorKind::system)));
}

TEST_F(AppleFiles, OnePlaceIsSpelledInManyWays) {
    const std::string composed = "caf\u00e9";
    const std::string decomposed = "cafe\u0301";
    fs::create_directory_symlink(folder, root / "link");
    EXPECT_TRUE(isSamePlace(folder / composed, folder / decomposed));
    EXPECT_TRUE(isSamePlace(folder / "file", root / "link/../folder/deeper//file/"));
    EXPECT_TRUE(isSamePlace(folder / "file", root / "link/file")) << "the same folder through a link";
    EXPECT_TRUE(isSamePlace(root / "missing" / composed / "x", root / "missing" / decomposed / "x"));
    EXPECT_FALSE(isSamePlace(folder / "file", folder / "other"));
    EXPECT_FALSE(isSamePlace(folder / "file", root / "folder/file"));
    EXPECT_FALSE(isSamePlace("file", "file")) << "from where?";
    EXPECT_FALSE(isSamePlace(root / "missing/\xff/x", root / "missing/\xfe/x")) << "no text, so no spelling";
    EXPECT_TRUE(isSamePlace(root / "missing/\xff/x", root / "missing/\xff/x"));
}

TEST_F(AppleFiles, AnItemIsShownByItsNameAlsoWhenItIsGone) {
    EXPECT_EQ(displayName(file), "file");
    EXPECT_EQ(displayName(folder / "gone"), "gone");
    EXPECT_EQ(displayName(folder / "missing/deeper"), "deeper");
}

TEST_F(AppleFiles, TheApplicationIsItsBundleOrItsExecutable) {
    EXPECT_EQ(runningApplicationPath().error().kind, ErrorKind::notFound);
    system.executable = "/usr/local/bin/ombrel";
    EXPECT_EQ(runningApplicationPath().value(), "/usr/local/bin/ombrel");
    system.bundle = "/Applications/Ombrel.app";
    EXPECT_EQ(runningApplicationPath().value(), "/Applications/Ombrel.app");
    EXPECT_TRUE(isApplication(folder));
    EXPECT_FALSE(isApplication(file));
    EXPECT_FALSE(isApplication(folder / "missing"));
}

TEST_F(AppleFiles, NothingStartsTheApplicationButItsLaunchAgent) {
    EXPECT_EQ(autostartFile("ombrel"), std::nullopt);
    EXPECT_EQ(autostartEntry("", file).error().kind, ErrorKind::unsupported);
    EXPECT_FALSE(autostartEntryIsHonoured(""));
    EXPECT_FALSE(autostartEntryStarts("", file));
}

TEST_F(AppleFiles, ErrorsAreOfTheKindsThatTheyTell) {
    @autoreleasepool {
        const auto kind = [](NSErrorDomain domain, NSInteger code) {
            return errorFromFoundation([NSError errorWithDomain:domain code:code userInfo:nil]).kind;
        };
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileNoSuchFileError), ErrorKind::notFound);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileReadNoSuchFileError), ErrorKind::notFound);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileReadNoPermissionError), ErrorKind::permissionDenied);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileWriteNoPermissionError), ErrorKind::permissionDenied);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileWriteVolumeReadOnlyError), ErrorKind::permissionDenied);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFileWriteOutOfSpaceError), ErrorKind::noSpace);
        EXPECT_EQ(kind(NSCocoaErrorDomain, NSFeatureUnsupportedError), ErrorKind::unsupported);
        EXPECT_EQ(kind(NSCocoaErrorDomain, 1), ErrorKind::system);
        EXPECT_EQ(kind(NSPOSIXErrorDomain, ENOSPC), ErrorKind::noSpace);
        EXPECT_EQ(kind(NSOSStatusErrorDomain, ENOSPC), ErrorKind::system);
        EXPECT_EQ(errorFromFoundation(nil).kind, ErrorKind::system);
        EXPECT_FALSE(errorFromFoundation(nil).message.empty());
    }
}

TEST_F(AppleFiles, AFolderIsOpenedToSeeWhetherItMayBe) {
    const FolderOpener open = folderOpener();
    fs::create_directory_symlink(folder, root / "link");
    EXPECT_EQ(open(folder), FolderAccess::readable);
    EXPECT_EQ(open(root / "link"), FolderAccess::readable);
    EXPECT_EQ(open(file), FolderAccess::none);
    EXPECT_EQ(open(folder / "missing"), FolderAccess::none);
}

TEST_F(AppleFiles, AnApplicationIsMissingOnlyIfTheSystemSaysSo) {
    system.applications = {{"one", 1}, {"none", 0}, {"broken", -10811}};
    const ApplicationRegister isRegistered = applicationRegister();
    EXPECT_TRUE(isRegistered("one"));
    EXPECT_FALSE(isRegistered("none"));
    EXPECT_FALSE(isRegistered("unknown"));
    EXPECT_TRUE(isRegistered("broken")) << "who does not know removes nothing";
    EXPECT_FALSE(isRegistered("\xff"));
}

} // namespace vantry::apple
