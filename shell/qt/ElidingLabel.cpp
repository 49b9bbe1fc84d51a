#include "shell/qt/ElidingLabel.h"

#include "shell/qt/QtConversions.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>

namespace vantry {

QSize ElidingLabel::minimumSizeHint() const { return {0, QLabel::minimumSizeHint().height()}; }

void ElidingLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QString shown = fontMetrics().elidedText(text(), Qt::ElideRight, width());
    style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(), shown,
                          foregroundRole());
    setToolTip(shown == text() ? QString() : plainToolTip(text()));
    setAccessibleDescription(shown == text() ? QString() : text()); // or it would be the tooltip with its marks
}

} // namespace vantry
