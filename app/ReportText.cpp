#include "app/ReportText.h"

#include "base/Format.h"
#include "base/Utf8.h"
#include "platform/TextFormat.h"

#include <algorithm>
#include <limits>
#include <nlohmann/json.hpp>
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
    void heading(std::string_view text) {
        line();
        line(styled(Style::heading, text));
    }
    [[nodiscard]] std::string take() { return std::move(text_); }

private:
    std::string text_;
    bool colored_;
};

// Whether the UTF-8 at the begin of `text` is a character that would move a terminal's cursor, change its state, or let
// a name look like another: the controls, and what sets the direction of writing.
bool isControl(std::string_view text, std::size_t& length) {
    const auto byte = [&](std::size_t i) { return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U; };
    length = 1;
    if (byte(0) < 0x20 || byte(0) == 0x7f)
        return true;
    length = 2;
    if ((byte(0) == 0xc2 && byte(1) >= 0x80 && byte(1) <= 0x9f) || (byte(0) == 0xd8 && byte(1) == 0x9c))
        return true;
    length = 3;
    if (byte(0) != 0xe2)
        return false;
    return (byte(1) == 0x80 && (byte(2) == 0x8e || byte(2) == 0x8f || (byte(2) >= 0xa8 && byte(2) <= 0xae))) ||
           (byte(1) == 0x81 && byte(2) >= 0xa6 && byte(2) <= 0xa9);
}

std::string printable(std::string_view text) {
    std::string result;
    const std::string valid = withReplacementCharacters(text);
    for (std::string_view rest = valid; !rest.empty();) {
        std::size_t length = 0;
        if (isControl(rest, length)) {
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

std::string countText(std::size_t count, std::string_view one, std::string_view several) {
    return formatted("{} {}", count, count == 1 ? one : several);
}

std::int64_t sumOfSizes(const std::vector<CleanupCandidate>& candidates, bool lowRiskOnly) {
    std::int64_t sum = 0;
    for (const auto& candidate : candidates)
        if (!lowRiskOnly || candidate.canMoveToTrash())
            if (__builtin_add_overflow(sum, candidate.size, &sum))
                return std::numeric_limits<std::int64_t>::max();
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
    report.line(formatted("{} to review, {}; {}", countText(scanned.candidates.size(), "item", "items"),
                          byteCountText(sumOfSizes(scanned.candidates, false)),
                          lowRisk == 0 ? "none of them low risk"
                                       : formatted("{} of them low risk, {}", lowRisk,
                                                   byteCountText(sumOfSizes(scanned.candidates, true)))));
}

void appendCandidates(Report& report, const CleanupScanReport& scanned, const std::filesystem::path& home) {
    for (const auto& row : allCleanupAreas) {
        bool first = true;
        for (const auto& candidate : scanned.candidates) {
            if (area(candidate.category) != row.value)
                continue;
            if (std::exchange(first, false))
                report.heading(row.title);
            const auto style = candidate.confidence == CleanupConfidence::suggested ? Style::lowRisk : Style::review;
            report.line(formatted("{:>10}  {}  {}", byteCountText(candidate.size),
                                  report.styled(style, formatted("{:<12}", rawValue(candidate.confidence))),
                                  printable(candidate.title)));
            report.line(formatted("{:26}{}", "", report.styled(Style::faded, shortPath(candidate.url, home))));
            report.line(formatted("{:26}{}", "", candidate.reason));
            if (scanned.sizeIsLowerBound(candidate))
                report.line(formatted("{:26}At least {}; measuring stopped early", "", byteCountText(candidate.size)));
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

void appendCategories(Report& report, const CleanupScanReport& scanned) {
    report.heading("Checked places");
    for (const auto& row : allCleanupCategories) {
        const auto state = scanned.states.at(row.value);
        const auto& metric = scanned.metrics.at(row.value);
        const std::string title = formatted("{:<22}", vantry::title(state));
        std::string line =
            formatted("  {:<26}{}{:>20}", row.rawValue, isTrouble(state) ? report.styled(Style::warning, title) : title,
                      state == CleanupScanState::notPresent ? "" : amountText(metric.occupied));
        if (metric.reviewableItemCount != 0)
            line +=
                formatted("  {}, {}", countText(static_cast<std::size_t>(metric.reviewableItemCount), "item", "items"),
                          byteCountText(metric.reviewableBytes));
        report.line(line.substr(0, line.find_last_not_of(' ') + 1));
    }
    bool first = true;
    for (const auto& row : allCleanupCategories) {
        const auto state = scanned.states.at(row.value);
        if (!isTrouble(state))
            continue;
        if (std::exchange(first, false))
            report.heading("Not checked completely");
        report.line(formatted("  {}: {}", row.rawValue, explanation(state)));
    }
}

std::string percentEncoded(std::string_view bytes) {
    std::string result;
    for (const char character : bytes) {
        const auto byte = static_cast<unsigned char>(character);
        const bool plain = (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') ||
                           (byte >= '0' && byte <= '9') ||
                           std::string_view("-._~/").find(character) != std::string_view::npos;
        result += plain ? std::string(1, character) : formatted("%{:02X}", byte);
    }
    return result;
}

Json storageJson(const std::optional<StorageSnapshot>& storage) {
    if (!storage)
        return nullptr;
    return {{"volumeName", storage->volumeName},
            {"totalBytes", storage->totalBytes},
            {"availableBytes", storage->availableBytes},
            {"usedBytes", storage->usedBytes()},
            {"updatedAt", iso8601Text(storage->updatedAt)}};
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
    object["area"] = title(area(candidate.category));
    object["reason"] = candidate.reason;
    object["sizeBytes"] = candidate.size;
    object["sizeIsLowerBound"] = sizeIsLowerBound;
    object["confidence"] = rawValue(candidate.confidence);
    object["disposition"] = title(candidate.removalDisposition());
    object["modifiedAt"] =
        candidate.scannedModificationDate ? Json(iso8601Text(*candidate.scannedModificationDate)) : Json(nullptr);
    return object;
}

Json amountJson(const CleanupByteAmount& amount) {
    if (!amount.knownBytes())
        return {{"kind", "unavailable"}};
    return {{"kind", amount.isExact() ? "exact" : "atLeast"}, {"bytes", *amount.knownBytes()}};
}

} // namespace

std::string reportText(const CleanupScanReport& scanned, const std::filesystem::path& home, bool colored) {
    Report report(colored);
    appendStorage(report, scanned.storageSnapshot);
    appendTotals(report, scanned);
    appendCandidates(report, scanned, home);
    appendCategories(report, scanned);
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
        object["categories"][std::string(row.rawValue)] = {{"state", title(scanned.states.at(row.value))},
                                                           {"occupied", amountJson(metric.occupied)},
                                                           {"reviewableBytes", metric.reviewableBytes},
                                                           {"reviewableItemCount", metric.reviewableItemCount}};
    }
    return object.dump(-1, ' ', false, Json::error_handler_t::replace) + "\n";
}

} // namespace vantry
