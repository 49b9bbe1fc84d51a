#pragma once

#include "base/ByteSum.h"
#include "base/Time.h"
#include "platform/DirectoryWalk.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <span>
#include <sys/stat.h>

namespace vantry {

/// What one thread of a walk has counted. Only that thread writes it; others may read it at any time.
class alignas(64) TreeTally { // on its own cache line
public:
    /// Counts a regular file.
    void add(const struct statx& facts) {
        const bool fits = facts.stx_blocks <= largest / blockSize;
        if (addTo(bytes_, fits ? static_cast<std::int64_t>(facts.stx_blocks * blockSize) : largest) || !fits)
            cutShort();
        const std::int64_t time =
            systemTimeFromUnix(facts.stx_mtime.tv_sec, facts.stx_mtime.tv_nsec).time_since_epoch().count();
        if (time > newest_.load(std::memory_order_relaxed))
            newest_.store(time, std::memory_order_relaxed);
        // Last, so that a reader who sees the file also sees its date.
        files_.store(files_.load(std::memory_order_relaxed) + 1, std::memory_order_release);
    }
    /// Records that something was not counted.
    void cutShort() { cutShort_.store(true, std::memory_order_relaxed); }

    /// The total of all threads; `finished` says whether they are done.
    [[nodiscard]] static TreeTotals sum(std::span<const TreeTally> tallies, bool finished) {
        TreeTally whole;
        TreeTotals totals;
        for (const TreeTally& tally : tallies) {
            if (addTo(whole.bytes_, tally.bytes_) || tally.cutShort_)
                whole.cutShort();
            totals.regularFiles += tally.files_;
            whole.newest_ = std::max<std::int64_t>(whole.newest_, tally.newest_);
        }
        totals.allocatedBytes = whole.bytes_;
        if (totals.regularFiles != 0)
            totals.newestModification = SystemTime(std::chrono::nanoseconds(whole.newest_));
        totals.complete = finished && !whole.cutShort_;
        return totals;
    }

private:
    static constexpr std::int64_t largest = std::numeric_limits<std::int64_t>::max();
    static constexpr std::uint64_t blockSize = 512; // whatever block size the file system has

    // Returns whether the sum overflowed; it is the largest value then. Neither number is negative. Only the owner
    // writes, so a load and a store are enough.
    static bool addTo(std::atomic<std::int64_t>& sum, std::int64_t more) {
        std::int64_t result = sum.load(std::memory_order_relaxed);
        const bool fits = addBytes(result, more);
        sum.store(result, std::memory_order_relaxed);
        return !fits;
    }

    std::atomic<std::int64_t> bytes_{0};
    std::atomic<std::uint64_t> files_{0};
    std::atomic<std::int64_t> newest_{std::numeric_limits<std::int64_t>::min()};
    std::atomic<bool> cutShort_{false};
};

} // namespace vantry
