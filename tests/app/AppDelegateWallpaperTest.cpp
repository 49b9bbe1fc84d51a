#include "rendering/WallpaperThemeReader.h"
#include "tests/app/AppDelegateFixture.h"

namespace vantry {

namespace {

using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;

const std::vector<Rgba> fallback{WallpaperThemeReader::fallbackPalette.begin(),
                                 WallpaperThemeReader::fallbackPalette.end()};
const std::vector<Rgba> lake{{0.1, 0.2, 0.3}, {0.4, 0.5, 0.6}};
const std::vector<Rgba> forest{{0, 0.6, 0.1}, {0.1, 0.3, 0}, {0.5, 0.4, 0.2}};

class AppDelegateWallpaper : public AppDelegateFixture {
protected:
    AppDelegateWallpaper() { world.palette = lake; }

    /// The colours of the bar; the popover's bar and its swatch must have the same.
    std::vector<Rgba> shownColors() {
        EXPECT_EQ(shell.popover().barView.themeColors, shell.statusItem().view.themeColors);
        EXPECT_EQ(shell.popover().usedSwatchView.themeColors, shell.statusItem().view.themeColors);
        return shell.statusItem().view.themeColors;
    }

    /// Finishes a refresh and returns whether it sampled.
    bool samples(bool force) {
        const auto before = log.count("wallpaper.palette");
        delegate->refreshWallpaperTheme(force);
        world.settle();
        return log.count("wallpaper.palette") > before;
    }
};

TEST_F(AppDelegateWallpaper, AppliedColorsReachBarPopoverBarAndSwatch) {
    launchAndSettle();
    const auto availableSwatch = shell.popover().availableSwatchView;
    delegate->applyWallpaperThemeColors(forest);
    EXPECT_EQ(shownColors(), forest);
    EXPECT_EQ(shell.popover().availableSwatchView, availableSwatch);
    EXPECT_THAT(log.calls(), ElementsAre("shell.showStatusItem", "shell.renderPopover"));
}

TEST_F(AppDelegateWallpaper, SamplesSevenColorsOfTheWallpaperAtLaunchWhateverTheStyle) {
    for (const auto& style : allBarStyles) {
        SCOPED_TRACE(style.rawValue);
        world.preferences->values = {{"barStyle", std::string(style.rawValue)}};
        log.clear();
        launch();
        world.settle();
        EXPECT_THAT(log.only({"wallpaper."}),
                    ElementsAre("wallpaper.find Built-in", "wallpaper.identity /pictures/lake.heic",
                                "wallpaper.palette /pictures/lake.heic 7"));
        EXPECT_EQ(shownColors(), lake);
    }
}

TEST_F(AppDelegateWallpaper, WorksInTheBackgroundAndShowsOnTheMainQueue) {
    launchAndSettle();
    world.palette = forest;
    delegate->refreshWallpaperTheme(true);
    EXPECT_EQ(log.count("wallpaper."), 0);
    EXPECT_THAT(log.only({"backgroundQueue."}), ElementsAre("backgroundQueue.submit utility"));
    while (world.backgroundQueue->runNext())
        EXPECT_EQ(log.count("shell."), 0);
    EXPECT_EQ(log.count("wallpaper.palette"), 0);
    world.mainQueue->runNext();
    EXPECT_THAT(log.only({"backgroundQueue."}),
                ElementsAre("backgroundQueue.submit utility", "backgroundQueue.submit utility"));
    world.backgroundQueue->runNext();
    EXPECT_EQ(log.count("wallpaper.palette"), 1);
    EXPECT_EQ(shownColors(), lake);
    world.mainQueue->runNext();
    EXPECT_EQ(shownColors(), forest);
}

TEST_F(AppDelegateWallpaper, TakesTheFirstScreenElseTheMainOne) {
    struct Case {
        std::vector<Screen> screens;
        std::optional<Screen> mainScreen;
        std::string found;
    };
    const Screen first{.name = "first"};
    const Screen second{.name = "second"};
    const std::vector<Case> cases{
        {{first, second}, second, "wallpaper.find first"},
        {{second}, std::nullopt, "wallpaper.find second"},
        {{}, second, "wallpaper.find second"},
    };
    launchAndSettle();
    for (const auto& [screens, mainScreen, found] : cases) {
        world.workspace->screenList = screens;
        world.workspace->keyWindowScreen = mainScreen;
        log.clear();
        delegate->refreshWallpaperTheme(true);
        world.settle();
        EXPECT_THAT(log.only({"wallpaper.find"}), ElementsAre(found));
    }
}

TEST_F(AppDelegateWallpaper, WithoutAScreenTheFallbackIsAppliedAtOnce) {
    launchAndSettle();
    world.workspace->screenList.clear();
    delegate->refreshWallpaperTheme(true);
    EXPECT_EQ(shownColors(), fallback);
    EXPECT_THAT(log.only({"wallpaper.", "backgroundQueue."}), IsEmpty());
}

TEST_F(AppDelegateWallpaper, WithoutAFileTheFallbackIsApplied) {
    launchAndSettle();
    world.wallpaper.reset();
    delegate->refreshWallpaperTheme(true);
    world.settle();
    EXPECT_EQ(shownColors(), fallback);
    EXPECT_THAT(log.only({"wallpaper."}), ElementsAre("wallpaper.find Built-in"));
}

TEST_F(AppDelegateWallpaper, AFileWithoutColorsLeavesTheFallback) {
    launchAndSettle();
    world.palette.reset();
    EXPECT_TRUE(samples(true));
    EXPECT_EQ(shownColors(), fallback);
}

TEST_F(AppDelegateWallpaper, SamplesAgainWhenForcedOrChangedOrOld) {
    struct Case {
        std::string name;
        bool force;
        SystemTime::duration elapsed;
        std::string identity;
        bool samples;
    };
    const std::string same = world.wallpaperIdentity;
    const std::vector<Case> cases{
        {"the same at once", false, 0s, same, false},
        {"the same just before the palette is old", false, 599'999ms, same, false},
        {"the same by a nanosecond before", false, 600s - 1ns, same, false},
        {"the same at 600 seconds exactly", false, 600s, same, true},
        {"the same long after", false, 24h, same, true},
        {"another file at once", false, 0s, "forest", true},
        {"another file later", false, 599'999ms, "forest", true},
        {"the same, forced at once", true, 0s, same, true},
        {"the same, forced later", true, 599'999ms, same, true},
    };
    for (const auto& [name, force, elapsed, identity, expected] : cases) {
        SCOPED_TRACE(name);
        world.wallpaperIdentity = same;
        world.palette = lake;
        launchAndSettle();
        world.time += elapsed;
        world.wallpaperIdentity = identity;
        world.palette = forest;
        EXPECT_EQ(samples(force), expected);
        EXPECT_EQ(shownColors(), expected ? forest : lake);
    }
}

TEST_F(AppDelegateWallpaper, ATickSamplesOnlyWhatIsNewOrOldAndWakingSamplesAlways) {
    launchAndSettle();
    for (int minute = 1; minute <= 9; ++minute) {
        world.time += 60s;
        world.mainQueue->fireTimers();
        world.settle();
    }
    EXPECT_EQ(log.count("wallpaper.palette"), 0);
    world.time += 60s;
    world.mainQueue->fireTimers();
    world.settle();
    EXPECT_EQ(log.count("wallpaper.palette"), 1) << "600 seconds after the launch";
    world.workspace->wake();
    world.settle();
    EXPECT_EQ(log.count("wallpaper.palette"), 2);
}

TEST_F(AppDelegateWallpaper, ThePaletteAgesFromWhenItWasApplied) {
    launchAndSettle();
    delegate->refreshWallpaperTheme(true);
    world.time += 300s;
    world.settle();
    world.time += 599s;
    EXPECT_FALSE(samples(false));
    world.time += 1s;
    EXPECT_TRUE(samples(false));
}

TEST_F(AppDelegateWallpaper, AFileWithoutColorsIsNotTriedAgainBeforeTheCacheExpires) {
    world.palette.reset();
    launchAndSettle();
    world.palette = lake;
    world.time += 599s;
    EXPECT_FALSE(samples(false));
    EXPECT_EQ(shownColors(), fallback);
    world.time += 1s;
    EXPECT_TRUE(samples(false));
    EXPECT_EQ(shownColors(), lake);
}

TEST_F(AppDelegateWallpaper, AMissingScreenOrFileLeavesTheCacheUnchanged) {
    for (const bool missesScreen : {true, false}) {
        SCOPED_TRACE(missesScreen ? "no screen" : "no file");
        launchAndSettle();
        const auto screens = world.workspace->screenList;
        const auto wallpaper = world.wallpaper;
        world.time += 300s;
        if (missesScreen)
            world.workspace->screenList.clear();
        else
            world.wallpaper.reset();
        EXPECT_FALSE(samples(true));
        EXPECT_EQ(shownColors(), fallback);
        world.workspace->screenList = screens;
        world.wallpaper = wallpaper;
        world.time += 299s;
        EXPECT_FALSE(samples(false)) << "the palette of the launch is 599 seconds old and its file is the same";
        world.time += 1s;
        EXPECT_TRUE(samples(false)) << "its age did not start anew";
        EXPECT_EQ(shownColors(), lake);
    }
}

TEST_F(AppDelegateWallpaper, ATickSamplesWhenNothingWasSampledYet) {
    for (const bool missesScreen : {true, false}) {
        SCOPED_TRACE(missesScreen ? "no screen" : "no file");
        const auto screens = world.workspace->screenList;
        const auto wallpaper = world.wallpaper;
        if (missesScreen)
            world.workspace->screenList.clear();
        else
            world.wallpaper.reset();
        launchAndSettle();
        EXPECT_EQ(shownColors(), fallback);
        world.workspace->screenList = screens;
        world.wallpaper = wallpaper;
        EXPECT_TRUE(samples(false));
        EXPECT_EQ(shownColors(), lake);
    }
}

TEST_F(AppDelegateWallpaper, AWallpaperThatComesBackIsSampledAgain) {
    launchAndSettle();
    const std::string first = world.wallpaperIdentity;
    world.wallpaperIdentity = "forest";
    EXPECT_TRUE(samples(false));
    world.wallpaperIdentity = first;
    EXPECT_TRUE(samples(false));
}

TEST_F(AppDelegateWallpaper, OneSamplingRunsAtATime) {
    launchAndSettle();
    delegate->refreshWallpaperTheme(true);
    for (int step = 0; step < 3; ++step) { // looking, found, sampling
        delegate->refreshWallpaperTheme(true);
        delegate->refreshWallpaperTheme(false);
        ASSERT_EQ(world.backgroundQueue->waitingCount() + world.mainQueue->postedCount(), 1);
        if (!world.backgroundQueue->runNext())
            world.mainQueue->runNext();
    }
    delegate->refreshWallpaperTheme(true);
    ASSERT_EQ(world.backgroundQueue->waitingCount(), 0) << "the result waits on the main queue";
    world.settle();
    EXPECT_EQ(log.count("wallpaper.find"), 1);
    EXPECT_EQ(log.count("wallpaper.palette"), 1) << "dropped, not queued";
}

TEST_F(AppDelegateWallpaper, EveryEndOfASamplingAllowsTheNextOne) {
    struct Case {
        std::string name;
        std::function<void(FakeServices&)> arrange;
        bool force;
    };
    const std::vector<Case> cases{
        {"no screen", [](FakeServices& services) { services.workspace->screenList.clear(); }, true},
        {"no file", [](FakeServices& services) { services.wallpaper.reset(); }, true},
        {"fresh", [](FakeServices&) {}, false},
        {"sampled", [](FakeServices&) {}, true},
        {"no colors", [](FakeServices& services) { services.palette.reset(); }, true},
    };
    launchAndSettle();
    const auto screens = world.workspace->screenList;
    const auto wallpaper = world.wallpaper;
    for (const auto& [name, arrange, force] : cases) {
        SCOPED_TRACE(name);
        arrange(world);
        delegate->refreshWallpaperTheme(force);
        world.settle();
        world.workspace->screenList = screens;
        world.wallpaper = wallpaper;
        world.palette = lake;
        EXPECT_TRUE(samples(true));
        EXPECT_EQ(shownColors(), lake);
    }
}

TEST_F(AppDelegateWallpaper, TheColorsOfAReplacedWallpaperAreDropped) {
    launchAndSettle();
    const std::string first = world.wallpaperIdentity;
    world.wallpaperIdentity = "forest";
    world.palette = forest;
    delegate->refreshWallpaperTheme(true);
    ASSERT_TRUE(world.backgroundQueue->runNext());
    const auto forestIsFound = world.mainQueue->nextBlock();
    world.settle();
    ASSERT_EQ(shownColors(), forest);

    world.wallpaperIdentity = first;
    world.palette = lake;
    delegate->refreshWallpaperTheme(true);
    ASSERT_TRUE(world.backgroundQueue->runNext());
    ASSERT_TRUE(world.mainQueue->runNext()); // the lake is found
    forestIsFound();
    ASSERT_TRUE(world.backgroundQueue->runNext());
    ASSERT_TRUE(world.mainQueue->runNext()); // the lake is sampled
    EXPECT_EQ(shownColors(), forest);
    world.palette = forest;
    world.settle();
    EXPECT_EQ(shownColors(), forest);
    world.palette = lake;
    EXPECT_TRUE(samples(true));
    EXPECT_EQ(shownColors(), lake);
}

TEST_F(AppDelegateWallpaper, ReadAndSamplingDoNotBlockEachOther) {
    launchAndSettle();
    delegate->refreshStorage();
    delegate->refreshWallpaperTheme(true);
    EXPECT_EQ(world.backgroundQueue->waitingCount(), 2);
}

TEST_F(AppDelegateWallpaper, AForcedRequestIsKeptWhileATickLooksForTheWallpaper) {
    for (int stepsBefore = 0; stepsBefore <= 1; ++stepsBefore) {
        SCOPED_TRACE(stepsBefore == 0 ? "looking" : "found");
        launchAndSettle();
        delegate->refreshWallpaperTheme(false);
        for (int step = 0; step < stepsBefore; ++step)
            ASSERT_TRUE(world.backgroundQueue->runNext());
        world.workspace->wake();
        world.settle();
        EXPECT_EQ(log.count("wallpaper.palette"), 1) << "waking samples always";
    }
}

} // namespace
} // namespace vantry
