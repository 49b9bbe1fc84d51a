#include "cleanup/window/AvenueRow.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

using Kind = AvenueTarget::Kind;

TEST(AvenueTarget, EveryActionOpensItsPlace) {
    struct Case {
        CleanupAvenue::Action action;
        AvenueTarget target;
    };
    using enum CleanupAvenue::Action;
    const std::vector<Case> cases{
        {downloads, {Kind::homeFolder, "/home/ada/Loads", ""}},
        {applications, {Kind::systemFolder, "/Applications", ""}},
        {home, {Kind::homeFolder, "/home/ada", ""}},
        {storageSettings, {Kind::settingsPane, "", "x-apple.systempreferences:com.apple.settings.Storage"}},
        {mail, {Kind::application, "/System/Applications/Mail.app", ""}},
        {messages, {Kind::application, "/System/Applications/Messages.app", ""}},
        {photos, {Kind::application, "/System/Applications/Photos.app", ""}},
        {timeMachine, {Kind::settingsPane, "", "x-apple.systempreferences:com.apple.Time-Machine-Settings.extension"}},
        {developer, {Kind::homeFolder, "/home/ada/Library/Developer", ""}},
        {deviceBackups, {Kind::homeFolder, "/home/ada/Library/Application Support/MobileSync/Backup", ""}},
    };
    ASSERT_EQ(cases.size(), allCleanupAvenueActions.size());
    for (const auto& [action, target] : cases)
        EXPECT_EQ(avenueTarget(action, "/home/ada", "/home/ada/Loads", "/Applications"), target) << rawValue(action);
}

TEST(AvenueTarget, AButtonWithoutATargetSaysWhy) {
    const auto action = CleanupAvenue::Action::developer;
    const auto button = [&](Kind kind, bool canOpen) { return avenueButton(action, kind, canOpen, HostSystem::macOS); };
    const auto content = [&](const char* tooltip, bool enabled) {
        return AvenueButtonContent{
            .title = "Open Developer Folder", .tooltip = tooltip, .action = action, .enabled = enabled};
    };
    for (const auto kind : {Kind::homeFolder, Kind::systemFolder, Kind::application, Kind::settingsPane})
        EXPECT_EQ(button(kind, true), content("", true));
    EXPECT_EQ(button(Kind::homeFolder, false), content("This folder does not exist.", false));
    for (const auto kind : {Kind::systemFolder, Kind::application, Kind::settingsPane})
        EXPECT_EQ(button(kind, false), content("Available on macOS only.", false));
}

} // namespace

} // namespace vantry
