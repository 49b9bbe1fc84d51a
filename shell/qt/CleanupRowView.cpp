#include "shell/qt/CleanupRowView.h"

#include "shell/qt/CleanupLook.h"
#include "shell/qt/QtCanvas.h"
#include "shell/qt/QtConversions.h"

#include <QPushButton>
#include <algorithm>

namespace vantry {

namespace {

constexpr int sidesOfAButton = 28; // both together

int widestAvenueButton(const QFontMetrics& metrics) {
    int width = 0;
    for (const auto& action : allCleanupAvenueActions)
        width = std::max(width, metrics.horizontalAdvance(qString(action.title)));
    return width + sidesOfAButton;
}

} // namespace

CleanupRowType::CleanupRowType(const QPaintDevice& device)
    : title(qFont(cleanupRowTitleFont, device)),
      detail(qFont(cleanupDetailFont, device)),
      strong(qFont(cleanupStrongFont, device)),
      badge(qFont(cleanupBadgeFont, device)),
      titleMetrics(title),
      detailMetrics(detail),
      strongMetrics(strong),
      badgeMetrics(badge),
      buttonWidth(widestAvenueButton(QFontMetrics(qFont(cleanupBodyFont, device)))) {}

} // namespace vantry
