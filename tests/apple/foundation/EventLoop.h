#pragma once

#include <chrono>
#include <functional>
#include <string>
#include <vector>

namespace vantry::apple {

// The main thread's event loop in a test: posted blocks, timers on a clock that stands still, and descriptors that can
// be read. Nothing runs before the test says so.

/// Any thread.
void post(std::function<void()> block);
/// Runs what was posted, also meanwhile, and the sources that have something to read.
void runPosted();
/// Moves the clock, fires the timers that are due in their order, and runs what they post.
void advance(std::chrono::milliseconds time);
/// Runs what other threads and processes post until `done`; false after 20 real seconds without it. The clock stands.
[[nodiscard]] bool runUntil(const std::function<bool()>& done);
/// Called after each posted block and timer, for what a display does at the end of each turn.
void setAfterEachTurn(std::function<void()> block);

/// Complains when a menu or the like has a loop of its own inside a block of the main queue.
void complainOfNestedLoop();

/// Records what macOS would punish or show wrongly. Main thread.
void complain(const std::string& what);
[[nodiscard]] std::vector<std::string> takeComplaints();

} // namespace vantry::apple
