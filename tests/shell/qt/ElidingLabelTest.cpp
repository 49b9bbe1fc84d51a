#include "shell/qt/ElidingLabel.h"

#include <gtest/gtest.h>

#include <QTextDocument>

namespace vantry {

namespace {

const QString sentence =
    QStringLiteral("The color strip shows total used space with the current palette of this window.");
const QString path = QStringLiteral("/home/somebody/") + QString(200, QLatin1Char('x')) + QStringLiteral(".plist");

/// A tooltip's text without HTML tags.
QString said(const QString& tooltip) {
    QTextDocument document;
    document.setHtml(tooltip);
    return document.toPlainText();
}

} // namespace

TEST(ElidingLabel, EndsInAnEllipsisWhenTheTextDoesNotFit) {
    for (const int mostLines : {1, 2, 3}) {
        ElidingLabel label(nullptr, mostLines);
        const int width = label.fontMetrics().averageCharWidth() * 30;
        for (const QString& text : {sentence + sentence, QStringLiteral("Could not change: ") + path, path}) {
            label.setText(text);
            const QStringList lines = label.linesFor(width);
            ASSERT_EQ(lines.size(), mostLines);
            EXPECT_TRUE(lines.last().endsWith(QStringLiteral("…")));
            for (const QString& line : lines)
                EXPECT_LE(label.fontMetrics().horizontalAdvance(line.trimmed()), width) << line.toStdString();
            const QString before = lines.join(QString()).chopped(1);
            EXPECT_TRUE(text.startsWith(before)) << before.toStdString();
        }
    }
}

TEST(ElidingLabel, ItsTooltipHasTheWholeTextWhenItIsElided) {
    ElidingLabel label(nullptr, 2);
    label.setText(sentence + QStringLiteral(" <b>&"));
    label.resize(label.fontMetrics().averageCharWidth() * 20, 100);
    label.grab();
    EXPECT_EQ(said(label.toolTip()), label.text());
    EXPECT_EQ(label.accessibleDescription(), label.text());
    label.resize(label.fontMetrics().averageCharWidth() * 200, 100);
    label.grab();
    EXPECT_EQ(label.toolTip(), QString());
    EXPECT_EQ(label.accessibleDescription(), QString());
}

TEST(ElidingLabel, IsAsHighAsItsLines) {
    ElidingLabel label(nullptr, 3);
    label.setText(sentence);
    const QFontMetrics metrics = label.fontMetrics();
    EXPECT_EQ(label.heightForWidth(metrics.horizontalAdvance(sentence) + 1), metrics.height());
    EXPECT_EQ(label.heightForWidth(metrics.horizontalAdvance(sentence) * 2 / 3),
              metrics.height() + metrics.lineSpacing());
    EXPECT_EQ(label.heightForWidth(metrics.averageCharWidth() * 12), metrics.height() + 2 * metrics.lineSpacing());
}

TEST(ElidingLabel, ALineBreakIsASpace) {
    ElidingLabel label(nullptr, 2);
    label.setText(QStringLiteral("one\ntwo"));
    EXPECT_EQ(label.linesFor(10000), QStringList(QStringLiteral("one two")));
}

} // namespace vantry
