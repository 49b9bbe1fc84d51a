#include "app/AppPreferences.h"
#include "tests/support/FakePreferencesStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry {

namespace {

using testing::ElementsAre;

using Stored = std::map<std::string, FakePreferencesStore::Value, std::less<>>;

class Preferences : public testing::Test {
protected:
    std::shared_ptr<FakeCallLog> log = std::make_shared<FakeCallLog>();
    FakePreferencesStore store{log};
};

TEST_F(Preferences, AreTheDefaultsForANewUser) {
    EXPECT_FALSE(AppPreferences::showsUsedPercentage(store));
    EXPECT_EQ(AppPreferences::barStyle(store), BarStyle::storageGradient);
    EXPECT_EQ(AppPreferences::segmentSizing(store), SegmentSizing::verifiedSnapshot);
    EXPECT_EQ(log->count("preferences.write"), 0) << "no default is registered";
}

TEST_F(Preferences, OnlyTheRawValueOfAStyleIsRead) {
    struct Case {
        FakePreferencesStore::Value stored;
        BarStyle style;
    };
    using enum BarStyle;
    const std::vector<Case> cases{
        {"storageGradient", storageGradient},
        {"macOSSegments", macOSSegments},
        {"vividTheme", vividTheme},
        {"currentTheme", currentTheme},
        {"vivid theme", storageGradient},
        {"Vivid Theme", storageGradient},
        {"VividTheme", storageGradient},
        {"vividTheme ", storageGradient},
        {"", storageGradient},
        {"2", storageGradient},
        {true, storageGradient},
    };
    for (const auto& [stored, style] : cases) {
        store.values = {{"barStyle", stored}};
        EXPECT_EQ(AppPreferences::barStyle(store), style) << testing::PrintToString(stored);
    }
}

TEST_F(Preferences, OnlyTheExactWordSelectsEqualWidths) {
    struct Case {
        FakePreferencesStore::Value stored;
        SegmentSizing sizing;
    };
    using enum SegmentSizing;
    const std::vector<Case> cases{
        {"equal", equal},
        {"verifiedSnapshot", verifiedSnapshot},
        {"Equal", verifiedSnapshot},
        {"Equal Colors", verifiedSnapshot},
        {" equal", verifiedSnapshot},
        {"", verifiedSnapshot},
        {false, verifiedSnapshot},
    };
    for (const auto& [stored, sizing] : cases) {
        store.values = {{"segmentSizing", stored}};
        EXPECT_EQ(AppPreferences::segmentSizing(store), sizing) << testing::PrintToString(stored);
    }
}

TEST_F(Preferences, WhatCountsAsTrueIsTheStoresRule) {
    for (const auto& [stored, shows] :
         {std::pair<FakePreferencesStore::Value, bool>{true, true}, {false, false}, {"text", false}}) {
        store.values = {{"showUsedPercentage", stored}};
        EXPECT_EQ(AppPreferences::showsUsedPercentage(store), shows);
    }
}

TEST_F(Preferences, AreStoredByKeyAndRawValueAndComeBackTheSame) {
    for (const auto& style : allBarStyles) {
        AppPreferences::setBarStyle(store, style.value);
        EXPECT_EQ(store.values, (Stored{{"barStyle", std::string(style.rawValue)}}));
        EXPECT_EQ(AppPreferences::barStyle(store), style.value);
    }
    store.values.clear();
    for (const auto& sizing : allSegmentSizings) {
        AppPreferences::setSegmentSizing(store, sizing.value);
        EXPECT_EQ(store.values, (Stored{{"segmentSizing", std::string(sizing.rawValue)}}));
        EXPECT_EQ(AppPreferences::segmentSizing(store), sizing.value);
    }
    store.values.clear();
    for (const bool shows : {true, false}) {
        AppPreferences::setShowsUsedPercentage(store, shows);
        EXPECT_EQ(store.values, (Stored{{"showUsedPercentage", shows}}));
        EXPECT_EQ(AppPreferences::showsUsedPercentage(store), shows);
    }
}

TEST_F(Preferences, AreReadFromTheStoreEveryTime) {
    for (int i = 0; i < 2; ++i) {
        log->clear();
        std::ignore = AppPreferences::showsUsedPercentage(store);
        std::ignore = AppPreferences::barStyle(store);
        std::ignore = AppPreferences::segmentSizing(store);
        EXPECT_THAT(log->calls(), ElementsAre("preferences.read showUsedPercentage", "preferences.read barStyle",
                                              "preferences.read segmentSizing"));
    }
}

} // namespace

} // namespace vantry
