#include "tests/app/AppDelegateFixture.h"

#include <algorithm>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string marked(const MenuItemContent& item) {
    return (item.checked ? "[x] " : item.checkable ? "[ ] " : "") + item.title + (item.enabled ? "" : " (disabled)");
}

std::vector<std::string> marked(const std::vector<MenuItemContent>& items) {
    std::vector<std::string> titles;
    for (const auto& item : items)
        titles.push_back(marked(item));
    return titles;
}

const MenuItemContent& itemCalled(const std::vector<MenuItemContent>& items, std::string_view title) {
    const auto found = std::ranges::find(items, title, &MenuItemContent::title);
    EXPECT_NE(found, items.end()) << title;
    return *found;
}

TEST(ContextMenu, HasTheseItemsInThisOrder) {
    struct Row {
        std::string title;
        MenuCommand command;
        bool checkable;
        bool separator;
        std::string keyEquivalent;
        std::size_t submenuSize;
    };
    const std::vector<Row> rows{
        {"Refresh", MenuCommand::refresh, false, false, "", 0},
        {"Open Storage Settings\u2026", MenuCommand::openStorageSettings, false, false, "", 0},
        {"Free Up Space\u2026", MenuCommand::freeUpSpace, false, false, "", 0},
        {"Show % Used", MenuCommand::showPercentage, true, false, "", 0},
        {"Bar Style", MenuCommand::none, false, false, "", 4},
        {"Segment Widths", MenuCommand::none, false, false, "", 2},
        {"Launch at Login", MenuCommand::launchAtLogin, true, false, "", 0},
        {"", MenuCommand::none, false, true, "", 0},
        {"Quit Ombrel", MenuCommand::quit, false, false, "q", 0},
    };
    const auto menu = contextMenuContent({});
    ASSERT_EQ(menu.items.size(), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const MenuItemContent& item = menu.items[i];
        SCOPED_TRACE(rows[i].title);
        EXPECT_EQ(item.title, rows[i].title);
        EXPECT_EQ(item.command, rows[i].command);
        EXPECT_EQ(item.checkable, rows[i].checkable);
        EXPECT_EQ(item.separator, rows[i].separator);
        EXPECT_EQ(item.keyEquivalent, rows[i].keyEquivalent);
        EXPECT_EQ(item.submenu.size(), rows[i].submenuSize);
        EXPECT_EQ(item.representedObject, "");
    }
}

TEST(ContextMenu, ItsSubmenusHoldEveryChoiceWithItsRawValue) {
    struct Row {
        std::string title;
        MenuCommand command;
        std::string representedObject;
    };
    const std::vector<std::pair<std::string, std::vector<Row>>> submenus{
        {"Bar Style",
         {{"Rainbow", MenuCommand::barStyle, "storageGradient"},
          {"macOS Storage Colors", MenuCommand::barStyle, "macOSSegments"},
          {"Vivid Theme", MenuCommand::barStyle, "vividTheme"},
          {"Current Theme", MenuCommand::barStyle, "currentTheme"}}},
        {"Segment Widths",
         {{"Equal Colors", MenuCommand::segmentSizing, "equal"},
          {"Verified Storage Snapshot", MenuCommand::segmentSizing, "verifiedSnapshot"}}},
    };
    const auto menu = contextMenuContent({});
    for (const auto& [title, rows] : submenus) {
        const auto& items = itemCalled(menu.items, title).submenu;
        ASSERT_EQ(items.size(), rows.size());
        for (std::size_t i = 0; i < rows.size(); ++i) {
            SCOPED_TRACE(rows[i].title);
            EXPECT_EQ(items[i].title, rows[i].title);
            EXPECT_EQ(items[i].command, rows[i].command);
            EXPECT_EQ(items[i].representedObject, rows[i].representedObject);
            EXPECT_TRUE(items[i].enabled);
            EXPECT_TRUE(items[i].checkable);
            EXPECT_FALSE(items[i].separator);
            EXPECT_EQ(items[i].keyEquivalent, "");
            EXPECT_THAT(items[i].submenu, IsEmpty());
        }
    }
}

TEST(ContextMenu, MarksWhatIsChosen) {
    const auto menu = contextMenuContent({.showsUsedPercentage = false,
                                          .barStyle = BarStyle::storageGradient,
                                          .segmentSizing = SegmentSizing::verifiedSnapshot,
                                          .launchesAtLogin = false});
    EXPECT_THAT(marked(menu.items),
                ElementsAre("Refresh", "Open Storage Settings…", "Free Up Space…", "[ ] Show % Used", "Bar Style",
                            "Segment Widths (disabled)", "[ ] Launch at Login", "", "Quit Ombrel"));
    const auto other = contextMenuContent({.showsUsedPercentage = true,
                                           .barStyle = BarStyle::macOSSegments,
                                           .segmentSizing = SegmentSizing::equal,
                                           .launchesAtLogin = true});
    EXPECT_THAT(marked(other.items),
                ElementsAre("Refresh", "Open Storage Settings…", "Free Up Space…", "[x] Show % Used", "Bar Style",
                            "Segment Widths", "[x] Launch at Login", "", "Quit Ombrel"));
}

TEST(ContextMenu, MarksExactlyTheStyleAndTheSizingThatAreStored) {
    for (const auto& style : allBarStyles) {
        for (const auto& sizing : allSegmentSizings) {
            const auto menu = contextMenuContent({.barStyle = style.value, .segmentSizing = sizing.value});
            for (const auto& item : itemCalled(menu.items, "Bar Style").submenu)
                EXPECT_EQ(item.checked, item.title == style.displayName) << item.title;
            for (const auto& item : itemCalled(menu.items, "Segment Widths").submenu)
                EXPECT_EQ(item.checked, item.title == sizing.displayName) << item.title;
            EXPECT_EQ(itemCalled(menu.items, "Segment Widths").enabled, style.value == BarStyle::macOSSegments);
            EXPECT_TRUE(itemCalled(menu.items, "Bar Style").enabled);
        }
    }
}

// The menu in the hands of the application that it commands.
class ContextMenuCommands : public AppDelegateFixture {
protected:
    /// Opens the menu and chooses the item at `path`: a title, or a submenu's and a title in it.
    void choose(const std::vector<std::string>& path) {
        const auto menu = delegate->contextMenu();
        const MenuItemContent* item = &itemCalled(menu.items, path.front());
        if (path.size() == 2)
            item = &itemCalled(item->submenu, path.back());
        log.clear();
        delegate->performMenuItem(*item);
    }
};

TEST_F(ContextMenuCommands, DoWhatTheirTitlesSay) {
    struct Case {
        std::vector<std::string> path;
        std::vector<std::string> asked; ///< without the reading and drawing that goes with it
    };
    const std::vector<Case> cases{
        {{"Refresh"}, {"volume.read", "wallpaper.find Built-in", "wallpaper.palette /pictures/lake.heic 7"}},
        {{"Open Storage Settings…"}, {"workspace.openURL x-apple.systempreferences:com.apple.settings.Storage"}},
        {{"Free Up Space…"}, {"cleanup.makeServices", "shell.showCleanupWindow", "cleanup.scan"}},
        {{"Show % Used"}, {"preferences.write showUsedPercentage true"}},
        {{"Bar Style"}, {}},
        {{"Bar Style", "Rainbow"}, {"preferences.write barStyle storageGradient"}},
        {{"Bar Style", "macOS Storage Colors"}, {"preferences.write barStyle macOSSegments"}},
        {{"Bar Style", "Vivid Theme"}, {"preferences.write barStyle vividTheme"}},
        {{"Bar Style", "Current Theme"},
         {"preferences.write barStyle currentTheme", "wallpaper.find Built-in",
          "wallpaper.palette /pictures/lake.heic 7"}},
        {{"Segment Widths"}, {}},
        {{"Segment Widths", "Equal Colors"}, {"preferences.write segmentSizing equal"}},
        {{"Segment Widths", "Verified Storage Snapshot"}, {"preferences.write segmentSizing verifiedSnapshot"}},
        {{"Launch at Login"}, {"loginItem.setEnabled true"}},
        {{""}, {}},
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
        ContextMenuState after;
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
    EXPECT_EQ(delegate->contextMenu(), contextMenuContent({}));
    for (const auto& [path, after, length] : steps) {
        SCOPED_TRACE(testing::PrintToString(path));
        choose(path);
        EXPECT_EQ(delegate->contextMenu(), contextMenuContent(after));
        EXPECT_EQ(shell.statusItem().length, length);
        EXPECT_EQ(shell.statusItem().view.barStyle, after.barStyle);
        EXPECT_EQ(shell.statusItem().view.segmentSizing, after.segmentSizing);
        EXPECT_EQ(shell.popover().launchAtLoginButton.checked, after.launchesAtLogin);
        world.settle();
    }
}

TEST_F(ContextMenuCommands, TheMenuTakesTheStoreAsItIs) {
    launchAndSettle();
    world.preferences->values = {{"barStyle", "rainbow"}, {"segmentSizing", "Equal"}, {"showUsedPercentage", "yes"}};
    EXPECT_EQ(delegate->contextMenu(), contextMenuContent({.showsUsedPercentage = false,
                                                           .barStyle = BarStyle::storageGradient,
                                                           .segmentSizing = SegmentSizing::verifiedSnapshot,
                                                           .launchesAtLogin = false}));
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

TEST_F(ContextMenuCommands, LaunchAtLoginFollowsAFileThatWasChangedOutside) {
    world.agentFileExists = true;
    launchAndSettle();
    EXPECT_TRUE(itemCalled(delegate->contextMenu().items, "Launch at Login").checked);
    world.agentFileExists = false;
    EXPECT_FALSE(itemCalled(delegate->contextMenu().items, "Launch at Login").checked);
    choose({"Launch at Login"});
    EXPECT_EQ(log.count("loginItem.setEnabled true"), 1);
    EXPECT_TRUE(world.agentFileExists);
}

TEST_F(ContextMenuCommands, LaunchAtLoginDecidesWhenItIsChosenAndNotWhenTheMenuOpened) {
    launchAndSettle();
    const auto menu = delegate->contextMenu();
    world.agentFileExists = true;
    delegate->performMenuItem(itemCalled(menu.items, "Launch at Login"));
    EXPECT_FALSE(world.agentFileExists);
}

TEST_F(ContextMenuCommands, ABadTurnOfLaunchAtLoginIsSaidInThePopover) {
    launchAndSettle();
    world.loginItemError = Error{ErrorKind::noSpace, "No space left on device"};
    choose({"Launch at Login"});
    EXPECT_EQ(shell.popover().errorLabel.text, "Could not change Login Items: No space left on device");
    EXPECT_FALSE(itemCalled(delegate->contextMenu().items, "Launch at Login").checked);
}

} // namespace

} // namespace vantry
