#include "cleanup/window/AvenueTarget.h"

namespace vantry {

namespace {

using Kind = AvenueTarget::Kind;

AvenueTarget folder(const std::filesystem::path& path) { return {Kind::homeFolder, path, {}}; }
AvenueTarget application(const char* name) {
    return {Kind::application, std::filesystem::path("/System/Applications") / name, {}};
}
AvenueTarget pane(const char* name) {
    return {Kind::settingsPane, {}, std::string("x-apple.systempreferences:") + name};
}

} // namespace

AvenueTarget avenueTarget(CleanupAvenue::Action action, const std::filesystem::path& home,
                          const std::filesystem::path& applications) {
    switch (action) {
    case CleanupAvenue::Action::downloads: return folder(home / "Downloads");
    case CleanupAvenue::Action::applications: return {Kind::systemFolder, applications, {}};
    case CleanupAvenue::Action::home: return folder(home);
    case CleanupAvenue::Action::storageSettings: return pane("com.apple.settings.Storage");
    case CleanupAvenue::Action::mail: return application("Mail.app");
    case CleanupAvenue::Action::messages: return application("Messages.app");
    case CleanupAvenue::Action::photos: return application("Photos.app");
    case CleanupAvenue::Action::timeMachine: return pane("com.apple.Time-Machine-Settings.extension");
    case CleanupAvenue::Action::developer: return folder(home / "Library/Developer");
    case CleanupAvenue::Action::deviceBackups: return folder(home / "Library/Application Support/MobileSync/Backup");
    }
    return folder(home);
}

AvenueButtonContent avenueButton(CleanupAvenue::Action action, Kind kind, bool canOpen) {
    const char* reason = kind == Kind::homeFolder ? "This folder does not exist." : "Available on macOS only.";
    return {
        .title = std::string(title(action)), .tooltip = canOpen ? "" : reason, .action = action, .enabled = canOpen};
}

} // namespace vantry
