#include "cleanup/model/CleanupAvenue.h"

#include "base/CaseTable.h"

namespace vantry {

static_assert(rowsStandInOrder(allCleanupAvenueModes));
static_assert(rowsStandInOrder(allCleanupAvenueActions));

std::string_view title(CleanupAvenue::Mode mode) { return rowOf(allCleanupAvenueModes, mode).title; }
SystemColor color(CleanupAvenue::Mode mode) { return rowOf(allCleanupAvenueModes, mode).color; }

std::string_view rawValue(CleanupAvenue::Action action) { return rowOf(allCleanupAvenueActions, action).rawValue; }
std::string_view title(CleanupAvenue::Action action) { return rowOf(allCleanupAvenueActions, action).title; }
std::optional<CleanupAvenue::Action> cleanupAvenueActionFromRawValue(std::string_view rawValue) {
    return caseOf(allCleanupAvenueActions, rawValue);
}

} // namespace vantry
