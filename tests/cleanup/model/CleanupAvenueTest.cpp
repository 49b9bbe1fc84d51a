#include "cleanup/model/CleanupAvenue.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <optional>

namespace vantry {

namespace {

using Action = CleanupAvenue::Action;
using Mode = CleanupAvenue::Mode;

constexpr struct {
    Mode mode;
    const char* title;
    SystemColor color;
} modes[] = {
    {Mode::scanned, "Checked Automatically", SystemColor::green},
    {Mode::manageInApp, "Open Its App", SystemColor::blue},
    {Mode::macOSManaged, "Protected by macOS", SystemColor::purple},
    {Mode::keptPrivate, "Not Scanned for Privacy", SystemColor::secondaryLabel},
    {Mode::includedAbove, "Included Above", SystemColor::secondaryLabel},
};

constexpr struct {
    Action action;
    const char* rawValue;
    const char* title;
} actions[] = {
    {Action::downloads, "downloads", "Open Downloads"},
    {Action::applications, "applications", "Open Applications"},
    {Action::home, "home", "Open Home Folder"},
    {Action::storageSettings, "storageSettings", "Open Storage Settings"},
    {Action::mail, "mail", "Open Mail"},
    {Action::messages, "messages", "Open Messages"},
    {Action::photos, "photos", "Open Photos"},
    {Action::timeMachine, "timeMachine", "Open Time Machine"},
    {Action::developer, "developer", "Open Developer Folder"},
    {Action::deviceBackups, "deviceBackups", "Open Backups"},
};

} // namespace

TEST(CleanupAvenueMode, HasItsStatusTextAndItsColor) {
    ASSERT_EQ(std::size(allCleanupAvenueModes), std::size(modes));
    for (std::size_t i = 0; i < std::size(modes); ++i) {
        EXPECT_EQ(allCleanupAvenueModes.at(i).value, modes[i].mode);
        EXPECT_EQ(title(modes[i].mode), modes[i].title);
        EXPECT_EQ(color(modes[i].mode), modes[i].color) << modes[i].title;
    }
}

TEST(CleanupAvenueAction, HasItsRawValueAndItsLabel) {
    ASSERT_EQ(std::size(allCleanupAvenueActions), std::size(actions));
    for (std::size_t i = 0; i < std::size(actions); ++i) {
        EXPECT_EQ(allCleanupAvenueActions.at(i).value, actions[i].action);
        EXPECT_EQ(rawValue(actions[i].action), actions[i].rawValue);
        EXPECT_EQ(title(actions[i].action), actions[i].title);
        EXPECT_EQ(cleanupAvenueActionFromRawValue(actions[i].rawValue), actions[i].action);
    }
}

TEST(CleanupAvenueAction, OnlyAnExactRawValueIsAnAction) {
    for (const char* text :
         {"", "Downloads", "download", "downloads ", "Open Downloads", "devicebackups", "trash", "0"})
        EXPECT_EQ(cleanupAvenueActionFromRawValue(text), std::nullopt) << text;
}

} // namespace vantry
