#pragma once

#include "platform/PreferencesStore.h"
#include "rendering/BarStyle.h"

namespace vantry {

/// The user's three choices. Every call reads or writes the store; nothing is kept. Main thread.
namespace AppPreferences {

inline constexpr std::string_view showUsedPercentageKey = "showUsedPercentage";
inline constexpr std::string_view barStyleKey = "barStyle";
inline constexpr std::string_view segmentSizingKey = "segmentSizing";

/// False when missing.
[[nodiscard]] bool showsUsedPercentage(const PreferencesStore& store);
void setShowsUsedPercentage(PreferencesStore& store, bool shows);

/// `storageGradient` when missing or unknown.
[[nodiscard]] BarStyle barStyle(const PreferencesStore& store);
void setBarStyle(PreferencesStore& store, BarStyle style);

/// `equal` for exactly its raw value, `verifiedSnapshot` for everything else.
[[nodiscard]] SegmentSizing segmentSizing(const PreferencesStore& store);
void setSegmentSizing(PreferencesStore& store, SegmentSizing sizing);

} // namespace AppPreferences

} // namespace vantry
