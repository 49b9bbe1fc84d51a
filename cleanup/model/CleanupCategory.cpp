#include "cleanup/model/CleanupCategory.h"

#include "base/CaseTable.h"

namespace vantry {

static_assert(rowsStandInOrder(allCleanupAreas));

std::string_view identifier(CleanupArea area) { return rowOf(allCleanupAreas, area).identifier; }
int rawValue(CleanupArea area) { return rowOf(allCleanupAreas, area).rawValue; }
std::string_view title(CleanupArea area) { return rowOf(allCleanupAreas, area).title; }
std::string_view subtitle(CleanupArea area) { return rowOf(allCleanupAreas, area).subtitle; }
std::string_view symbolName(CleanupArea area) { return rowOf(allCleanupAreas, area).symbolName; }
std::optional<CleanupArea> cleanupAreaFromRawValue(int rawValue) { return caseOf(allCleanupAreas, rawValue); }

std::string_view identifier(CleanupRemovalDisposition disposition) {
    switch (disposition) {
    case CleanupRemovalDisposition::directTrash: return "directTrash";
    case CleanupRemovalDisposition::reviewOnly: return "reviewOnly";
    case CleanupRemovalDisposition::protectedFromRemoval: return "protected";
    }
    return {};
}

std::string_view title(CleanupRemovalDisposition disposition) {
    switch (disposition) {
    case CleanupRemovalDisposition::directTrash: return "Low Risk";
    case CleanupRemovalDisposition::reviewOnly: return "Review in Finder";
    case CleanupRemovalDisposition::protectedFromRemoval: return "Protected";
    }
    return {};
}

static_assert(rowsStandInOrder(allCleanupCategories));

std::string_view identifier(CleanupCategory category) { return rowOf(allCleanupCategories, category).identifier; }
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
