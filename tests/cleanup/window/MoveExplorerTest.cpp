#include "tests/cleanup/window/MoveExplorer.h"
#include "tests/support/ScopedEnvironment.h"

#include <algorithm>
#include <cstdlib>
#include <gtest/gtest.h>
#include <iostream>
#include <string>

namespace vantry::MoveExplorer {

namespace {

#if defined(OMBREL_THREAD_SANITIZER)
constexpr unsigned usualNumberOfSequences = 2'000;
#else
constexpr unsigned usualNumberOfSequences = 100'000;
#endif
constexpr unsigned enoughForEveryMeeting = 50'000;

unsigned numberFrom(const char* variable, unsigned otherwise) {
    const char* text = std::getenv(variable);
    return text ? static_cast<unsigned>(std::strtoul(text, nullptr, 10)) : otherwise;
}

// OMBREL_EXPLORER_SEQUENCES=1000000 for a thorough look, OMBREL_EXPLORER_SEED to see a failure again.
TEST(MoveExplorer, TheWindowIsRightAboutEveryFileInAnyOrderOfEvents) {
    const auto seed = numberFrom("OMBREL_EXPLORER_SEED", std::random_device()());
    const auto wanted = std::max(numberFrom("OMBREL_EXPLORER_SEQUENCES", usualNumberOfSequences), 1U);
    std::cout << "OMBREL_EXPLORER_SEED=" << seed << std::endl; // also if it crashes
    const ScopedEnvironment locale("LC_ALL", "C");             // in which no text has to be looked up
    std::mt19937 random(seed);
    Meetings meetings{};
    for (unsigned number = 1; number <= wanted; ++number)
        if (const auto outcome = explore(random, meetings); !outcome.brokenRule.empty()) {
            FAIL() << "sequence " << number << " breaks the rule: " << storyOf(outcome);
        }
    std::cout << table(meetings);
    if (wanted < enoughForEveryMeeting)
        return;
    for (std::size_t event = 0; event < eventCount; ++event)
        for (std::size_t state = 0; state < stateCount; ++state)
            EXPECT_EQ(meetings[event][state] > 0, canMeet(static_cast<Event>(event), static_cast<State>(state)))
                << "event " << event << " in state " << state << ", see the table";
}

} // namespace

} // namespace vantry::MoveExplorer
