#include "cleanup/finding/GuideMeasurement.h"

#include "cleanup/model/CleanupAvenue.h"
#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using State = CleanupScanState;

class Guide : public testing::Test, public ScanFixture {
protected:
    Guide() {
        environment.places.system = HostSystem::linuxDesktop;
        environment.places.root = root;
        // No variable of the catalog moves a place out of the made-up home folder.
        for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
            for (const auto& place : avenue.places)
                for (auto begin = place.path.find("${"); begin != std::string_view::npos;
                     begin = place.path.find("${", begin + 2)) {
                    const std::string name(place.path.substr(begin + 2, place.path.find(":-", begin) - begin - 2));
                    variables.try_emplace(name, name.c_str(), nullptr);
                }
    }

    std::map<std::string, GuideUsage> measured() {
        return measureGuide(workers, environment.places, now, deadlineIn(std::chrono::seconds(60)),
                            [] { return true; });
    }
    GuideUsage measured(const std::string& identifier) { return measured().at(identifier); }

    const std::filesystem::path root = at("root");
    std::map<std::string, ScopedEnvironment> variables;
};

TEST_F(Guide, IsEmptyOnAMac) {
    folderWithFile(".cache/pip", 4096, days(1));
    environment.places.system = HostSystem::macOS;
    EXPECT_TRUE(measured().empty());
    EXPECT_TRUE(workers.asked.empty());
}

TEST_F(Guide, OfAnEmptyHomeFolderAsksNoWorkerAboutItsPlaces) {
    const auto guide = measured();
    EXPECT_EQ(guide.size(), 36U);
    for (const auto& [identifier, usage] : guide)
        EXPECT_EQ(usage, (GuideUsage{State::notPresent, CleanupByteAmount::exact(0), {}})) << identifier;
    EXPECT_EQ(workers.asked, std::vector{"list " + home().native()}) << "for core dumps";
}

TEST_F(Guide, SaysWhenAPlaceWasNotMeasuredToItsEnd) {
    const auto pipCache = folderWithFile(".cache/pip", 4096, days(1));
    workers.metrics[pipCache] = {4096, {}, false};
    EXPECT_EQ(measured("pip"), (GuideUsage{State::limited, CleanupByteAmount::atLeast(4096), {pipCache}}));
    workers.metrics[pipCache] = {0, {}, false};
    EXPECT_EQ(measured("pip"), (GuideUsage{State::unavailable, CleanupByteAmount::unavailable(), {pipCache}}));
}

TEST_F(Guide, DoesNotFollowALinkInPlaceOfAPlace) {
    const auto elsewhere = folderWithFile("elsewhere", 4096, days(1));
    directory(".cache");
    link(".cache/pip", elsewhere);
    EXPECT_EQ(measured("pip"), (GuideUsage{State::relocated, CleanupByteAmount::exact(0), {}}));
}

TEST_F(Guide, NeverTakesAListingThatFailedForAnEmptyFolder) {
    folderWithFile(".cache/JetBrains/one", 4096, days(1));
    workers.hung.insert(home() / ".cache/JetBrains");
    EXPECT_EQ(measured("jetbrains").state, State::unavailable);
    workers.hung = {home() / ".cache"};
    EXPECT_EQ(measured("appCaches").state, State::unavailable);
}

TEST_F(Guide, CountsAnOldCacheOnlyWhenEverythingInItIsOld) {
    const auto old = folderWithFile(".cache/old", 4096, days(31));
    folderWithFile(".cache/young", 4096, days(29));
    folderWithFile(".cache/young inside", 4096, days(29));
    setAge(".cache/young inside", days(31));
    folderWithFile(".cache/young outside", 4096, days(31));
    setAge(".cache/young outside", days(29));
    EXPECT_EQ(measured("appCaches").paths, std::vector{old});
    EXPECT_EQ(measured("appCaches").state, State::checked);
    // What could not be looked through may hold something young.
    workers.metrics[old] = {4096, now - days(31), false};
    EXPECT_EQ(measured("appCaches"), (GuideUsage{State::unavailable, CleanupByteAmount::unavailable(), {}}));
}

TEST_F(Guide, CallsDataLeftBehindOnlyWhenItIsKnownWhatIsInstalled) {
    const auto data = folderWithFile(".var/app/org.example.Gone/data", 4096, days(1));
    folderWithFile(".var/app/org.example.Here/data", 4096, days(1));
    const auto isEmpty = [&] { return measured("flatpakLeftBehind").paths.empty(); };
    EXPECT_TRUE(isEmpty()) << "no list of applications";
    const auto applications = directory(".local/share/flatpak/app");
    directory(".local/share/flatpak/app/org.example.Here");
    EXPECT_EQ(measured("flatpakLeftBehind").paths, std::vector{data});
    workers.hung.insert(applications);
    EXPECT_TRUE(isEmpty()) << "an incomplete list of applications";
    EXPECT_EQ(measured("flatpakLeftBehind").state, State::unavailable);
}

TEST_F(Guide, EndsOnceNobodyWantsIt) {
    folderWithFile(".cache/pip", 4096, days(1));
    folderWithFile(".npm/_cacache", 4096, days(1));
    int looks = 0;
    const auto guide = measureGuide(workers, environment.places, now, deadlineIn(std::chrono::seconds(60)),
                                    [&] { return ++looks < 5; });
    EXPECT_EQ(looks, 5);
    EXPECT_LT(guide.size(), 5U);
}

} // namespace
} // namespace vantry::CleanupScanner
