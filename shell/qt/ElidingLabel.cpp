#include "shell/qt/ElidingLabel.h"

#include "shell/qt/FigureText.h"
#include "shell/qt/QtConversions.h"

#include <QFontMetrics>
#include <QPainter>
#include <QStyle>
#include <QTextLayout>
#include <algorithm>
#include <cmath>

namespace vantry {

ElidingLabel::ElidingLabel(QWidget* parent, int mostLines) : QLabel(parent), mostLines_(mostLines) {
    setWordWrap(mostLines > 1);
}

void ElidingLabel::setMonospacedDigits(bool monospaced) {
    monospacedDigits_ = monospaced;
    updateGeometry();
}

// The extra width that equally wide digits take.
int ElidingLabel::widthOfCells() const {
    if (!monospacedDigits_)
        return 0;
    const QFontMetricsF metrics(font(), this);
    return std::max(0, static_cast<int>(std::ceil(figuresWidth(metrics, text()) - metrics.horizontalAdvance(text()))));
}

QSize ElidingLabel::sizeHint() const { return QLabel::sizeHint() + QSize(widthOfCells(), 0); }

// A word longer than a line, such as a path, continues in the next line.
QStringList ElidingLabel::linesFor(int width) const {
    const QString all = text().replace(QLatin1Char('\n'), QLatin1Char(' '));
    QTextLayout layout(all, font());
    QTextOption option;
    option.setWrapMode(QTextOption::WrapAtWordBoundaryOrAnywhere);
    layout.setTextOption(option);
    QStringList lines;
    layout.beginLayout();
    for (QTextLine line = layout.createLine(); line.isValid(); line = layout.createLine()) {
        line.setLineWidth(width);
        if (lines.size() == mostLines_ - 1) {
            lines.append(fontMetrics().elidedText(all.mid(line.textStart()), Qt::ElideRight, width));
            break;
        }
        lines.append(all.mid(line.textStart(), line.textLength()));
    }
    layout.endLayout();
    return lines;
}

QSize ElidingLabel::minimumSizeHint() const {
    return {0, mostLines_ > 1 ? fontMetrics().height() : QLabel::minimumSizeHint().height()};
}

int ElidingLabel::heightForWidth(int width) const {
    if (mostLines_ == 1)
        return QLabel::heightForWidth(width);
    const auto lines = std::max(1, static_cast<int>(linesFor(width).size()));
    return fontMetrics().height() + (lines - 1) * fontMetrics().lineSpacing();
}

void ElidingLabel::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    const QStringList lines = linesFor(width() - widthOfCells());
    if (monospacedDigits_) {
        painter.setPen(palette().color(foregroundRole()));
        drawFigures(painter, rect(), alignment(), lines.last());
    } else {
        style()->drawItemText(&painter, rect(), static_cast<int>(alignment()), palette(), isEnabled(),
                              lines.join(QLatin1Char('\n')), foregroundRole());
    }
    describe(text().endsWith(lines.last()));
}

void ElidingLabel::setExplanation(const QString& explanation) {
    explanation_ = explanation;
    describe(true); // painting knows better
    update();
}

// Without a description of its own, Qt takes the tooltip with its HTML tags.
void ElidingLabel::describe(bool isWhole) {
    setToolTip(isWhole ? explanation_ : wrappedToolTip(text()));
    setAccessibleDescription(isWhole ? explanation_ : text());
}

} // namespace vantry
