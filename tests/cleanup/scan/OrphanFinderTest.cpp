#include "cleanup/scan/OrphanFinder.h"

#include "tests/cleanup/scan/ScanFixture.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;

const std::filesystem::path states = "Library/Saved Application State";

class OrphanedData : public testing::Test, public ScanFixture {
protected:
    void state(const std::string& name) { folderWithFile(states / name, 4096, days(30)); }
    void bundle(const std::filesystem::path& path, const std::string& identifier,
                const char* place = "Contents/Info.plist") {
        workers.lists[file(path / place, 4096, days(30))] = {{"CFBundleIdentifier", identifier}};
    }
    std::vector<std::string> orphans(const std::vector<std::string>& running = {}) {
        return namesOf(orphanedAppData(context, running));
    }
    bool isLimited() {
        const bool limited = budget.limitedCategories.contains(CleanupCategory::orphan);
        budget.limitedCategories.clear();
        return limited;
    }
};

TEST_F(OrphanedData, IsOfferedWhenNoBundleClaimsIt) {
    state("com.example.gone.savedState");
    state("com.example.here.savedState");
    state("com.example.runs.savedState");
    state("com.example.other");
    bundle(applications() / "Here.app", "com.example.here");
    const auto found = orphanedAppData(context, std::array{std::string("com.example.runs")});
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].url, home() / states / "com.example.gone.savedState");
    EXPECT_EQ(found[0].title, "com.example.gone");
    EXPECT_EQ(found[0].size, 4096);
    EXPECT_EQ(found[0].category, CleanupCategory::orphan);
    EXPECT_EQ(found[0].confidence, CleanupConfidence::review);
    EXPECT_EQ(found[0].reason, "No installed, embedded, or running bundle claims this old saved-window state. Removing "
                               "it resets restored windows for that app.");
    EXPECT_FALSE(isLimited());
}

TEST_F(OrphanedData, IdentifiersComeFromEveryPlaceOfApplicationsAndBundles) {
    bundle(applications() / "One.app", "com.example.One");
    bundle(home() / "Applications/Two.app", "com.example.two");
    bundle(environment.systemApplications / "Three.APP", "com.example.three");
    bundle(environment.systemApplications / "Utilities/Four.app", "com.example.four");
    bundle(applications() / "Vendor/Suite/Five.app", "com.example.five");
    bundle(applications() / "One.app/Contents/Library/LoginItems/Helper.app", "com.example.helper");
    bundle(applications() / "One.app/Contents/Library/Direct.bundle", "com.example.direct");
    bundle(applications() / "One.app/Contents/XPCServices/Export.xpc", "com.example.export");
    bundle(applications() / "One.app/Contents/Frameworks/Kit.framework", "com.example.kit", "Resources/Info.plist");
    bundle(applications() / "One.app/Contents/Frameworks/Web Helper.app", "com.example.web");
    bundle(applications() / "One.app/Contents/PlugIns/Share.appex", "com.example.share");
    bundle(applications() / "NotAnApp", "com.example.not");
    EXPECT_THAT(installedAndEmbeddedBundleIdentifiers(context),
                Optional(UnorderedElementsAre("com.example.one", "com.example.two", "com.example.three",
                                              "com.example.four", "com.example.five", "com.example.helper",
                                              "com.example.direct", "com.example.export", "com.example.kit",
                                              "com.example.web", "com.example.share")));
}

TEST_F(OrphanedData, ApplicationsAreLookedForTwoFoldersDeepAndBundlesOne) {
    bundle(applications() / "Vendor/Suite/Deep.app", "com.example.deep");
    bundle(applications() / "Vendor/Suite/More/Deeper.app", "com.example.deeper");
    bundle(applications() / "One.app/Contents/Library/LoginItems/Helper.app", "com.example.helper");
    bundle(applications() / "One.app/Contents/Library/LoginItems/More/Hidden.app", "com.example.hidden");
    bundle(applications() / "One.app/Contents/Frameworks/Kit.framework/Inner.app", "com.example.inner");
    EXPECT_THAT(installedAndEmbeddedBundleIdentifiers(context),
                Optional(UnorderedElementsAre("com.example.deep", "com.example.helper")));
    EXPECT_TRUE(workers.wasAsked("list " + (applications() / "Vendor/Suite").native()));
    EXPECT_FALSE(workers.wasAsked("list " + (applications() / "Vendor/Suite/More").native()));
    EXPECT_TRUE(workers.wasAsked("list " + (applications() / "One.app/Contents/Library/LoginItems").native()));
    EXPECT_FALSE(workers.wasAsked("list " + (applications() / "One.app/Contents/Library/LoginItems/More").native()));
    EXPECT_FALSE(workers.wasAsked("list " + (applications() / "One.app/Contents/Frameworks/Kit.framework").native()));
}

TEST_F(OrphanedData, AnApplicationThatIsALinkClaimsItsData) {
    state("com.example.linked.savedState");
    const auto plist = file("elsewhere/Linked.app/Contents/Info.plist", 4096, days(1));
    link(applications() / "Linked.app", home() / "elsewhere/Linked.app");
    workers.lists[plist] = {{"CFBundleIdentifier", "com.example.linked"}};
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedData, IdentifiersAreComparedWithoutCase) {
    state("COM.example.Here.SavedState");
    state("com.example.Runs.savedState");
    bundle(applications() / "Here.app", "com.Example.here");
    EXPECT_THAT(orphans({"Com.example.runs"}), IsEmpty());
}

TEST_F(OrphanedData, AnApplicationWithoutAReadableListClaimsNothing) {
    state("com.example.gone.savedState");
    file(applications() / "Broken.app/Contents/Info.plist", 4096, days(1));
    directory(applications() / "Empty.app");
    EXPECT_THAT(orphans(), ElementsAre("com.example.gone.savedState"));
}

TEST_F(OrphanedData, ApplicationsBehindLinksClaimTheirData) {
    state("com.example.more.savedState");
    state("com.example.list.savedState");
    bundle(home() / "elsewhere/More.app", "com.example.more");
    directory(applications());
    link(applications() / "More", home() / "elsewhere");
    const auto list = file("lists/Info.plist", 4096, days(1));
    workers.lists[list] = {{"CFBundleIdentifier", "com.example.list"}};
    link(applications() / "List.app/Contents/Info.plist", list);
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_FALSE(isLimited());
}

TEST_F(OrphanedData, NothingIsOfferedWhileAnApplicationIsOnADiskThatIsAway) {
    state("com.example.gone.savedState");
    link(applications() / "Away.app", home() / "away/Away.app");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
    std::filesystem::remove(applications() / "Away.app");
    link(home() / "Applications", home() / "away");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
}

TEST_F(OrphanedData, NothingIsOfferedWhileAnApplicationMayNotBeRead) {
    if (geteuid() != 0)
        GTEST_SKIP() << "has to become another user";
    state("com.example.gone.savedState");
    bundle(applications() / "Here.app", "com.example.here");
    bundle(applications() / "Here.app/Contents/Library/LoginItems/Helper.app", "com.example.helper");
    std::filesystem::permissions(home().parent_path(), std::filesystem::perms::all);
    const auto offersToNobody = [&] {
        const pid_t child = fork();
        if (child == 0) {
            if (setgid(65534) != 0 || setuid(65534) != 0)
                _exit(99);
            const bool offers = !orphans().empty();
            _exit(offers ? 1 : isLimited() ? 0 : 2);
        }
        int status = 0;
        EXPECT_EQ(waitpid(child, &status, 0), child);
        return WEXITSTATUS(status);
    };
    ASSERT_EQ(offersToNobody(), 1);
    for (const char* closed : {"Here.app", "Here.app/Contents/Info.plist", "Here.app/Contents/Library/LoginItems",
                               "Here.app/Contents/Library/LoginItems/Helper.app"}) {
        const auto path = applications() / closed;
        const auto before = std::filesystem::status(path).permissions();
        std::filesystem::permissions(path, std::filesystem::perms::none);
        EXPECT_EQ(offersToNobody(), 0) << closed;
        std::filesystem::permissions(path, before);
    }
}

TEST_F(OrphanedData, LinksAndFilesAreNoSavedState) {
    folderWithFile("elsewhere", 4096, days(30));
    link(states / "com.example.link.savedState", home() / "elsewhere");
    file(states / "com.example.file.savedState", 4096, days(30));
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedData, AFolderOfStatesThatIsALinkIsNotLookedAt) {
    folderWithFile("elsewhere/com.example.gone.savedState", 4096, days(30));
    link(states, home() / "elsewhere");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_THAT(workers.asked, IsEmpty());
}

TEST_F(OrphanedData, NothingIsOfferedWhenNotEveryBundleCouldBeLookedAt) {
    state("com.example.gone.savedState");
    bundle(applications() / "Here.app", "com.example.here");
    directory(applications() / "Here.app/Contents/Frameworks");
    ASSERT_THAT(orphans(), ElementsAre("com.example.gone.savedState"));
    ASSERT_FALSE(isLimited());
    for (const auto& folder : {applications(), applications() / "Here.app/Contents/Frameworks"}) {
        workers.hung = {folder};
        EXPECT_THAT(orphans(), IsEmpty()) << folder;
        EXPECT_TRUE(isLimited()) << folder;
    }
    workers.hung.clear();
    workers.listsAreComplete = false;
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
}

TEST_F(OrphanedData, MissingFoldersOfApplicationsHideNothing) {
    state("com.example.gone.savedState");
    EXPECT_THAT(orphans(), ElementsAre("com.example.gone.savedState"));
    EXPECT_FALSE(isLimited());
}

TEST_F(OrphanedData, WithoutSavedStatesNoApplicationIsLookedAt) {
    directory(states);
    bundle(applications() / "Here.app", "com.example.here");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_THAT(workers.asked, ElementsAre("list " + (home() / states).native()));
}

TEST_F(OrphanedData, WhatIsNotListedOrMeasuredInTimeLimitsTheCategory) {
    state("com.example.gone.savedState");
    workers.metrics[home() / states / "com.example.gone.savedState"] = {0, std::nullopt, false};
    EXPECT_EQ(orphans().size(), 1U);
    EXPECT_TRUE(isLimited());
    workers.hung.insert(home() / states);
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
    budget.deadline = deadlineIn(std::chrono::seconds(-1));
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
}

} // namespace
} // namespace vantry::CleanupScanner
