#include "shell/qt/QtPreferencesStore.h"

#include "app/AppPreferences.h"
#include "shell/qt/QtConversions.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>

#include <QSettings>
#include <QStandardPaths>
#include <QString>
#include <filesystem>
#include <optional>
#include <string>
#include <sys/stat.h>

namespace vantry {

namespace {

namespace fs = std::filesystem;

class QtPreferences : public testing::Test {
protected:
    [[nodiscard]] QtPreferencesStore store() const { return QtPreferencesStore(qString(file.native())); }
    void contains(const std::string& lines) const { writeFile(file, "[General]\n" + lines); }

    const TemporaryFolder folder;
    const fs::path file = folder / "settings.ini";
};

} // namespace

TEST_F(QtPreferences, AreEmptyForANewUser) {
    const QtPreferencesStore fresh = store();
    EXPECT_FALSE(fresh.boolForKey("showUsedPercentage"));
    EXPECT_EQ(fresh.stringForKey("barStyle"), std::nullopt);
    EXPECT_FALSE(AppPreferences::showsUsedPercentage(fresh));
    EXPECT_EQ(AppPreferences::barStyle(fresh), BarStyle::storageGradient);
    EXPECT_EQ(AppPreferences::segmentSizing(fresh), SegmentSizing::verifiedSnapshot);
    EXPECT_FALSE(fs::exists(file)) << "reading wrote something";
}

TEST_F(QtPreferences, AreReadBackUnchanged) {
    QtPreferencesStore written = store();
    const std::string texts[] = {
        "storageGradient",     "equal", "",           "two words",    "a, b",       "\"quoted\"",
        "back\\slash",         "@at",   "@Invalid()", "; no comment", "key=value",  "100%",
        "Größe \u2014 🖴", "true",  "0",          " spaces ",     "line\nbreak"};
    for (const std::string& text : texts) {
        written.setString("text", text);
        EXPECT_EQ(written.stringForKey("text"), text);
        EXPECT_EQ(store().stringForKey("text"), text);
    }
    for (const bool value : {true, false, true}) {
        written.setBool("boolean", value);
        EXPECT_EQ(written.boolForKey("boolean"), value);
        EXPECT_EQ(store().boolForKey("boolean"), value);
    }
}

TEST_F(QtPreferences, EveryStyleAndSizingIsReadBackAndStoredByItsRawValue) {
    QtPreferencesStore preferences = store();
    for (const auto& row : allBarStyles) {
        AppPreferences::setBarStyle(preferences, row.value);
        EXPECT_EQ(AppPreferences::barStyle(preferences), row.value);
        EXPECT_NE(readFile(file).find("barStyle=" + std::string(row.rawValue) + "\n"), std::string::npos)
            << readFile(file);
    }
    for (const auto& row : allSegmentSizings) {
        AppPreferences::setSegmentSizing(preferences, row.value);
        EXPECT_EQ(AppPreferences::segmentSizing(preferences), row.value);
        EXPECT_NE(readFile(file).find("segmentSizing=" + std::string(row.rawValue) + "\n"), std::string::npos)
            << readFile(file);
    }
}

TEST_F(QtPreferences, AreOnDiskAfterTheyAreSet) {
    QtPreferencesStore preferences = store();
    preferences.setString("barStyle", "vividTheme");
    preferences.setBool("showUsedPercentage", true);
    EXPECT_EQ(readFile(file), "[General]\nbarStyle=vividTheme\nshowUsedPercentage=true\n");
    preferences.setBool("showUsedPercentage", false);
    EXPECT_EQ(readFile(file), "[General]\nbarStyle=vividTheme\nshowUsedPercentage=false\n");
}

TEST_F(QtPreferences, TheirFolderIsCreatedWhenItIsMissing) {
    const fs::path deep = folder / "configuration/ombrel/settings.ini";
    QtPreferencesStore preferences(qString(deep.native()));
    preferences.setString("barStyle", "vividTheme");
    EXPECT_EQ(readFile(deep), "[General]\nbarStyle=vividTheme\n");
}

TEST_F(QtPreferences, AreInTheUsersConfigurationFolder) {
    const ScopedEnvironment configuration("XDG_CONFIG_HOME", folder.path().c_str());
    QtPreferencesStore preferences;
    preferences.setString("barStyle", "vividTheme");
    EXPECT_EQ(readFile(folder / "ombrel/settings.ini"), "[General]\nbarStyle=vividTheme\n");
    EXPECT_EQ(QtPreferencesStore().stringForKey("barStyle"), "vividTheme");
}

TEST_F(QtPreferences, OtherKeysOfTheFileAreKept) {
    contains("other=1\n\n[Group]\nkey=value\n");
    store().setString("barStyle", "vividTheme");
    const std::string text = readFile(file);
    for (const char* line : {"other=1\n", "barStyle=vividTheme\n", "[Group]\nkey=value\n"})
        EXPECT_NE(text.find(line), text.npos) << text;
}

TEST_F(QtPreferences, BooleansFollowTheRulesOfTheStore) {
    const struct {
        const char* text;
        bool value;
    } cases[] = {
        {"true", true},   {"TRUE", true},        {"1", true},          {"yes", true},        {"YES", true},
        {"on", true},     {"2", true},           {"-1", true},         {"no", true},         {"off", true},
        {"00", true},     {"0.0", true},         {"x", true},          {"\"1\"", true},      {"\"a b\"", true},
        {"t", true},      {"f", true},           {"vividTheme", true}, {"false", false},     {"False", false},
        {"FALSE", false}, {"0", false},          {"\"0\"", false},     {"\"false\"", false}, {"", false},
        {"\"\"", false},  {"@Invalid()", false},
    };
    for (const auto& [text, value] : cases) {
        contains("showUsedPercentage=" + std::string(text) + "\n");
        EXPECT_EQ(store().boolForKey("showUsedPercentage"), value) << text;
    }
}

TEST_F(QtPreferences, ValuesThatAreNotTextAreAbsent) {
    const struct {
        const char* text;
        std::optional<std::string> value;
    } cases[] = {
        {"vividTheme", "vividTheme"},
        {"\"vividTheme\"", "vividTheme"},
        {"  vividTheme", "vividTheme"},
        {"", ""},
        {"1", "1"},
        {"\"a, b\"", "a, b"},
        {"a, b", std::nullopt}, // a list
        {"@Invalid()", std::nullopt},
        {"@Size(1 2)", std::nullopt},
        {"@ByteArray(vividTheme)", std::nullopt},
    };
    for (const auto& [text, value] : cases) {
        contains("barStyle=" + std::string(text) + "\n");
        EXPECT_EQ(store().stringForKey("barStyle"), value) << text;
    }
}

TEST_F(QtPreferences, UnknownRawValuesReadAsTheDefault) {
    for (const char* text :
         {"rainbow", "Rainbow", "vivid theme", "VividTheme", "", "3", "vividTheme, equal", "@Invalid()"}) {
        contains("barStyle=" + std::string(text) + "\n");
        EXPECT_EQ(AppPreferences::barStyle(store()), BarStyle::storageGradient) << text;
    }
    for (const char* text : {"Equal", "EQUAL", "Equal Colors", "", "0", "equal, equal", "@Invalid()"}) {
        contains("segmentSizing=" + std::string(text) + "\n");
        EXPECT_EQ(AppPreferences::segmentSizing(store()), SegmentSizing::verifiedSnapshot) << text;
    }
}

TEST_F(QtPreferences, AValueChangedByAnotherProcessIsSeenAtTheNextRead) {
    const QtPreferencesStore preferences = store();
    EXPECT_EQ(AppPreferences::barStyle(preferences), BarStyle::storageGradient);
    const auto change = [this](const char* style) {
        return inChildProcess([&]() -> std::string {
            QSettings other(qString(file.native()), QSettings::IniFormat);
            other.setValue(QStringLiteral("barStyle"), QString::fromLatin1(style));
            other.sync();
            return "changed";
        });
    };
    for (const auto& row : allBarStyles) {
        ASSERT_EQ(change(row.rawValue.data()), "changed");
        EXPECT_EQ(AppPreferences::barStyle(preferences), row.value);
    }
}

TEST_F(QtPreferences, AValueChangedInAnEditorIsSeenAtTheNextRead) {
    QtPreferencesStore preferences = store();
    preferences.setBool("showUsedPercentage", true);
    preferences.setString("barStyle", "vividTheme");
    contains("barStyle=currentTheme\n");
    EXPECT_FALSE(preferences.boolForKey("showUsedPercentage"));
    EXPECT_EQ(preferences.stringForKey("barStyle"), "currentTheme");
    // Replaces the file, as editors do.
    writeFile(folder / "new", "[General]\nbarStyle=macOSSegments\n");
    fs::rename(folder / "new", file);
    EXPECT_EQ(preferences.stringForKey("barStyle"), "macOSSegments");
    fs::remove(file);
    EXPECT_EQ(preferences.stringForKey("barStyle"), std::nullopt);
}

TEST_F(QtPreferences, AWriteKeepsWhatAnotherProcessWrote) {
    QtPreferencesStore preferences = store();
    preferences.setString("barStyle", "vividTheme");
    contains("barStyle=currentTheme\nsegmentSizing=equal\n");
    preferences.setBool("showUsedPercentage", true);
    EXPECT_EQ(readFile(file), "[General]\nbarStyle=currentTheme\nsegmentSizing=equal\nshowUsedPercentage=true\n");
}

TEST_F(QtPreferences, AFileWithoutPreferencesReadsAsTheDefaults) {
    const std::string garbage[] = {
        "",
        "\n\n\n",
        "no key at all",
        "[General",
        "[]\n=\n==\n",
        "]]]]\n[[[[\n",
        std::string(100'000, '\0'),
        std::string(100'000, '\xff'),
        "\177ELF\2\1\1",
        "[General]\nbarStyle",
        "[General]\nbarStyle=\\x",
        "[General]\nbarStyle=\"never closed",
        "[General]\nbarStyle=@Variant(\\0\\0)",
        "[General]\nbarStyle=@DateTime(garbage)",
        "[General]\n%U0=%%%\n",
    };
    for (const std::string& text : garbage) {
        writeFile(file, text);
        const QtPreferencesStore preferences = store();
        EXPECT_FALSE(AppPreferences::showsUsedPercentage(preferences)) << text.substr(0, 20);
        EXPECT_EQ(AppPreferences::barStyle(preferences), BarStyle::storageGradient) << text.substr(0, 20);
        EXPECT_EQ(AppPreferences::segmentSizing(preferences), SegmentSizing::verifiedSnapshot) << text.substr(0, 20);

        // A choice made now counts.
        QtPreferencesStore written = store();
        AppPreferences::setBarStyle(written, BarStyle::vividTheme);
        EXPECT_EQ(AppPreferences::barStyle(written), BarStyle::vividTheme) << text.substr(0, 20);
        EXPECT_NE(readFile(file).find("barStyle=vividTheme\n"), std::string::npos) << text.substr(0, 20);
    }
}

TEST_F(QtPreferences, AFolderInPlaceOfTheFileReadsAsTheDefaultsAndStays) {
    fs::create_directory(file);
    writeFile(file / "inside", "kept");
    QtPreferencesStore preferences = store();
    EXPECT_EQ(AppPreferences::barStyle(preferences), BarStyle::storageGradient);
    AppPreferences::setBarStyle(preferences, BarStyle::vividTheme);
    AppPreferences::setShowsUsedPercentage(preferences, true);
    EXPECT_EQ(readFile(file / "inside"), "kept");
}

TEST_F(QtPreferences, AFileInPlaceOfTheFolderReadsAsTheDefaultsAndStays) {
    writeFile(folder / "ombrel", "kept");
    QtPreferencesStore preferences(qString((folder / "ombrel/settings.ini").native()));
    EXPECT_EQ(AppPreferences::barStyle(preferences), BarStyle::storageGradient);
    AppPreferences::setBarStyle(preferences, BarStyle::vividTheme);
    AppPreferences::setShowsUsedPercentage(preferences, true);
    EXPECT_EQ(readFile(folder / "ombrel"), "kept");
}

TEST_F(QtPreferences, AFailedWriteKeepsTheOldValue) {
    writeFile(folder / "ombrel", "kept");
    QtPreferencesStore preferences(qString((folder / "ombrel/settings.ini").native()));
    preferences.setString("barStyle", "vividTheme");
    preferences.setBool("showUsedPercentage", true);
    EXPECT_EQ(preferences.stringForKey("barStyle"), std::nullopt);
    EXPECT_FALSE(preferences.boolForKey("showUsedPercentage"));
}

TEST_F(QtPreferences, AnUnreadableFileReadsAsTheDefaults) {
    contains("barStyle=vividTheme\nshowUsedPercentage=true\n");
    chmod(file.c_str(), 0);
    chmod(folder.path().c_str(), 0755);
    const std::string answer = inChildProcess([this]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        const QtPreferencesStore preferences = store();
        return preferences.stringForKey("barStyle").value_or("nothing") +
               (preferences.boolForKey("showUsedPercentage") ? " true" : " false");
    });
    if (answer == "no other user")
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "nothing false");
}

TEST_F(QtPreferences, AReadOnlyFileKeepsItsValues) {
    contains("barStyle=vividTheme\n");
    chmod(file.c_str(), 0444);
    chmod(folder.path().c_str(), 0555);
    const std::string answer = inChildProcess([this]() -> std::string {
        if (!becomeUser(unknownUser()))
            return "no other user";
        QtPreferencesStore preferences = store();
        preferences.setString("barStyle", "currentTheme");
        return preferences.stringForKey("barStyle").value_or("nothing");
    });
    chmod(folder.path().c_str(), 0755);
    if (answer == "no other user")
        GTEST_SKIP() << answer;
    EXPECT_EQ(answer, "vividTheme");
    EXPECT_EQ(readFile(file), "[General]\nbarStyle=vividTheme\n");
}

} // namespace vantry
