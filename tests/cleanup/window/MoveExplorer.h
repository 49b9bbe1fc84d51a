#pragma once

#include <array>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

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

/// One event. A control that is not offered at that moment is pressed all the same, by a click that was on its way.
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

/// Plays a random sequence.
[[nodiscard]] Outcome explore(std::mt19937& random, Meetings& meetings);
[[nodiscard]] Outcome replay(const Sequence& sequence);
/// The shortest sequence found that breaks a rule as `sequence` does.
[[nodiscard]] Outcome shrink(Sequence sequence);

[[nodiscard]] bool canMeet(Event event, State state);
[[nodiscard]] std::string table(const Meetings& meetings);

} // namespace vantry::MoveExplorer
