#pragma once

#include "tests/cleanup/window/ExploredModel.h"
#include "tests/cleanup/window/ExploredShell.h"
#include "tests/support/FakeServices.h"

#include <chrono>
#include <deque>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace vantry::MoveExplorer {

/// The real controllers, the queues and the disk around them, and the model that they are compared with.
class ExploredWorld {
public:
    using Next = std::function<std::optional<Step>(const ExploredWorld&)>;

    ExploredWorld(bool isImpatient, Meetings& meetings, std::vector<std::string>* story, const MakeWindow& makeWindow,
                  Next next)
        : isImpatient_(isImpatient),
          meetings_(meetings),
          story_(story),
          next_(std::move(next)) {
        model_.expect = [this](bool holds, const char* rule) { expect(holds, rule); };
        disk_.pause = [this] { pause(); };
        disk_.expect = [this](bool holds, const char* rule) { expect(holds, rule); };
        disk_.longestEnding = isImpatient ? std::chrono::milliseconds(0) : std::chrono::seconds(20);
        auto services = services_.appServices();
        services.makeCleanupServices = [this] { return disk_.services(); };
        delegate_ = std::make_shared<AppDelegate>(shell_, std::move(services));
        if (makeWindow) {
            shell_.window = makeWindow();
            shell_.window->setDelegate(delegate_);
        }
    }

    /// The rule that was broken, if any.
    std::string play() {
        playSteps();
        while (isWhole() && (mainQueue_.postedCount() > 0 || backgroundQueue_.waitingCount() > 0 || asks()))
            perform({mainQueue_.postedCount() > 0          ? Event::runMain
                     : backgroundQueue_.waitingCount() > 0 ? Event::startBlock
                                                           : Event::answerLast});
        expect(model_.is(State::idle) || hasEnded(), "nothing stays disabled");
        return brokenRule_;
    }

    [[nodiscard]] bool hasBegun() const { return shell_.cleanupWindow.has_value(); }
    [[nodiscard]] bool hasEnded() const { return model_.is(State::ended); }

    /// Whether the event can happen at all.
    [[nodiscard]] bool isPossible(Event event) const {
        switch (event) {
        case Event::openWindow:
        case Event::quit: return !hasEnded();
        case Event::answerFirst:
        case Event::answerLast: return asks();
        case Event::closeWindow: return shell_.cleanupWindowShown && controller();
        case Event::startBlock: return backgroundQueue_.waitingCount() > 0;
        case Event::goOn: return depth_ > 0 && !hangs_;
        case Event::runMain: return mainQueue_.postedCount() > 0;
        case Event::diskHangs: return isImpatient_ && !hangs_;
        case Event::diskAnswers: return hangs_;
        case Event::tick:
        case Event::reveal: return controller() && !model_.rows.empty();
        case Event::selectAll:
        case Event::changeMode:
        case Event::rescan:
        case Event::trash:
        case Event::escape: return controller() != nullptr;
        default: return true;
        }
    }

    [[nodiscard]] bool isOffered(Event event) const { return shell_.offers(event); }

private:
    /// The purpose of a block in the background queue, and later of what it posted.
    struct Work {
        State state;
        int attempt = 0; ///< of the checks: which one
        bool failed = false;
    };

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
        if (model_.isChecking()) {
            perform({shell_.cleanupWindowShown && model_.attempt % 2 == 0 ? Event::closeWindow : Event::escape});
            expect(model_.is(State::idle) && shown().scanButton.enabled, "a check that hangs can be given up");
        }
        hangs_ = false;
    }

    void note(const Step& step) {
        ++meetings_[static_cast<std::size_t>(step.event)][static_cast<std::size_t>(model_.state)];
        if (story_)
            story_->push_back(std::string(nameOf(model_.state)) + ": " + std::string(2 * depth_, ' ') +
                              (isOffered(step.event) ? "" : "by a click that was on its way, ") + wordsFor(step.event) +
                              detailsOf(step));
    }

    [[nodiscard]] std::string detailsOf(const Step& step) const {
        switch (step.event) {
        case Event::tick: return ": " + model_.rows[rowOf(step)].title;
        case Event::fileChanges:
        case Event::fileIsReplaced:
        case Event::fileGrows: return ": " + disk_.file(step.which).path.native();
        case Event::startBlock: return std::string(": ") + nameOf(waiting_[blockOf(step)].state);
        case Event::runMain: return std::string(": ") + nameOf(posted_.front().state) + " is done";
        default: return "";
        }
    }

    void perform(const Step& step) {
        note(step);
        switch (step.event) {
        case Event::tick: tick(step); break;
        case Event::selectAll:
            press(Event::selectAll, &CleanupWindowController::selectSuggestedPressed);
            model_.selectAll();
            break;
        case Event::changeMode: changeMode(); break;
        case Event::rescan:
            press(Event::rescan, &CleanupWindowController::scanPressed);
            model_.scanBegins();
            break;
        case Event::trash:
            press(Event::trash, &CleanupWindowController::trashPressed);
            model_.checkBegins();
            break;
        case Event::answerFirst: answer(AlertAnswer::first, Event::answerFirst); break;
        case Event::answerLast: answer(AlertAnswer::last, Event::answerLast); break;
        case Event::closeWindow: closeWindow(); break;
        case Event::openWindow: openWindow(step); break;
        case Event::reveal: reveal(model_.rows[rowOf(step)].identifier); break;
        case Event::escape: escape(); break;
        case Event::quit: quit(); break;
        case Event::startBlock: startBlock(blockOf(step)); break;
        case Event::runMain: runMain(); break;
        case Event::diskHangs: hangs_ = true; break;
        case Event::diskAnswers: hangs_ = false; break;
        default: disk_.happen(step.event, step.which);
        }
        compare();
    }

    /// Uses the control of the window if it is offered, else calls the controller, as a click that was already on its
    /// way does.
    void user(Event event, const std::function<void()>& directly, const std::string& row = {}) {
        if (shell_.window && isOffered(event))
            expect(shell_.window->act(event, row), "what is offered can be used");
        else
            directly();
    }

    void press(Event event, void (CleanupWindowController::*pressed)()) {
        user(event, [&] { (controller().get()->*pressed)(); });
    }

    void tick(const Step& step) {
        auto& row = model_.rows[rowOf(step)];
        const auto directly = [&] { controller()->candidateSelectionChanged(row.identifier, !row.isTicked); };
        if (row.isLowRisk)
            user(Event::tick, directly, row.identifier);
        else
            directly(); // it has no checkbox
        if (model_.is(State::idle) && row.isLowRisk)
            row.isTicked = !row.isTicked;
    }

    void changeMode() {
        model_.isGuide = !model_.isGuide;
        user(Event::changeMode, [this] {
            controller()->modeChanged(model_.isGuide ? CleanupWindowMode::storageGuide : CleanupWindowMode::filesFound);
        });
    }

    void reveal(const std::string& row) {
        const auto directly = [&] { controller()->revealPressed(row); };
        user(Event::reveal, directly, row);
    }

    void openWindow(const Step& step) {
        if (step.which % 2 == 0)
            delegate_->performMenuItem({.command = MenuCommand::freeUpSpace});
        else
            delegate_->storagePopoverRequestedCleanup();
        expect(shell_.cleanupWindowShown, "the window opens");
        model_.scanBegins();
    }

    void answer(AlertAnswer button, Event event) {
        if (shell_.window) {
            expect(shell_.window->act(event, {}), "a sheet can be answered");
            expectAnswer(button);
        }
        shell_.alert.reset();
        std::exchange(shell_.answer, nullptr)(button);
        model_.answered(button, disk_.move);
    }

    /// The sheet of the window gave this answer, once. An only button is the first as well as the last one.
    void expectAnswer(AlertAnswer button) {
        shell_.window->settle();
        const auto given = std::exchange(*shell_.answers, {});
        expect(given.size() == 1 && (given.front() == button || shell_.alert->buttons.size() == 1),
               "a sheet gives the answer that was pressed");
    }

    void escape() {
        if (asks()) {
            answer(AlertAnswer::last, Event::escape);
            return;
        }
        press(Event::escape, &CleanupWindowController::cancelPressed);
        giveUpCheck();
    }

    void closeWindow() {
        shell_.cleanupWindowShown = false;
        if (shell_.window) {
            expect(shell_.window->act(Event::closeWindow, {}), "the window can be closed");
            if (shell_.alert)
                expectAnswer(AlertAnswer::last);
        }
        if (shell_.alert) { // its answer is delivered later
            shell_.alert.reset();
            posted_.push_back({State::asking});
            mainQueue_.post([answer = std::exchange(shell_.answer, nullptr)] { answer(AlertAnswer::last); });
        }
        if (!shell_.window) // a window reports its closing itself
            controller()->windowClosed();
        giveUpCheck();
    }

    void giveUpCheck() {
        if (!model_.isChecking())
            return;
        disk_.move.confirmed.clear();
        model_.enter(State::idle);
    }

    void quit() {
        const bool isMoving = model_.is(State::moving) && isMoveInHand_;
        model_.state = State::ended;
        disk_.mayBegin = false;
        if (!isMoving || isImpatient_) {
            delegate_->applicationWillTerminate();
            return;
        }
        end_.begin(delegate_);
        expect(!end_.isOver() || disk_.isAccountedFor(), "the end waits for the file in hand and its record");
        unwinds_ = true;
    }

    void finishQuitting() {
        const auto start = std::chrono::steady_clock::now();
        end_.join();
        expect(std::chrono::steady_clock::now() - start < std::chrono::seconds(10), "the end waits for nothing else");
        expect(disk_.isAccountedFor(), "what was moved is recorded when the process ends");
        unwinds_ = false;
    }

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
        if (depth_ == 0 && end_.hasBegun())
            finishQuitting();
    }

    void runMain() {
        const auto work = posted_.front();
        posted_.pop_front();
        mainQueue_.runNext();
        if (hasEnded())
            return;
        switch (work.state) {
        case State::asking: model_.answered(AlertAnswer::last, disk_.move); break;
        case State::scanning: model_.scanned(disk_.found); break;
        case State::checking:
        case State::checkingAgain:
            if (work.attempt == model_.attempt && model_.state == work.state)
                model_.checked(work.failed, shell_.cleanupWindowShown);
            break;
        case State::moving: model_.moved(disk_); break;
        default: break;
        }
    }

    void compare() {
        if (waiting_.size() < backgroundQueue_.waitingCount())
            waiting_.push_back({model_.state, model_.attempt});
        expect(waiting_.size() == backgroundQueue_.waitingCount(), "one thing at a time is submitted");
        if (hasEnded())
            expect(services_.log->count("shell.") == 0, "nothing is shown after the end");
        services_.log->clear();
        const bool hasNews = std::exchange(model_.hasNews, false);
        if ((!std::exchange(shell_.hasNews, false) && !hasNews) || hasEnded())
            return;
        const auto& content = shown();
        if (shell_.window && shell_.cleanupWindowShown) {
            shell_.window->settle();
            windowDifference_ = shell_.window->difference(content, shell_.alert);
            expect(windowDifference_.empty(), windowDifference_.c_str());
        }
        model_.compare(content, shell_.alert, [this] {
            return !shell_.cleanupWindowShown ||
                   std::ranges::any_of(posted_, [](const Work& work) { return work.state == State::asking; });
        });
    }

    [[nodiscard]] std::shared_ptr<CleanupWindowController> controller() const {
        return delegate_->cleanupWindowController();
    }
    [[nodiscard]] const CleanupWindowContent& shown() const { return *shell_.cleanupWindow; }
    [[nodiscard]] bool asks() const { return shell_.alert && shell_.cleanupWindowShown; }
    [[nodiscard]] std::size_t rowOf(const Step& step) const { return step.which % model_.rows.size(); }
    [[nodiscard]] std::size_t blockOf(const Step& step) const { return step.which % waiting_.size(); }

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

    ExploredModel model_;
    std::vector<Work> waiting_;
    std::deque<Work> posted_;

    std::string brokenRule_;
    std::string windowDifference_;
    std::size_t depth_ = 0; ///< how many blocks have run in part
    bool hangs_ = false;
    bool isMoveInHand_ = false;
    bool unwinds_ = false; ///< the end waits for the blocks that have run in part
    EndOnAThread end_;
};

} // namespace vantry::MoveExplorer
