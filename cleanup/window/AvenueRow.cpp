#include "cleanup/window/AvenueRow.h"

#include "base/Text.h"
#include "cleanup/finding/UsageMeasurement.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <vector>

namespace vantry {

namespace {

std::vector<CleanupByteAmount> occupiedAmounts(const std::set<CleanupCategory>& categories,
                                               const std::map<CleanupCategory, CleanupCategoryMetric>& metrics) {
    std::vector<CleanupByteAmount> amounts;
    for (const auto category : categories)
        amounts.push_back(metrics.contains(category) ? metrics.at(category).occupied
                                                     : CleanupByteAmount::unavailable());
    return amounts;
}

// "At least 0 bytes" would suggest that something was measured.
std::string amountText(const CleanupByteAmount& combined, bool someAreUnknown) {
    const auto bytes = combined.knownBytes();
    if (!bytes)
        return "Couldn’t measure this area";
    if (combined.isExact())
        return byteCountText(*bytes) + " used here";
    if (*bytes == 0 && someAreUnknown)
        return "Size unavailable";
    return "At least " + byteCountText(*bytes) + " seen";
}

AvenueStatus checkedStatus(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    const auto count = std::ranges::count_if(
        report.candidates, [&](const auto& candidate) { return avenue.categories.contains(candidate.category); });
    const auto usage = usageText(avenue, report);
    if (count > 0)
        return {countText(static_cast<std::size_t>(count), "file"), usage, SystemColor::green};
    if (hasState(avenue, report.states, CleanupScanState::limited))
        return {std::string(title(CleanupScanState::limited)), usage, SystemColor::orange};
    return {"No cleanup files found", usage, SystemColor::blue};
}

AvenueState avenueState(CleanupScanState state) {
    switch (state) {
    case CleanupScanState::checked:
    case CleanupScanState::limited: return AvenueState::checked;
    case CleanupScanState::notPresent: return AvenueState::notPresent;
    case CleanupScanState::relocated: return AvenueState::relocated;
    case CleanupScanState::permissionNeeded: return AvenueState::permissionNeeded;
    case CleanupScanState::unavailable: break;
    }
    return AvenueState::unavailable;
}

std::string treatment(const CleanupAvenue& avenue, HostSystem system) {
    if (!avenue.command.empty())
        return "Use Its Own Command";
    if (!avenue.places.empty() && avenue.mode == CleanupAvenue::Mode::manageInApp)
        return "Left to Its Owner"; // which need not be an app
    return inWordsOf(system, title(avenue.mode));
}

using Kind = AvenueTarget::Kind;

AvenueTarget folder(const std::filesystem::path& path) { return {Kind::homeFolder, path, {}}; }
AvenueTarget application(const char* name) {
    return {Kind::application, std::filesystem::path("/System/Applications") / name, {}};
}
AvenueTarget pane(const char* name) {
    return {Kind::settingsPane, {}, std::string("x-apple.systempreferences:") + name};
}

} // namespace

bool hasState(const CleanupAvenue& avenue, const std::map<CleanupCategory, CleanupScanState>& states,
              CleanupScanState state) {
    return std::ranges::any_of(avenue.categories, [&](CleanupCategory category) {
        const auto known = states.find(category);
        return known != states.end() && known->second == state;
    });
}

AvenueState avenueState(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    if (!avenue.places.empty()) {
        const auto measured = report.guide.find(std::string(avenue.identifier));
        return measured == report.guide.end() ? AvenueState::unknown : avenueState(measured->second.state);
    }
    const auto has = [&](CleanupScanState state) { return hasState(avenue, report.states, state); };
    if (avenue.mode != CleanupAvenue::Mode::scanned || avenue.categories.empty())
        return AvenueState::notScanned;
    if (has(CleanupScanState::permissionNeeded))
        return AvenueState::permissionNeeded;
    if (has(CleanupScanState::unavailable))
        return AvenueState::unavailable;
    if (has(CleanupScanState::relocated))
        return AvenueState::relocated;
    if (has(CleanupScanState::checked) || has(CleanupScanState::limited))
        return AvenueState::checked;
    return has(CleanupScanState::notPresent) ? AvenueState::notPresent : AvenueState::unknown;
}

CleanupByteAmount combinedOccupiedAmount(const std::set<CleanupCategory>& categories,
                                         const std::map<CleanupCategory, CleanupCategoryMetric>& metrics) {
    return CleanupScanner::combineAmounts(occupiedAmounts(categories, metrics));
}

std::string usageText(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    if (const auto measured = report.guide.find(std::string(avenue.identifier)); measured != report.guide.end())
        return amountText(measured->second.occupied, true); // what is not exact has something unknown in it
    const auto amounts = occupiedAmounts(avenue.categories, report.metrics);
    const auto combined = CleanupScanner::combineAmounts(amounts);
    const auto text =
        amountText(combined, std::ranges::any_of(amounts, [](const auto& amount) { return !amount.knownBytes(); }));
    if (hasState(avenue, report.states, CleanupScanState::limited))
        return text + " · scan stopped early"; // this explains an incomplete total as well
    if (text.starts_with("At least"))
        return text + " · full total unavailable";
    return text;
}

AvenueStatus avenueStatus(const CleanupAvenue& avenue, const CleanupScanReport& report, HostSystem system) {
    const auto ofMode = treatment(avenue, system);
    switch (avenueState(avenue, report)) {
    case AvenueState::notScanned:
        return {ofMode,
                avenue.mode == CleanupAvenue::Mode::includedAbove ? "Counted with Temporary app files"
                                                                  : "Size not measured here",
                color(avenue.mode)};
    case AvenueState::unknown: return {ofMode, "Not measured yet", color(avenue.mode)};
    case AvenueState::permissionNeeded:
        return {std::string(title(CleanupScanState::permissionNeeded)), "Size unavailable", SystemColor::red};
    case AvenueState::unavailable:
        return {std::string(title(CleanupScanState::unavailable)), "Size unavailable", SystemColor::orange};
    case AvenueState::relocated:
        return {std::string(title(CleanupScanState::relocated)), "Size unavailable", SystemColor::blue};
    case AvenueState::notPresent:
        if (!avenue.places.empty()) // of the place only: the program may keep it somewhere else
            return {"Folder Not Found", "0 B used here", SystemColor::secondaryLabel};
        return {inWordsOf(system, title(CleanupScanState::notPresent)), usageText(avenue, report), SystemColor::blue};
    case AvenueState::checked:
        if (!avenue.places.empty())
            return {ofMode, usageText(avenue, report), avenue.command.empty() ? color(avenue.mode) : SystemColor::blue};
        break;
    }
    return checkedStatus(avenue, report);
}

bool offersCommand(const CleanupAvenue& avenue, const CleanupScanReport& report) {
    const auto measured = report.guide.find(std::string(avenue.identifier));
    if (avenue.command.empty() || measured == report.guide.end())
        return false;
    const auto& [state, occupied, paths, note] = measured->second;
    return state == CleanupScanState::permissionNeeded ? avenue.places.front().kind == CleanupAvenue::Place::Kind::whole
                                                       : occupied.knownBytes().value_or(0) > 0;
}

AvenueRowContent avenueRow(const CleanupAvenue& avenue, const CleanupScanReport& report, HostSystem system) {
    auto status = avenueStatus(avenue, report, system);
    auto detail = inWordsOf(system, avenue.detail);
    if (const auto measured = report.guide.find(std::string(avenue.identifier));
        measured != report.guide.end() && !measured->second.note.empty())
        detail += " " + measured->second.note;
    if (offersCommand(avenue, report))
        detail += "\n" + std::string(avenue.command);
    return {.symbolName = std::string(avenue.symbolName),
            .title = inWordsOf(system, avenue.title),
            .detail = std::move(detail),
            .status = std::move(status.primary),
            .usage = std::move(status.secondary),
            .statusColor = status.color,
            .button = std::nullopt};
}

AvenueTarget avenueTarget(CleanupAvenue::Action action, const std::filesystem::path& home,
                          const std::filesystem::path& downloads, const std::filesystem::path& applications) {
    switch (action) {
    case CleanupAvenue::Action::downloads: return folder(downloads);
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

AvenueButtonContent commandButton(const CleanupAvenue& avenue) {
    return {.title = "Copy Command",
            .tooltip = std::string(avenue.command),
            .action = CopyCommand{std::string(avenue.command)}};
}

AvenueButtonContent avenueButton(CleanupAvenue::Action action, Kind kind, bool canOpen, HostSystem system) {
    const char* reason = kind == Kind::homeFolder ? "This folder does not exist." : "Available on macOS only.";
    return {.title = std::string(title(action)),
            .tooltip = canOpen ? "" : inWordsOf(system, reason),
            .action = action,
            .enabled = canOpen};
}

} // namespace vantry
