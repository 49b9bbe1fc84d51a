#include "cleanup/model/CleanupArea.h"

#include "cleanup/model/CaseTable.h"

namespace vantry {

static_assert(rowsStandInOrder(allCleanupAreas));

int rawValue(CleanupArea area) { return rowOf(allCleanupAreas, area).rawValue; }
std::string_view title(CleanupArea area) { return rowOf(allCleanupAreas, area).title; }
std::string_view subtitle(CleanupArea area) { return rowOf(allCleanupAreas, area).subtitle; }
std::string_view symbolName(CleanupArea area) { return rowOf(allCleanupAreas, area).symbolName; }
std::optional<CleanupArea> cleanupAreaFromRawValue(int rawValue) { return caseOf(allCleanupAreas, rawValue); }

} // namespace vantry
