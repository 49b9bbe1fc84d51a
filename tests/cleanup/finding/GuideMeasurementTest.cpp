#include "cleanup/finding/GuideMeasurement.h"

#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/GuidePlaces.h"
#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/MountedFolder.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <utility>
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

    [[nodiscard]] static std::int64_t used(const std::filesystem::path& path) {
        return diskUsageInProcess(path, {}, deadlineIn(std::chrono::seconds(60))).size;
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
    // One that is empty, and one of which nothing is known.
    const auto chromium = folderWithFile(".cache/chromium", 4096, days(1));
    workers.metrics[chromium] = {0, {}, false};
    const auto mozilla = directory(".cache/mozilla");
    EXPECT_EQ(measured("browserCaches"),
              (GuideUsage{State::limited, CleanupByteAmount::atLeast(0), {mozilla, chromium}}));
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
    const auto oldFile = file(".cache/old file", 4096, days(31));
    folderWithFile(".cache/just thirty days", 4096, days(30));
    folderWithFile(".cache/young", 4096, days(29));
    folderWithFile(".cache/young inside", 4096, days(29));
    setAge(".cache/young inside", days(31));
    folderWithFile(".cache/young outside", 4096, days(31));
    setAge(".cache/young outside", days(29));
    EXPECT_EQ(measured("appCaches").paths, (std::vector{old, oldFile}));
    EXPECT_EQ(measured("appCaches").state, State::checked);
    EXPECT_FALSE(workers.wasAsked("measure " + oldFile.native())) << "its own date says it all";
    // What could not be looked through may hold something young.
    std::filesystem::remove(oldFile);
    workers.metrics[old] = {4096, now - days(31), false};
    EXPECT_EQ(measured("appCaches"), (GuideUsage{State::unavailable, CleanupByteAmount::unavailable(), {}}));
}

TEST_F(Guide, LeavesOutOldCachesThatAnotherEntryMeasures) {
    std::map<std::string, ScopedEnvironment> moved;
    for (const auto& [name, below] : {std::pair("GOMODCACHE", "go/mod"),
                                      {"UV_CACHE_DIR", "my-uv"},
                                      {"npm_config_cache", "npm"},
                                      {"HF_HUB_CACHE", "models/hub"},
                                      {"PIP_CACHE_DIR", "."}}) // which holds all of them
        moved.try_emplace(name, name, (home() / ".cache" / below).c_str());
    for (const char* name : {"go/mod", "my-uv", "npm/_cacache", "models/hub"})
        folderWithFile(std::filesystem::path(".cache") / name, 4096, days(100));
    folderWithFile(".cache/uvula", 4096, days(100));
    EXPECT_TRUE(measured("appCaches").paths.empty()) << "all of it is pip's";
    moved.erase("PIP_CACHE_DIR");
    EXPECT_EQ(measured("appCaches").paths, std::vector{home() / ".cache/uvula"});
    EXPECT_EQ(measured("uv").paths, std::vector{home() / ".cache/my-uv"});
}

TEST_F(Guide, LeavesOutDiskImagesInPlacesOfOtherEntries) {
    const auto image = file(".local/share/machines/a.vdi", 4096, days(1));
    const auto loose = file(".local/share/b.vdi", 8192, days(1));
    for (const char* name : {"Trash/files", "containers/storage/x", "flatpak/app"})
        file(std::filesystem::path(".local/share") / name / "other.vdi", 4096, days(1));
    EXPECT_EQ(measured("virtualMachines"),
              (GuideUsage{State::checked, CleanupByteAmount::exact(12288), {home() / ".local/share"}}));
    workers.metrics[image.parent_path()] = {0, {}, false};
    EXPECT_EQ(measured("virtualMachines").occupied, CleanupByteAmount::atLeast(8192));
    std::filesystem::remove(loose);
    EXPECT_EQ(measured("virtualMachines").state, State::unavailable)
        << "nothing was found, but not everything searched";
}

TEST_F(Guide, MeasuresWhatAPatternStandsFor) {
    const auto one = folderWithFile(".var/app/org.example.One/cache", 4096, days(1));
    const auto two = folderWithFile(".var/app/org.example.Two/cache", 4096, days(1));
    folderWithFile(".var/app/org.example.One/data", 4096, days(1));
    file(".var/app/loose", 4096, days(1));
    link(".var/app/org.example.Link", "org.example.One");
    EXPECT_EQ(measured("flatpakAppCaches").paths, (std::vector{one, two}));
    const auto oldSession = file(".local/share/xorg/Xorg.0.log.old", 4096, days(1));
    file(".local/share/xorg/Xorg.0.log", 4096, days(1));
    link(".local/share/xorg/link.old", "Xorg.0.log");
    const auto log = file(".local/state/player/player.log", 4096, days(1));
    file(".local/state/player/player.txt", 4096, days(1));
    EXPECT_EQ(measured("oldLogs").paths, (std::vector{oldSession, log}));
}

TEST_F(Guide, LeavesOutWhatIsMountedWhereItSearches) {
    directory(".var/app");
    directory(".cache");
    const MountedFolder app(at(".var/app/org.example.One"));
    const MountedFolder cache(at(".cache/old"));
    if (!app || !cache)
        GTEST_SKIP() << "may not mount";
    folderWithFile(".var/app/org.example.One/cache", 4096, days(1));
    folderWithFile(".cache/old", 4096, days(100));
    EXPECT_TRUE(measured("flatpakAppCaches").paths.empty());
    EXPECT_TRUE(measured("appCaches").paths.empty());
}

TEST_F(Guide, LeavesOutCachesThatAreInUseOrHoldMoreThanACache) {
    for (const auto pattern : cachesOfOthers()) {
        std::string name(pattern);
        std::ranges::replace(name, '*', '7');
        folderWithFile(std::filesystem::path(".cache") / name, 4096, days(100));
    }
    EXPECT_TRUE(measured("appCaches").paths.empty());
}

TEST_F(Guide, SaysWhenAPlaceCannotBeLookedUp) {
    const ScopedEnvironment tooLong("PIP_CACHE_DIR", at(std::string(300, 'x')).c_str());
    EXPECT_EQ(measured("pip").state, State::unavailable);
}

TEST_F(Guide, CountsOnlyRegularFilesNamedByANumberAsCoreDumps) {
    for (const char* name : {"core.c", "core.", "core.12a", "core.1.txt", "core.md", "score.1", "core.-1"})
        file(name, 4096, days(1));
    folderWithFile("core.2", 4096, days(1));
    link("core.3", "core.c");
    const auto dump = file("core.1234", 4096, days(1));
    EXPECT_EQ(measured("coreDumps"), (GuideUsage{State::checked, CleanupByteAmount::exact(4096), {dump}}));
}

TEST_F(Guide, LooksThroughAFolderThatALinkLeadsTo) {
    const auto old = folderWithFile("disk/old", 4096, days(100));
    folderWithFile("disk/pip", 4096, days(100));
    const ScopedEnvironment moved("UV_CACHE_DIR", folderWithFile("disk/my-uv", 4096, days(100)).c_str());
    file("disk/images/a.vdi", 4096, days(1));
    link(".cache", "disk"); // relative, as a person makes it
    link(".local/share", home() / "disk");
    EXPECT_EQ(measured("appCaches").paths, std::vector{old});
    EXPECT_EQ(measured("pip").paths, std::vector{home() / ".cache/pip"});
    EXPECT_EQ(measured("virtualMachines").state, State::checked);
}

TEST_F(Guide, ReportsWhatMayNotBeReadWhereverItLooks) {
    folderWithFile(".cache/old", 4096, days(100));
    file(".local/share/images/a.vdi", 4096, days(1));
    directory(".var/app/org.example.App");
    directory(".local/share/flatpak/app");
    directory(root / "var/lib/flatpak");
    const std::map<std::string, std::filesystem::path> folders{
        {"appCaches", ".cache"}, {"virtualMachines", ".local/share"}, {"flatpakLeftBehind", ".var/app"}};
    namespace fs = std::filesystem;
    for (const auto& own : {home(), home().parent_path()})
        fs::permissions(own, fs::perms::others_all, fs::perm_options::add);
    for (const auto& [identifier, folder] : folders)
        for (const auto& [closed, left] : {std::pair(at(folder), fs::perms::none),
                                           {at(folder).parent_path(), fs::perms::none},
                                           {at(folder), fs::perms::others_read}}) { // which tells the names only
            if (closed == home())
                continue;
            fs::permissions(closed, left);
            const auto said = inChildProcess([&]() -> std::string {
                return becomeUser(unknownUser()) ? std::string(title(measured(identifier).state)) : "no other user";
            });
            fs::permissions(closed, fs::perms::all);
            if (said == "no other user")
                GTEST_SKIP() << "has to become another user";
            EXPECT_EQ(said, title(State::permissionNeeded))
                << closed << (left == fs::perms::none ? "" : ", names only");
        }
}

TEST_F(Guide, AFolderThatMayNotBeReadIsNotMeasured) {
    const auto pipCache = folderWithFile(".cache/pip", 4096, days(1));
    for (const auto& folder : {home(), home().parent_path()})
        std::filesystem::permissions(folder, std::filesystem::perms::others_all, std::filesystem::perm_options::add);
    std::filesystem::permissions(pipCache, std::filesystem::perms::none);
    const auto said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        const auto usage = measured("pip");
        return std::string(title(usage.state)) + (usage.paths.empty() ? "" : ", measured");
    });
    if (said == "no other user")
        GTEST_SKIP() << "has to become another user";
    EXPECT_EQ(said, title(State::permissionNeeded));
}

TEST_F(Guide, MeasuresPlacesOfKnownNumberBeforeItSearches) {
    folderWithFile(".cache/old", 4096, days(100));
    folderWithFile(".cache/JetBrains/one", 4096, days(100));
    folderWithFile(".vagrant.d/boxes", 4096, days(1));
    static_cast<void>(measured());
    const auto last = std::ranges::find(workers.asked, "use of " + (home() / ".vagrant.d/boxes").native());
    for (const char* searched : {".cache", ".cache/JetBrains"})
        EXPECT_LT(last, std::ranges::find(workers.asked, "list " + (home() / searched).native())) << searched;
}

TEST_F(Guide, MeasuresAPlaceWithTwoPatternsOnce) {
    const auto folder = folderWithFile("cache of compilers", 4096, days(1));
    const ScopedEnvironment moved("CCACHE_DIR", folder.c_str());
    EXPECT_EQ(measured("ccache").paths, std::vector{folder});
    EXPECT_EQ(workers.timesAsked("use of " + folder.native()), 1);
}

class LeftBehind : public Guide {
protected:
    LeftBehind() {
        folderWithFile(".var/app/org.example.Here/data", 4096, days(1));
        directory(".local/share/flatpak/app/org.example.Here");
        directory(root / "var/lib/flatpak/app/org.example.Other");
    }
    [[nodiscard]] GuideUsage leftBehind() { return measured("flatpakLeftBehind"); }

    const std::filesystem::path gone = folderWithFile(".var/app/org.example.Gone/data", 4096, days(1));
    const std::filesystem::path user = home() / ".local/share/flatpak";
    const std::filesystem::path system = root / "var/lib/flatpak";
};

TEST_F(LeftBehind, IsWhatNoInstallationHas) {
    const GuideUsage expected{State::checked, CleanupByteAmount::exact(used(gone)), {gone}};
    EXPECT_EQ(leftBehind(), expected);
    std::filesystem::remove_all(system / "app");
    EXPECT_EQ(leftBehind(), expected) << "an installation without applications";
    directory(root / "etc/flatpak/installations.d");
    EXPECT_EQ(leftBehind(), expected) << "no further installation";
}

TEST_F(LeftBehind, IsNotKnownUnlessEachInstallationIsListed) {
    const GuideUsage nothing{State::notPresent, CleanupByteAmount::exact(0), {}};
    for (const auto& installation : {user, system}) {
        const auto aside = installation.native() + " aside";
        std::filesystem::rename(installation, aside);
        EXPECT_EQ(leftBehind(), nothing) << "missing: " << installation;
        link(installation, "nowhere");
        EXPECT_EQ(leftBehind(), nothing) << "a link that leads nowhere: " << installation;
        std::filesystem::remove(installation);
        link(installation, aside);
        EXPECT_EQ(leftBehind().paths, std::vector{gone}) << "a link: " << installation;
        std::filesystem::remove(installation);
        std::filesystem::rename(aside, installation);
        for (const auto& hung : {installation, installation / "app"}) {
            workers.hung = {hung};
            EXPECT_EQ(leftBehind().state, State::unavailable) << hung;
            EXPECT_TRUE(leftBehind().paths.empty()) << hung;
        }
        workers.hung.clear();
    }
    file(root / "etc/flatpak/installations.d/more.conf", 1, days(1));
    EXPECT_EQ(leftBehind(), nothing) << "an installation somewhere else";
}

TEST_F(LeftBehind, LooksForTheUsersInstallationWhereVariablesMoveIt) {
    std::filesystem::create_directories(home() / "data");
    for (const auto& [name, value] : {std::pair("FLATPAK_USER_DIR", "data/mine"), {"XDG_DATA_HOME", "data"}}) {
        const ScopedEnvironment moved(name, at(value).c_str());
        EXPECT_TRUE(leftBehind().paths.empty()) << name;
        const auto there = at(std::string(value) + (name == std::string("XDG_DATA_HOME") ? "/flatpak" : ""));
        std::filesystem::rename(user, there);
        EXPECT_EQ(leftBehind().paths, std::vector{gone}) << name;
        EXPECT_EQ(measured("flatpak").paths, (std::vector{system, there})) << name;
        std::filesystem::rename(there, user);
    }
}

#ifdef __linux__
TEST_F(Guide, SaysHowLongGnomeKeepsWhatIsInTheTrash) {
    folderWithFile(".local/share/Trash/files", 4096, days(1));
    directory("programs");
    writeFile(at("programs/gsettings"), "#!/bin/sh\n[ $3 = old-files-age ] && echo uint32 30 || echo true\n");
    std::filesystem::permissions(at("programs/gsettings"), std::filesystem::perms(0755));
    const ScopedEnvironment path("PATH", (at("programs").native() + ":/usr/bin:/bin").c_str());
    environment.workers = {OMBREL_EXECUTABLE, directory("temporary")};
    const auto note = [&](const char* desktop) {
        const ScopedEnvironment session("XDG_CURRENT_DESKTOP", desktop);
        return measureGuide(environment, [] { return true; }).at("trash").note;
    };
    EXPECT_EQ(note("GNOME"), "GNOME deletes what has been in it for 30 days.");
    EXPECT_EQ(note("XFCE"), "");
    // Once nobody wants it, nobody is asked about the Trash either.
    writeFile(at("programs/gsettings"), "#!/bin/sh\n: > '" + at("asked").native() + "'\necho true\n");
    const ScopedEnvironment session("XDG_CURRENT_DESKTOP", "GNOME");
    EXPECT_TRUE(measureGuide(environment, [] { return false; }).empty());
    EXPECT_FALSE(std::filesystem::exists(at("asked")));
}
#endif

TEST_F(Guide, AsksNoWorkerAnyMoreOnceNobodyWantsIt) {
    for (const char* name : {".cache/one", ".cache/two", ".cache/pip", ".cache/JetBrains/three", ".npm/_cacache"})
        folderWithFile(name, 4096, days(100));
    static_cast<void>(measured());
    const auto all = workers.asked.size();
    EXPECT_GT(all, 8U);
    for (std::size_t enough = 0; enough <= all; ++enough) {
        workers.asked.clear();
        workers.deadlines.clear();
        const auto guide = measureGuide(workers, environment.places, now, deadlineIn(std::chrono::seconds(60)),
                                        [&] { return workers.asked.size() < enough; });
        EXPECT_TRUE(guide.empty());
        EXPECT_TRUE(enough > 0 || workers.asked.empty());
        // Without time, a worker is not even started.
        EXPECT_LE(std::ranges::count_if(workers.deadlines, [](auto deadline) { return !hasPassed(deadline); }),
                  static_cast<std::ptrdiff_t>(enough));
    }
}

} // namespace
} // namespace vantry::CleanupScanner
