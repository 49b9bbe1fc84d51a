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
[[nodiscard]] inline bool showsUsedPercentage(const PreferencesStore& store) {
    return store.boolForKey(showUsedPercentageKey);
}
inline void setShowsUsedPercentage(PreferencesStore& store, bool shows) { store.setBool(showUsedPercentageKey, shows); }

/// `storageGradient` when missing or unknown.
[[nodiscard]] inline BarStyle barStyle(const PreferencesStore& store) {
    return store.stringForKey(barStyleKey).and_then(barStyleFromRawValue).value_or(BarStyle::storageGradient);
}
inline void setBarStyle(PreferencesStore& store, BarStyle style) { store.setString(barStyleKey, rawValue(style)); }

/// `equal` for exactly its raw value, `verifiedSnapshot` for everything else.
[[nodiscard]] inline SegmentSizing segmentSizing(const PreferencesStore& store) {
    return store.stringForKey(segmentSizingKey)
        .and_then(segmentSizingFromRawValue)
        .value_or(SegmentSizing::verifiedSnapshot);
}
inline void setSegmentSizing(PreferencesStore& store, SegmentSizing sizing) {
    store.setString(segmentSizingKey, rawValue(sizing));
}

} // namespace AppPreferences

} // namespace vantry
