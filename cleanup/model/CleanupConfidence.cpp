#include "cleanup/model/CleanupConfidence.h"

#include "cleanup/model/CaseTable.h"

namespace vantry {

static_assert(rowsStandInOrder(allCleanupConfidences));

std::string_view rawValue(CleanupConfidence confidence) { return rowOf(allCleanupConfidences, confidence).rawValue; }
std::optional<CleanupConfidence> cleanupConfidenceFromRawValue(std::string_view rawValue) {
    return caseOf(allCleanupConfidences, rawValue);
}

} // namespace vantry
