#pragma once

#include "base/Text.h"
#include "cleanup/window/CleanupWindowContent.h"
#include "cleanup/window/MoveTexts.h"
#include "platform/TextFormat.h"
#include "tests/cleanup/window/ExploredDisk.h"
#include "tests/cleanup/window/MoveExplorer.h"

#include <algorithm>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace vantry::MoveExplorer {

/// `byteCountText`, remembered: it looks up the user's locale on each call, and there are few sizes.
inline const std::string& sizeText(std::int64_t bytes) {
    static std::map<std::int64_t, std::string> texts;
    auto& text = texts[bytes];
    if (text.empty())
        text = byteCountText(bytes);
    return text;
}

/// What the window should show after everything that has happened so far.
struct ExploredModel {
    /// A row of the results.
    struct Row {
        std::string identifier, uiID, title;
        std::int64_t size;
        bool isLowRisk, isTicked = false;
    };
    std::function<void(bool holds, const char* rule)> expect;

    State state = State::idle;
    std::vector<Row> rows;
    std::string status;
    bool isGuide = false;
    bool confirms = false;              ///< the sheet asks for a confirmation
    std::vector<std::string> misplaced; ///< where the files are that the sheet tells of
    int attempt = 0;                    ///< of all checks, the last one
    bool hasNews = false;               ///< since this was set to false

    [[nodiscard]] bool is(State other) const { return state == other; }
    [[nodiscard]] bool isChecking() const { return is(State::checking) || is(State::checkingAgain); }
    [[nodiscard]] CandidateTotal ticked() const {
        CandidateTotal total;
        for (const auto& row : rows)
            if (row.isTicked) {
                ++total.count;
                total.bytes += row.size;
            }
        return total;
    }

    void selectAll() {
        if (is(State::idle))
            for (auto& row : rows)
                row.isTicked = row.isLowRisk;
    }
    void checkBegins() {
        if (is(State::idle) && ticked().count > 0)
            enter(State::checking);
    }
    void scanBegins() {
        if (state != State::idle)
            return;
        for (auto& row : rows)
            row.isTicked = false;
        enter(State::scanning);
    }

    /// The user has answered the sheet.
    void answered(AlertAnswer button, ExploredDisk::Move& move) {
        if (state == State::ended)
            return;
        const bool confirmed = std::exchange(confirms, false) && button == AlertAnswer::first;
        if (!confirmed) {
            enter(State::idle);
            return;
        }
        move = {};
        for (const auto& row : rows)
            if (row.isTicked)
                move.confirmed.push_back(row.uiID);
        enter(State::checkingAgain);
    }

    void scanned(const std::vector<CleanupCandidate>& candidates) {
        rows.clear();
        CandidateTotal total, lowRisk;
        for (const auto& found : candidates) {
            rows.push_back({"candidate-" + found.uiID, found.uiID, found.title, found.size, found.canMoveToTrash()});
            total.add(found);
            if (found.canMoveToTrash())
                lowRisk.add(found);
        }
        status = "Scan complete · This Mac uses 300 GB of 500 GB · " + countText(total.count, "file") + " shown use " +
                 sizeText(total.bytes) + " · " + countText(lowRisk.count, "low-risk file") + " can be selected";
        enter(State::idle);
    }

    /// The check that `state` names has ended.
    void checked(bool failed, bool windowIsShown) {
        if (!windowIsShown) {
            enter(State::idle);
        } else if (failed) {
            enter(State::asking);
        } else if (state == State::checkingAgain) {
            enter(State::moving);
        } else {
            confirms = true;
            enter(State::asking);
        }
    }

    void moved(const ExploredDisk& disk) {
        const auto& move = disk.move;
        expect(move.begun == move.confirmed, "all that was confirmed is tried");
        expect(disk.isAccountedFor(), "what was moved is recorded when the move has ended");
        for (const auto* gone : {&move.moved, &move.misplaced})
            std::erase_if(rows, [&](const Row& row) { return std::ranges::count(*gone, row.uiID) > 0; });
        status = "Moved " + countText(move.moved.size(), "item") + " to the Trash";
        if (!move.left.empty())
            status += "; " + std::to_string(move.left.size()) + " could not be moved";
        else if (!move.moved.empty() && move.recordWasWritten)
            status += " · a privacy-safe local record was saved";
        misplaced = move.misplacedPaths;
        enter(misplaced.empty() ? State::idle : State::asking);
    }

    void enter(State next) {
        state = next;
        if (!is(State::asking))
            misplaced.clear();
        attempt += isChecking() ? 1 : 0;
        hasNews = true;
    }

    /// Compares all that is shown. A sheet that should ask may be missing where `mayLackSheet` says so.
    void compare(const CleanupWindowContent& content, const std::optional<AlertContent>& alert,
                 const std::function<bool()>& mayLackSheet) const {
        const bool isIdle = is(State::idle), isAsking = is(State::asking);
        const auto selected = ticked();
        if (isAsking && alert)
            compareAlert(*alert, selected);
        else if (isAsking)
            expect(mayLackSheet(), "a sheet asks");
        expect(content.progressIndicator == (!isIdle && !isAsking), "the indicator turns while something is under way");
        expect(content.scanButton.enabled == isIdle, "Scan Again is enabled when nothing is under way");
        expect(content.selectionEnabled == isIdle, "rows can be ticked when nothing is under way");
        expect(content.selectSuggestedButton.enabled == (isIdle && std::ranges::any_of(rows, &Row::isLowRisk)),
               "Select Low-Risk Files is enabled when there are some and nothing is under way");
        expect(content.trashButton.enabled == (isIdle && selected.count > 0) || isGuide,
               "Move to Trash… is enabled when something is ticked and nothing is under way");
        expect(content.selectSuggestedButton.hidden == isGuide && content.trashButton.hidden == isGuide,
               "the buttons are hidden in the guide");
        if (!isGuide)
            compareFiles(content, selected);
    }

private:
    void compareAlert(const AlertContent& alert, const CandidateTotal& selected) const {
        const auto& [message, text, buttons] = alert;
        if (confirms)
            expect(message == "Move " + countText(selected.count, "selected item") + " to the Trash?" &&
                       text.find("approximately " + sizeText(selected.bytes) + " to") != std::string::npos,
                   "the sheet asks for what is ticked");
        else
            expect(buttons.size() == 1, "only a confirmation asks for more than OK");
        for (const auto& path : misplaced)
            expect(text.find(path) != std::string::npos, "the sheet tells where misplaced files are");
    }

    void compareFiles(const CleanupWindowContent& content, const CandidateTotal& selected) const {
        expect(content.selectionLabel == (selected.count == 0 ? "Nothing selected · Only low-risk files can be selected"
                                                              : std::to_string(selected.count) + " selected · " +
                                                                    sizeText(selected.bytes) + " will move to Trash"),
               "the label tells what is ticked");
        expect(content.selectedCard.value == sizeText(selected.bytes), "the card tells the size of what is ticked");
        expect(content.emptyState.has_value() == content.sections.empty(), "there are rows or a text in their place");
        if (state == State::scanning) {
            expect(content.emptyState && content.emptyState->title == "Checking storage…",
                   "no result of an earlier scan is shown during a scan");
            return;
        }
        CandidateTotal all;
        std::size_t count = 0;
        for (const auto& section : content.sections)
            for (const auto& shownRow : section.candidates) {
                const auto row = std::ranges::find(rows, shownRow.identifier, &Row::identifier);
                expect(row != rows.end(), "only what the last scan found and is still there is shown");
                if (row == rows.end())
                    return;
                expect(row->isTicked == shownRow.selected, "the rows tell what is ticked");
                expect(shownRow.sizeText == "Uses " + sizeText(row->size), "the rows tell sizes");
                ++count;
                all.bytes += row->size;
            }
        expect(count == rows.size(), "everything found is shown");
        expect(content.foundCard.value == sizeText(all.bytes) &&
                   content.foundCard.detail == countText(count, "file") + " shown; nothing removed automatically",
               "the card tells what is shown");
        expect(content.statusLabel == (state == State::moving                                      ? movingText
                                       : state == State::checking || state == State::checkingAgain ? checkingText
                                                                                                   : status),
               "the status tells what is under way or was done last");
    }
};

} // namespace vantry::MoveExplorer
