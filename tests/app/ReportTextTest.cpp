#include "app/ReportText.h"

#include "cleanup/model/CleanupAvenue.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <nlohmann/json.hpp>
#include <regex>
#include <set>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

using Json = nlohmann::ordered_json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

const SystemTime moment{std::chrono::seconds(1'700'000'000)}; // 2023-11-14 22:13:20 UTC

CleanupCandidate candidate(const std::filesystem::path& path, CleanupCategory category, std::int64_t size) {
    const auto confidence = removalDisposition(category) == CleanupRemovalDisposition::directTrash
                                ? CleanupConfidence::suggested
                                : CleanupConfidence::review;
    return CleanupCandidate::withFingerprint(path, path.filename().native(), category, "Because.", size, confidence,
                                             {.contentModificationDate = moment}, moment);
}

CleanupScanReport report(std::vector<CleanupCandidate> candidates = {}) {
    CleanupScanReport made;
    made.candidates = std::move(candidates);
    for (const auto& row : allCleanupCategories) {
        made.states[row.value] = CleanupScanState::checked;
        made.metrics[row.value] = {CleanupByteAmount::exact(1000), 0, 0};
    }
    made.storageSnapshot = StorageSnapshot{"Data", 500'000'000'000, 200'000'000'000, moment};
    made.duration = std::chrono::milliseconds(1250);
    return made;
}

constexpr auto largest = std::numeric_limits<std::int64_t>::max();

std::string withoutLineBreaks(const std::string& text) { return std::regex_replace(text, std::regex("\\s+"), " "); }

std::string textOf(const CleanupScanReport& scanned) {
    return reportText(scanned, "/home/ada", false, HostSystem::macOS);
}

TEST(ReportText, BeginsWithTheVolumeAndEndsWithWhatItTook) {
    const auto text = textOf(report());
    EXPECT_TRUE(text.starts_with("Data\n300 GB of 500 GB used, 200 GB available\n\nNothing to review was found.\n"));
    EXPECT_THAT(text, EndsWith("\nChecked in 1.2 seconds; nothing was changed.\n"));
}

TEST(ReportText, SaysWhenTheVolumeCannotBeRead) {
    auto scanned = report();
    scanned.storageSnapshot.reset();
    EXPECT_TRUE(textOf(scanned).starts_with("The volume could not be read.\n"));
}

TEST(ReportText, ListsCandidatesByAreaWithSizeConfidencePathAndReason) {
    const auto text = textOf(report({candidate("/home/ada/Library/Logs/old.log", CleanupCategory::log, 2'000'000),
                                     candidate("/Applications/x", CleanupCategory::macOSInstaller, 3'000'000)}));
    EXPECT_THAT(text, HasSubstr("\n2 items to review, 5 MB; 1 of them low risk, 2 MB\n"));
    EXPECT_THAT(text, HasSubstr("\nTemporary App Files\n"
                                "      2 MB  Low Risk      old.log\n"
                                "            ~/Library/Logs/old.log\n"
                                "            Because.\n"
                                "\nApps & App Data\n"
                                "      3 MB  Review First  x\n"
                                "            /Applications/x\n"));
    EXPECT_THAT(text, Not(HasSubstr("Coding Tools")));
}

TEST(ReportText, CountsOneItemAndNoneOfLowRisk) {
    EXPECT_THAT(textOf(report({candidate("/x", CleanupCategory::orphan, 1)})),
                HasSubstr("\n1 item to review, 1 byte; none of them low risk\n"));
}

TEST(ReportText, ATotalThatWouldOverflowIsTheLargest) {
    EXPECT_THAT(textOf(report(
                    {candidate("/x", CleanupCategory::orphan, largest), candidate("/y", CleanupCategory::orphan, 1)})),
                HasSubstr("2 items to review, 9.22 EB;"));
}

TEST(ReportText, ShowsNoControlCharactersAndNoBrokenText) {
    const auto text = textOf(report({candidate("/home/ada/a\nb\x1b[31m\x7f\xff", CleanupCategory::log, 1)}));
    EXPECT_THAT(text, HasSubstr("~/a\\x0ab\\x1b[31m\\x7f\xef\xbf\xbd\n"));
    EXPECT_EQ(text.find('\x1b'), std::string::npos);
}

TEST(ReportText, EscapesCharactersThatDisguiseAName) {
    const std::pair<const char*, const char*> cases[] = {{"\xc2\x9b"
                                                          "31m",
                                                          "\\xc2\\x9b31m"},
                                                         {"\xe2\x80\xae"
                                                          "gpj",
                                                          "\\xe2\\x80\\xaegpj"},
                                                         {"\xe2\x81\xa6"
                                                          "a",
                                                          "\\xe2\\x81\\xa6a"},
                                                         {"\xe2\x80\xa8"
                                                          "a",
                                                          "\\xe2\\x80\\xa8a"},
                                                         {"\xd8\x9c"
                                                          "a",
                                                          "\\xd8\\x9ca"},
                                                         {"a\\x0a", "a\\\\x0a"},
                                                         {"“é…”", "“é…”"}};
    for (const auto& [name, shown] : cases)
        EXPECT_THAT(textOf(report({candidate(std::filesystem::path("/home/ada") / name, CleanupCategory::log, 1)})),
                    HasSubstr(std::string(" ~/") + shown + "\n"));
}

TEST(ReportText, OnlyPathsBelowTheHomeFolderAreShortened) {
    EXPECT_THAT(textOf(report({candidate("/home/adam/x", CleanupCategory::log, 1)})), HasSubstr(" /home/adam/x\n"));
    EXPECT_THAT(reportText(report({candidate("/x", CleanupCategory::log, 1)}), "", false, HostSystem::macOS),
                HasSubstr(" /x\n"));
}

TEST(ReportText, TellsStateAndUsageOfEveryCategoryAndWhyOneWasNotCheckedCompletely) {
    struct Case {
        CleanupScanState state;
        const char* why;
    };
    for (const auto& [state, why] :
         {Case{CleanupScanState::limited, "not all of it could be looked at, or there is more than is listed here"},
          Case{CleanupScanState::relocated, "the folder is a link to another place, which is not followed"},
          Case{CleanupScanState::permissionNeeded, "the folder may not be read"},
          Case{CleanupScanState::unavailable, "the folder is a link, or could not be listed"}}) {
        auto scanned = report();
        scanned.states[CleanupCategory::cache] = state;
        scanned.metrics[CleanupCategory::cache] = {CleanupByteAmount::atLeast(5'000'000), 3'000'000, 2};
        scanned.metrics[CleanupCategory::log].occupied = CleanupByteAmount::unavailable();
        const auto text = textOf(scanned);
        EXPECT_THAT(text, HasSubstr(std::string(title(state))));
        EXPECT_THAT(text, HasSubstr("at least 5 MB\n                            2 items to review, 3 MB\n"));
        EXPECT_THAT(text, HasSubstr("size unknown\n"));
        EXPECT_THAT(withoutLineBreaks(text),
                    HasSubstr(std::string("Not checked completely Temporary App Files: ") + why));
    }
    EXPECT_THAT(textOf(report()), Not(HasSubstr("Not checked completely")));
}

TEST(ReportText, FitsATerminalExceptForNamesAndPaths) {
    auto scanned = report();
    for (const auto& row : allCleanupCategories) {
        auto found = candidate("/x", row.value, largest);
        found.reason = "An old file that nobody needs, with a reason of which the last words do not fit on one line.";
        scanned.candidates.push_back(std::move(found));
        scanned.states[row.value] = CleanupScanState::limited;
        scanned.metrics[row.value] = {CleanupByteAmount::atLeast(999'999'999'999), 999'999'999'999, 99'999};
    }
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        if (!avenue.places.empty())
            scanned.guide[std::string(avenue.identifier)] = {
                CleanupScanState::limited, CleanupByteAmount::atLeast(999'999'999'999), {"/x"}};
    for (const auto system : {HostSystem::macOS, HostSystem::linuxDesktop}) {
        std::istringstream lines(reportText(scanned, "/home/ada", false, system));
        for (std::string line; std::getline(lines, line);)
            EXPECT_LE(line.size(), 80U) << line;
    }
}

TEST(ReportText, ContinuationLinesAreIndented) {
    auto scanned = report({candidate("/x", CleanupCategory::log, 1)});
    scanned.candidates.front().reason = "Twelve and sixty-eight columns: this sentence ends here, and goes on below.";
    EXPECT_THAT(textOf(scanned),
                HasSubstr("\n            Twelve and sixty-eight columns: this sentence ends here, and goes on\n"
                          "              below.\n"));
}

TEST(ReportText, OnLinuxLeavesOutCategoriesWithoutAPlace) {
    auto scanned = report();
    scanned.states[CleanupCategory::developerArchive] = CleanupScanState::notPresent;
    EXPECT_THAT(textOf(scanned), HasSubstr("Xcode Archives            Not on This Mac\n"));
    const auto onLinux = reportText(scanned, "/home/ada", false, HostSystem::linuxDesktop);
    EXPECT_THAT(onLinux, Not(HasSubstr("Xcode Archives")));
    EXPECT_THAT(onLinux, HasSubstr("Temporary App Files"));
}

TEST(ReportText, OnLinuxExplainsThePlacesOfTheGuideWithTheirCommands) {
    auto scanned = report();
    scanned.guide = {
        {"uv", {CleanupScanState::limited, CleanupByteAmount::atLeast(2'000'000), {"/home/ada/.cache/uv"}}},
        {"trash", {CleanupScanState::checked, CleanupByteAmount::exact(0), {"/t"}, "A note."}},
        {"docker", {CleanupScanState::permissionNeeded, CleanupByteAmount::unavailable(), {}}},
        {"npm", {CleanupScanState::unavailable, CleanupByteAmount::unavailable(), {}}},
        {"pip", {CleanupScanState::notPresent, CleanupByteAmount::exact(0), {}}}};
    const auto text = reportText(scanned, "/home/ada", false, HostSystem::linuxDesktop);
    EXPECT_THAT(text, HasSubstr("\nOther places, which Ombrel only measures\n"
                                "      2 MB  uv, at least\n"
                                "            ~/.cache/uv\n"
                                "            Environments may link into it: it is never safe to change it\n"
                                "              directly.\n"
                                "            uv cache prune\n"));
    EXPECT_THAT(text, HasSubstr("            npm: Couldn’t Check\n"));
    EXPECT_THAT(text, Not(HasSubstr("npm cache verify"))) << "nothing is known to be there";
    EXPECT_THAT(text, HasSubstr("            Docker: Folder Access Needed\n"));
    EXPECT_THAT(text, HasSubstr("            docker image prune\n"));
    EXPECT_THAT(text, HasSubstr("       0 B  Trash\n            /t\n"));
    EXPECT_THAT(text, HasSubstr("file manager. A note.\n"));
    EXPECT_THAT(text, Not(HasSubstr("pip")));
    const auto guide = Json::parse(reportJson(scanned))["guide"];
    ASSERT_EQ(guide.size(), scanned.guide.size());
    for (const auto& entry : guide)
        if (entry["guideId"] == "uv")
            EXPECT_EQ(entry["detail"], "Environments may link into it: it is never safe to change it directly.");
}

TEST(ReportText, ColoursAreTheOnlyDifferenceOnATerminal) {
    const auto scanned = report({candidate("/x", CleanupCategory::log, 1)});
    auto colored = reportText(scanned, "/home/ada", true, HostSystem::macOS);
    EXPECT_THAT(colored, HasSubstr("\x1b[32mLow Risk"));
    for (std::size_t at = 0; (at = colored.find('\x1b')) != std::string::npos;)
        colored.erase(at, colored.find('m', at) - at + 1);
    EXPECT_EQ(colored, textOf(scanned));
}

TEST(ReportJson, EachIdentifierIsAsciiAndStandsForOneThing) {
    const auto expectUnique = [](const std::vector<std::string_view>& identifiers) {
        const std::set<std::string_view> different(identifiers.begin(), identifiers.end());
        EXPECT_EQ(different.size(), identifiers.size());
        for (const auto identifier : identifiers)
            EXPECT_TRUE(std::regex_match(identifier.begin(), identifier.end(), std::regex("[a-z][A-Za-z]+")))
                << identifier;
    };
    std::vector<std::string_view> categories;
    for (const auto& row : allCleanupCategories)
        categories.push_back(identifier(row.value));
    expectUnique(categories);
    EXPECT_THAT(categories,
                testing::ElementsAre("cache", "log", "crashReport", "installer", "archive", "interruptedDownload",
                                     "largeDownload", "macOSInstaller", "orphan", "developerBuild", "developerCache",
                                     "developerArchive", "deviceBackup", "deviceSoftware"));
    std::vector<std::string_view> areas;
    for (const auto& row : allCleanupAreas)
        areas.push_back(identifier(row.value));
    expectUnique(areas);
    EXPECT_THAT(areas, testing::ElementsAre("quickWins", "downloads", "apps", "developer", "devices", "system"));
    using State = CleanupScanState;
    std::vector<std::string_view> states;
    for (const auto state : {State::checked, State::limited, State::notPresent, State::relocated,
                             State::permissionNeeded, State::unavailable})
        states.push_back(identifier(state));
    expectUnique(states);
    EXPECT_THAT(states, testing::ElementsAre("checked", "limited", "notPresent", "relocated", "permissionNeeded",
                                             "unavailable"));
    using Disposition = CleanupRemovalDisposition;
    std::vector<std::string_view> dispositions;
    for (const auto disposition :
         {Disposition::directTrash, Disposition::reviewOnly, Disposition::protectedFromRemoval})
        dispositions.push_back(identifier(disposition));
    expectUnique(dispositions);
    EXPECT_THAT(dispositions, testing::ElementsAre("directTrash", "reviewOnly", "protected"));
}

TEST(ReportJson, MentionsTheMacOnEverySystemAndHasTheReserveWhereItIsKnown) {
    auto scanned = report();
    scanned.states[CleanupCategory::cache] = CleanupScanState::notPresent;
    EXPECT_EQ(Json::parse(reportJson(scanned))["categories"]["Temporary App Files"]["state"], "Not on This Mac");
    EXPECT_FALSE(Json::parse(reportJson(scanned))["storage"].contains("reservedBytes"));
    scanned.storageSnapshot->reservedBytes = 7;
    EXPECT_EQ(Json::parse(reportJson(scanned))["storage"]["reservedBytes"], 7);
}

TEST(ReportJson, IsOneLineWithEveryField) {
    auto scanned = report({candidate("/home/ada/old.log", CleanupCategory::log, 2'000'000)});
    scanned.metrics[CleanupCategory::log] = {CleanupByteAmount::atLeast(7), 2'000'000, 1};
    scanned.metrics[CleanupCategory::cache].occupied = CleanupByteAmount::unavailable();
    const auto text = reportJson(scanned);
    EXPECT_EQ(text.find('\n'), text.size() - 1);
    const auto object = Json::parse(text);
    EXPECT_EQ(object["storage"], Json({{"volumeName", "Data"},
                                       {"totalBytes", 500'000'000'000},
                                       {"availableBytes", 200'000'000'000},
                                       {"usedBytes", 300'000'000'000},
                                       {"updatedAt", "2023-11-14T22:13:20Z"}}));
    EXPECT_EQ(object["durationSeconds"], 1.25);
    EXPECT_EQ(object["candidates"], Json::array({{{"path", "/home/ada/old.log"},
                                                  {"title", "old.log"},
                                                  {"category", "Old Log Files"},
                                                  {"categoryId", "log"},
                                                  {"area", "Temporary App Files"},
                                                  {"areaId", "quickWins"},
                                                  {"reason", "Because."},
                                                  {"sizeBytes", 2'000'000},
                                                  {"sizeIsLowerBound", false},
                                                  {"confidence", "Low Risk"},
                                                  {"disposition", "Low Risk"},
                                                  {"dispositionId", "directTrash"},
                                                  {"modifiedAt", "2023-11-14T22:13:20Z"}}}));
    EXPECT_EQ(object["categories"].size(), allCleanupCategories.size());
    EXPECT_EQ(object["categories"]["Old Log Files"], Json({{"categoryId", "log"},
                                                           {"state", "Checked"},
                                                           {"stateId", "checked"},
                                                           {"occupied", {{"kind", "atLeast"}, {"bytes", 7}}},
                                                           {"reviewableBytes", 2'000'000},
                                                           {"reviewableItemCount", 1}}));
    EXPECT_EQ(object["categories"]["Temporary App Files"]["occupied"], Json({{"kind", "unavailable"}}));
    EXPECT_EQ(object["categories"]["Old Crash Reports"]["occupied"], Json({{"kind", "exact"}, {"bytes", 1000}}));
}

TEST(ReportJson, SaysWhichSizesAreLowerBounds) {
    auto scanned = report({candidate("/a", CleanupCategory::log, 1), candidate("/b", CleanupCategory::log, 1)});
    scanned.incompletePaths = {"/b"};
    const auto object = Json::parse(reportJson(scanned));
    EXPECT_EQ(object["candidates"][0]["sizeIsLowerBound"], false);
    EXPECT_EQ(object["candidates"][1]["sizeIsLowerBound"], true);
    EXPECT_THAT(textOf(scanned), HasSubstr("At least 1 byte; measuring stopped early"));
}

TEST(ReportJson, WithoutAVolumeOrADateHasNullThere) {
    auto scanned = report({CleanupCandidate::withFingerprint("/x", "x", CleanupCategory::log, "", 1,
                                                             CleanupConfidence::suggested, {}, moment)});
    scanned.storageSnapshot.reset();
    const auto object = Json::parse(reportJson(scanned));
    EXPECT_TRUE(object["storage"].is_null());
    EXPECT_TRUE(object["candidates"][0]["modifiedAt"].is_null());
}

TEST(ReportJson, APathThatIsNotUtf8IsPercentEncoded) {
    const auto object =
        Json::parse(reportJson(report({candidate("/home/ada/a b\xff%é.log", CleanupCategory::log, 1)})));
    EXPECT_FALSE(object["candidates"][0].contains("path"));
    EXPECT_EQ(object["candidates"][0]["pathEncoded"], "/home/ada/a%20b%FF%25%C3%A9.log");
    EXPECT_EQ(object["candidates"][0]["title"], "a b\xef\xbf\xbd%é.log");
}

} // namespace

} // namespace vantry
