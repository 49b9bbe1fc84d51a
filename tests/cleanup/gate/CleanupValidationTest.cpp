#include "cleanup/gate/CleanupValidation.h"

#include "cleanup/model/CleanupPlaces.h"
#include "platform/FoundItem.h"
#include "tests/cleanup/gate/CleanupValidationFixture.h"
#include "tests/support/BoundSocket.h"

#include <chrono>
#include <fstream>
#include <functional>
#include <optional>
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

TEST_F(CleanupValidation, AnUnchangedFileMayMove) {
    const std::vector<std::pair<fs::path, CleanupCategory>> cases{
        {logs / "old.log", CleanupCategory::log},
        {crashReports / "old.ips", CleanupCategory::crashReport},
        {crashReports / "OLD.CRASH", CleanupCategory::crashReport},
        {downloads / "old.dmg", CleanupCategory::installer},
        {downloads / "old.dmg.part", CleanupCategory::interruptedDownload},
    };
    for (const auto& [path, category] : cases) {
        const CleanupCandidate candidate = scanned(makeOld(path), category);
        const auto validated = CleanupScanner::validatedFile(candidate, places, clock);
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
    clock = std::chrono::system_clock::now();
    EXPECT_EQ(failure(candidate), std::nullopt);
}

TEST_F(CleanupValidation, LinuxAcceptsTheFilesOfItsOwnProgramsInTheDownloadFolderOnly) {
    for (const auto& [extension, category] : {std::pair("deb", CleanupCategory::installer),
                                              {"rpm", CleanupCategory::installer},
                                              {"SNAP", CleanupCategory::installer},
                                              {"flatpak", CleanupCategory::installer},
                                              {"aria2", CleanupCategory::interruptedDownload},
                                              {"!qB", CleanupCategory::interruptedDownload},
                                              {"opdownload", CleanupCategory::interruptedDownload}}) {
        const auto name = std::string("old.") + extension;
        places = {.home = home, .system = HostSystem::linuxDesktop};
        const auto candidate = scanned(makeOld(downloads / name), category);
        EXPECT_EQ(failure(candidate), std::nullopt) << name;
        EXPECT_EQ(failure(scanned(makeOld(logs / name), category)), notDirect) << name;
        EXPECT_NE(failure(scanned(makeOld(logs / name), CleanupCategory::log)), std::nullopt) << name;
        places.system = HostSystem::macOS;
        EXPECT_NE(failure(candidate), std::nullopt) << name;
    }
}

TEST_F(CleanupValidation, WhenTheUserNamedAnotherDownloadFolderItIsTheOne) {
    places.downloads = home / "Stuff";
    fs::create_directory(places.downloads);
    EXPECT_EQ(failure(scanned(makeOld(places.downloads / "old.dmg"), CleanupCategory::installer)), std::nullopt);
    EXPECT_EQ(failure(installer()), notDirect);
    places.downloads = root / "outside the home folder";
    fs::create_directory(places.downloads);
    EXPECT_EQ(failure(scanned(makeOld(places.downloads / "old.dmg"), CleanupCategory::installer)), notDirect);
}

TEST_F(CleanupValidation, ANameMayHoldAnyBytes) {
    for (const char* name : {"new\nline.log", "\"'$(x)`;.log", "e\xcc\x81.log", ".hidden.log", " .log"})
        EXPECT_EQ(failure(scanned(makeOld(logs / name), CleanupCategory::log)), std::nullopt) << name;
}

TEST_F(CleanupValidation, APathMayBeNonStandardized) {
    const CleanupCandidate candidate = log();
    for (const fs::path& path :
         {logs / "./old.log", logs / "DiagnosticReports/../old.log", home / "Library//Logs///old.log",
          logs / "missing/../old.log", logs / "old.log/", fs::path(logs / "old.log/.")}) {
        CleanupCandidate same = candidate;
        same.url = path;
        EXPECT_EQ(failure(same), std::nullopt) << path;
    }
    places.home = root / "./home/";
    EXPECT_EQ(failure(candidate), std::nullopt);
}

TEST_F(CleanupValidation, AnythingThatChangedSinceTheScanIsAReasonToRefuse) {
    const auto date = now - 365 * 24h;
    const auto inPlaceOfTheFile = [](auto make) {
        return [make](CleanupCandidate& candidate) {
            fs::rename(candidate.url, candidate.url.parent_path() / "moved.log");
            make(candidate.url);
        };
    };
    const auto linkTo = [&](const fs::path& target) {
        return inPlaceOfTheFile([target](const fs::path& path) { fs::create_symlink(target, path); });
    };
    const auto dated = [&](SystemTime time) {
        return [=](CleanupCandidate& candidate) { setModified(candidate.url, time); };
    };
    const auto ofAge = [&](SystemTime::duration age) {
        return [=](CleanupCandidate& candidate) {
            setModified(candidate.url, now - age);
            candidate = scanned(candidate.url, CleanupCategory::log);
        };
    };
    const auto resizedTo = [&](std::uintmax_t bytes) {
        return [=](CleanupCandidate& candidate) {
            fs::resize_file(candidate.url, 0);
            std::ofstream(candidate.url) << std::string(bytes, 'x');
            setModified(candidate.url, date);
        };
    };
    const auto scannedAgo = [&](SystemTime::duration time) {
        return [=](CleanupCandidate& candidate) { candidate.scannedAt = now - time; };
    };
    const auto named = [](const fs::path& path) {
        return [path](CleanupCandidate& candidate) { candidate.url = path; };
    };
    struct Case {
        const char* name;
        std::function<void(CleanupCandidate&)> change;
        std::optional<std::string> failure;
    };
    const Case cases[] = {
        {"nothing changed", [](auto&) {}, std::nullopt},
        {"scanned 300 s ago", scannedAgo(300s), std::nullopt},
        {"scanned 301 s ago", scannedAgo(301s), stale},
        {"scanned in the future", scannedAgo(-1ns), stale},
        {"the file is gone", [](auto& candidate) { fs::remove(candidate.url); }, missing},
        {"the folder is gone", [&](auto&) { fs::remove_all(logs); }, missing},
        {"a file in place of the folder", [&](auto&) { fs::remove_all(logs), writeFile(logs, ""); }, missing},
        {"the home is gone", [&](auto&) { fs::remove_all(home); }, missing},
        {"no name", named(""), missing},
        {"a relative name of nothing", named("no such file.log"), missing},
        {"a name that is too long", named(logs / (std::string(256, 'n') + ".log")), missing},
        {"a path that is too long", named(logs / (std::string(5000, '/') + std::string(5000, 'n'))), missing},
        {"a link to the file itself", linkTo("moved.log"), linked},
        {"a link to nothing", linkTo("nowhere"), linked},
        {"a link to itself", linkTo("old.log"), linked},
        {"a link to a folder", linkTo(downloads), linked},
        {"a folder", inPlaceOfTheFile([](const fs::path& path) { fs::create_directory(path); }), notRegular},
        {"a pipe", inPlaceOfTheFile([](const fs::path& path) { mkfifo(path.c_str(), 0600); }), notRegular},
        {"a socket", inPlaceOfTheFile(makeSocket), notRegular},
        {"no date was scanned", [](auto& candidate) { candidate.scannedModificationDate.reset(); }, notCaptured},
        {"no identity was scanned", [](auto& candidate) { candidate.scannedResourceIdentifier.reset(); }, notCaptured},
        {"no volume was scanned", [](auto& candidate) { candidate.scannedVolumeIdentifier.reset(); }, notCaptured},
        {"a copy of the same name, size and date", inPlaceOfTheFile([](auto& path) { makeOld(path); }), otherItem},
        {"a microsecond later", dated(date + 1us), modified},
        {"a microsecond earlier", dated(date - 1us), modified},
        {"modified now", dated(now), modified},
        {"scanned a nanosecond off", [](auto& candidate) { *candidate.scannedModificationDate -= 1ns; }, modified},
        {"larger, with the same date", resizedTo(65536), resized},
        {"empty, with the same date", resizedTo(0), resized},
        {"scanned one byte smaller", [](auto& candidate) { candidate.size -= 1; }, resized},
        {"29 days old", ofAge(29 * 24h), tooYoung},
        {"not quite 30 days old", ofAge(30 * 24h - 1us), tooYoung},
        {"exactly 30 days old", ofAge(30 * 24h), std::nullopt},
        {"of the future", ofAge(-1h), tooYoung},
    };
    for (const auto& [name, change, expected] : cases) {
        fs::remove_all(home);
        fs::create_directories(crashReports);
        fs::create_directory(downloads);
        CleanupCandidate candidate = log();
        change(candidate);
        EXPECT_EQ(failure(candidate), expected) << name;
    }
}

TEST_F(CleanupValidation, ACandidateMadeBeforeItsFileIsRefused) {
    CleanupCandidate early(logs / "old.log", "old.log", CleanupCategory::log, "", 0, CleanupConfidence::suggested);
    early.scannedAt = now;
    makeOld(early.url);
    EXPECT_EQ(failure(early), notCaptured);
}

TEST_F(CleanupValidation, ALinkInPlaceOfAnyFolderOnThePathIsRefused) {
    for (const fs::path& replaced : {logs, home / "Library", home}) {
        const CleanupCandidate candidate = log();
        const fs::path real = root / "real";
        fs::rename(replaced, real);
        fs::create_directory_symlink(real, replaced);
        EXPECT_EQ(failure(candidate), linked) << replaced;
        // A link to nothing.
        fs::remove(replaced);
        fs::create_directory_symlink(root / "empty", replaced);
        EXPECT_EQ(failure(candidate), missing) << replaced;
        fs::remove(replaced);
        fs::rename(real, replaced);
        EXPECT_EQ(failure(candidate), std::nullopt) << replaced;
    }
}

// A home may be reached through a link. `CleanupPlaces::current` resolves it, and the items are found below its target.
TEST_F(CleanupValidation, ALinkAboveTheHomeIsResolvedOnlyByTheCaller) {
    fs::create_directory_symlink(root, root / "link");
    CleanupCandidate candidate = log();
    places.home = fs::canonical(root / "link/home");
    EXPECT_EQ(failure(candidate), std::nullopt);
    candidate.url = root / "link/home/Library/Logs/old.log";
    EXPECT_EQ(failure(candidate), linked);
    places.home = root / "link/home";
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
    places.home = root / "other home";
    EXPECT_EQ(failure(log()), notDirect);
}

TEST_F(CleanupValidation, AFileOfAnotherUserIsRefused) {
    const CleanupCandidate candidate = log();
    if (chown(candidate.url.c_str(), getuid() + 1, static_cast<gid_t>(-1)) != 0)
        GTEST_SKIP() << "may not give a file away";
    EXPECT_EQ(failure(candidate), notOwned);
}

TEST_F(CleanupValidation, TheFirstCheckThatFailsDecides) {
    // A file with several faults. Each step adds one that is checked earlier.
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

TEST_F(CleanupValidation, AnyClockIsHandled) {
    CleanupCandidate candidate = installer();
    EXPECT_EQ(failure(candidate), std::nullopt);
    clock = SystemTime::max();
    EXPECT_EQ(failure(candidate), stale);
    candidate.scannedAt = SystemTime::max();
    EXPECT_EQ(failure(candidate), std::nullopt);
    clock = candidate.scannedAt = SystemTime::min();
    EXPECT_EQ(failure(candidate), tooYoung);
    clock = candidate.scannedAt = now - 3650 * 24h;
    EXPECT_EQ(failure(candidate), tooYoung);
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

} // namespace vantry
