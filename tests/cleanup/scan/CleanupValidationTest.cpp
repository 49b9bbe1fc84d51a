#include "cleanup/scan/CleanupValidation.h"

#include "cleanup/scan/CleanupPlaces.h"
#include "platform/FoundItem.h"
#include "tests/cleanup/scan/CleanupValidationFixture.h"

#include <chrono>
#include <fstream>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

constexpr const char* stale = "the scan is more than five minutes old";
constexpr const char* missing = "it no longer exists";
constexpr const char* linked = "its path now contains a symbolic link";
constexpr const char* notDirect = "it is not a direct file inside an approved cleanup folder";
constexpr const char* notRegular = "it is no longer a local, regular file";
constexpr const char* notCaptured = "the scan did not capture every identity check required";
constexpr const char* otherItem = "a different item now occupies this path";
constexpr const char* modified = "it was modified after the scan";
constexpr const char* notOwned = "it is not owned by the current user";
constexpr const char* resized = "its allocated size changed after the scan";
constexpr const char* tooYoung = "it is no longer old enough for low-risk cleanup";

} // namespace

class CleanupValidation : public CleanupValidationFixture {
protected:
    CleanupCandidate log() { return scanned(makeOld(logs / "old.log"), CleanupCategory::log); }
    CleanupCandidate installer() { return scanned(makeOld(downloads / "old.dmg"), CleanupCategory::installer); }
};

TEST_F(CleanupValidation, WhatStandsAsItWasScannedMayMove) {
    const std::vector<std::pair<fs::path, CleanupCategory>> cases{
        {logs / "old.log", CleanupCategory::log},
        {crashReports / "old.ips", CleanupCategory::crashReport},
        {crashReports / "OLD.CRASH", CleanupCategory::crashReport},
        {downloads / "old.dmg", CleanupCategory::installer},
        {downloads / "old.dmg.part", CleanupCategory::interruptedDownload},
    };
    for (const auto& [path, category] : cases) {
        const CleanupCandidate candidate = scanned(makeOld(path), category);
        const auto validated = CleanupScanner::validatedFile(candidate, environment);
        ASSERT_TRUE(validated) << path << ": " << validated.error();
        const auto& [file, facts] = *validated;
        EXPECT_EQ(file.folder().path() / file.name(), path);
        EXPECT_EQ(readFileFingerprint(file.descriptor()), readFileFingerprint(path));
        EXPECT_EQ(file.place(), PinnedPlace::unchanged);
        EXPECT_EQ(facts, file.facts());
        EXPECT_EQ(facts.contentBytes, fs::file_size(path));
        EXPECT_EQ(failure(candidate), std::nullopt);
    }
}

// The real clock, and the candidate as a scan makes it.
TEST_F(CleanupValidation, AFileThatWasJustFoundMayMove) {
    writeFile(logs / "old.log", "an old file");
    setModified(logs / "old.log", std::chrono::system_clock::now() - 31 * 24h);
    const CleanupCandidate candidate(logs / "old.log", "old.log", CleanupCategory::log, "",
                                     allocatedBytes(logs / "old.log"), CleanupConfidence::suggested);
    environment.now = [] { return SystemTime(std::chrono::system_clock::now()); };
    EXPECT_EQ(failure(candidate), std::nullopt);
}

TEST_F(CleanupValidation, ANameNeedsNotBeText) {
    for (const char* name : {"new\nline.log", "\"'$(x)`;.log", "e\xcc\x81.log", ".hidden.log", " .log"})
        EXPECT_EQ(failure(scanned(makeOld(logs / name), CleanupCategory::log)), std::nullopt) << name;
}

TEST_F(CleanupValidation, APathNeedsNotBeStandardized) {
    const CleanupCandidate candidate = log();
    for (const fs::path& path :
         {logs / "./old.log", logs / "DiagnosticReports/../old.log", home / "Library//Logs///old.log",
          logs / "missing/../old.log", logs / "old.log/", fs::path(logs / "old.log/.")}) {
        CleanupCandidate same = candidate;
        same.url = path;
        EXPECT_EQ(failure(same), std::nullopt) << path;
    }
    environment.home = root / "./home/";
    EXPECT_EQ(failure(candidate), std::nullopt);
}

TEST_F(CleanupValidation, AProtectedItemIsRefusedAsSuch) {
    for (const auto& row : allCleanupCategories) {
        if (row.removalDisposition == CleanupRemovalDisposition::directTrash)
            continue;
        CleanupCandidate candidate = log();
        candidate.category = row.value;
        EXPECT_EQ(failure(candidate), "this type of item is protected from direct cleanup") << row.rawValue;
        candidate.scannedAt = now - 1h;
        EXPECT_EQ(failure(candidate), "this type of item is protected from direct cleanup") << row.rawValue;
    }
}

TEST_F(CleanupValidation, AStaleScanIsRefusedAlthoughNothingChanged) {
    CleanupCandidate candidate = log();
    for (const auto& [scannedAt, expected] :
         {std::pair<SystemTime, std::optional<std::string>>{now - 300s, std::nullopt},
          {now - 300s - 1ns, stale},
          {now - 301s, stale},
          {now + 1ns, stale},
          {now + 1h, stale}}) {
        candidate.scannedAt = scannedAt;
        EXPECT_EQ(failure(candidate), expected);
    }
    candidate.scannedAt = now - 301s;
    fs::remove(candidate.url);
    EXPECT_EQ(failure(candidate), stale);
}

TEST_F(CleanupValidation, ACategoryThatNobodyKnowsIsRefused) {
    CleanupCandidate candidate = log();
    candidate.category = static_cast<CleanupCategory>(99);
    EXPECT_EQ(failure(candidate), "this type of item is not approved for direct cleanup");
}

TEST_F(CleanupValidation, WhatIsGoneIsRefused) {
    const CleanupCandidate candidate = log();
    fs::remove(candidate.url);
    EXPECT_EQ(failure(candidate), missing);
    fs::remove_all(logs);
    EXPECT_EQ(failure(candidate), missing);
    writeFile(logs, "a file in place of the folder");
    EXPECT_EQ(failure(candidate), missing);
    fs::remove_all(home);
    EXPECT_EQ(failure(candidate), missing);
    CleanupCandidate other = candidate;
    for (const fs::path& path : {fs::path(), fs::path("no such file.log"), logs / (std::string(256, 'n') + ".log"),
                                 logs / (std::string(5000, '/') + std::string(5000, 'n'))}) {
        other.url = path;
        EXPECT_EQ(failure(other), missing) << path;
    }
}

TEST_F(CleanupValidation, ALinkInPlaceOfTheFileIsRefused) {
    const CleanupCandidate candidate = log();
    fs::rename(candidate.url, root / "elsewhere.log");
    for (const fs::path& target : {root / "elsewhere.log", fs::path("nowhere"), fs::path("old.log"), downloads}) {
        fs::create_symlink(target, candidate.url);
        EXPECT_EQ(failure(candidate), linked) << target;
        fs::remove(candidate.url);
    }
}

TEST_F(CleanupValidation, ALinkAnywhereOnTheWayIsRefused) {
    for (const fs::path& replaced : {logs, home / "Library", home}) {
        const CleanupCandidate candidate = log();
        const fs::path real = root / "real";
        fs::rename(replaced, real);
        fs::create_directory_symlink(real, replaced);
        EXPECT_EQ(failure(candidate), linked) << replaced;
        // Behind the link there is nothing.
        fs::remove(replaced);
        fs::create_directory_symlink(root / "empty", replaced);
        EXPECT_EQ(failure(candidate), missing) << replaced;
        fs::remove(replaced);
        fs::rename(real, replaced);
        EXPECT_EQ(failure(candidate), std::nullopt) << replaced;
    }
}

// A home may be reached through a link; that is followed once, and the items found lie below where it leads.
TEST_F(CleanupValidation, ALinkAboveTheHomeIsFollowedOnlyByTheEnvironment) {
    fs::create_directory_symlink(root, root / "link");
    CleanupCandidate candidate = log();
    environment.home = fs::canonical(root / "link/home");
    EXPECT_EQ(failure(candidate), std::nullopt);
    candidate.url = root / "link/home/Library/Logs/old.log";
    EXPECT_EQ(failure(candidate), linked);
    environment.home = root / "link/home";
    EXPECT_EQ(failure(candidate), linked);
}

TEST_F(CleanupValidation, ARelativePathIsRefused) {
    CleanupCandidate candidate = log();
    candidate.url = fs::relative(candidate.url);
    ASSERT_TRUE(fs::exists(candidate.url));
    EXPECT_EQ(failure(candidate), linked) << "no path without links, as it does not begin at the top";
}

TEST_F(CleanupValidation, AFileThatLiesElsewhereIsRefused) {
    fs::create_directory(logs / "Application");
    const std::vector<std::pair<fs::path, CleanupCategory>> cases{
        {logs / "Application/old.log", CleanupCategory::log}, {crashReports / "old.log", CleanupCategory::log},
        {logs / "old.crash", CleanupCategory::crashReport},   {logs / "old.dmg", CleanupCategory::installer},
        {downloads / "old.log", CleanupCategory::log},        {home / "old.log", CleanupCategory::log},
        {home / "Library/old.log", CleanupCategory::log},     {root / "old.log", CleanupCategory::log},
    };
    for (const auto& [path, category] : cases)
        EXPECT_EQ(failure(scanned(makeOld(path), category)), notDirect) << path;
    EXPECT_EQ(failure(scanned(logs, CleanupCategory::log)), notDirect) << "the folder itself";
    EXPECT_EQ(failure(scanned("/", CleanupCategory::log)), notDirect);
    environment.home = root / "other home";
    EXPECT_EQ(failure(log()), notDirect);
}

TEST_F(CleanupValidation, WhatIsNoRegularFileIsRefused) {
    const CleanupCandidate candidate = log();
    fs::remove(candidate.url);
    fs::create_directory(candidate.url);
    EXPECT_EQ(failure(candidate), notRegular) << "a folder";
    fs::remove(candidate.url);
    ASSERT_EQ(mkfifo(candidate.url.c_str(), 0600), 0);
    EXPECT_EQ(failure(candidate), notRegular) << "a pipe";
    fs::remove(candidate.url);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM, 0);
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    ASSERT_LT(candidate.url.native().size(), sizeof address.sun_path);
    candidate.url.native().copy(address.sun_path, sizeof address.sun_path);
    ASSERT_EQ(bind(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    close(socket);
    EXPECT_EQ(failure(candidate), notRegular) << "a socket";
}

TEST_F(CleanupValidation, ACandidateWithoutItsFingerprintIsRefused) {
    const CleanupCandidate candidate = log();
    CleanupCandidate spoilt = candidate;
    spoilt.scannedModificationDate.reset();
    EXPECT_EQ(failure(spoilt), notCaptured);
    spoilt = candidate;
    spoilt.scannedResourceIdentifier.reset();
    EXPECT_EQ(failure(spoilt), notCaptured);
    spoilt = candidate;
    spoilt.scannedVolumeIdentifier.reset();
    EXPECT_EQ(failure(spoilt), notCaptured);
    // One that was made when there was nothing yet.
    fs::remove(candidate.url);
    CleanupCandidate early(candidate.url, "old.log", CleanupCategory::log, "", 0, CleanupConfidence::suggested);
    early.scannedAt = now;
    makeOld(candidate.url);
    EXPECT_EQ(failure(early), notCaptured);
}

TEST_F(CleanupValidation, ACopyWithTheSameNameSizeAndDateIsAnotherItem) {
    const CleanupCandidate candidate = log();
    makeOld(logs / "copy");
    ASSERT_EQ(allocatedBytes(logs / "copy"), candidate.size);
    fs::rename(logs / "copy", candidate.url);
    EXPECT_EQ(failure(candidate), otherItem);
}

TEST_F(CleanupValidation, AVolumeOfAnotherNameIsRefused) {
    CleanupCandidate candidate = log();
    *candidate.scannedVolumeIdentifier += "0";
    EXPECT_EQ(failure(candidate), "it is no longer on the approved folder’s volume");
}

TEST_F(CleanupValidation, ADateThatIsAnyDifferentIsRefused) {
    const CleanupCandidate candidate = log();
    const SystemTime date = now - 365 * 24h;
    for (const SystemTime other : {date + 1us, date - 1us, date + 1s, now, date + 1h}) {
        setModified(candidate.url, other);
        EXPECT_EQ(failure(candidate), modified);
    }
    setModified(candidate.url, date);
    EXPECT_EQ(failure(candidate), std::nullopt);
    CleanupCandidate rounded = candidate;
    *rounded.scannedModificationDate -= 1ns;
    EXPECT_EQ(failure(rounded), modified);
}

TEST_F(CleanupValidation, AFileOfAnotherUserIsRefused) {
    const CleanupCandidate candidate = log();
    if (chown(candidate.url.c_str(), getuid() + 1, static_cast<gid_t>(-1)) != 0)
        GTEST_SKIP() << "may not give a file away";
    EXPECT_EQ(failure(candidate), notOwned);
}

TEST_F(CleanupValidation, AFileThatGrewByABlockIsRefusedAlthoughItsDateIsTheSame) {
    const CleanupCandidate candidate = log();
    std::ofstream(candidate.url, std::ios::app) << std::string(65536, 'x');
    setModified(candidate.url, *candidate.scannedModificationDate);
    ASSERT_GT(allocatedBytes(candidate.url), candidate.size);
    EXPECT_EQ(failure(candidate), resized);
    fs::resize_file(candidate.url, 0);
    setModified(candidate.url, *candidate.scannedModificationDate);
    EXPECT_EQ(failure(candidate), resized);
    for (const std::int64_t difference : {-512, -1, 1, 512}) {
        CleanupCandidate other = log();
        other.size += difference;
        EXPECT_EQ(failure(other), resized) << difference;
    }
}

TEST_F(CleanupValidation, AnotherTypeIsRefusedByTheNameOfItsCategory) {
    const std::vector<std::tuple<fs::path, CleanupCategory, const char*>> cases{
        {logs / "old.logs", CleanupCategory::log, "its file type is no longer an approved log"},
        {logs / "log", CleanupCategory::log, "its file type is no longer an approved log"},
        {crashReports / "old.log", CleanupCategory::crashReport, "its file type is no longer an approved crash report"},
        {downloads / "old.part", CleanupCategory::installer, "its file type is no longer an approved installer"},
        {downloads / "old.dmg", CleanupCategory::interruptedDownload,
         "its file type is no longer an interrupted download"},
    };
    for (const auto& [path, category, expected] : cases)
        EXPECT_EQ(failure(scanned(makeOld(path), category)), expected) << path;
}

TEST_F(CleanupValidation, ALogOf29DaysIsTooYoung) {
    for (const auto& [age, expected] : {std::pair<SystemTime::duration, std::optional<std::string>>{29 * 24h, tooYoung},
                                        {30 * 24h - 1us, tooYoung},
                                        {30 * 24h, std::nullopt},
                                        {30 * 24h + 1us, std::nullopt},
                                        {-1h, tooYoung}}) {
        makeOld(logs / "old.log");
        setModified(logs / "old.log", now - age);
        EXPECT_EQ(failure(scanned(logs / "old.log", CleanupCategory::log)), expected);
    }
}

TEST_F(CleanupValidation, WhatFailsFirstDecides) {
    // Too young, of another type and another size; then it is also modified; then another item; then in a sub-folder.
    writeFile(logs / "young.odd", "text");
    setModified(logs / "young.odd", now);
    CleanupCandidate candidate = scanned(logs / "young.odd", CleanupCategory::log);
    EXPECT_EQ(failure(candidate), "its file type is no longer an approved log");
    candidate.size += 1;
    EXPECT_EQ(failure(candidate), resized);
    candidate.scannedModificationDate = now - 1s;
    EXPECT_EQ(failure(candidate), modified);
    *candidate.scannedVolumeIdentifier += "0";
    EXPECT_EQ(failure(candidate), "it is no longer on the approved folder’s volume");
    *candidate.scannedResourceIdentifier += "0";
    EXPECT_EQ(failure(candidate), otherItem);
    candidate.scannedModificationDate.reset();
    EXPECT_EQ(failure(candidate), notCaptured);
    fs::remove(candidate.url);
    fs::create_directory(candidate.url);
    EXPECT_EQ(failure(candidate), notRegular);
    candidate.category = CleanupCategory::installer;
    EXPECT_EQ(failure(candidate), notDirect);
    fs::remove(candidate.url);
    fs::create_symlink("elsewhere", candidate.url);
    EXPECT_EQ(failure(candidate), linked);
    fs::remove(candidate.url);
    EXPECT_EQ(failure(candidate), missing);
    candidate.scannedAt = now - 1h;
    EXPECT_EQ(failure(candidate), stale);
    candidate.category = CleanupCategory::cache;
    EXPECT_EQ(failure(candidate), "this type of item is protected from direct cleanup");
}

TEST_F(CleanupValidation, TheClockIsReadOnceAndMayBeAnywhere) {
    int readings = 0;
    CleanupCandidate candidate = installer();
    SystemTime clock = now;
    environment.now = [&] {
        ++readings;
        return clock;
    };
    EXPECT_EQ(failure(candidate), std::nullopt);
    EXPECT_EQ(readings, 1);
    clock = SystemTime::max();
    EXPECT_EQ(failure(candidate), stale);
    candidate.scannedAt = SystemTime::max();
    EXPECT_EQ(failure(candidate), std::nullopt);
    clock = candidate.scannedAt = SystemTime::min();
    EXPECT_EQ(failure(candidate), tooYoung);
    clock = candidate.scannedAt = now - 3650 * 24h;
    EXPECT_EQ(failure(candidate), tooYoung);
}

TEST_F(CleanupValidation, AFileFromBefore1970MayMove) {
    makeOld(downloads / "old.xip");
    setModified(downloads / "old.xip", SystemTime(-1ns - 24h));
    const CleanupCandidate candidate = scanned(downloads / "old.xip", CleanupCategory::installer);
    EXPECT_EQ(failure(candidate), std::nullopt);
    setModified(downloads / "old.xip", SystemTime(-1us - 24h));
    EXPECT_EQ(failure(candidate), modified);
}

TEST_F(CleanupValidation, ChangesNothing) {
    const CleanupCandidate candidate = log();
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(lstat(candidate.url.c_str(), &before), 0);
    EXPECT_EQ(failure(candidate), std::nullopt);
    ASSERT_EQ(lstat(candidate.url.c_str(), &after), 0);
    EXPECT_EQ(readFile(candidate.url), "an old file");
    EXPECT_EQ(after.st_ctime, before.st_ctime);
    EXPECT_EQ(after.st_nlink, before.st_nlink);
    EXPECT_EQ(std::distance(fs::recursive_directory_iterator(root), {}), 6);
}

TEST_F(CleanupValidation, APathWithoutLinksHasNoneInAnyComponent) {
    using CleanupScanner::pathHasNoSymbolicLinkComponents;
    const fs::path file = makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink("Library", home / "linked");
    for (const fs::path& path : {fs::path("/"), fs::path("//"), fs::path("/.."), root, file, logs / "", logs / ".",
                                 logs / "../Logs/file", logs / "link/../file"})
        EXPECT_TRUE(pathHasNoSymbolicLinkComponents(path)) << path;
    for (const fs::path& path :
         {fs::path(), fs::path("."), fs::path("file"), fs::relative(file), logs / "link", logs / "link/",
          logs / "broken", logs / "missing", logs / "missing/file", file / "below", home / "linked",
          home / "linked/Logs", home / "linked/Logs/file", logs / "link/below"})
        EXPECT_FALSE(pathHasNoSymbolicLinkComponents(path)) << path;
}

TEST_F(CleanupValidation, APathLeadsThroughALinkThatIsAnyOfItsComponents) {
    using CleanupScanner::leadsThroughLink;
    makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink("Library", home / "linked");
    for (const fs::path& path : {logs / "link", logs / "link/", logs / "broken", home / "linked", home / "linked/Logs",
                                 home / "linked/missing", home / "linked/Logs/../Logs/file"})
        EXPECT_TRUE(leadsThroughLink(path)) << path;
    for (const fs::path& path : {fs::path("/"), root, logs / "file", logs / "missing/file", logs / "link/../file"})
        EXPECT_FALSE(leadsThroughLink(path)) << path;
}

TEST_F(CleanupValidation, ASafeCandidateLiesBelowItsRootAndIsNoLink) {
    using CleanupScanner::isSafeCandidate;
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_directory_symlink(downloads, logs / "link");
    makeOld(downloads / "file");
    const std::vector<std::tuple<fs::path, fs::path, bool>> cases{
        {logs / "file", logs, true}, // also when there is none
        {logs / "a/b/c", logs, true},
        {crashReports, logs, true},
        {logs / "./a", logs / "", true},
        {logs / "link/file", logs, true}, // judged by the path, and itself no link
        {logs, logs, false},
        {logs / "", logs, false},
        {logs / "a/..", logs, false},
        {logs / "../file", logs, false},
        {logs / "../Logs", logs, false},
        {logs, crashReports, false},
        {home / "Library/Logs2", logs, false},
        {home / "Library/Logs2/file", logs, false},
        {logs / "broken", logs, false},
        {logs / "link", logs, false},
        {logs / "link/", logs, false},
        {"", logs, false},
        {"/", "/", false},
        {"/file", "", true},
    };
    for (const auto& [candidate, folder, expected] : cases)
        EXPECT_EQ(isSafeCandidate(candidate, folder), expected) << candidate << " in " << folder;
}

TEST_F(CleanupValidation, ALinkIsToldFromWhatItLeadsTo) {
    using CleanupScanner::isSymbolicLink;
    makeOld(logs / "file");
    fs::create_symlink("file", logs / "link");
    fs::create_symlink("nowhere", logs / "broken");
    fs::create_symlink("loop", logs / "loop");
    fs::create_directory_symlink(downloads, logs / "folder");
    for (const char* name : {"link", "broken", "loop", "folder", "folder/"})
        EXPECT_TRUE(isSymbolicLink(logs / name)) << name;
    for (const char* name : {"file", "", ".", "missing", "missing/link", "link/below", "folder/missing"})
        EXPECT_FALSE(isSymbolicLink(logs / name)) << name;
}

} // namespace vantry
