#include "cleanup/model/CleanupCategoryMetric.h"

#include "cleanup/model/HashOf.h"

std::size_t std::hash<vantry::CleanupCategoryMetric>::operator()(const vantry::CleanupCategoryMetric& metric) const {
    return vantry::hashOf(metric.occupied, metric.reviewableBytes, metric.reviewableItemCount);
}
