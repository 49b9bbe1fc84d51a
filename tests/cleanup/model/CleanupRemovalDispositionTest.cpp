#include "cleanup/model/CleanupCandidate.h"

#include <gtest/gtest.h>

namespace vantry {

using RemovalDisposition = CleanupCandidate::RemovalDisposition;

TEST(CleanupRemovalDisposition, IsShownByItsTitle) {
    EXPECT_EQ(title(RemovalDisposition::directTrash), "Low Risk");
    EXPECT_EQ(title(RemovalDisposition::reviewOnly), "Review in Finder");
    EXPECT_EQ(title(RemovalDisposition::protectedFromRemoval), "Protected");
}

} // namespace vantry
