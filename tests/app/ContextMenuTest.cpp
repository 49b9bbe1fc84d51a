#include "tests/app/AppDelegateFixture.h"

#include <algorithm>
#include <variant>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// An entry as a line: "[x] Show % Used", "Bar Style >", "Quit Ombrel (q)".
struct Line {
    std::string operator()(const MenuItemContent& item) const {
        const std::string mark = !item.checked ? "" : *item.checked ? "[x] " : "[ ] ";
        return mark + item.title + (item.keyEquivalent.empty() ? "" : " (" + item.keyEquivalent + ")");
    }
    std::string operator()(const SubmenuContent& submenu) const {
        return submenu.title + (submenu.enabled ? " >" : " > (disabled)");
    }
    std::string operator()(const MenuSeparator& /*separator*/) const { return "--"; }
};

std::vector<std::string> lines(const ContextMenuContent& menu) {
    std::vector<std::string> lines;
    for (const MenuEntry& entry : menu.entries)
        lines.push_back(std::visit(Line{}, entry));
    return lines;
}

/// The entry of one kind with a title.
template <class Entry>
const Entry& called(const ContextMenuContent& menu, std::string_view title) {
    for (const MenuEntry& each : menu.entries)
        if (const auto* entry = std::get_if<Entry>(&each); entry && entry->title == title)
            return *entry;
    ADD_FAILURE() << title;
    static const Entry none;
    return none;
}

TEST(ContextMenu, ItsItemsHaveTheseCommands) {
    const std::vector<std::pair<std::string, MenuCommand>> rows{
        {"Refresh", MenuCommand::refresh},
        {"Open Storage Settings\u2026", MenuCommand::openStorageSettings},
        {"Free Up Space\u2026", MenuCommand::freeUpSpace},
        {"Show % Used", MenuCommand::showPercentage},
        {"Launch at Login", MenuCommand::launchAtLogin},
        {"Quit Ombrel", MenuCommand::quit},
    };
    const auto menu = contextMenuContent({});
    for (const auto& [title, command] : rows) {
        EXPECT_EQ(called<MenuItemContent>(menu, title).command, command) << title;
        EXPECT_EQ(called<MenuItemContent>(menu, title).representedObject, "") << title;
    }
}

TEST(ContextMenu, ItsSubmenusHoldEveryChoiceWithItsRawValue) {
    using Item = MenuItemContent;
    const auto menu = contextMenuContent({});
    EXPECT_THAT(called<SubmenuContent>(menu, "Bar Style").items,
                ElementsAre(Item{"Rainbow", MenuCommand::barStyle, true, "", "storageGradient"},
                            Item{"macOS Storage Colors", MenuCommand::barStyle, false, "", "macOSSegments"},
                            Item{"Vivid Theme", MenuCommand::barStyle, false, "", "vividTheme"},
                            Item{"Current Theme", MenuCommand::barStyle, false, "", "currentTheme"}));
    EXPECT_THAT(
        called<SubmenuContent>(menu, "Segment Widths").items,
        ElementsAre(Item{"Equal Colors", MenuCommand::segmentSizing, false, "", "equal"},
                    Item{"Verified Storage Snapshot", MenuCommand::segmentSizing, true, "", "verifiedSnapshot"}));
}

TEST(ContextMenu, HasTheseEntriesInThisOrderAndMarksWhatIsChosen) {
    const auto menu = contextMenuContent({.showsUsedPercentage = false,
                                          .barStyle = BarStyle::storageGradient,
                                          .segmentSizing = SegmentSizing::verifiedSnapshot,
                                          .launchesAtLogin = false});
    EXPECT_THAT(lines(menu),
                ElementsAre("Refresh", "Open Storage Settings…", "Free Up Space…", "[ ] Show % Used", "Bar Style >",
                            "Segment Widths > (disabled)", "[ ] Launch at Login", "--", "Quit Ombrel (q)"));
    const auto other = contextMenuContent({.showsUsedPercentage = true,
                                           .barStyle = BarStyle::macOSSegments,
                                           .segmentSizing = SegmentSizing::equal,
                                           .launchesAtLogin = true});
    EXPECT_THAT(lines(other),
                ElementsAre("Refresh", "Open Storage Settings…", "Free Up Space…", "[x] Show % Used", "Bar Style >",
                            "Segment Widths >", "[x] Launch at Login", "--", "Quit Ombrel (q)"));
}

TEST(ContextMenu, MarksExactlyTheStyleAndTheSizingThatAreStored) {
    for (const auto& style : allBarStyles) {
        for (const auto& sizing : allSegmentSizings) {
            const auto menu = contextMenuContent({.barStyle = style.value, .segmentSizing = sizing.value});
            for (const auto& item : called<SubmenuContent>(menu, "Bar Style").items)
                EXPECT_EQ(item.checked, item.title == style.displayName) << item.title;
            for (const auto& item : called<SubmenuContent>(menu, "Segment Widths").items)
                EXPECT_EQ(item.checked, item.title == sizing.displayName) << item.title;
            EXPECT_EQ(called<SubmenuContent>(menu, "Segment Widths").enabled, style.value == BarStyle::macOSSegments);
            EXPECT_TRUE(called<SubmenuContent>(menu, "Bar Style").enabled);
        }
    }
}

// The menu with the application that it controls.
class ContextMenuCommands : public AppDelegateFixture {
protected:
    ContextMenuContent openMenu() {
        delegate->showContextMenu();
        return shell.menu.value();
    }
    static MenuItemContent itemAt(const ContextMenuContent& menu, const std::vector<std::string>& path) {
        if (path.size() == 1)
            return called<MenuItemContent>(menu, path.front());
        const auto& items = called<SubmenuContent>(menu, path.front()).items;
        const auto found = std::ranges::find(items, path.back(), &MenuItemContent::title);
        EXPECT_NE(found, items.end()) << path.back();
        return *found;
    }
    /// Opens the menu and chooses the item at `path`: a title, or a submenu's title and one in it.
    void choose(const std::vector<std::string>& path) {
        const auto item = itemAt(openMenu(), path);
        log.clear();
        delegate->performMenuItem(item);
    }
};

TEST_F(ContextMenuCommands, DoWhatTheirTitlesSay) {
    struct Case {
        std::vector<std::string> path;
        std::vector<std::string> asked; ///< without reads and rendering
    };
    const std::vector<Case> cases{
        {{"Refresh"}, {"volume.read", "wallpaper.find Built-in", "wallpaper.palette /pictures/lake.heic 7"}},
        {{"Open Storage Settings…"}, {"workspace.openURL x-apple.systempreferences:com.apple.settings.Storage"}},
        {{"Free Up Space…"}, {"cleanup.makeServices", "shell.showCleanupWindow", "cleanup.scan"}},
        {{"Show % Used"}, {"preferences.write showUsedPercentage true"}},
        {{"Bar Style", "Rainbow"}, {"preferences.write barStyle storageGradient"}},
        {{"Bar Style", "macOS Storage Colors"}, {"preferences.write barStyle macOSSegments"}},
        {{"Bar Style", "Vivid Theme"}, {"preferences.write barStyle vividTheme"}},
        {{"Bar Style", "Current Theme"},
         {"preferences.write barStyle currentTheme", "wallpaper.find Built-in",
          "wallpaper.palette /pictures/lake.heic 7"}},
        {{"Segment Widths", "Equal Colors"}, {"preferences.write segmentSizing equal"}},
        {{"Segment Widths", "Verified Storage Snapshot"}, {"preferences.write segmentSizing verifiedSnapshot"}},
        {{"Launch at Login"}, {"loginItem.setEnabled true"}},
        {{"Quit Ombrel"}, {"shell.terminate"}},
    };
    for (const auto& [path, asked] : cases) {
        SCOPED_TRACE(testing::PrintToString(path));
        world.preferences->values.clear();
        world.agentFileExists = false;
        launchAndSettle();
        choose(path);
        world.settle();
        EXPECT_THAT(log.only({"volume.", "wallpaper.find", "wallpaper.palette", "workspace.openURL", "cleanup.",
                              "loginItem.setEnabled", "preferences.write", "shell.closePopover", "shell.openPopover",
                              "shell.showCleanupWindow", "shell.terminate"}),
                    testing::ElementsAreArray(asked));
    }
}

TEST_F(ContextMenuCommands, AreRightInTheNextMenu) {
    struct Step {
        std::vector<std::string> path;
        UserChoices after;
        double length;
    };
    using enum BarStyle;
    using enum SegmentSizing;
    const std::vector<Step> steps{
        {{"Refresh"}, {false, storageGradient, verifiedSnapshot, false}, 60},
        {{"Show % Used"}, {true, storageGradient, verifiedSnapshot, false}, 94},
        {{"Bar Style", "macOS Storage Colors"}, {true, macOSSegments, verifiedSnapshot, false}, 94},
        {{"Segment Widths", "Equal Colors"}, {true, macOSSegments, equal, false}, 94},
        {{"Launch at Login"}, {true, macOSSegments, equal, true}, 94},
        {{"Show % Used"}, {false, macOSSegments, equal, true}, 60},
        {{"Bar Style", "Current Theme"}, {false, currentTheme, equal, true}, 60},
        {{"Bar Style", "Current Theme"}, {false, currentTheme, equal, true}, 60},
        {{"Open Storage Settings…"}, {false, currentTheme, equal, true}, 60},
        {{"Free Up Space…"}, {false, currentTheme, equal, true}, 60},
        {{"Bar Style", "Vivid Theme"}, {false, vividTheme, equal, true}, 60},
        {{"Launch at Login"}, {false, vividTheme, equal, false}, 60},
        {{"Segment Widths", "Verified Storage Snapshot"}, {false, vividTheme, verifiedSnapshot, false}, 60},
        {{"Bar Style", "Rainbow"}, {false, storageGradient, verifiedSnapshot, false}, 60},
        {{"Show % Used"}, {true, storageGradient, verifiedSnapshot, false}, 94},
        {{"Quit Ombrel"}, {true, storageGradient, verifiedSnapshot, false}, 94},
    };
    launchAndSettle();
    EXPECT_EQ(openMenu(), contextMenuContent({}));
    for (const auto& [path, after, length] : steps) {
        SCOPED_TRACE(testing::PrintToString(path));
        choose(path);
        EXPECT_EQ(shell.statusItem().menu, contextMenuContent(after)) << "without being asked for";
        EXPECT_EQ(openMenu(), contextMenuContent(after));
        EXPECT_EQ(shell.statusItem().length, length);
        EXPECT_EQ(shell.statusItem().view.barStyle, after.barStyle);
        EXPECT_EQ(shell.statusItem().view.segmentSizing, after.segmentSizing);
        EXPECT_EQ(shell.popover().launchAtLoginButton.checked, after.launchesAtLogin);
        world.settle();
    }
}

TEST_F(ContextMenuCommands, UnknownStoredValuesShowAsTheDefaults) {
    launchAndSettle();
    world.preferences->values = {{"barStyle", "rainbow"}, {"segmentSizing", "Equal"}, {"showUsedPercentage", "yes"}};
    EXPECT_EQ(openMenu(), contextMenuContent({.showsUsedPercentage = false,
                                              .barStyle = BarStyle::storageGradient,
                                              .segmentSizing = SegmentSizing::verifiedSnapshot,
                                              .launchesAtLogin = false}));
}

TEST_F(ContextMenuCommands, AHostThatAnnouncesTheMenuGetsTheStoredValuesOfThatMoment) {
    launchAndSettle();
    world.preferences->values = {{"showUsedPercentage", true}, {"barStyle", "macOSSegments"}};
    world.agentFileExists = true;
    delegate->menuWillOpen();
    EXPECT_EQ(shell.statusItem().menu,
              contextMenuContent(
                  {.showsUsedPercentage = true, .barStyle = BarStyle::macOSSegments, .launchesAtLogin = true}));
}

TEST_F(ContextMenuCommands, AHostThatDoesNotAnnounceTheMenuGetsTheChoicesMadeHere) {
    launchAndSettle();
    delegate->storagePopoverRequestedBarStyleChange(BarStyle::vividTheme);
    EXPECT_EQ(shell.statusItem().menu, contextMenuContent({.barStyle = BarStyle::vividTheme}));
}

// They may be on a server that hangs, and a choice that cannot be stored must not go back by itself.
TEST_F(ContextMenuCommands, ARefreshReadsNoPreferences) {
    launchAndSettle();
    delegate->refreshStorage();
    world.settle();
    delegate->timerFired();
    world.settle();
    EXPECT_THAT(log.only({"preferences.", "loginItem."}), IsEmpty());
}

TEST_F(ContextMenuCommands, ThePercentageInvertsWhatIsStoredAtThatMoment) {
    launchAndSettle();
    world.preferences->values = {{"showUsedPercentage", true}};
    choose({"Show % Used"});
    EXPECT_EQ(log.count("preferences.write showUsedPercentage false"), 1);
    EXPECT_EQ(shell.statusItem().length, 60);
}

TEST_F(ContextMenuCommands, UnknownRepresentedObjectsDoNothing) {
    const std::vector<std::string> noStyles{"",      "Rainbow",          "rainbow",     "StorageGradient",
                                            "equal", "storageGradient ", "vivid Theme", "0"};
    const std::vector<std::string> noSizings{
        "", "Equal", "EQUAL", "Equal Colors", "vividTheme", "verified snapshot", "equal ", "1"};
    launchAndSettle();
    for (const auto& [command, texts] :
         {std::pair{MenuCommand::barStyle, noStyles}, std::pair{MenuCommand::segmentSizing, noSizings}})
        for (const auto& text : texts)
            delegate->performMenuItem({.command = command, .representedObject = text});
    EXPECT_THAT(log.calls(), IsEmpty());
    EXPECT_EQ(world.backgroundQueue->waitingCount(), 0);
}

TEST_F(ContextMenuCommands, LaunchAtLoginFollowsAFileThatAnotherProgramChanged) {
    world.agentFileExists = true;
    launchAndSettle();
    EXPECT_TRUE(called<MenuItemContent>(openMenu(), "Launch at Login").checked.value());
    world.agentFileExists = false;
    EXPECT_FALSE(called<MenuItemContent>(openMenu(), "Launch at Login").checked.value());
    choose({"Launch at Login"});
    EXPECT_EQ(log.count("loginItem.setEnabled true"), 1);
    EXPECT_TRUE(world.agentFileExists);
}

TEST_F(ContextMenuCommands, LaunchAtLoginReadsTheFileWhenItIsChosen) {
    launchAndSettle();
    const auto item = itemAt(openMenu(), {"Launch at Login"});
    world.agentFileExists = true;
    delegate->performMenuItem(item);
    EXPECT_FALSE(world.agentFileExists);
}

TEST_F(ContextMenuCommands, AFailureOfLaunchAtLoginIsShownInThePopover) {
    launchAndSettle();
    world.loginItemError = Error{ErrorKind::noSpace, "No space left on device"};
    choose({"Launch at Login"});
    EXPECT_EQ(shell.popover().errorLabel.text, "Could not change Login Items: No space left on device");
    EXPECT_FALSE(called<MenuItemContent>(openMenu(), "Launch at Login").checked.value());
}

} // namespace

} // namespace vantry
