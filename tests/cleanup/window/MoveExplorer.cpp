#include "tests/cleanup/window/MoveExplorer.h"

#include "app/AppDelegate.h"
#include "base/Format.h"
#include "base/UniqueFd.h"
#include "cleanup/window/CountText.h"
#include "cleanup/window/MoveTexts.h"
#include "platform/TextFormat.h"
#include "tests/cleanup/window/ExploredDisk.h"
#include "tests/support/FakeServices.h"
#include "tests/support/FakeShell.h"

#include <atomic>
#include <deque>
#include <fcntl.h>
#include <map>
#include <optional>
#include <string_view>
#include <thread>
#include <unistd.h>

namespace vantry::MoveExplorer {

namespace {

struct EventRow {
    Event event;
    const char* words;
    unsigned weight; ///< how often it is tried
};

constexpr std::array<EventRow, eventCount> events{{
    {Event::tick, "the user ticks or unticks a row", 24},
    {Event::selectAll, "the user presses Select Low-Risk Files", 10},
    {Event::changeMode, "the user changes the mode", 1},
    {Event::rescan, "the user presses Scan Again", 1},
    {Event::trash, "the user presses Move to Trash…", 50},
    {Event::answerFirst, "the user presses the sheet's first button", 60},
    {Event::answerLast, "the user presses the sheet's last button", 4},
    {Event::closeWindow, "the user closes the window", 1},
    {Event::openWindow, "the user opens the window", 1},
    {Event::reveal, "the user presses the button that reveals a row", 1},
    {Event::escape, "the user presses Escape", 1},
    {Event::quit, "the user quits", 1},
    {Event::startBlock, "a waiting background block starts", 40},
    {Event::goOn, "the disk answers the block that runs", 60},
    {Event::runMain, "the main thread runs what was posted first", 50},
    {Event::fileChanges, "another program changes a file", 1},
    {Event::fileIsReplaced, "another program puts a new file in a file's place", 1},
    {Event::fileGrows, "another program makes a file larger", 1},
    {Event::infoIsRemoved, "another program removes the next info file", 1},
    {Event::putBackIsRefused, "another program removes the next info file for good and takes the file's name", 1},
    {Event::recordsAreRefused, "records can no longer be written, or can be again", 1},
    {Event::diskHangs, "the disk hangs", 2},
    {Event::diskAnswers, "the disk answers again", 4},
}};
constexpr std::array<const char*, stateCount> states{"idle",           "scanning", "checking", "asking",
                                                     "checking again", "moving",   "ended"};

/// `byteCountText`, which asks for the user's locale each time. There are few sizes.
const std::string& sizeText(std::int64_t bytes) {
    static std::map<std::int64_t, std::string> texts;
    auto& text = texts[bytes];
    if (text.empty())
        text = byteCountText(bytes);
    return text;
}

/// Whether the kernel says that a thread of this process sleeps; 0 is none.
bool isWaiting(pid_t thread) {
    const UniqueFd status(open(("/proc/self/task/" + std::to_string(thread) + "/stat").c_str(), O_RDONLY | O_CLOEXEC));
    std::array<char, 256> text{};
    return status && read(status.get(), text.data(), text.size() - 1) > 0 &&
           std::string_view(text.data()).find(") S ") != std::string_view::npos;
}

/// Knows when there is something new to look at.
class ExploredShell : public FakeShell {
public:
    using FakeShell::FakeShell;
    void renderCleanupWindow(const CleanupWindowContent& content) override {
        FakeShell::renderCleanupWindow(content);
        hasNews = true;
    }
    bool hasNews = false;
};

/// The controllers, what is around them, and what the window should show.
class World {
public:
    using Next = std::function<std::optional<Step>(const World&)>;

    World(bool isImpatient, Meetings& meetings, std::vector<std::string>* story, Next next)
        : isImpatient_(isImpatient),
          meetings_(meetings),
          story_(story),
          next_(std::move(next)) {
        disk_.pause = [this] { pause(); };
        disk_.expect = [this](bool holds, const char* rule) { expect(holds, rule); };
        disk_.longestEnding = isImpatient ? std::chrono::milliseconds(0) : std::chrono::seconds(20);
        auto services = services_.appServices();
        services.makeCleanupServices = [this] { return disk_.services(); };
        delegate_ = std::make_shared<AppDelegate>(shell_, std::move(services));
    }

    /// The rule that was broken, if any.
    std::string play() {
        playSteps();
        while (isWhole() && (mainQueue_.postedCount() > 0 || backgroundQueue_.waitingCount() > 0 || asks()))
            perform({mainQueue_.postedCount() > 0          ? Event::runMain
                     : backgroundQueue_.waitingCount() > 0 ? Event::startBlock
                                                           : Event::answerLast});
        expect(state_ == State::idle || state_ == State::ended, "nothing stays disabled");
        return brokenRule_;
    }

    [[nodiscard]] bool hasBegun() const { return shell_.cleanupWindow.has_value(); }
    [[nodiscard]] bool hasEnded() const { return state_ == State::ended; }

    /// Whether the event can happen at all.
    [[nodiscard]] bool isPossible(Event event) const {
        switch (event) {
        case Event::openWindow:
        case Event::quit: return state_ != State::ended;
        case Event::answerFirst:
        case Event::answerLast: return asks();
        case Event::closeWindow: return shell_.cleanupWindowShown && controller();
        case Event::startBlock: return backgroundQueue_.waitingCount() > 0;
        case Event::goOn: return depth_ > 0 && !hangs_;
        case Event::runMain: return mainQueue_.postedCount() > 0;
        case Event::diskHangs: return isImpatient_ && !hangs_;
        case Event::diskAnswers: return hangs_;
        case Event::tick:
        case Event::reveal: return controller() && !rows_.empty();
        case Event::selectAll:
        case Event::changeMode:
        case Event::rescan:
        case Event::trash:
        case Event::escape: return controller() != nullptr;
        default: return true;
        }
    }

    /// Whether the window that is shown lets the user do it. What others do is always offered.
    [[nodiscard]] bool isOffered(Event event) const {
        const bool isUsable = shell_.cleanupWindowShown && !shell_.alert;
        const auto pressable = [&](const CleanupButtonContent& button) {
            return isUsable && button.enabled && !button.hidden;
        };
        switch (event) {
        case Event::tick: return isUsable && shown().selectionEnabled && !shown().sections.empty() && !isGuide_;
        case Event::reveal: return isUsable && !shown().sections.empty() && !isGuide_;
        case Event::changeMode: return isUsable;
        case Event::escape: return shell_.cleanupWindowShown;
        case Event::selectAll: return pressable(shown().selectSuggestedButton);
        case Event::rescan: return pressable(shown().scanButton);
        case Event::trash: return pressable(shown().trashButton);
        default: return true;
        }
    }

private:
    /// A row of the results.
    struct Row {
        std::string identifier, uiID, title;
        std::int64_t size;
        bool isLowRisk, isTicked = false;
    };
    /// What a block is for, and then what it has posted.
    struct Work {
        State state;
        int attempt = 0; ///< of the checks: which one
        bool failed = false;
    };

    // ---- time

    [[nodiscard]] bool isWhole() const { return brokenRule_.empty(); }
    void expect(bool holds, const char* rule) {
        if (!holds && isWhole())
            brokenRule_ = rule;
    }

    void playSteps() {
        while (isWhole() && !unwinds_) {
            const auto step = next_(*this);
            if (!step) {
                if (hangs_)
                    endTheHang();
                return;
            }
            if (!isPossible(step->event))
                continue;
            if (step->event == Event::goOn) {
                note(*step);
                return;
            }
            perform(*step);
        }
    }

    /// The disk takes its time: a part of a block has run, and the rest of the world goes on.
    void pause() {
        ++depth_;
        playSteps();
        --depth_;
    }

    /// A check that never returns can be given up; everything else waits for the disk.
    void endTheHang() {
        while (isWhole() && mainQueue_.postedCount() > 0)
            perform({Event::runMain});
        if (state_ == State::checking || state_ == State::checkingAgain) {
            perform({shell_.cleanupWindowShown && attempt_ % 2 == 0 ? Event::closeWindow : Event::escape});
            expect(state_ == State::idle && shown().scanButton.enabled, "a check that hangs can be given up");
        }
        hangs_ = false;
    }

    void note(const Step& step) {
        ++meetings_[static_cast<std::size_t>(step.event)][static_cast<std::size_t>(state_)];
        if (story_)
            story_->push_back(std::string(states[static_cast<std::size_t>(state_)]) + ": " +
                              std::string(2 * depth_, ' ') +
                              (isOffered(step.event) ? "" : "by a click that was on its way, ") +
                              events[static_cast<std::size_t>(step.event)].words + wordsFor(step));
    }

    [[nodiscard]] std::string wordsFor(const Step& step) const {
        switch (step.event) {
        case Event::tick: return ": " + rows_[rowOf(step)].title;
        case Event::fileChanges:
        case Event::fileIsReplaced:
        case Event::fileGrows: return ": " + disk_.files[step.which % disk_.files.size()].path.native();
        case Event::startBlock:
            return std::string(": ") + states[static_cast<std::size_t>(waiting_[blockOf(step)].state)];
        case Event::runMain:
            return std::string(": ") + states[static_cast<std::size_t>(posted_.front().state)] + " is done";
        default: return "";
        }
    }

    void perform(const Step& step) {
        note(step);
        switch (step.event) {
        case Event::tick: tick(step); break;
        case Event::selectAll: selectAll(); break;
        case Event::changeMode: changeMode(); break;
        case Event::rescan: rescan(); break;
        case Event::trash: trash(); break;
        case Event::answerFirst: answer(AlertAnswer::first); break;
        case Event::answerLast: answer(AlertAnswer::last); break;
        case Event::closeWindow: closeWindow(); break;
        case Event::openWindow: openWindow(step); break;
        case Event::reveal: controller()->revealPressed(rows_[rowOf(step)].identifier); break;
        case Event::escape: escape(); break;
        case Event::quit: quit(); break;
        case Event::startBlock: startBlock(blockOf(step)); break;
        case Event::runMain: runMain(); break;
        case Event::fileChanges: ++fileOf(step).modification; break;
        case Event::fileIsReplaced:
            ++fileOf(step).identity;
            fileOf(step).isInPlace = true;
            break;
        case Event::fileGrows: fileOf(step).size += fileOf(step).growth; break;
        case Event::infoIsRemoved: disk_.infoIsRemoved = true; break;
        case Event::putBackIsRefused: disk_.infoIsRemoved = disk_.putBackIsRefused = true; break;
        case Event::recordsAreRefused: disk_.recordsAreRefused = !disk_.recordsAreRefused; break;
        case Event::diskHangs: hangs_ = true; break;
        case Event::diskAnswers: hangs_ = false; break;
        case Event::goOn: break;
        }
        compare();
    }

    // ---- what the user does, and what should come of it

    void tick(const Step& step) {
        auto& row = rows_[rowOf(step)];
        controller()->candidateSelectionChanged(row.identifier, !row.isTicked);
        if (state_ == State::idle && row.isLowRisk)
            row.isTicked = !row.isTicked;
    }

    void selectAll() {
        controller()->selectSuggestedPressed();
        if (state_ == State::idle)
            for (auto& row : rows_)
                row.isTicked = row.isLowRisk;
    }

    void changeMode() {
        isGuide_ = !isGuide_;
        controller()->modeChanged(isGuide_ ? CleanupWindowMode::storageGuide : CleanupWindowMode::filesFound);
    }

    void rescan() {
        controller()->scanPressed();
        scanBegins();
    }

    void openWindow(const Step& step) {
        if (step.which % 2 == 0)
            delegate_->performMenuItem({.command = MenuCommand::freeUpSpace});
        else
            delegate_->storagePopoverRequestedCleanup();
        expect(shell_.cleanupWindowShown, "the window opens");
        scanBegins();
    }

    void scanBegins() {
        if (state_ != State::idle)
            return;
        for (auto& row : rows_)
            row.isTicked = false;
        enter(State::scanning);
    }

    void trash() {
        controller()->trashPressed();
        if (state_ == State::idle && ticked().count > 0)
            enter(State::checking);
    }

    void answer(AlertAnswer button) {
        shell_.alert.reset();
        std::exchange(shell_.answer, nullptr)(button);
        answered(button);
    }

    void answered(AlertAnswer button) {
        if (state_ == State::ended)
            return;
        const bool confirmed = std::exchange(confirms_, false) && button == AlertAnswer::first;
        if (!confirmed) {
            enter(State::idle);
            return;
        }
        disk_.move = {};
        for (const auto& row : rows_)
            if (row.isTicked)
                disk_.move.confirmed.push_back(row.uiID);
        enter(State::checkingAgain);
    }

    void escape() {
        if (asks()) {
            answer(AlertAnswer::last);
            return;
        }
        controller()->cancelPressed();
        giveUpCheck();
    }

    void closeWindow() {
        shell_.cleanupWindowShown = false;
        if (shell_.alert) { // its answer comes in a later turn
            shell_.alert.reset();
            posted_.push_back({State::asking});
            mainQueue_.post([answer = std::exchange(shell_.answer, nullptr)] { answer(AlertAnswer::last); });
        }
        controller()->windowClosed();
        giveUpCheck();
    }

    void giveUpCheck() {
        if (state_ != State::checking && state_ != State::checkingAgain)
            return;
        disk_.move.confirmed.clear();
        enter(State::idle);
    }

    // ---- the end

    void quit() {
        const bool isMoving = state_ == State::moving && isMoveInHand_;
        state_ = State::ended;
        disk_.mayBegin = false;
        if (!isMoving || isImpatient_) {
            delegate_->applicationWillTerminate();
            return;
        }
        // It waits for the block that runs on this thread, so it has a thread of its own. The block goes on as soon as
        // that one waits.
        quitter_ = std::thread([this] {
            quitterId_ = gettid();
            delegate_->applicationWillTerminate();
            hasQuit_ = true;
        });
        while (!hasQuit_ && !isWaiting(quitterId_))
            std::this_thread::yield();
        expect(!hasQuit_ || disk_.isAccountedFor(), "the end waits for the file in hand and its record");
        unwinds_ = true;
    }

    void finishQuitting() {
        const auto start = std::chrono::steady_clock::now();
        quitter_.join();
        expect(std::chrono::steady_clock::now() - start < std::chrono::seconds(10), "the end waits for nothing else");
        expect(disk_.isAccountedFor(), "what was moved is recorded when the process ends");
        unwinds_ = false;
    }

    // ---- the threads

    void startBlock(std::size_t index) {
        auto work = waiting_[index];
        waiting_.erase(waiting_.begin() + static_cast<std::ptrdiff_t>(index));
        const bool moves = work.state == State::moving;
        isMoveInHand_ = isMoveInHand_ || moves;
        const int failedChecks = std::exchange(disk_.failedChecks, 0);
        backgroundQueue_.run(index);
        work.failed = std::exchange(disk_.failedChecks, failedChecks) > 0;
        isMoveInHand_ = isMoveInHand_ && !moves;
        if (posted_.size() < mainQueue_.postedCount())
            posted_.push_back(work);
        if (depth_ == 0 && quitter_.joinable())
            finishQuitting();
    }

    void runMain() {
        const auto work = posted_.front();
        posted_.pop_front();
        mainQueue_.runNext();
        if (state_ == State::ended)
            return;
        switch (work.state) {
        case State::asking: answered(AlertAnswer::last); break;
        case State::scanning: scanned(); break;
        case State::checking:
        case State::checkingAgain:
            if (work.attempt == attempt_ && state_ == work.state)
                checked(work);
            break;
        case State::moving: moved(); break;
        default: break;
        }
    }

    void scanned() {
        rows_.clear();
        CandidateTotal total, lowRisk;
        for (const auto& found : disk_.found) {
            rows_.push_back({"candidate-" + found.uiID, found.uiID, found.title, found.size, found.canMoveToTrash()});
            total.add(found);
            if (found.canMoveToTrash())
                lowRisk.add(found);
        }
        status_ = "Scan complete · This Mac uses 300 GB of 500 GB · " + countText(total.count, "file") + " shown use " +
                  sizeText(total.bytes) + " · " + countText(lowRisk.count, "low-risk file") + " can be selected";
        enter(State::idle);
    }

    void checked(const Work& work) {
        if (!shell_.cleanupWindowShown) {
            enter(State::idle);
        } else if (work.failed) {
            enter(State::asking);
        } else if (work.state == State::checkingAgain) {
            enter(State::moving);
        } else {
            confirms_ = true;
            enter(State::asking);
        }
    }

    void moved() {
        const auto& move = disk_.move;
        expect(move.begun == move.confirmed, "all that was confirmed is tried");
        expect(disk_.isAccountedFor(), "what was moved is recorded when the move has ended");
        for (const auto* gone : {&move.moved, &move.misplaced})
            std::erase_if(rows_, [&](const Row& row) { return std::ranges::count(*gone, row.uiID) > 0; });
        status_ = "Moved " + countText(move.moved.size(), "item") + " to the Trash";
        if (!move.left.empty())
            status_ += "; " + std::to_string(move.left.size()) + " could not be moved";
        else if (!move.moved.empty() && move.recordWasWritten)
            status_ += " · a privacy-safe local record was saved";
        misplaced_ = move.misplacedPaths;
        enter(misplaced_.empty() ? State::idle : State::asking);
    }

    void enter(State state) {
        if (state != State::asking)
            misplaced_.clear();
        state_ = state;
        attempt_ += state == State::checking || state == State::checkingAgain ? 1 : 0;
        shell_.hasNews = true;
    }

    // ---- what is shown

    void compare() {
        if (waiting_.size() < backgroundQueue_.waitingCount())
            waiting_.push_back({state_, attempt_});
        expect(waiting_.size() == backgroundQueue_.waitingCount(), "one thing at a time is submitted");
        if (state_ == State::ended)
            expect(services_.log->count("shell.") == 0, "nothing is shown after the end");
        services_.log->clear();
        if (!std::exchange(shell_.hasNews, false) || state_ == State::ended)
            return;
        const bool isIdle = state_ == State::idle, isAsking = state_ == State::asking;
        const auto selected = ticked();
        const auto& content = shown();
        if (isAsking)
            compareAlert(selected);
        expect(content.progressIndicator == (!isIdle && !isAsking), "the indicator turns while something is under way");
        expect(content.scanButton.enabled == isIdle, "Scan Again is enabled when nothing is under way");
        expect(content.selectionEnabled == isIdle, "rows can be ticked when nothing is under way");
        expect(content.selectSuggestedButton.enabled == (isIdle && std::ranges::any_of(rows_, &Row::isLowRisk)),
               "Select Low-Risk Files is enabled when there are some and nothing is under way");
        expect(content.trashButton.enabled == (isIdle && selected.count > 0) || isGuide_,
               "Move to Trash… is enabled when something is ticked and nothing is under way");
        expect(content.selectSuggestedButton.hidden == isGuide_ && content.trashButton.hidden == isGuide_,
               "the buttons are hidden in the guide");
        if (!isGuide_)
            compareFiles(content, selected);
    }

    void compareAlert(const CandidateTotal& selected) {
        if (!shell_.alert) {
            expect(!shell_.cleanupWindowShown ||
                       std::ranges::any_of(posted_, [](const Work& work) { return work.state == State::asking; }),
                   "a sheet asks");
            return;
        }
        const auto& [message, text, buttons] = *shell_.alert;
        if (confirms_)
            expect(message == "Move " + countText(selected.count, "selected item") + " to the Trash?" &&
                       text.find("approximately " + sizeText(selected.bytes) + " to") != std::string::npos,
                   "the sheet asks for what is ticked");
        else
            expect(buttons.size() == 1, "only a confirmation asks for more than OK");
        for (const auto& path : misplaced_)
            expect(text.find(path) != std::string::npos, "the sheet tells where misplaced files are");
    }

    void compareFiles(const CleanupWindowContent& content, const CandidateTotal& selected) {
        expect(content.selectionLabel == (selected.count == 0 ? "Nothing selected · Only low-risk files can be selected"
                                                              : std::to_string(selected.count) + " selected · " +
                                                                    sizeText(selected.bytes) + " will move to Trash"),
               "the label tells what is ticked");
        expect(content.selectedCard.value == sizeText(selected.bytes), "the card tells the size of what is ticked");
        expect(content.emptyState.has_value() == content.sections.empty(), "there are rows or a text in their place");
        if (state_ == State::scanning) {
            expect(content.emptyState && content.emptyState->title == "Checking storage…",
                   "no result of an earlier scan is shown during a scan");
            return;
        }
        CandidateTotal all;
        std::size_t count = 0;
        for (const auto& section : content.sections)
            for (const auto& shownRow : section.candidates) {
                const auto row = std::ranges::find(rows_, shownRow.identifier, &Row::identifier);
                expect(row != rows_.end(), "only what the last scan found and is still there is shown");
                if (row == rows_.end())
                    return;
                expect(row->isTicked == shownRow.selected, "the rows tell what is ticked");
                expect(shownRow.sizeText == "Uses " + sizeText(row->size), "the rows tell sizes");
                ++count;
                all.bytes += row->size;
            }
        expect(count == rows_.size(), "everything found is shown");
        expect(content.foundCard.value == sizeText(all.bytes) &&
                   content.foundCard.detail == countText(count, "file") + " shown; nothing removed automatically",
               "the card tells what is shown");
        expect(content.statusLabel == (state_ == State::moving                                       ? movingText
                                       : state_ == State::checking || state_ == State::checkingAgain ? checkingText
                                                                                                     : status_),
               "the status tells what is under way or was done last");
    }

    [[nodiscard]] CandidateTotal ticked() const {
        CandidateTotal total;
        for (const auto& row : rows_)
            if (row.isTicked) {
                ++total.count;
                total.bytes += row.size;
            }
        return total;
    }

    // ---- small things

    [[nodiscard]] std::shared_ptr<CleanupWindowController> controller() const {
        return delegate_->cleanupWindowController();
    }
    [[nodiscard]] const CleanupWindowContent& shown() const { return *shell_.cleanupWindow; }
    [[nodiscard]] bool asks() const { return shell_.alert && shell_.cleanupWindowShown; }
    [[nodiscard]] std::size_t rowOf(const Step& step) const { return step.which % rows_.size(); }
    [[nodiscard]] std::size_t blockOf(const Step& step) const { return step.which % waiting_.size(); }
    [[nodiscard]] ExploredDisk::File& fileOf(const Step& step) { return disk_.files[step.which % disk_.files.size()]; }

    FakeServices services_;
    FakeMainQueue& mainQueue_ = *services_.mainQueue;
    FakeBackgroundQueue& backgroundQueue_ = *services_.backgroundQueue;
    ExploredShell shell_{services_.log};
    ExploredDisk disk_;
    bool isImpatient_;
    Meetings& meetings_;
    std::vector<std::string>* story_;
    Next next_;
    std::shared_ptr<AppDelegate> delegate_;

    State state_ = State::idle;
    std::vector<Row> rows_;
    std::string status_;
    bool isGuide_ = false;
    bool confirms_ = false;              ///< the sheet asks for a confirmation
    std::vector<std::string> misplaced_; ///< where the files are that the sheet tells of
    int attempt_ = 0;                    ///< of all checks, the last one
    std::vector<Work> waiting_;
    std::deque<Work> posted_;

    std::string brokenRule_;
    std::size_t depth_ = 0; ///< how many blocks have run in part
    bool hangs_ = false;
    bool isMoveInHand_ = false;
    bool unwinds_ = false; ///< the end waits for the blocks that have run in part
    std::atomic<pid_t> quitterId_ = 0;
    std::atomic<bool> hasQuit_ = false;
    std::thread quitter_;
};

} // namespace

Outcome explore(std::mt19937& random, Meetings& meetings) {
    static const auto lottery = [] {
        std::vector<Event> tickets;
        for (const auto& row : events)
            tickets.insert(tickets.end(), row.weight, row.event);
        return tickets;
    }();
    Outcome outcome;
    auto& [isImpatient, steps] = outcome.sequence;
    isImpatient = random() % 3 == 0;
    const auto length = 10 + random() % 31;
    World world(isImpatient, meetings, nullptr, [&](const World& now) -> std::optional<Step> {
        if (steps.size() == length || (now.hasEnded() && random() % 4 == 0))
            return std::nullopt;
        for (;;) {
            const auto event = now.hasBegun() ? lottery[random() % lottery.size()] : Event::openWindow;
            if (now.isPossible(event) && (now.isOffered(event) || random() % 16 == 0)) {
                steps.push_back({event, static_cast<unsigned>(random() % 12)});
                return steps.back();
            }
        }
    });
    outcome.brokenRule = world.play();
    return outcome;
}

Outcome replay(const Sequence& sequence) {
    Outcome outcome{.sequence = sequence};
    Meetings meetings{};
    auto next = sequence.steps.begin();
    World world(sequence.isImpatient, meetings, &outcome.story,
                [&](const World&) { return next == sequence.steps.end() ? std::nullopt : std::optional(*next++); });
    outcome.brokenRule = world.play();
    return outcome;
}

// Takes out ever smaller parts as long as a rule is broken.
Outcome shrink(Sequence sequence) {
    const auto breaks = [](const Sequence& tried) { return !replay(tried).brokenRule.empty(); };
    if (const Sequence patient{.isImpatient = false, .steps = sequence.steps}; breaks(patient))
        sequence = patient;
    const auto before = sequence.steps.size();
    for (auto length = before; length > 0; length = length > 4 ? length / 2 : length - 1)
        for (std::size_t start = 0; start + length <= sequence.steps.size();) {
            auto shorter = sequence;
            const auto first = shorter.steps.begin() + static_cast<std::ptrdiff_t>(start);
            shorter.steps.erase(first, first + static_cast<std::ptrdiff_t>(length));
            if (breaks(shorter))
                sequence = shorter;
            else
                ++start;
        }
    return sequence.steps.size() < before ? shrink(sequence) : replay(sequence);
}

bool canMeet(Event event, State state) {
    switch (event) {
    case Event::answerFirst:
    case Event::answerLast: return state == State::asking || state == State::ended;
    case Event::tick:
    case Event::selectAll:
    case Event::changeMode:
    case Event::rescan:
    case Event::trash:
    case Event::closeWindow:
    case Event::openWindow:
    case Event::reveal:
    case Event::escape:
    case Event::quit: return state != State::ended; // the controller is gone
    default: return true;
    }
}

std::string table(const Meetings& meetings) {
    std::string text;
    for (const auto* state : states)
        text += formatted("{:>16}", state);
    text += '\n';
    for (std::size_t event = 0; event < eventCount; ++event) {
        for (const auto count : meetings[event])
            text += formatted("{:>16}", count);
        text += std::string("  ") + events[event].words + '\n';
    }
    return text;
}

} // namespace vantry::MoveExplorer
