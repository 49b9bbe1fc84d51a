#include "app/ReportText.h"

#include "base/ByteSum.h"
#include "base/Format.h"
#include "base/Text.h"
#include "base/Utf8.h"
#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/window/AvenueRow.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <nlohmann/json.hpp>
#include <ranges>
#include <string_view>
#include <utility>
#include <vector>

namespace vantry {

namespace {

using Json = nlohmann::ordered_json;

enum class Style { heading, lowRisk, review, warning, faded };

std::string escapeSequence(Style style) {
    switch (style) {
    case Style::heading: return "\x1b[1m";
    case Style::lowRisk: return "\x1b[32m";
    case Style::review: return "\x1b[33m";
    case Style::warning: return "\x1b[31m";
    case Style::faded: return "\x1b[2m";
    }
    return {};
}

/// Builds the text, with colours or without.
class Report {
public:
    explicit Report(bool colored) : colored_(colored) {}

    [[nodiscard]] std::string styled(Style style, std::string_view text) const {
        return colored_ ? formatted("{}{}\x1b[0m", escapeSequence(style), text) : std::string(text);
    }
    void line(std::string_view text = {}) { text_ += formatted("{}\n", text); }
    /// Wraps at the terminal's width. All lines are indented, continuation lines by two more.
    void paragraph(std::string_view text, std::size_t indent) {
        constexpr std::size_t width = 80;
        std::string current(indent, ' ');
        bool isEmpty = true;
        for (const auto word : std::views::split(text, ' ')) {
            if (!isEmpty && current.size() + 1 + word.size() > width) {
                line(current);
                current.assign(indent + 2, ' ');
                isEmpty = true;
            }
            current += (isEmpty ? "" : " ") + std::string(word.begin(), word.end());
            isEmpty = false;
        }
        line(current);
    }
    void heading(std::string_view text) {
        line();
        line(styled(Style::heading, text));
    }
    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    std::string text_;
    bool colored_;
};

std::string printable(std::string_view text) {
    std::string result;
    const std::string valid = withReplacementCharacters(text);
    for (std::string_view rest = valid; !rest.empty();) {
        if (const auto length = deceptiveLength(rest); length != 0) {
            for (const char character : rest.substr(0, length))
                result += formatted("\\x{:02x}", static_cast<unsigned char>(character));
            rest.remove_prefix(length);
            continue;
        }
        result += rest.front() == '\\' ? "\\\\" : std::string(1, rest.front());
        rest.remove_prefix(1);
    }
    return result;
}

std::string shortPath(const std::filesystem::path& path, const std::filesystem::path& home) {
    const std::string prefix = home.native() + "/";
    if (!home.empty() && path.native().starts_with(prefix))
        return printable("~/" + path.native().substr(prefix.size()));
    return printable(path.native());
}

std::int64_t sumOfSizes(const std::vector<CleanupCandidate>& candidates, bool lowRiskOnly) {
    std::int64_t sum = 0;
    for (const auto& candidate : candidates)
        if (!lowRiskOnly || candidate.canMoveToTrash())
            addBytes(sum, candidate.size);
    return sum;
}

std::string amountText(const CleanupByteAmount& amount) {
    const auto bytes = amount.knownBytes();
    if (!bytes)
        return "size unknown";
    return (amount.isExact() ? "" : "at least ") + byteCountText(*bytes);
}

void appendStorage(Report& report, const std::optional<StorageSnapshot>& storage) {
    if (!storage) {
        report.line(report.styled(Style::warning, "The volume could not be read."));
        return;
    }
    report.line(report.styled(Style::heading, printable(storage->volumeName)));
    report.line(formatted("{} of {} used, {} available", byteCountText(storage->usedBytes()),
                          byteCountText(storage->totalBytes), byteCountText(storage->availableBytes)));
}

void appendTotals(Report& report, const CleanupScanReport& scanned) {
    report.line();
    if (scanned.candidates.empty()) {
        report.line("Nothing to review was found.");
        return;
    }
    const auto lowRisk = static_cast<std::size_t>(
        std::ranges::count_if(scanned.candidates, [](const auto& candidate) { return candidate.canMoveToTrash(); }));
    report.line(formatted("{} to review, {}; {}", countText(scanned.candidates.size(), "item"),
                          byteCountText(sumOfSizes(scanned.candidates, false)),
                          lowRisk == 0 ? "none of them low risk"
                                       : formatted("{} of them low risk, {}", lowRisk,
                                                   byteCountText(sumOfSizes(scanned.candidates, true)))));
}

void appendCandidates(Report& report, const CleanupScanReport& scanned, const std::filesystem::path& home,
                      HostSystem system) {
    for (const auto& row : allCleanupAreas) {
        bool first = true;
        for (const auto& candidate : scanned.candidates) {
            if (area(candidate.category) != row.value)
                continue;
            if (std::exchange(first, false))
                report.heading(inWordsOf(system, row.title));
            const auto style = candidate.confidence == CleanupConfidence::suggested ? Style::lowRisk : Style::review;
            report.line(formatted("{:>10}  {}  {}", byteCountText(candidate.size),
                                  report.styled(style, formatted("{:<12}", rawValue(candidate.confidence))),
                                  printable(candidate.title)));
            report.line(formatted("{:12}{}", "", report.styled(Style::faded, shortPath(candidate.url, home))));
            report.paragraph(inWordsOf(system, candidate.reason), 12);
            if (scanned.sizeIsLowerBound(candidate))
                report.line(formatted("{:12}At least {}; measuring stopped early", "", byteCountText(candidate.size)));
        }
    }
}

bool isTrouble(CleanupScanState state) {
    return state != CleanupScanState::checked && state != CleanupScanState::notPresent;
}

std::string_view explanation(CleanupScanState state) {
    switch (state) {
    case CleanupScanState::checked:
    case CleanupScanState::notPresent: return "";
    case CleanupScanState::limited: return "not all of it could be looked at, or there is more than is listed here";
    case CleanupScanState::relocated: return "the folder is a link to another place, which is not followed";
    case CleanupScanState::permissionNeeded: return "the folder may not be read";
    case CleanupScanState::unavailable: return "the folder is a link, or could not be listed";
    }
    return "";
}

void appendCategories(Report& report, const CleanupScanReport& scanned, HostSystem system) {
    report.heading("Checked places");
    for (const auto& row : allCleanupCategories) {
        const auto state = scanned.states.at(row.value);
        if (state == CleanupScanState::notPresent && system != HostSystem::macOS)
            continue; // most places of a Mac are missing
        const auto& metric = scanned.metrics.at(row.value);
        const std::string title = formatted("{:<22}", inWordsOf(system, vantry::title(state)));
        std::string line = formatted("  {:<26}{}{:>20}", inWordsOf(system, row.rawValue),
                                     isTrouble(state) ? report.styled(Style::warning, title) : title,
                                     state == CleanupScanState::notPresent ? "" : amountText(metric.occupied));
        report.line(line.substr(0, line.find_last_not_of(' ') + 1));
        if (metric.reviewableItemCount != 0)
            report.line(formatted("{:28}{} to review, {}", "",
                                  countText(static_cast<std::size_t>(metric.reviewableItemCount), "item"),
                                  byteCountText(metric.reviewableBytes)));
    }
    bool first = true;
    for (const auto& row : allCleanupCategories) {
        const auto state = scanned.states.at(row.value);
        if (!isTrouble(state))
            continue;
        if (std::exchange(first, false))
            report.heading("Not checked completely");
        report.paragraph(formatted("{}: {}", inWordsOf(system, row.rawValue), explanation(state)), 2);
    }
}

const GuideUsage* measured(const CleanupAvenue& avenue, const CleanupScanReport& scanned) {
    const auto found = scanned.guide.find(std::string(avenue.identifier));
    return found == scanned.guide.end() ? nullptr : &found->second;
}

void appendGuide(Report& report, const CleanupScanReport& scanned, const std::filesystem::path& home,
                 HostSystem system) {
    bool first = true;
    for (const auto& avenue : CleanupAvenue::catalog(system)) {
        const auto* usage = measured(avenue, scanned);
        if (!usage || usage->state == CleanupScanState::notPresent)
            continue;
        if (std::exchange(first, false))
            report.heading("Other places, which Ombrel only measures");
        const auto bytes = usage->occupied.knownBytes();
        const auto remark = !bytes                      ? ": " + std::string(title(usage->state))
                            : usage->occupied.isExact() ? ""
                                                        : ", at least";
        report.line(formatted("{:>10}  {}{}", bytes ? byteCountText(*bytes) : "", avenue.title, remark));
        for (const auto& path : usage->paths)
            report.line(formatted("{:12}{}", "", report.styled(Style::faded, shortPath(path, home))));
        report.paragraph(inWordsOf(system, avenue.detail) + (usage->note.empty() ? "" : " " + usage->note), 12);
        if (offersCommand(avenue, scanned))
            report.line(formatted("{:12}{}", "", avenue.command));
    }
}

Json storageJson(const std::optional<StorageSnapshot>& storage) {
    if (!storage)
        return nullptr;
    Json object{{"volumeName", storage->volumeName},
                {"totalBytes", storage->totalBytes},
                {"availableBytes", storage->availableBytes},
                {"usedBytes", storage->usedBytes()},
                {"updatedAt", iso8601Text(storage->updatedAt)}};
    if (storage->reservedBytes)
        object["reservedBytes"] = *storage->reservedBytes;
    return object;
}

Json candidateJson(const CleanupCandidate& candidate, bool sizeIsLowerBound) {
    Json object;
    const auto& path = candidate.url.native();
    if (isUtf8(path))
        object["path"] = path;
    else
        object["pathEncoded"] = percentEncoded(path);
    object["title"] = candidate.title;
    object["category"] = rawValue(candidate.category);
    object["categoryId"] = identifier(candidate.category);
    object["area"] = title(area(candidate.category));
    object["areaId"] = identifier(area(candidate.category));
    object["reason"] = candidate.reason;
    object["sizeBytes"] = candidate.size;
    object["sizeIsLowerBound"] = sizeIsLowerBound;
    object["confidence"] = rawValue(candidate.confidence);
    object["disposition"] = title(candidate.removalDisposition());
    object["dispositionId"] = identifier(candidate.removalDisposition());
    object["modifiedAt"] =
        candidate.scannedModificationDate ? Json(iso8601Text(*candidate.scannedModificationDate)) : Json(nullptr);
    return object;
}

Json amountJson(const CleanupByteAmount& amount) {
    if (!amount.knownBytes())
        return {{"kind", "unavailable"}};
    return {{"kind", amount.isExact() ? "exact" : "atLeast"}, {"bytes", *amount.knownBytes()}};
}

Json guideJson(const CleanupAvenue& avenue, const GuideUsage& usage) {
    Json paths = Json::array();
    for (const auto& path : usage.paths)
        paths.push_back(path.native());
    return {{"guideId", avenue.identifier},
            {"title", avenue.title},
            {"detail", avenue.detail},
            {"area", title(avenue.area)},
            {"areaId", identifier(avenue.area)},
            {"state", title(usage.state)},
            {"stateId", identifier(usage.state)},
            {"occupied", amountJson(usage.occupied)},
            {"paths", std::move(paths)},
            {"note", usage.note.empty() ? Json(nullptr) : Json(usage.note)},
            {"command", avenue.command.empty() ? Json(nullptr) : Json(avenue.command)}};
}

} // namespace

std::string reportText(const CleanupScanReport& scanned, const std::filesystem::path& home, bool colored,
                       HostSystem system) {
    Report report(colored);
    appendStorage(report, scanned.storageSnapshot);
    appendTotals(report, scanned);
    appendCandidates(report, scanned, home, system);
    appendCategories(report, scanned, system);
    appendGuide(report, scanned, home, system);
    report.line();
    report.line(report.styled(Style::faded,
                              formatted("Checked in {:.1f} seconds; nothing was changed.", scanned.duration.count())));
    return report.take();
}

std::string reportJson(const CleanupScanReport& scanned) {
    Json object;
    object["storage"] = storageJson(scanned.storageSnapshot);
    object["durationSeconds"] = scanned.duration.count();
    object["candidates"] = Json::array();
    for (const auto& candidate : scanned.candidates)
        object["candidates"].push_back(candidateJson(candidate, scanned.sizeIsLowerBound(candidate)));
    object["categories"] = Json::object();
    for (const auto& row : allCleanupCategories) {
        const auto& metric = scanned.metrics.at(row.value);
        object["categories"][std::string(row.rawValue)] = {{"categoryId", row.identifier},
                                                           {"state", title(scanned.states.at(row.value))},
                                                           {"stateId", identifier(scanned.states.at(row.value))},
                                                           {"occupied", amountJson(metric.occupied)},
                                                           {"reviewableBytes", metric.reviewableBytes},
                                                           {"reviewableItemCount", metric.reviewableItemCount}};
    }
    object["guide"] = Json::array();
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        if (const auto* usage = measured(avenue, scanned))
            object["guide"].push_back(guideJson(avenue, *usage));
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace vantry
