#include "cleanup/finding/DeviceFinders.h"

#include "tests/cleanup/finding/ScanFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::days;
using std::chrono::nanoseconds;
using testing::ElementsAre;
using testing::IsEmpty;

using Texts = std::map<std::string, std::string>;

const std::filesystem::path backups = "Library/Application Support/MobileSync/Backup";

class DeviceBackups : public testing::Test, public ScanFixture {
protected:
    std::filesystem::path backup(const std::string& name, nanoseconds age, std::optional<Texts> information = {}) {
        const auto folder = folderWithFile(backups / name, 8192, age);
        if (information)
            workers.lists[folder / "Info.plist"] = *information;
        return folder;
    }
};

TEST_F(DeviceBackups, TheIdentityIsTheFirstOfThreeKeysWithANonEmptyText) {
    struct Case {
        Texts information;
        std::optional<std::string> identity;
    };
    const Case cases[] = {
        {{{"Target Identifier", "T"}, {"Unique Identifier", "U"}, {"GUID", "G"}}, "T"},
        {{{"Unique Identifier", "U"}, {"GUID", "G"}}, "U"},
        {{{"GUID", "G"}}, "G"},
        {{{"Target Identifier", ""}, {"GUID", "G"}}, "G"},
        {{{"Target Identifier", ""}}, std::nullopt},
        {{{"Device Name", "Phone"}}, std::nullopt},
        {{}, std::nullopt},
    };
    for (const auto& [information, identity] : cases)
        EXPECT_EQ(deviceBackupIdentity("/backups/short", information), identity);
    EXPECT_EQ(deviceBackupIdentity("/backups/short", std::nullopt), std::nullopt);
}

TEST_F(DeviceBackups, WithoutTheKeysTheIdentityIsTheStartOfTheNameIfItIsLongEnough) {
    struct Case {
        const char* name;
        std::optional<std::string> identity;
    };
    const Case cases[] = {
        {"12345678901234567890", "12345678901234567890"},
        {"12345678901234567890-20200101-120000", "12345678901234567890"},
        {"1234567890123456789", std::nullopt},
        {"1234567890123456789-0", std::nullopt},
        {"-12345678901234567890", std::nullopt},
        {"123456789012345678901-", "123456789012345678901"},
        {"äöüäöüäöüäöüäöüäöüä", std::nullopt}, // 19 characters, twice as many bytes
        {"äöüäöüäöüäöüäöüäöüäö-1", "äöüäöüäöüäöüäöüäöüäö"},
    };
    for (const auto& [name, identity] : cases) {
        EXPECT_EQ(deviceBackupIdentity(std::filesystem::path("/backups") / name, std::nullopt), identity) << name;
        EXPECT_EQ(deviceBackupIdentity(std::filesystem::path("/backups") / name, Texts()), identity) << name;
    }
}

TEST_F(DeviceBackups, WithoutANewerBackupOfTheSameDeviceNoneIsOffered) {
    backup("one", days(900), Texts{{"GUID", "a"}});
    backup("other", days(100), Texts{{"GUID", "b"}});
    backup("equally old 1", days(3), Texts{{"GUID", "x"}});
    backup("equally old 2", days(3), Texts{{"GUID", "x"}});
    backup("short-1", days(3)); // has no identity
    backup("short-2", days(1), Texts{{"Device Name", "Phone"}});
    backup("12345678901234567890-new", days(1));
    folderWithFile("elsewhere", 4096, days(9));
    link(backups / "12345678901234567890-link", home() / "elsewhere");
    file(backups / "12345678901234567890-file", 4096, days(9));
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
}

TEST_F(DeviceBackups, OfTwoBackupsOfOneDeviceOnlyTheOlderIsOffered) {
    backup("new", days(1), Texts{{"GUID", "a"}});
    const auto old =
        backup("old", days(1) + nanoseconds(1), Texts{{"Unique Identifier", "a"}, {"Device Name", "My Phone"}});
    const auto found = supersededDeviceBackups(context);
    ASSERT_EQ(found.size(), 1U);
    EXPECT_EQ(found[0].url, old);
    EXPECT_EQ(found[0].title, "Older backup · My Phone");
    EXPECT_EQ(found[0].reason, "A newer local backup for the same device was found. Verify the newer backup before "
                               "removing this one.");
    EXPECT_EQ(found[0].size, 8192);
    EXPECT_EQ(found[0].category, CleanupCategory::deviceBackup);
    EXPECT_EQ(found[0].confidence, CleanupConfidence::review);
}

TEST_F(DeviceBackups, EveryBackupButTheNewestIsOfferedAndNamedByItsFolderWhereItHasNoName) {
    backup("a", days(3), Texts{{"GUID", "x"}});
    backup("b", days(1), Texts{{"GUID", "x"}});
    backup("c", days(2), Texts{{"GUID", "x"}, {"Device Name", ""}, {"Display Name", "Pad"}});
    const auto found = supersededDeviceBackups(context);
    ASSERT_THAT(namesOf(found), ElementsAre("a", "c"));
    EXPECT_EQ(found[0].title, "Older backup · a");
    EXPECT_EQ(found[1].title, "Older backup · Pad");
}

TEST_F(DeviceBackups, ABackupFolderThatIsALinkIsNotExamined) {
    for (const char* name : {"12345678901234567890-a", "12345678901234567890-b"})
        folderWithFile(home() / "elsewhere" / name, 4096, days(name[21] - 'a' + 1));
    link(backups, home() / "elsewhere");
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_THAT(workers.asked, IsEmpty());
    EXPECT_FALSE(budget.limitedCategories.contains(CleanupCategory::deviceBackup));
}

TEST_F(DeviceBackups, OfASingleBackupNothingIsRead) {
    backup("12345678901234567890-one", days(9));
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_THAT(workers.asked, ElementsAre("list " + at(backups).native()));
    backup("12345678901234567890-two", days(1));
    EXPECT_EQ(supersededDeviceBackups(context).size(), 1U);
}

TEST_F(DeviceBackups, WhenTimeIsUpAfterTheListingTheCategoryIsLimitedWhateverWasListed) {
    file(backups / "no backup", 4096, days(9));
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_THAT(budget.limitedCategories, IsEmpty());
    workers.afterListing = [this](const auto&) { budget.deadline = deadlineIn(std::chrono::seconds(-1)); };
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_TRUE(budget.limitedCategories.contains(CleanupCategory::deviceBackup));
}

TEST_F(DeviceBackups, WhenTimeIsUpAfterTheFirstTheOthersAreNotMeasured) {
    for (const char* name : {"12345678901234567890-a", "12345678901234567890-b", "12345678901234567890-c"})
        workers.metrics[backup(name, days(name[21] - 'a' + 1))] = {4096, std::nullopt, true};
    environment.now = [this] { // when the first candidate is made
        budget.deadline = deadlineIn(std::chrono::seconds(-1));
        return now;
    };
    EXPECT_EQ(supersededDeviceBackups(context).size(), 1U);
    EXPECT_TRUE(budget.limitedCategories.contains(CleanupCategory::deviceBackup));
}

TEST_F(DeviceBackups, AnIncompleteListingReadingOrMeasurementLimitsTheCategory) {
    const auto old = backup("12345678901234567890-old", days(9));
    backup("12345678901234567890-new", days(1));
    const auto isLimited = [&] {
        const bool limited = budget.limitedCategories.contains(CleanupCategory::deviceBackup);
        budget.limitedCategories.clear();
        return limited;
    };
    EXPECT_EQ(supersededDeviceBackups(context).size(), 1U);
    EXPECT_FALSE(isLimited());
    workers.metrics[old] = {5, std::nullopt, false};
    EXPECT_EQ(supersededDeviceBackups(context).size(), 1U);
    EXPECT_TRUE(isLimited());
    workers.metrics.clear();
    workers.listsAreComplete = false;
    EXPECT_EQ(supersededDeviceBackups(context).size(), 1U);
    EXPECT_TRUE(isLimited());
    workers.hung.insert(home() / backups);
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_TRUE(isLimited());
    workers.hung.clear();
    workers.afterListing = [this](const auto&) { budget.deadline = deadlineIn(std::chrono::seconds(-1)); };
    EXPECT_THAT(supersededDeviceBackups(context), IsEmpty());
    EXPECT_TRUE(isLimited());
}

} // namespace
} // namespace vantry::CleanupScanner
