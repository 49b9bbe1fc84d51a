#pragma once

#include <array>
#include <csignal>
#include <cstddef>

namespace vantry {

/// Restores the handlers of the termination signals after a test that catches them.
class RestoredSignals {
public:
    RestoredSignals() {
        for (std::size_t i = 0; i < signals.size(); ++i)
            sigaction(signals[i], nullptr, &saved_[i]);
    }
    RestoredSignals(const RestoredSignals&) = delete;
    RestoredSignals& operator=(const RestoredSignals&) = delete;
    ~RestoredSignals() {
        for (std::size_t i = 0; i < signals.size(); ++i)
            sigaction(signals[i], &saved_[i], nullptr);
    }

private:
    static constexpr std::array<int, 3> signals{SIGTERM, SIGINT, SIGHUP};

    std::array<struct sigaction, signals.size()> saved_{};
};

} // namespace vantry
