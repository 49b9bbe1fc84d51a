#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>

namespace vantry {

/// What is known of an amount of bytes: all of it, a lower bound because the measurement stopped early, or nothing.
class CleanupByteAmount {
public:
    [[nodiscard]] static constexpr CleanupByteAmount exact(std::int64_t bytes) { return {bytes, true}; }
    [[nodiscard]] static constexpr CleanupByteAmount atLeast(std::int64_t bytes) { return {bytes, false}; }
    [[nodiscard]] static constexpr CleanupByteAmount unavailable() { return {std::nullopt, false}; }

    /// Unavailable.
    constexpr CleanupByteAmount() = default;

    /// The amount or its lower bound; absent when unavailable.
    [[nodiscard]] constexpr std::optional<std::int64_t> knownBytes() const { return knownBytes_; }
    [[nodiscard]] constexpr bool isExact() const { return isExact_; }

    bool operator==(const CleanupByteAmount&) const = default;

private:
    constexpr CleanupByteAmount(std::optional<std::int64_t> knownBytes, bool isExact)
        : knownBytes_(knownBytes),
          isExact_(isExact) {}

    std::optional<std::int64_t> knownBytes_;
    bool isExact_ = false;
};

} // namespace vantry

template <>
struct std::hash<vantry::CleanupByteAmount> {
    [[nodiscard]] std::size_t operator()(const vantry::CleanupByteAmount& amount) const;
};
