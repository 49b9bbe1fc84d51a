#include "app/AppPreferences.h"

namespace vantry::AppPreferences {

bool showsUsedPercentage(const PreferencesStore& store) { return store.boolForKey(showUsedPercentageKey); }

void setShowsUsedPercentage(PreferencesStore& store, bool shows) { store.setBool(showUsedPercentageKey, shows); }

BarStyle barStyle(const PreferencesStore& store) {
    return store.stringForKey(barStyleKey).and_then(barStyleFromRawValue).value_or(BarStyle::storageGradient);
}

void setBarStyle(PreferencesStore& store, BarStyle style) { store.setString(barStyleKey, rawValue(style)); }

SegmentSizing segmentSizing(const PreferencesStore& store) {
    return store.stringForKey(segmentSizingKey)
        .and_then(segmentSizingFromRawValue)
        .value_or(SegmentSizing::verifiedSnapshot);
}

void setSegmentSizing(PreferencesStore& store, SegmentSizing sizing) {
    store.setString(segmentSizingKey, rawValue(sizing));
}

} // namespace vantry::AppPreferences
