#include "shell/qt/FigureText.h"

#include "shell/qt/ElidingLabel.h"
#include "shell/qt/QtCanvas.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>
#include <array>

namespace vantry {

namespace {

/// A font whose "1" is narrower than its "8"; otherwise these tests would show nothing.
QFont proportionalFont() {
    for (const char* family : {"Inter", "DejaVu Serif", "Sans Serif"}) {
        QFont font(QString::fromLatin1(family));
        font.setPixelSize(20);
        const QFontMetricsF metrics(font);
        if (metrics.horizontalAdvance(QLatin1Char('1')) + 1 < metrics.horizontalAdvance(QLatin1Char('8')))
            return font;
    }
    return {};
}

/// The first and the last column that `draw` paints in.
template <class Draw>
QPair<int, int> inkedColumns(const Draw& draw) {
    QImage image(200, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter painter(&image);
    painter.setFont(proportionalFont());
    draw(painter);
    painter.end();
    QRect ink;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (image.pixelColor(x, y) != Qt::white)
                ink |= QRect(x, y, 1, 1);
    return {ink.left(), ink.right()};
}

} // namespace

TEST(FigureText, IsEquallyWideWhateverItsDigits) {
    const QFontMetricsF metrics(proportionalFont());
    EXPECT_EQ(figuresWidth(metrics, QStringLiteral("111.11 GB")), figuresWidth(metrics, QStringLiteral("888.08 GB")));
    EXPECT_LT(figuresWidth(metrics, QStringLiteral("1 B")), figuresWidth(metrics, QStringLiteral("10 B")));
}

TEST(FigureText, TextAfterTheDigitsDoesNotMove) {
    for (const auto alignment : {Qt::AlignLeft, Qt::AlignHCenter, Qt::AlignRight}) {
        const auto lastColumn = [&](const char* text) {
            return inkedColumns([&](QPainter& painter) {
                       drawFigures(painter, QRectF(10, 0, 180, 40), alignment, QString::fromLatin1(text));
                   })
                .second;
        };
        EXPECT_EQ(lastColumn("11.1%"), lastColumn("88.8%")) << alignment;
    }
}

TEST(FigureText, FollowsTheAlignment) {
    const auto columns = [](Qt::Alignment alignment) {
        return inkedColumns(
            [&](QPainter& painter) { drawFigures(painter, QRectF(20, 0, 160, 40), alignment, QStringLiteral("88%")); });
    };
    const auto [left, leftEnd] = columns(Qt::AlignLeft);
    const auto [rightStart, right] = columns(Qt::AlignRight);
    const auto [middleStart, middleEnd] = columns(Qt::AlignHCenter);
    EXPECT_NEAR(left, 20, 3);
    EXPECT_NEAR(right, 180, 3);
    EXPECT_NEAR(middleStart - left, right - middleEnd, 2);
    EXPECT_GT(middleStart, leftEnd);
}

TEST(FigureText, LabelsAndTheCanvasUseItWhenTheFontAsksForIt) {
    ElidingLabel label(nullptr);
    label.setFont(proportionalFont());
    QImage image(10, 10, QImage::Format_RGB32);
    QPainter painter(&image);
    const QtCanvas canvas(painter, Appearance::light);
    for (const bool monospaced : {false, true}) {
        label.setMonospacedDigits(monospaced);
        const auto labelWidth = [&](const char* text) {
            label.setText(QString::fromLatin1(text));
            return label.sizeHint().width();
        };
        EXPECT_EQ(labelWidth("11.1 GB") == labelWidth("88.8 GB"), monospaced);
        const Font font{20, FontWeight::medium, monospaced};
        if (monospaced) { // the system's font may have only such digits
            EXPECT_EQ(canvas.textWidth("11%", font), canvas.textWidth("88%", font));
        }
    }
}

TEST(FigureText, ALabelIsNotElidedAtItsOwnSizeHint) {
    ElidingLabel label(nullptr);
    label.setFont(proportionalFont());
    label.setMonospacedDigits(true);
    label.setText(QStringLiteral("111.11 GB  -  11.1%"));
    label.resize(label.sizeHint());
    std::ignore = label.grab();
    EXPECT_TRUE(label.toolTip().isEmpty());
    label.resize(label.width() - 10, label.height());
    std::ignore = label.grab();
    EXPECT_FALSE(label.toolTip().isEmpty());
}

} // namespace vantry
