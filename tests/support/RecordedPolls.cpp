#include "tests/support/RecordedPolls.h"

#include <atomic>
#include <poll.h>
#include <time.h> // NOLINT(modernize-deprecated-headers): for timespec

namespace vantry {

namespace {

std::atomic<int> calls = 0;
std::atomic<int> millisecondsInVain = 0;

} // namespace

void RecordedPolls::forget() {
    calls = 0;
    millisecondsInVain = 0;
}

int RecordedPolls::count() { return calls; }

std::chrono::milliseconds RecordedPolls::waitedInVain() { return std::chrono::milliseconds(millisecondsInVain); }

} // namespace vantry

extern "C" int poll(pollfd* descriptors, nfds_t count, int timeout) {
    ++vantry::calls;
    const timespec time{timeout / 1000, timeout % 1000 * 1'000'000L};
    const int result = ppoll(descriptors, count, timeout < 0 ? nullptr : &time, nullptr);
    if (result == 0)
        vantry::millisecondsInVain += timeout;
    return result;
}
