#include "cleanup/model/CleanupCategory.h"

#include "cleanup/model/CaseTable.h"

namespace vantry {

static_assert(rowsStandInOrder(allCleanupCategories));

std::string_view rawValue(CleanupCategory category) { return rowOf(allCleanupCategories, category).rawValue; }
CleanupArea area(CleanupCategory category) { return rowOf(allCleanupCategories, category).area; }
std::string_view symbolName(CleanupCategory category) { return rowOf(allCleanupCategories, category).symbolName; }
CleanupRemovalDisposition removalDisposition(CleanupCategory category) {
    return rowOf(allCleanupCategories, category).removalDisposition;
}
std::optional<CleanupCategory> cleanupCategoryFromRawValue(std::string_view rawValue) {
    return caseOf(allCleanupCategories, rawValue);
}

} // namespace vantry
