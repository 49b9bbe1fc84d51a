#include "cleanup/model/CleanupCandidate.h"

#include <gtest/gtest.h>

#include <optional>

namespace vantry {

using Confidence = CleanupCandidate::Confidence;

TEST(CleanupConfidence, IsShownByItsRawValue) {
    EXPECT_EQ(rawValue(Confidence::suggested), "Low Risk");
    EXPECT_EQ(rawValue(Confidence::review), "Review First");
    EXPECT_EQ(cleanupConfidenceFromRawValue("Low Risk"), Confidence::suggested);
    EXPECT_EQ(cleanupConfidenceFromRawValue("Review First"), Confidence::review);
}

TEST(CleanupConfidence, EveryConfidenceIsListedInOrder) {
    ASSERT_EQ(allCleanupConfidences.size(), 2U);
    EXPECT_EQ(allCleanupConfidences[0].value, Confidence::suggested);
    EXPECT_EQ(allCleanupConfidences[1].value, Confidence::review);
}

TEST(CleanupConfidence, OnlyAnExactRawValueIsAConfidence) {
    for (const char* text :
         {"", "suggested", "review", "low risk", "Low risk", "Low Risk ", "Review", "Review in Finder"})
        EXPECT_EQ(cleanupConfidenceFromRawValue(text), std::nullopt) << text;
}

} // namespace vantry
