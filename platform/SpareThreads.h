#pragma once

#include <atomic>

namespace vantry {

/// A shared limit on helper threads. Whoever starts a helper takes a place; the helper gives it back when it is done.
/// Any thread.
class SpareThreads {
public:
    explicit SpareThreads(unsigned most) : most_(most), left_(most) {}

    [[nodiscard]] unsigned most() const { return most_; }
    /// Takes a place. False if none is left.
    [[nodiscard]] bool take() {
        unsigned left = left_.load(std::memory_order_relaxed);
        while (left > 0 && !left_.compare_exchange_weak(left, left - 1, std::memory_order_relaxed)) {
        }
        return left > 0;
    }
    void giveBack() { left_.fetch_add(1, std::memory_order_relaxed); }

private:
    const unsigned most_;
    std::atomic<unsigned> left_;
};

} // namespace vantry
