#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <random>
#include <sched.h>
#include <thread>
#include <utility>
#include <vector>

namespace vantry {

/// Pins two threads to different processors, the one that creates this and one that joins it: on one processor they
/// would take turns, and neither would run between two steps of the other. Does nothing if there is only one.
class TwoProcessors {
public:
    TwoProcessors() {
        CPU_ZERO(&before_);
        if (sched_getaffinity(0, sizeof before_, &before_) != 0)
            return;
        for (int i = 0; i < CPU_SETSIZE; ++i) {
            if (CPU_ISSET(i, &before_))
                all_.push_back(i);
        }
        use(0);
    }
    TwoProcessors(const TwoProcessors&) = delete;
    TwoProcessors& operator=(const TwoProcessors&) = delete;
    ~TwoProcessors() { sched_setaffinity(0, sizeof before_, &before_); }

    void join() const { use(1); }

private:
    void use(std::size_t which) const {
        if (all_.size() < 2)
            return;
        cpu_set_t one;
        CPU_ZERO(&one);
        CPU_SET(all_[which], &one);
        sched_setaffinity(0, sizeof one, &one); // of this thread
    }

    cpu_set_t before_{};
    std::vector<int> all_;
};

/// Repeats an action in its own thread until it is destroyed, with pauses of every length that a move may take; the
/// first pause comes before the first action.
class RacingAttacker {
public:
    explicit RacingAttacker(std::function<void()> attack)
        : thread_([this, attack = std::move(attack)] {
              constexpr std::uint64_t lengths = 18;
              std::minstd_rand random;
              processors_.join();
              while (wanted_ != State::over) {
                  if (wanted_ == State::resting) {
                      tell(State::resting);
                      wanted_.wait(State::resting);
                      continue;
                  }
                  tell(State::attacking);
                  std::uint64_t left = random() % (std::uint64_t{1} << random() % lengths);
                  while (left > 0 && wanted_ == State::attacking)
                      --left;
                  if (wanted_ == State::attacking) {
                      attack();
                      ++attacks_;
                  }
              }
          }) {}
    RacingAttacker(const RacingAttacker&) = delete;
    RacingAttacker& operator=(const RacingAttacker&) = delete;
    ~RacingAttacker() {
        want(State::over);
        thread_.join();
    }

    void attack() { wait(State::attacking); }
    void rest() { wait(State::resting); }
    [[nodiscard]] std::uint64_t attacks() const { return attacks_; }

private:
    enum class State : int { resting, attacking, over };

    void want(State state) {
        wanted_ = state;
        wanted_.notify_one();
    }
    void tell(State state) {
        if (state_.exchange(state) != state)
            state_.notify_one();
    }
    void wait(State state) {
        const State before = state_;
        want(state);
        if (before != state)
            state_.wait(before);
    }

    TwoProcessors processors_;
    std::atomic<State> wanted_ = State::resting;
    std::atomic<State> state_ = State::resting;
    std::atomic<std::uint64_t> attacks_ = 0;
    std::thread thread_;
};

} // namespace vantry
