#include "cleanup/gate/ValidationDecisions.h"

#include "base/StandardizedPath.h"

#include <gtest/gtest.h>

#include <chrono>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <utility>
#include <vector>

namespace vantry::CleanupScanner {

namespace {

using namespace std::chrono_literals;
using namespace std::string_view_literals;

constexpr auto missing = "it no longer exists"sv;
constexpr auto linked = "its path now contains a symbolic link"sv;
constexpr auto notDirect = "it is not a direct file inside an approved cleanup folder"sv;
constexpr auto relocatedRoot = "the approved cleanup folder is missing or relocated"sv;
constexpr auto unverified = "its current file details could not be verified"sv;
constexpr auto notRegular = "it is no longer a local, regular file"sv;
constexpr auto unverifiedRoot = "the approved cleanup folder could not be verified"sv;
constexpr auto notCaptured = "the scan did not capture every identity check required"sv;
constexpr auto otherItem = "a different item now occupies this path"sv;
constexpr auto otherVolume = "it is no longer on the approved folder’s volume"sv;
constexpr auto modified = "it was modified after the scan"sv;
constexpr auto notOwned = "it is not owned by the current user"sv;
constexpr auto resized = "its allocated size changed after the scan"sv;
constexpr auto tooYoung = "it is no longer old enough for low-risk cleanup"sv;

constexpr SystemTime checkTime{std::chrono::nanoseconds(1'800'000'000'123'456'789)};
constexpr uid_t user = 501;
constexpr std::int64_t size = 8192;

const std::vector<CleanupCategory> approved{CleanupCategory::log, CleanupCategory::crashReport,
                                            CleanupCategory::installer, CleanupCategory::interruptedDownload};

/// An item that passes every check. A case changes something about it.
struct Item {
    CleanupCandidate candidate = CleanupCandidate::withFingerprint(
        "/home/Library/Logs/old.log", "old.log", CleanupCategory::log, "", size, CleanupConfidence::suggested,
        {.contentModificationDate = checkTime - 365 * 24h,
         .resourceIdentifier = "file 1",
         .volumeIdentifier = "volume 1"},
        checkTime);
    PinnedFileFacts facts{.isRegularFile = true,
                          .isSymbolicLink = false,
                          .isPackage = false,
                          .isUbiquitousItem = false,
                          .allocatedBytes = size,
                          .totalAllocated = size,
                          .owner = user,
                          .fingerprint = {.contentModificationDate = checkTime - 365 * 24h,
                                          .resourceIdentifier = "file 1",
                                          .volumeIdentifier = "volume 1"}};
    PinnedFolderFacts root{.isDirectory = true, .isSymbolicLink = false, .volumeIdentifier = "volume 1"};

    Item& withoutTotal() {
        facts.totalAllocated.reset();
        return *this;
    }
    [[nodiscard]] Refusal byIdentity() const { return refusalByIdentity(candidate, facts, root); }
    [[nodiscard]] CleanupRule rule() const {
        return cleanupRules(candidate.category, {.home = "/home", .system = HostSystem::macOS}).front();
    }
    [[nodiscard]] Refusal byRule() const { return refusalByRule(candidate, rule(), facts, user, checkTime); }
};

struct Case {
    const char* name;
    std::function<void(Item&)> spoil;
    Refusal expected;
};

void expectAll(const std::vector<Case>& cases, const std::function<Refusal(const Item&)>& decide) {
    for (const auto& [name, spoil, expected] : cases) {
        Item item;
        spoil(item);
        EXPECT_EQ(decide(item), expected) << name;
    }
}

} // namespace

TEST(ValidationDecisions, EveryCategoryThatMayNotGoToTheTrashIsProtected) {
    for (const auto& row : allCleanupCategories) {
        const bool passes = row.removalDisposition == CleanupRemovalDisposition::directTrash;
        // A protected category is refused as such, however old the scan is.
        for (const SystemTime scannedAt :
             {checkTime, checkTime - 1h, checkTime + 1h, SystemTime::min(), SystemTime::max()}) {
            const Refusal refusal = refusalByScan(row.value, scannedAt, checkTime);
            EXPECT_EQ(refusal != "this type of item is protected from direct cleanup", passes) << row.rawValue;
        }
        EXPECT_EQ(refusalByScan(row.value, checkTime, checkTime) == std::nullopt, passes) << row.rawValue;
    }
}

TEST(ValidationDecisions, AnUnknownCategoryIsNotApproved) {
    const auto unknown = static_cast<CleanupCategory>(99);
    EXPECT_EQ(refusalByScan(unknown, checkTime, checkTime), "this type of item is not approved for direct cleanup");
    EXPECT_EQ(refusalByScan(unknown, checkTime - 301s, checkTime), "the scan is more than five minutes old");
}

TEST(ValidationDecisions, AScanIsValidForFiveMinutesAndNotWhenItIsFromTheFuture) {
    constexpr auto stale = "the scan is more than five minutes old"sv;
    const std::vector<std::tuple<const char*, SystemTime, SystemTime, Refusal>> cases{
        {"at once", checkTime, checkTime, std::nullopt},
        {"a nanosecond ago", checkTime - 1ns, checkTime, std::nullopt},
        {"299 s ago", checkTime - 299s, checkTime, std::nullopt},
        {"300 s ago", checkTime - 300s, checkTime, std::nullopt},
        {"300 s and 1 ns ago", checkTime - 300s - 1ns, checkTime, stale},
        {"301 s ago", checkTime - 301s, checkTime, stale},
        {"1 ns ahead", checkTime + 1ns, checkTime, stale},
        {"ten years ahead", checkTime + 3650 * 24h, checkTime, stale},
        {"ten years ago", checkTime - 3650 * 24h, checkTime, stale},
        {"as long ago as can be", SystemTime::min(), SystemTime::max(), stale},
        {"as far ahead as can be", SystemTime::max(), SystemTime::min(), stale},
        {"just after the signed difference overflows", SystemTime(-1ns), SystemTime::max(), stale},
        {"at the end of time", SystemTime::max() - 300s, SystemTime::max(), std::nullopt},
        {"just too long at the end of time", SystemTime::max() - 300s - 1ns, SystemTime::max(), stale},
        {"at the start of time", SystemTime::min(), SystemTime::min() + 300s, std::nullopt},
        {"just too long at the start of time", SystemTime::min(), SystemTime::min() + 300s + 1ns, stale},
        {"across 1970", SystemTime(-150s), SystemTime(150s), std::nullopt},
    };
    for (const auto category : approved)
        for (const auto& [name, scannedAt, clock, expected] : cases)
            EXPECT_EQ(refusalByScan(category, scannedAt, clock), expected) << name;
}

TEST(ValidationDecisions, AMissingOrLinkedItemOrAMovedFolderIsRefused) {
    EXPECT_EQ(refusalByExistence(true), std::nullopt);
    EXPECT_EQ(refusalByExistence(false), missing);
    EXPECT_EQ(refusalByLinks(false), std::nullopt);
    EXPECT_EQ(refusalByLinks(true), linked);
    EXPECT_EQ(refusalByRootPlace(true), std::nullopt);
    EXPECT_EQ(refusalByRootPlace(false), relocatedRoot);
}

TEST(ValidationDecisions, AnItemMustLieDirectlyInAFolderOfItsCategory) {
    using enum CleanupCategory;
    const std::vector<std::tuple<const char*, CleanupCategory, bool>> cases{
        {"/home/Downloads/file", installer, true},
        {"/home/Downloads/file", interruptedDownload, true},
        {"/home/Library/Logs/file", log, true},
        {"/home/Library/Logs/DiagnosticReports/file", crashReport, true},
        {"/home/Library/Logs/DiagnosticReports/file", log, false},
        {"/home/Library/Logs/file", installer, false},
        {"/home/Downloads/file", log, false},
        {"/home/Downloads/below/file", installer, false},
        {"/home/Downloads", installer, false},
        {"/home/file", installer, false},
        {"/home/Downloadsfile", installer, false},
        {"/home/Downloads2/file", installer, false},
        {"/home/Down/file", installer, false},
        {"/home/downloads/file", installer, false},
        {"/other/home/Downloads/file", installer, false},
        {"home/Downloads/file", installer, false},
        {"file", installer, false},
        {"/", installer, false},
        {"", installer, false},
    };
    for (const auto& [item, category, isApproved] : cases) {
        const auto rule = approvedRule(category, item, {.home = "/home"});
        EXPECT_EQ(rule.has_value(), isApproved) << item;
        EXPECT_EQ(refusalByParent(rule), isApproved ? Refusal() : notDirect) << item;
        EXPECT_TRUE(!rule || rule->category == category) << item;
    }
}

// As a user may name any folder, also the one with everything in it.
TEST(ValidationDecisions, ADownloadFolderCountsOnlyInTheHomeFolder) {
    for (const auto& [folder, isApproved] : {std::pair("/home/Téléchargements", true),
                                             {"/home/./a/../b/", true},
                                             {"/home", false},
                                             {"/home/", false},
                                             {"/", false},
                                             {"/disk/downloads", false},
                                             {"/homes/downloads", false}}) {
        const CleanupPlaces places{.home = "/home", .downloads = folder};
        const auto item = standardizedPath(std::filesystem::path(folder) / "file.dmg");
        EXPECT_EQ(approvedRule(CleanupCategory::installer, item, places).has_value(), isApproved) << folder;
        EXPECT_FALSE(approvedRule(CleanupCategory::installer, "/home/Downloads/file.dmg", places)) << folder;
    }
}

TEST(ValidationDecisions, AnItemMustBeALocalRegularFile) {
    EXPECT_EQ(refusalByKind(std::nullopt), unverified);
    expectAll(
        {
            {"nothing", [](Item&) {}, std::nullopt},
            {"no regular file", [](Item& item) { item.facts.isRegularFile = false; }, notRegular},
            {"perhaps a regular file", [](Item& item) { item.facts.isRegularFile.reset(); }, notRegular},
            {"a link", [](Item& item) { item.facts.isSymbolicLink = true; }, notRegular},
            {"perhaps a link", [](Item& item) { item.facts.isSymbolicLink.reset(); }, notRegular},
            {"a package", [](Item& item) { item.facts.isPackage = true; }, notRegular},
            {"perhaps a package", [](Item& item) { item.facts.isPackage.reset(); }, notRegular},
            {"in a cloud", [](Item& item) { item.facts.isUbiquitousItem = true; }, notRegular},
            {"perhaps in a cloud", [](Item& item) { item.facts.isUbiquitousItem.reset(); }, notRegular},
            {"nothing known", [](Item& item) { item.facts = {}; }, notRegular},
        },
        [](const Item& item) { return refusalByKind(item.facts); });
}

TEST(ValidationDecisions, TheApprovedFolderMustBeAFolderOnAVolume) {
    EXPECT_EQ(refusalByRoot(std::nullopt), unverifiedRoot);
    expectAll(
        {
            {"nothing", [](Item&) {}, std::nullopt},
            {"no folder", [](Item& item) { item.root.isDirectory = false; }, unverifiedRoot},
            {"perhaps a folder", [](Item& item) { item.root.isDirectory.reset(); }, unverifiedRoot},
            {"a link", [](Item& item) { item.root.isSymbolicLink = true; }, unverifiedRoot},
            {"perhaps a link", [](Item& item) { item.root.isSymbolicLink.reset(); }, unverifiedRoot},
            {"on no volume", [](Item& item) { item.root.volumeIdentifier.reset(); }, unverifiedRoot},
            {"nothing known", [](Item& item) { item.root = {}; }, unverifiedRoot},
        },
        [](const Item& item) { return refusalByRoot(item.root); });
}

TEST(ValidationDecisions, AnItemMustBeTheOneThatTheScanFound) {
    const auto all = [](Item& item) { item.facts.fingerprint = {checkTime, "file 2", "volume 2"}; };
    expectAll(
        {
            {"nothing", [](Item&) {}, std::nullopt},
            {"no scanned date", [](Item& item) { item.candidate.scannedModificationDate.reset(); }, notCaptured},
            {"no scanned file", [](Item& item) { item.candidate.scannedResourceIdentifier.reset(); }, notCaptured},
            {"no scanned volume", [](Item& item) { item.candidate.scannedVolumeIdentifier.reset(); }, notCaptured},
            {"no date", [](Item& item) { item.facts.fingerprint.contentModificationDate.reset(); }, notCaptured},
            {"no file", [](Item& item) { item.facts.fingerprint.resourceIdentifier.reset(); }, notCaptured},
            {"no volume", [](Item& item) { item.facts.fingerprint.volumeIdentifier.reset(); }, notCaptured},
            {"another file", [](Item& item) { item.facts.fingerprint.resourceIdentifier = "file 2"; }, otherItem},
            {"a longer text", [](Item& item) { item.facts.fingerprint.resourceIdentifier = "file 11"; }, otherItem},
            {"another volume", [](Item& item) { item.facts.fingerprint.volumeIdentifier = "volume 2"; }, otherVolume},
            {"a moved folder", [](Item& item) { item.root.volumeIdentifier = "volume 2"; }, otherVolume},
            {"both on another volume than when scanned",
             [](Item& item) {
                 item.root.volumeIdentifier = "volume 2";
                 item.facts.fingerprint.volumeIdentifier = "volume 2";
             },
             otherVolume},
            {"a nanosecond later", [](Item& item) { *item.facts.fingerprint.contentModificationDate += 1ns; },
             modified},
            {"a nanosecond earlier", [](Item& item) { *item.facts.fingerprint.contentModificationDate -= 1ns; },
             modified},
            {"everything different", all, otherItem},
            {"everything but the file different",
             [=](Item& item) {
                 all(item);
                 item.facts.fingerprint.resourceIdentifier = "file 1";
             },
             otherVolume},
            {"everything different and something missing",
             [=](Item& item) {
                 all(item);
                 item.candidate.scannedVolumeIdentifier.reset();
             },
             notCaptured},
        },
        &Item::byIdentity);
}

TEST(ValidationDecisions, AnItemMustBelongToTheUserAndHaveTheScannedSize) {
    expectAll(
        {
            {"nothing", [](Item&) {}, std::nullopt},
            {"another user", [](Item& item) { item.facts.owner = user + 1; }, notOwned},
            {"root", [](Item& item) { item.facts.owner = 0; }, notOwned},
            {"nobody known", [](Item& item) { item.facts.owner.reset(); }, notOwned},
            {"a block more", [](Item& item) { *item.facts.totalAllocated += 512; }, resized},
            {"a byte less", [](Item& item) { *item.facts.totalAllocated -= 1; }, resized},
            {"nothing scanned", [](Item& item) { item.candidate.size = 0; }, resized},
            {"other contents of the same total", [](Item& item) { item.facts.allocatedBytes = 1; }, std::nullopt},
            {"no total", [](Item& item) { item.withoutTotal(); }, std::nullopt},
            {"no total and another size", [](Item& item) { item.withoutTotal().facts.allocatedBytes = 1; }, resized},
            {"no size at all", [](Item& item) { item.withoutTotal().facts.allocatedBytes.reset(); }, resized},
            {"no size, and none scanned",
             [](Item& item) {
                 item.withoutTotal().facts.allocatedBytes.reset();
                 item.candidate.size = 0;
             },
             resized},
            {"an empty file", [](Item& item) { item.facts.totalAllocated = item.candidate.size = 0; }, std::nullopt},
            {"no date", [](Item& item) { item.facts.fingerprint.contentModificationDate.reset(); }, tooYoung},
            {"everything wrong",
             [](Item& item) {
                 item.facts = {};
                 item.candidate.url = "/home/Library/Logs/old";
             },
             notOwned},
            {"everything after the owner wrong",
             [](Item& item) {
                 item.facts = {.owner = user};
                 item.candidate.url = "/home/Library/Logs/old";
             },
             resized},
            {"everything after the size wrong",
             [](Item& item) {
                 item.facts.fingerprint = {};
                 item.candidate.url = "/home/Library/Logs/old";
             },
             "its file type is no longer an approved log"},
        },
        &Item::byRule);
}

TEST(ValidationDecisions, ATypeIsDecidedByTheExtensionInAnyCase) {
    struct Types {
        CleanupCategory category;
        std::vector<std::string> names;
        std::vector<std::string> otherNames;
        std::string_view refusal;
    };
    const std::vector<Types> table{
        {CleanupCategory::log,
         {"a.log", "a.txt", "a.out", "a.LOG", "a.Txt", "a.b.ouT", "\xff.log", "new\nline.log", " .log"},
         {"a", "log", ".log", "a.", "a.log.", "a.logs", "a.log ", "a.log\n", "a.crash", "a.dmg", "a.log.gz"},
         "its file type is no longer an approved log"},
        {CleanupCategory::crashReport,
         {"a.crash", "a.ips", "a.diag", "a.spin", "a.hang", "a.CRASH", "a.IPS", "a.Diag", "a.SPIN", "a.hanG"},
         {"a.log", "a.txt", "a.cras", "a.crash2", "ips"},
         "its file type is no longer an approved crash report"},
        {CleanupCategory::installer,
         {"a.dmg", "a.pkg", "a.xip", "a.DMG", "a.Pkg", "a.XIP"},
         {"a.zip", "a.mpkg", "a.iso", "dmg", "a.part", "a.deb", "a.snap"},
         "its file type is no longer an approved installer"},
        {CleanupCategory::interruptedDownload,
         {"a.download", "a.crdownload", "a.part", "a.partial", "a.dmg.PART", "a.CrDownload"},
         {"a.dmg", "a.parts", "a.tmp", "a.par", "download", "a.aria2", "a.!qB"},
         "its file type is no longer an interrupted download"},
    };
    for (const auto& [category, names, otherNames, refusal] : table) {
        Item item;
        item.candidate.category = category;
        for (const auto& name : names) {
            item.candidate.url = "/home/folder/" + name;
            EXPECT_EQ(item.byRule(), std::nullopt) << name;
        }
        for (const auto& name : otherNames) {
            item.candidate.url = "/home/folder/" + name;
            EXPECT_EQ(item.byRule(), refusal) << name;
        }
    }
}

TEST(ValidationDecisions, AnItemMustBeAsOldAsItsRuleRequires) {
    struct Rule {
        CleanupCategory category;
        const char* name;
        std::chrono::seconds minimum;
    };
    for (const auto& [category, name, minimum] :
         {Rule{CleanupCategory::log, "a.log", 2'592'000s}, Rule{CleanupCategory::crashReport, "a.ips", 2'592'000s},
          Rule{CleanupCategory::installer, "a.dmg", 1'814'400s},
          Rule{CleanupCategory::interruptedDownload, "a.part", 1'209'600s}}) {
        Item item;
        item.candidate.category = category;
        item.candidate.url = std::string("/home/folder/") + name;
        const auto refusalAt = [&](SystemTime date, SystemTime clock) {
            item.facts.fingerprint.contentModificationDate = date;
            return refusalByRule(item.candidate, item.rule(), item.facts, user, clock);
        };
        EXPECT_EQ(refusalAt(checkTime - minimum, checkTime), std::nullopt) << name;
        EXPECT_EQ(refusalAt(checkTime - minimum - 1ns, checkTime), std::nullopt) << name;
        EXPECT_EQ(refusalAt(checkTime - minimum + 1ns, checkTime), tooYoung) << name;
        EXPECT_EQ(refusalAt(checkTime, checkTime), tooYoung) << name;
        EXPECT_EQ(refusalAt(checkTime + 1ns, checkTime), tooYoung) << name;
        EXPECT_EQ(refusalAt(SystemTime(-1s), checkTime), std::nullopt) << "before 1970";
        EXPECT_EQ(refusalAt(SystemTime::min(), checkTime), std::nullopt);
        EXPECT_EQ(refusalAt(SystemTime::max(), checkTime), tooYoung);
        // Differences that do not fit in a signed number of nanoseconds.
        EXPECT_EQ(refusalAt(SystemTime::min(), SystemTime::max()), std::nullopt);
        EXPECT_EQ(refusalAt(SystemTime::max(), SystemTime::min()), tooYoung);
        EXPECT_EQ(refusalAt(SystemTime::min(), SystemTime::min() + minimum), std::nullopt);
        EXPECT_EQ(refusalAt(SystemTime::min(), SystemTime::min() + minimum - 1ns), tooYoung);
        EXPECT_EQ(refusalAt(SystemTime(-1s), SystemTime(minimum) - 1s), std::nullopt);
        EXPECT_EQ(refusalAt(SystemTime(-1s), SystemTime(minimum) - 1s - 1ns), tooYoung);
    }
}

TEST(ValidationDecisions, TheNameMustStillLeadToTheItemInTheEnd) {
    EXPECT_EQ(refusalByPlace(PinnedPlace::unchanged), std::nullopt);
    EXPECT_EQ(refusalByPlace(PinnedPlace::folderMoved), relocatedRoot);
    EXPECT_EQ(refusalByPlace(PinnedPlace::missing), missing);
    EXPECT_EQ(refusalByPlace(PinnedPlace::link), linked);
    EXPECT_EQ(refusalByPlace(PinnedPlace::otherItem), otherItem);
}

} // namespace vantry::CleanupScanner
