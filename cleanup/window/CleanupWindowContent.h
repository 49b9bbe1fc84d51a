#pragma once

#include "base/Color.h"
#include "base/Geometry.h"
#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupCategory.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <variant>
#include <vector>

namespace vantry {

// Everything that the "Free Up Space" window shows. Symbols are named as in SF Symbols.

/// The two views of a scan's results, in the order of the mode control's segments.
enum class CleanupWindowMode { filesFound, storageGuide };

struct SummaryCardContent {
    std::string title;
    std::string detail;
    std::string value = "—";
    SystemColor color = SystemColor::label; ///< the accent

    bool operator==(const SummaryCardContent&) const = default;
};

struct CleanupButtonContent {
    std::string title;
    bool enabled = true;
    bool hidden = false;

    bool operator==(const CleanupButtonContent&) const = default;
};

/// Shown in the middle of the results if there are none.
struct EmptyStateContent {
    std::string symbolName;
    std::string title;
    std::string detail;

    bool operator==(const EmptyStateContent&) const = default;
};

/// One file or folder that was found.
struct CandidateRowContent {
    std::string identifier; ///< of its controls: "candidate-" and the candidate's UI id
    std::string symbolName; ///< before the title; empty where there is a checkbox
    bool selected = false;  ///< the checkbox
    std::string selectionAccessibilityLabel;
    std::string title;
    std::string reason;
    std::string note; ///< why it cannot be selected; empty where it can
    std::string sizeText;
    std::string sizeDetail; ///< that the size is a lower bound; empty for an exact size
    std::string badge;
    SystemColor badgeColor = SystemColor::label; ///< of the badge and the symbol
    std::string tooltip; ///< the path, with U+FFFD for bytes that are not UTF-8, and the size's detail
    std::string revealAccessibilityLabel;
    std::string revealTooltip;

    bool operator==(const CandidateRowContent&) const = default;
};

/// A button that puts a command on the clipboard.
struct CopyCommand {
    std::string command;

    bool operator==(const CopyCommand&) const = default;
};

using AvenueButtonAction = std::variant<CleanupAvenue::Action, CopyCommand>;

/// The button of an avenue.
struct AvenueButtonContent {
    std::string title;
    std::string tooltip;
    AvenueButtonAction action = CleanupAvenue::Action::home;
    bool enabled = true;

    bool operator==(const AvenueButtonContent&) const = default;
};

/// One avenue of the catalog with its status.
struct AvenueRowContent {
    std::string symbolName;
    std::string title;
    std::string detail;
    std::string status;
    std::string usage; ///< below the status, in the secondary colour
    SystemColor statusColor = SystemColor::label;
    std::optional<AvenueButtonContent> button;

    bool operator==(const AvenueRowContent&) const = default;
};

/// One area: a header, and one card with its rows, all of one kind.
struct CleanupSectionContent {
    CleanupArea area = CleanupArea::quickWins;
    std::string symbolName;
    std::string title;
    std::string subtitle;
    std::string trailingText;
    std::vector<CandidateRowContent> candidates;
    std::vector<AvenueRowContent> avenues;

    bool operator==(const CleanupSectionContent&) const = default;
};

struct CleanupWindowContent {
    std::string windowTitle = "Ombrel · Free Up Space";
    Size size{940, 760}; ///< points
    Size minimumSize{780, 620};

    std::string titleLabel = "Free Up Space";
    std::string subtitleLabel =
        "See what is using space, what can be selected, and what must stay protected."; ///< in the secondary colour
    SummaryCardContent macStorageCard{"Mac Storage Used", "Everything stored on this Mac", "—", SystemColor::blue};
    SummaryCardContent foundCard{"Files Found", "Shown only; nothing removed", "—", SystemColor::orange};
    SummaryCardContent selectedCard{"Selected for Trash", "Recoverable until Trash is emptied", "—",
                                    SystemColor::green};
    std::array<std::string, 2> modeLabels{"Files Found", "Storage Guide"};
    CleanupWindowMode modeControl = CleanupWindowMode::filesFound; ///< the selected segment
    CleanupButtonContent scanButton{"Scan Again"};
    bool progressIndicator = false; ///< whether it spins; hidden otherwise
    CleanupButtonContent selectSuggestedButton{"Select Low-Risk Files", false};
    CleanupButtonContent trashButton{"Move to Trash…", false}; ///< marked destructive
    std::string noticeSymbolName = "lock.shield.fill";         ///< green, like the border and the fill around it
    std::string notice =
        "Only individual low-risk files can be selected. macOS files, app databases, documents, photos, "
        "messages, passwords, game saves, and device backups are blocked.";
    std::string statusLabel = "Scan local metadata to find explainable cleanup opportunities.";
    std::string selectionLabel = "Nothing selected"; ///< in the secondary colour

    std::optional<EmptyStateContent> emptyState; ///< replaces the sections
    std::vector<CleanupSectionContent> sections;
    bool selectionEnabled = true; ///< whether the checkboxes of the rows can be used

    bool operator==(const CleanupWindowContent&) const = default;
};

/// A warning on a sheet of the window. The first button is the default; the last one stands for Escape and for a sheet
/// that closes unanswered.
struct AlertContent {
    std::string message;
    std::string informativeText;
    std::vector<std::string> buttons; ///< one or two titles

    bool operator==(const AlertContent&) const = default;
};

/// Which button of an alert was pressed.
enum class AlertAnswer { first, last };

} // namespace vantry
