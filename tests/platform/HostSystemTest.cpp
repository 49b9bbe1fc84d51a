#include "platform/HostSystem.h"

#include "platform/SystemWords.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace vantry {
namespace {

bool speaksOfAMac(std::string_view text) {
    static const std::regex word(R"(\b(mac|macs|macos|macintosh|finder|menu bar)\b)", std::regex::icase);
    return std::regex_search(text.begin(), text.end(), word);
}

/// The product's sources, with what is written as several literals in one.
std::string allSources() {
    std::string all;
    for (const char* folder : {"app", "cleanup", "storage"})
        for (const auto& entry :
             std::filesystem::recursive_directory_iterator(std::filesystem::path(OMBREL_SOURCE_ROOT) / folder))
            if (entry.is_regular_file()) {
                std::ifstream file(entry.path());
                all.append(std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>());
            }
    return std::regex_replace(all, std::regex(R"("\s*\n\s*")"), "");
}

TEST(HostSystem, TextsAreUnchangedOnAMac) {
    for (const auto& row : systemWords)
        EXPECT_EQ(inWordsOf(HostSystem::macOS, row.macOS), row.macOS);
    EXPECT_EQ(inWordsOf(HostSystem::macOS, "another"), "another");
}

TEST(HostSystem, OnLinuxOnlyWholeTextsOfTheTableAreReplaced) {
    for (const auto& row : systemWords)
        EXPECT_EQ(inWordsOf(HostSystem::linuxDesktop, row.macOS), row.linuxDesktop);
    for (const char* other : {"", "another", "Not on This Mac!", "My Review in Finder"})
        EXPECT_EQ(inWordsOf(HostSystem::linuxDesktop, other), other);
}

TEST(HostSystem, NoTextForLinuxMentionsAMacAndEachTextIsInTheTableOnce) {
    std::set<std::string_view> seen;
    for (const auto& row : systemWords) {
        EXPECT_FALSE(speaksOfAMac(row.linuxDesktop)) << row.linuxDesktop;
        EXPECT_NE(row.macOS, row.linuxDesktop);
        EXPECT_TRUE(seen.insert(row.macOS).second) << row.macOS;
    }
    EXPECT_TRUE(speaksOfAMac("Not on This Mac"));
    EXPECT_FALSE(speaksOfAMac("a machine"));
}

TEST(HostSystem, EachTextOfTheTableIsUsedByTheProduct) {
    const auto sources = allSources();
    for (const auto& row : systemWords)
        EXPECT_NE(sources.find('"' + std::string(row.macOS) + '"'), std::string::npos) << row.macOS;
}

} // namespace
} // namespace vantry
