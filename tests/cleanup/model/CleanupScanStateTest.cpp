#include "cleanup/model/CleanupScanState.h"

#include <gtest/gtest.h>

namespace vantry {

TEST(CleanupScanState, IsShownByItsTitle) {
    EXPECT_EQ(title(CleanupScanState::checked), "Checked");
    EXPECT_EQ(title(CleanupScanState::limited), "Scan Incomplete");
    EXPECT_EQ(title(CleanupScanState::notPresent), "Not on This Mac");
    EXPECT_EQ(title(CleanupScanState::relocated), "Stored Somewhere Else");
    EXPECT_EQ(title(CleanupScanState::permissionNeeded), "Folder Access Needed");
    EXPECT_EQ(title(CleanupScanState::unavailable), "Couldn\xe2\x80\x99t Check");
}

} // namespace vantry
