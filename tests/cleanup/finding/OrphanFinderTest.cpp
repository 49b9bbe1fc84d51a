#include "cleanup/finding/OrphanFinder.h"

#include "tests/cleanup/finding/ScanFixture.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

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
    void bundle(const std::filesystem::path& path, const std::string& identifier) {
        information(path / "Contents/Info.plist", identifier);
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

TEST_F(OrphanedData, InstalledBundlesComeFromEveryFolderOfApplications) {
    bundle(applications() / "One.app", "com.example.One");
    bundle(home() / "Applications/Two.app", "com.example.two");
    bundle(environment.places.systemApplications / "Three.app", "com.example.three");
    bundle(environment.places.systemApplications.parent_path() / "Cryptexes/Four.app", "com.example.four");
    link(applications() / "Four.app", environment.places.systemApplications.parent_path() / "Cryptexes/Four.app");
    EXPECT_THAT(
        installedAndEmbeddedBundleIdentifiers(context),
        Optional(UnorderedElementsAre("com.example.one", "com.example.two", "com.example.three", "com.example.four")));
}

TEST_F(OrphanedData, DataOfARegisteredApplicationIsNotOffered) {
    state("com.example.registered.savedState");
    state("com.example.gone.savedState");
    state("com.example.here.savedState");
    bundle(applications() / "Here.app", "com.example.here");
    std::vector<std::string> asked;
    environment.isRegisteredApplication = [&](const std::string& identifier) {
        asked.push_back(identifier);
        return identifier == "com.example.registered";
    };
    EXPECT_THAT(orphans({"com.example.runs"}), ElementsAre("com.example.gone.savedState"));
    EXPECT_THAT(asked, ElementsAre("com.example.gone", "com.example.registered"));
}

TEST_F(OrphanedData, IdentifiersAreComparedWithoutCase) {
    state("COM.example.Here.SavedState");
    state("com.example.Runs.savedState");
    bundle(applications() / "Here.app", "com.Example.here");
    EXPECT_THAT(orphans({"Com.example.runs"}), IsEmpty());
}

TEST_F(OrphanedData, LinksAndFilesAreNotSavedStates) {
    folderWithFile("elsewhere", 4096, days(30));
    link(states / "com.example.link.savedState", home() / "elsewhere");
    file(states / "com.example.file.savedState", 4096, days(30));
    EXPECT_THAT(orphans(), IsEmpty());
}

TEST_F(OrphanedData, AFolderOfStatesThatIsALinkIsNotExamined) {
    folderWithFile("elsewhere/com.example.gone.savedState", 4096, days(30));
    link(states, home() / "elsewhere");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_THAT(workers.asked, IsEmpty());
}

TEST_F(OrphanedData, NothingIsOfferedWhenABundleCouldNotBeExamined) {
    state("com.example.gone.savedState");
    bundle(applications() / "Here.app", "com.example.here");
    ASSERT_THAT(orphans(), ElementsAre("com.example.gone.savedState"));
    ASSERT_FALSE(isLimited());
    directory("elsewhere/Mine.app");
    link(applications() / "Mine.app", home() / "elsewhere/Mine.app");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
}

TEST_F(OrphanedData, WithoutSavedStatesNoApplicationIsExamined) {
    directory(states);
    bundle(applications() / "Here.app", "com.example.here");
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_THAT(workers.asked, ElementsAre("list " + (home() / states).native()));
}

TEST_F(OrphanedData, AListingOrMeasurementThatIsLateLimitsTheCategory) {
    state("com.example.gone.savedState");
    workers.metrics[home() / states / "com.example.gone.savedState"] = {4096, std::nullopt, false};
    EXPECT_EQ(orphans().size(), 1U);
    EXPECT_TRUE(isLimited());
    workers.metrics[home() / states / "com.example.gone.savedState"] = {0, std::nullopt, false};
    EXPECT_THAT(orphans(), IsEmpty()) << "nothing was measured";
    EXPECT_TRUE(isLimited());
    workers.hung.insert(home() / states);
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
    workers.asked.clear();
    budget.deadline = deadlineIn(std::chrono::seconds(-1));
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_TRUE(isLimited());
    EXPECT_THAT(workers.asked, IsEmpty());
}

TEST_F(OrphanedData, WhenTimeIsUpAfterTheFirstTheOthersAreNotExamined) {
    state("com.example.one.savedState");
    state("com.example.two.savedState");
    int asked = 0;
    environment.isRegisteredApplication = [&](const std::string&) {
        budget.deadline = deadlineIn(std::chrono::seconds(-1));
        return ++asked > 0;
    };
    EXPECT_THAT(orphans(), IsEmpty());
    EXPECT_EQ(asked, 1);
    EXPECT_TRUE(isLimited());
}

} // namespace
} // namespace vantry::CleanupScanner
