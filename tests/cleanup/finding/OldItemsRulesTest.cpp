#include "cleanup/finding/OldFileFinders.h"

#include <gtest/gtest.h>

namespace vantry::CleanupScanner {
namespace {

using std::chrono::nanoseconds;

const SystemTime now = std::chrono::sys_days(std::chrono::year(2026) / 6 / 1);

TEST(OldItemsRules, OfferAFileOrFolderFromTheirSizeOnAndWhenItIsStrictlyOlder) {
    for (const auto& category : allCleanupCategories)
        for (const auto& rule : cleanupRules(category.value, {.home = "/home/ada"})) {
            SCOPED_TRACE(rule.folder);
            const auto cutoff = cutoffDate(now, rule.olderThan);
            struct Case {
                std::int64_t bytes;
                nanoseconds older;
                bool isOffered;
            };
            for (const auto& [bytes, older, isOffered] :
                 {Case{0, nanoseconds(1), true}, Case{-1, nanoseconds(1), false}, Case{1, nanoseconds(1), true},
                  Case{0, nanoseconds(0), false}, Case{0, nanoseconds(-1), false}}) {
                const auto date = cutoff - older;
                const auto size = rule.minimumSize + bytes;
                EXPECT_EQ(isOldRegularFile(rule, {ItemFacts::Kind::regularFile, date, size}, cutoff), isOffered)
                    << bytes << " " << older.count();
                EXPECT_EQ(isOldInside(rule, {size, date, true}, cutoff), isOffered) << bytes << " " << older.count();
            }
        }
}

} // namespace
} // namespace vantry::CleanupScanner
