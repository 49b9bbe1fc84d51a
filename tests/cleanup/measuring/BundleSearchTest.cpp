#include "cleanup/measuring/BundleSearch.h"

#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/ChildProcess.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace vantry::CleanupScanner {
namespace {

using testing::IsEmpty;
using testing::Optional;
using testing::UnorderedElementsAre;

using Identifiers = std::optional<std::vector<std::string>>;

class Bundles : public testing::Test, public ScanFixture {
protected:
    std::filesystem::path bundle(const std::filesystem::path& path, const std::string& identifier,
                                 const char* place = "Contents/Info.plist") {
        information(path / place, identifier);
        return at(path);
    }
    /// In the order in which they are found; absent when the search was not complete.
    [[nodiscard]] Identifiers found() const {
        std::vector<std::string> identifiers;
        const bool complete = searchBundles(
            {.folders = {applications(), home() / "Applications", system() / "Applications"}, .system = system()},
            [&](const auto& identifier) {
                if (identifier)
                    identifiers.push_back(*identifier);
                return true;
            });
        return complete ? Identifiers(identifiers) : std::nullopt;
    }
    [[nodiscard]] std::filesystem::path system() const { return applications().parent_path() / "System"; }
    [[nodiscard]] std::filesystem::path app() const { return applications() / "One.app"; }
};

TEST_F(Bundles, AreFoundInEveryFolderOfApplicationsAtAnyDepthAndHiddenOnesToo) {
    bundle(applications() / "One.app", "one");
    bundle(home() / "Applications/Two.app", "two");
    bundle(system() / "Applications/Three.APP", "three");
    bundle(system() / "Applications/Utilities/Four.app", "four");
    bundle(applications() / "Utilities/Vendor Suite/Sub/More 2.5/Five.app", "five");
    bundle(applications() / ".hidden/.Six.app", "six");
    bundle(applications() / "Not an application", "seven");
    bundle(applications() / "Vendor/Kit.framework", "eight", "Resources/Info.plist");
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one", "two", "three", "four", "five", "six", "eight")));
}

TEST_F(Bundles, InsideAnApplicationAreFoundInEveryFolderThatHoldsBundles) {
    bundle(app(), "one");
    const std::pair<const char*, const char*> inside[] = {
        {"Contents/Library/LoginItems/Helper.app", "login item"},
        {"Contents/Library/Direct.bundle", "direct"},
        {"Contents/XPCServices/Export.xpc", "service"},
        {"Contents/Frameworks/Web Helper.app", "web"},
        {"Contents/Frameworks/Web Helper.app/Contents/PlugIns/Share.appex", "share"},
        {"Contents/PlugIns/Some.unusualbundle", "unusual"},
        {"Contents/Developer/Applications/Simulator.app", "simulator"},
        {"Contents/Applications/Tool.app", "tool"},
        {"Contents/MacOS/Virtual Machine.app", "machine"},
        {"Contents/SharedSupport/Deep/Deeper/Updater.app", "updater"},
        {"Contents/.Helpers/.Hidden.app", "hidden"},
        {"Wrapper/Phone.app/PlugIns/Widget.appex", "widget"},
    };
    std::vector<std::string> expected{"one", "kit", "flat"};
    for (const auto& [path, identifier] : inside) {
        bundle(app() / path, identifier);
        expected.emplace_back(identifier);
    }
    bundle(app() / "Contents/Frameworks/Kit.framework/Versions/A", "kit", "Resources/Info.plist");
    link(app() / "Contents/Frameworks/Kit.framework/Versions/Current", "A");
    link(app() / "Contents/Frameworks/Kit.framework/Resources", "Versions/Current/Resources");
    bundle(app() / "Wrapper/Phone.app", "flat", "Info.plist");
    EXPECT_THAT(found(), Optional(testing::UnorderedElementsAreArray(expected)));
}

TEST_F(Bundles, AreNotSearchedForInResourcesAndData) {
    bundle(app(), "one");
    for (const char* data : {"Contents/Resources", "Contents/Resources/en.lproj", "Contents/Data",
                             "Contents/Developer/SDKs", "Contents/Developer/Mac.sdk", "Contents/_CodeSignature"})
        bundle(app() / data / "Inner.app", "inner");
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one")));
}

TEST_F(Bundles, ALinkInsideABundleIsFollowedWithinIt) {
    bundle(app(), "one");
    bundle(app() / "Contents/Resources/Helper.app", "helper");
    link(app() / "Contents/Library/LoginItems/Helper.app", "../../Resources/Helper.app");
    bundle(app() / "Contents/Resources/Other.app", "other");
    link(app() / "Contents/Frameworks", "Resources");
    link(app() / "Contents/PlugIns/Loop", "../..");
    information(app() / "Contents/Shared/Info.plist", "shared");
    link(app() / "Contents/PlugIns/Linked.appex/Contents/Info.plist", "../../../Shared/Info.plist");
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one", "helper", "shared")));
}

TEST_F(Bundles, ALinkOutOfABundleIsNotFollowed) {
    bundle(app(), "one");
    directory("Documents");
    bundle("Documents/Outside.app", "outside");
    link(app() / "Contents/Shared", home() / "Documents");
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one")));
    link(app() / "Contents/Frameworks/Outside.app", home() / "Documents/Outside.app");
    EXPECT_EQ(found(), std::nullopt) << "who knows what it is called";
}

TEST_F(Bundles, ALinkFromAFolderOfApplicationsIsFollowedIntoTheSystemOnly) {
    bundle(system() / "Cryptexes/App/Safari.app", "safari");
    bundle(system() / "Cryptexes/Suite/Inner.app", "inner");
    bundle(system() / "Library/Kit.framework", "kit", "Resources/Info.plist");
    bundle(app(), "one");
    link(applications() / ".Safari.app", system() / "Cryptexes/App/Safari.app");
    link(applications() / "Suite", "../System/Cryptexes/Suite");
    link(app() / "Contents/Frameworks/Kit.framework", system() / "Library/Kit.framework");
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one", "safari", "inner", "kit")));

    for (const auto& target :
         {home() / "Documents", system() / "Volumes/Data/Users/me", system().parent_path() / "System 2"}) {
        bundle(target / "Mine.app", "mine");
        const auto linked = link(applications() / "Mine.app", target / "Mine.app");
        EXPECT_EQ(found(), std::nullopt) << target;
        std::filesystem::remove(linked);
        const auto folder = link(applications() / "Folder", target);
        EXPECT_EQ(found(), std::nullopt) << target;
        std::filesystem::remove(folder);
        ASSERT_NE(found(), std::nullopt);
    }
    directory("Elsewhere");
    link(home() / "Applications", home() / "Elsewhere");
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Bundles, ADanglingLinkIsIgnored) {
    bundle(app(), "one");
    bundle(app() / "Contents/Frameworks/Kit.framework", "kit", "Resources/Info.plist");
    link(home() / "Applications", home() / "away");
    link(applications() / "Away.app", home() / "away/Away.app");
    link(applications() / "Loop.app", "Loop.app");
    link(applications() / "Broken.app/Contents/Info.plist", "nowhere");
    link(app() / "Contents/Frameworks/Away.framework", home() / "away");
    link(app() / "Contents/Frameworks/Kit.framework/Headers", "Versions/Current/Headers");
    link(applications() / "to a file", file("notes.txt", 4096, {}));
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one", "kit")));
}

TEST_F(Bundles, WithoutAPropertyListHaveNoIdentifier) {
    bundle(app(), "one");
    file(applications() / "Broken.app/Contents/Info.plist", 4096, {});
    directory(applications() / "Empty.app");
    directory(applications() / "Folder.app/Contents/Info.plist");
    directory(applications() / "Fifo.app/Contents");
    ASSERT_EQ(mkfifo((applications() / "Fifo.app/Contents/Info.plist").c_str(), 0600), 0);
    file(applications() / "File.app", 4096, {});
    information(applications() / "Notes.app/Contents/notes.txt", "notes");
    link(applications() / "Notes.app/Contents/Info.plist", "notes.txt"); // is not called Info.plist
    file(home() / "Applications", 4096, {});                             // is not a folder of applications
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one")));
}

TEST_F(Bundles, AnInformationFileThatLeadsOutOfItsBundleIsNotRead) {
    for (const char* place : {"Contents/Info.plist", "Contents"}) {
        ScanFixture made;
        const auto diary = made.information("Documents/Info.plist", "diary");
        made.link(made.applications() / "One.app" / place,
                  std::string(place) == "Contents" ? diary.parent_path() : diary);
        std::vector<std::string> read;
        EXPECT_FALSE(searchBundles({.folders = {made.applications()}, .system = system()}, [&](const auto& identifier) {
            if (identifier)
                read.push_back(*identifier);
            return true;
        })) << place;
        EXPECT_THAT(read, IsEmpty()) << place;
    }
}

TEST_F(Bundles, AnInformationFileThatIsTooLargeMakesTheSearchIncomplete) {
    bundle(app(), "one");
    const auto information = file(applications() / "Large.app/Contents/Info.plist", 8 * mebibyte, {});
    EXPECT_NE(found(), std::nullopt);
    file(information, 8 * mebibyte + 4096, {});
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Bundles, ThatAreUnreadableMakeTheSearchIncomplete) {
    bundle(app(), "one");
    bundle(app() / "Contents/Library/LoginItems/Helper.app", "helper");
    directory(applications() / "Suite");
    std::filesystem::permissions(home().parent_path(), std::filesystem::perms::all);
    const auto foundByNobody = [&] {
        return inChildProcess([&]() -> std::string { // root may read everything
            return geteuid() == 0 && !becomeUser(unknownUser()) ? "root" : found() ? "complete" : "not complete";
        });
    };
    ASSERT_EQ(foundByNobody(), "complete");
    for (const char* closed : {"Suite", "One.app", "One.app/Contents/Info.plist", "One.app/Contents/Library/LoginItems",
                               "One.app/Contents/Library/LoginItems/Helper.app",
                               "One.app/Contents/Library/LoginItems/Helper.app/Contents"}) {
        const auto path = applications() / closed;
        const auto before = std::filesystem::status(path).permissions();
        std::filesystem::permissions(path, std::filesystem::perms::none);
        EXPECT_EQ(foundByNobody(), "not complete") << closed;
        std::filesystem::permissions(path, before);
    }
}

TEST_F(Bundles, AnInformationFileThatCannotBeResolvedMakesTheSearchIncomplete) {
    bundle(app(), "one");
    std::filesystem::remove(app() / "Contents/Info.plist");
    link(app() / "Contents/Info.plist", std::string(300, 'x'));
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Bundles, AFolderWithADotInItsNameIsOneOnlyWithContents) {
    information(applications() / "More 2.5/Info.plist", "one");
    information(applications() / "More 2.6/Resources/Info.plist", "two");
    EXPECT_THAT(found(), Optional(IsEmpty()));
    information("elsewhere/Info.plist", "three");
    link(applications() / "More 2.7/Contents/Info.plist", at("elsewhere/Info.plist"));
    EXPECT_EQ(found(), std::nullopt) << "the file leads out of it";
}

TEST_F(Bundles, AFolderThatDisappearsDuringTheSearchDoesNotCount) {
    bundle(applications() / "Suite/One.app", "one");
    EXPECT_TRUE(searchBundles({.folders = {applications()}, .system = system()}, [&](const auto&) {
        std::filesystem::remove_all(applications() / "Suite"); // listed, and not visited yet
        return true;
    }));
}

TEST_F(Bundles, APlaceWhoseNameIsTooLongMakesTheSearchIncomplete) {
    bundle(app(), "one");
    EXPECT_FALSE(searchBundles({.folders = {applications(), "/" + std::string(300, 'x')}, .system = system()},
                               [](const auto&) { return true; }));
    EXPECT_TRUE(searchBundles(
        {.folders = {applications(), applications() / "One.app/Contents/Info.plist", "/missing"}, .system = system()},
        [](const auto&) { return true; }))
        << "a file is not a folder of applications";
}

TEST_F(Bundles, ALinkThatCannotBeResolvedMattersOnlyWhereABundleMayBe) {
    const std::string tooLong(300, 'x');
    bundle(app(), "one");
    link(app() / "Contents/Notes", tooLong);
    EXPECT_THAT(found(), Optional(UnorderedElementsAre("one")));
    link(app() / "Contents/Helper.app", tooLong);
    EXPECT_EQ(found(), std::nullopt);
    std::filesystem::remove(app() / "Contents/Helper.app");
    link(applications() / "Suite", tooLong);
    EXPECT_EQ(found(), std::nullopt);
}

TEST_F(Bundles, TheSearchEndsWhenItsCallbackSaysSo) {
    bundle(app(), "one");
    int told = 0;
    EXPECT_FALSE(searchBundles({.folders = {applications()}, .system = system()}, [&](const auto&) {
        ++told;
        return false;
    }));
    EXPECT_EQ(told, 1);
}

} // namespace
} // namespace vantry::CleanupScanner
