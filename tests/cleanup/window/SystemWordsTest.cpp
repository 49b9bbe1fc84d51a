#include "cleanup/model/CleanupAvenue.h"
#include "cleanup/model/CleanupScanReport.h"
#include "platform/HostSystem.h"

#include <gtest/gtest.h>
#include <regex>
#include <string>
#include <vector>

namespace vantry {
namespace {

/// Every text in the model's tables that is shown to users.
std::vector<std::string_view> textsOfTheModel() {
    std::vector<std::string_view> texts;
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        texts.insert(texts.end(), {avenue.title, avenue.detail});
    for (const auto& row : allCleanupAvenueModes)
        texts.push_back(row.title);
    for (const auto& row : allCleanupAvenueActions)
        texts.push_back(row.title);
    for (const auto& row : allCleanupAreas)
        texts.insert(texts.end(), {row.title, row.subtitle});
    for (const auto& row : allCleanupCategories)
        texts.insert(texts.end(), {row.rawValue, title(row.removalDisposition)});
    for (const auto state :
         {CleanupScanState::checked, CleanupScanState::limited, CleanupScanState::notPresent,
          CleanupScanState::relocated, CleanupScanState::permissionNeeded, CleanupScanState::unavailable})
        texts.push_back(title(state));
    return texts;
}

TEST(SystemWords, OnLinuxNoTextOfTheModelSpeaksOfAMac) {
    const std::regex word(R"(\b(mac|macos|finder)\b)", std::regex::icase);
    int changed = 0;
    for (const auto text : textsOfTheModel()) {
        const auto shown = inWordsOf(HostSystem::linuxDesktop, text);
        EXPECT_FALSE(std::regex_search(shown, word)) << shown;
        changed += shown == text ? 0 : 1;
    }
    EXPECT_GE(changed, 4);
}

} // namespace
} // namespace vantry
