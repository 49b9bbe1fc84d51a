#pragma once

#include "cleanup/window/CleanupWindowShell.h"

#include <array>
#include <cstddef>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <vector>

namespace vantry {

class AppDelegate;

}

/// Plays sequences of what users, background threads and other programs do to the "Free Up Space" window, in any
/// order, on the real controllers and a disk in memory, and compares all that is shown, moved and recorded with a
/// model.
namespace vantry::MoveExplorer {

enum class Event {
    tick,
    selectAll,
    changeMode,
    rescan,
    trash,
    answerFirst,
    answerLast,
    closeWindow,
    openWindow,
    reveal,
    escape,
    quit,
    startBlock,
    goOn,
    runMain,
    fileChanges,
    fileIsReplaced,
    fileGrows,
    infoIsRemoved,
    putBackIsRefused,
    recordsAreRefused,
    diskHangs,
    diskAnswers,
};
inline constexpr std::size_t eventCount = 23;

enum class State { idle, scanning, checking, asking, checkingAgain, moving, ended };
inline constexpr std::size_t stateCount = 7;

/// One event. A control that is not offered may be pressed too, by a click that was already on its way.
struct Step {
    Event event;
    unsigned which = 0; ///< of several rows, blocks or files
};

struct Sequence {
    /// Quitting does not wait for the file in hand, and the disk may hang; else it waits as long as it takes.
    bool isImpatient = false;
    std::vector<Step> steps;
};

struct Outcome {
    Sequence sequence;
    std::string brokenRule;         ///< empty when all held
    std::vector<std::string> story; ///< of a replay: what happened, a line for each step
};

/// How often each event met each state.
using Meetings = std::array<std::array<long, stateCount>, eventCount>;

/// The window of a front end, through which the user does what is offered.
class ExploredWindow {
public:
    virtual ~ExploredWindow() = default;
    /// Shows the window and its sheets.
    virtual CleanupWindowShell& shell() = 0;
    virtual void setDelegate(const std::shared_ptr<AppDelegate>& delegate) = 0;
    /// Uses the control for `event`, of the row with that identifier if it is one of a row's; false without such a
    /// control.
    virtual bool act(Event event, const std::string& row) = 0;
    /// How the screen differs from `content` and `alert`; empty when it does not.
    virtual std::string difference(const CleanupWindowContent& content, const std::optional<AlertContent>& alert) = 0;
    /// Runs what the window has posted.
    virtual void settle() = 0;
};
using MakeWindow = std::function<std::unique_ptr<ExploredWindow>()>;

/// Plays a random sequence. Without `makeWindow`, the user's actions go straight to the controllers.
[[nodiscard]] Outcome explore(std::mt19937& random, Meetings& meetings, const MakeWindow& makeWindow = {});
[[nodiscard]] Outcome replay(const Sequence& sequence, const MakeWindow& makeWindow = {});
/// The shortest sequence found that breaks a rule as `sequence` does.
[[nodiscard]] Outcome shrink(Sequence sequence, const MakeWindow& makeWindow = {});
/// What broke the rule, for a message: the shortest way there.
[[nodiscard]] std::string storyOf(const Outcome& outcome, const MakeWindow& makeWindow = {});

[[nodiscard]] const char* wordsFor(Event event);
[[nodiscard]] const char* nameOf(State state);
[[nodiscard]] bool canMeet(Event event, State state);
[[nodiscard]] std::string table(const Meetings& meetings);

} // namespace vantry::MoveExplorer
