#include "shell/qt/FigureText.h"

#include <QPainter>
#include <algorithm>

namespace vantry {

namespace {

double digitWidth(const QFontMetricsF& metrics) {
    double widest = 0;
    for (char16_t digit = u'0'; digit <= u'9'; ++digit)
        widest = std::max(widest, metrics.horizontalAdvance(QChar(digit)));
    return widest;
}

bool isDigit(QChar character) { return character >= u'0' && character <= u'9'; }

// Calls `visit` with each digit and with each run of other characters.
template <class Visit>
void forEachRun(const QString& text, Visit visit) {
    for (qsizetype begin = 0, end = 0; begin < text.size(); begin = end) {
        end = begin + 1;
        while (!isDigit(text[begin]) && end < text.size() && !isDigit(text[end]))
            ++end;
        visit(text.mid(begin, end - begin), isDigit(text[begin]));
    }
}

} // namespace

void drawFigures(QPainter& painter, const QRectF& rect, Qt::Alignment alignment, const QString& text) {
    const QFontMetricsF metrics(painter.font(), painter.device());
    const double digit = digitWidth(metrics);
    const double room = rect.width() - figuresWidth(metrics, text);
    double x = rect.left();
    if (alignment & Qt::AlignRight)
        x += room;
    else if (alignment & Qt::AlignHCenter)
        x += room / 2;
    const double baseline = rect.top() + (rect.height() - metrics.height()) / 2 + metrics.ascent();
    forEachRun(text, [&](const QString& run, bool isFigure) {
        const double advance = metrics.horizontalAdvance(run);
        painter.drawText(QPointF(x + (isFigure ? (digit - advance) / 2 : 0), baseline), run);
        x += isFigure ? digit : advance;
    });
}

double figuresWidth(const QFontMetricsF& metrics, const QString& text) {
    const double digit = digitWidth(metrics);
    double width = 0;
    forEachRun(text,
               [&](const QString& run, bool isFigure) { width += isFigure ? digit : metrics.horizontalAdvance(run); });
    return width;
}

} // namespace vantry
