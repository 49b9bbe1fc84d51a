#include "cleanup/finding/OldFileFinders.h"
#include "base/Format.h"

#include "platform/FoundItem.h"
#include "tests/cleanup/finding/ScanFixture.h"
#ifdef __linux__
#include "tests/support/ChildProcess.h"
#include "tests/support/InterceptedCall.h"

#include <sys/syscall.h>
#endif

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;
using namespace std::string_view_literals;

constexpr std::array logExtensions{"log"sv, "txt"sv};
constexpr std::array kept{"Homebrew"sv, "CocoaPods"sv};
constexpr days age{30};

class OldItems : public testing::Test, public ScanFixture {
protected:
    CleanupRule rule(std::int64_t minimumSize = 4096, std::size_t maximumCount = 40) {
        return {.category = CleanupCategory::log,
                .folder = home() / "place",
                .olderThan = age,
                .minimumSize = minimumSize,
                .maximumCount = maximumCount,
                .reason = "Because.",
                .extensions = logExtensions,
                .excludedNames = kept};
    }
    std::vector<std::string> files(const CleanupRule& use) { return namesOf(oldRegularFiles(context, use)); }
    std::vector<std::string> folders(const CleanupRule& use) { return namesOf(oldDirectoryChildren(context, use)); }
    [[nodiscard]] bool isLimited() const { return budget.limitedCategories.contains(CleanupCategory::log); }
};

TEST_F(OldItems, AFileIsJudgedByKindDateAndSize) {
    const auto cutoff = cutoffDate(now, age);
    using Kind = ItemFacts::Kind;
    struct Case {
        const char* what;
        ItemFacts facts;
        bool isOld;
    };
    const Case cases[] = {
        {"just old enough", {Kind::regularFile, cutoff - nanoseconds(1), 4096}, true},
        {"exactly the cutoff", {Kind::regularFile, cutoff, 4096}, false},
        {"younger", {Kind::regularFile, cutoff + nanoseconds(1), 4096}, false},
        {"very old", {Kind::regularFile, SystemTime::min(), 4096}, true},
        {"of the future", {Kind::regularFile, SystemTime::max(), 4096}, false},
        {"one byte short", {Kind::regularFile, SystemTime::min(), 4095}, false},
        {"larger", {Kind::regularFile, SystemTime::min(), 4097}, true},
        {"no size", {Kind::regularFile, SystemTime::min(), std::nullopt}, false},
        {"no date", {Kind::regularFile, std::nullopt, 4096}, false},
        {"a folder", {Kind::folder, SystemTime::min(), 4096}, false},
        {"a link", {Kind::symbolicLink, SystemTime::min(), 4096}, false},
        {"something else", {Kind::other, SystemTime::min(), 4096}, false},
    };
    for (const auto& [what, facts, isOld] : cases)
        EXPECT_EQ(isOldRegularFile(rule(), facts, cutoff), isOld) << what;
}

TEST_F(OldItems, AFolderIsJudgedByKindNameAndDateBeforeItIsMeasured) {
    const auto cutoff = cutoffDate(now, age);
    using Kind = ItemFacts::Kind;
    const auto old = cutoff - nanoseconds(1);
    struct Case {
        const char* path;
        ItemFacts facts;
        bool isOld;
    };
    for (const auto& [path, facts, isOld] :
         {Case{"/a/app", {Kind::folder, old, 4096}, true}, Case{"/Homebrew/homebrew", {Kind::folder, old, 4096}, true},
          Case{"/a/Homebrew", {Kind::folder, old, 4096}, false}, Case{"/a/app", {Kind::folder, cutoff, 4096}, false},
          Case{"/a/app", {Kind::folder, std::nullopt, 4096}, false},
          Case{"/a/app", {Kind::symbolicLink, old, 0}, false}, Case{"/a/app", {Kind::regularFile, old, 0}, false}})
        EXPECT_EQ(isOldFolder(rule(), path, facts, cutoff), isOld) << path;
}

TEST_F(OldItems, TheContentsOfAFolderMustBeOldAndLargeEnough) {
    const auto cutoff = cutoffDate(now, age);
    EXPECT_TRUE(isOldInside(rule(), {4096, cutoff - nanoseconds(1), true}, cutoff));
    EXPECT_TRUE(isOldInside(rule(), {4096, cutoff - nanoseconds(1), false}, cutoff)) << "judged on what was measured";
    EXPECT_TRUE(isOldInside(rule(), {4096, std::nullopt, true}, cutoff)) << "the folder's own date stands";
    EXPECT_FALSE(isOldInside(rule(), {4096, cutoff, true}, cutoff));
    EXPECT_FALSE(isOldInside(rule(), {4095, cutoff - nanoseconds(1), true}, cutoff));
}

TEST_F(OldItems, TheCutoffDoesNotOverflow) {
    EXPECT_EQ(cutoffDate(now, days(1)), now - days(1));
    EXPECT_EQ(cutoffDate(now, days(0)), now);
    EXPECT_EQ(cutoffDate(SystemTime::min() + days(1), days(2)), SystemTime::min());
    EXPECT_EQ(cutoffDate(SystemTime::max(), days(1)), SystemTime::max() - days(1));
}

TEST_F(OldItems, ExtensionsMatchInAnyCaseAndOnlyAsAWhole) {
    auto use = rule();
    for (const char* name : {"a.log", "a.LOG", "a.b.Txt"})
        EXPECT_TRUE(matchesExtensions(use, name)) << name;
    for (const char* name : {"log", ".log", "a.logs", "a.log.gz", "a.", "alog", "a.lo"})
        EXPECT_FALSE(matchesExtensions(use, name)) << name;
    use.extensions = {};
    use.excludedExtensions = logExtensions;
    EXPECT_TRUE(matchesExtensions(use, "a"));
    EXPECT_TRUE(matchesExtensions(use, "a.mov"));
    EXPECT_FALSE(matchesExtensions(use, "a.LOG"));
}

TEST_F(OldItems, ACandidateCarriesItsRuleAndItsFingerprint) {
    const auto url = file("place/old.log", 8192, days(40));
    const auto candidates = oldRegularFiles(context, rule());
    ASSERT_EQ(candidates.size(), 1U);
    const auto& candidate = candidates.front();
    const auto fingerprint = readFileFingerprint(url);
    EXPECT_EQ(candidate.url, url);
    EXPECT_EQ(candidate.title, "old.log");
    EXPECT_EQ(candidate.category, CleanupCategory::log);
    EXPECT_EQ(candidate.reason, "Because.");
    EXPECT_EQ(candidate.size, 8192);
    EXPECT_EQ(candidate.confidence, CleanupConfidence::suggested);
    EXPECT_EQ(candidate.scannedAt, now);
    EXPECT_EQ(candidate.scannedModificationDate, now - days(40));
    EXPECT_TRUE(candidate.scannedResourceIdentifier);
    EXPECT_EQ(candidate.scannedResourceIdentifier, fingerprint.resourceIdentifier);
    EXPECT_EQ(candidate.scannedVolumeIdentifier, fingerprint.volumeIdentifier);
}

TEST_F(OldItems, LinksFoldersFifosAndHiddenFilesAreNotOffered) {
    const auto target = file("elsewhere/target.log", 4096, days(90));
    link("place/link.log", target);
    setAge("place/link.log", days(90));
    folderWithFile("place/folder.log", 4096, days(90));
    ASSERT_EQ(mkfifo(at("place/fifo.log").c_str(), 0600), 0);
    setAge("place/fifo.log", days(90));
    file("place/.hidden.log", 4096, days(90));
    EXPECT_THAT(files(rule()), IsEmpty());
    EXPECT_FALSE(isLimited());
}

#ifdef __linux__
TEST_F(OldItems, AnItemIsOpenedOnce) {
    directory("place");
    const auto openings = [&](auto find) {
        const auto said = inChildProcess([&]() -> std::string {
            int count = 0;
            if (!interceptCall(SYS_openat2, [&](int /*number*/) { ++count; }))
                return "";
            const auto found = find(context, rule()).size();
            return std::to_string(count - static_cast<int>(found));
        });
        return said;
    };
    const auto none = openings(oldRegularFiles);
    if (none.empty())
        GTEST_SKIP() << "calls cannot be intercepted here";
    for (const char* name : {"one.log", "two.log", "three.log"})
        file(std::string("place/") + name, 4096, days(90));
    EXPECT_EQ(openings(oldRegularFiles), none);
    std::filesystem::remove_all(at("place"));
    for (const char* name : {"one", "two", "three"})
        folderWithFile(std::string("place/") + name, 0, days(90));
    workers.metrics[at("place/one")] = workers.metrics[at("place/two")] =
        workers.metrics[at("place/three")] = {4096, std::nullopt, true};
    EXPECT_EQ(openings(oldDirectoryChildren), none);
}
#endif

TEST_F(OldItems, AFolderThatIsALinkIsNotExamined) {
    folderWithFile("elsewhere/app", 4096, days(90));
    file("elsewhere/old.log", 4096, days(90));
    link("place", home() / "elsewhere");
    EXPECT_THAT(files(rule()), IsEmpty());
    EXPECT_THAT(folders(rule()), IsEmpty());
    EXPECT_THAT(workers.asked, IsEmpty());
    EXPECT_FALSE(isLimited());
}

TEST_F(OldItems, WithoutACompleteListingOrTimeNothingIsOfferedAndTheCategoryIsLimited) {
    const auto expectNothing = [&](const char* why) {
        for (const auto find : {oldRegularFiles, oldDirectoryChildren}) {
            budget.limitedCategories.clear();
            EXPECT_THAT(find(context, rule()), IsEmpty()) << why;
            EXPECT_TRUE(isLimited()) << why;
        }
    };
    expectNothing("the folder is missing");
    file("place/old.log", 4096, days(90));
    folderWithFile("place/app", 4096, days(90));
    workers.hung.insert(home() / "place");
    expectNothing("the listing is not complete");
    workers.hung.clear();
    workers.afterListing = [this](const auto&) { budget.deadline = deadlineIn(std::chrono::seconds(-1)); };
    EXPECT_THAT(files(rule()), IsEmpty());
    EXPECT_TRUE(isLimited());
    budget.deadline = deadlineIn(std::chrono::seconds(60));
    budget.limitedCategories.clear();
    EXPECT_THAT(folders(rule()), IsEmpty());
    EXPECT_TRUE(isLimited());
    EXPECT_THAT(workers.asked, testing::Each(testing::StartsWith("list "))) << "nothing is measured any more";
    workers.asked.clear();
    expectNothing("time is up before the listing");
    EXPECT_THAT(workers.asked, IsEmpty());
}

TEST_F(OldItems, WhenTimeIsUpAfterTheListingTheCategoryIsLimitedWhateverWasListed) {
    file("place/of another kind.pdf", 4096, days(90));
    workers.afterListing = [this](const auto&) { budget.deadline = deadlineIn(std::chrono::seconds(-1)); };
    for (const auto find : {oldRegularFiles, oldDirectoryChildren}) {
        budget.deadline = deadlineIn(std::chrono::seconds(60));
        EXPECT_THAT(find(context, rule()), IsEmpty());
        EXPECT_TRUE(isLimited());
        budget.limitedCategories.clear();
    }
}

TEST_F(OldItems, AFileThatVanishesAfterTheListingIsPassedOver) {
    const auto gone = file("place/gone.log", 4096, days(90));
    file("place/here.log", 4096, days(90));
    workers.afterListing = [&](const auto&) { std::filesystem::remove(gone); };
    EXPECT_THAT(files(rule()), ElementsAre("here.log"));
}

TEST_F(OldItems, AnEntryThatCannotBeLookedAtLimitsTheCategory) {
    file("place/here.log", 4096, days(90));
    workers.alsoListed = {home() / "place" / (std::string(300, 'x') + ".log")};
    EXPECT_THAT(files(rule()), ElementsAre("here.log"));
    EXPECT_TRUE(isLimited());
}

TEST_F(OldItems, OfMoreThanTheCountTheLargestAreOfferedAndTheCategoryIsLimited) {
    for (int i = 0; i <= 40; ++i)
        file(formatted("place/{:02}.log", i), 4096 * (i + 1), days(90));
    EXPECT_EQ(files(rule(4096, 41)).size(), 41U);
    EXPECT_FALSE(isLimited()) << "exactly the count is not cut";
    const auto names = files(rule(4096, 40));
    ASSERT_EQ(names.size(), 40U);
    EXPECT_EQ(names.front(), "40.log");
    EXPECT_EQ(names.back(), "01.log");
    EXPECT_TRUE(isLimited());
}

TEST_F(OldItems, EqualSizesKeepTheOrderOfTheListing) {
    for (const char* name : {"c", "a", "d", "b"})
        file(formatted("place/{}.log", name), name[0] == 'd' ? 8192 : 4096, days(90));
    EXPECT_THAT(files(rule()), ElementsAre("d.log", "a.log", "b.log", "c.log"));
}

TEST_F(OldItems, NamesOfAnyBytesAreOfferedWithATitleThatIsText) {
    file("place/\xff\n.log", 4096, days(90));
    const auto candidates = oldRegularFiles(context, rule());
    ASSERT_EQ(candidates.size(), 1U);
    EXPECT_EQ(candidates[0].url, home() / "place" / "\xff\n.log");
    EXPECT_EQ(candidates[0].title, "\xef\xbf\xbd\n.log");
}

TEST_F(OldItems, OldFoldersAreOfferedWithTheSizeOfEverythingInside) {
    folderWithFile("place/app", 8192, days(90));
    file("place/app/inside/more", 4096, days(90));
    setAge("place/app", days(90));
    directory("place/empty"); // is judged by its own date
    setAge("place/empty", days(31));
    const auto candidates = oldDirectoryChildren(context, rule());
    ASSERT_EQ(candidates.size(), 1U);
    EXPECT_EQ(candidates[0].title, "app");
    EXPECT_EQ(candidates[0].size, 12288);
    EXPECT_THAT(folders(rule(0)), ElementsAre("app", "empty"));
}

TEST_F(OldItems, AFolderThatIsExcludedOrYoungOrHoldsAYoungFileIsNotOffered) {
    folderWithFile("place/Homebrew", 8192, days(900));
    folderWithFile("place/young", 8192, days(90));
    setAge("place/young", days(1));
    EXPECT_THAT(folders(rule()), IsEmpty());
    for (const char* name : {"Homebrew", "young"})
        EXPECT_FALSE(workers.wasAsked("measure " + (home() / "place" / name).native())) << name;
    folderWithFile("place/app", 8192, days(90));
    file("place/app/inside/yesterday", 4096, days(1));
    setAge("place/app", days(90));
    EXPECT_THAT(folders(rule()), IsEmpty());
}

TEST_F(OldItems, AnIncompleteMeasurementLimitsTheCategoryAndIsJudgedAsItIs) {
    const auto large = folderWithFile("place/large", 4096, days(90));
    const auto small = folderWithFile("place/small", 4096, days(90));
    workers.metrics[large] = {5000, now - days(90), false};
    workers.metrics[small] = {4095, now - days(90), true};
    EXPECT_THAT(folders(rule()), ElementsAre("large"));
    EXPECT_TRUE(isLimited());
}

TEST_F(OldItems, BelowALinkOnlyReviewedItemsAreOffered) {
    folderWithFile("elsewhere/place/app", 4096, days(90));
    file("elsewhere/place/old.log", 4096, days(90));
    link("linked", home() / "elsewhere");
    auto below = rule();
    below.folder = home() / "linked/place";
    EXPECT_THAT(files(below), IsEmpty());
    EXPECT_THAT(workers.asked, IsEmpty());
    EXPECT_FALSE(isLimited());
    below.category = CleanupCategory::cache;
    EXPECT_THAT(files(below), ElementsAre("old.log"));
    EXPECT_THAT(folders(below), ElementsAre("app"));
}

TEST_F(OldItems, FoldersThatAreLinksAndFilesAreNotOfferedAsFolders) {
    folderWithFile("elsewhere/app", 4096, days(90));
    link("place/link", home() / "elsewhere/app");
    setAge("place/link", days(90));
    file("place/file", 4096, days(90));
    EXPECT_THAT(folders(rule()), IsEmpty());
}

} // namespace
} // namespace vantry::CleanupScanner
