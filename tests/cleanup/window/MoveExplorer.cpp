#include "tests/cleanup/window/MoveExplorer.h"

#include "base/Format.h"
#include "tests/cleanup/window/ExploredWorld.h"

#include <optional>

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

} // namespace

const char* wordsFor(Event event) { return events[static_cast<std::size_t>(event)].words; }
const char* nameOf(State state) { return states[static_cast<std::size_t>(state)]; }

Outcome explore(std::mt19937& random, Meetings& meetings, const MakeWindow& makeWindow) {
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
    ExploredWorld world(
        isImpatient, meetings, nullptr, makeWindow, [&](const ExploredWorld& now) -> std::optional<Step> {
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

Outcome replay(const Sequence& sequence, const MakeWindow& makeWindow) {
    Outcome outcome{.sequence = sequence};
    Meetings meetings{};
    auto next = sequence.steps.begin();
    ExploredWorld world(sequence.isImpatient, meetings, &outcome.story, makeWindow, [&](const ExploredWorld&) {
        return next == sequence.steps.end() ? std::nullopt : std::optional(*next++);
    });
    outcome.brokenRule = world.play();
    return outcome;
}

// Removes ever smaller parts while the rule is still broken.
Outcome shrink(Sequence sequence, const MakeWindow& makeWindow) {
    const auto breaks = [&](const Sequence& tried) { return !replay(tried, makeWindow).brokenRule.empty(); };
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
    return sequence.steps.size() < before ? shrink(sequence, makeWindow) : replay(sequence, makeWindow);
}

std::string storyOf(const Outcome& outcome, const MakeWindow& makeWindow) {
    const auto shortest = shrink(outcome.sequence, makeWindow);
    std::string story = outcome.brokenRule;
    if (shortest.brokenRule.empty())
        story += ", but not when it is played again";
    story += "\nThe shortest way there";
    story += shortest.sequence.isImpatient ? ", where quitting waits for nothing:" : ":";
    for (const auto& line : shortest.story)
        story += "\n  " + line;
    return story;
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
