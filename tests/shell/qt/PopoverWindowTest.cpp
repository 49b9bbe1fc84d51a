#include "shell/qt/PopoverWindow.h"
#include "shell/qt/ElidingLabel.h"
#include "shell/qt/QtAppearance.h"
#include "tests/shell/qt/EventLoop.h"

#include <QCheckBox>
#include <QKeyEvent>
#include <QLabel>
#include <gtest/gtest.h>
#include <map>

namespace vantry {

namespace {

class PopoverWindowTest : public testing::Test {
protected:
    void open() {
        window.render(content);
        window.openAt(QRect(600, 0, 60, 24));
        settle();
    }
    void tell(const std::string& error) {
        content.errorLabel.text = error;
        content.errorLabel.hidden = false;
        window.render(content);
        settle();
        window.grab();
    }
    ElidingLabel* label(const std::string& text) {
        for (auto* each : window.findChildren<ElidingLabel*>())
            if (each->text().toStdString() == text)
                return each;
        return nullptr;
    }

    QtAppearance appearance;
    PopoverContent content;
    PopoverWindow window;
};

std::string words(std::size_t count) {
    std::string text;
    for (std::size_t i = 0; i < count; ++i)
        text += "word ";
    return text;
}

} // namespace

TEST_F(PopoverWindowTest, ShowsThreeLinesOfTheDetailAndTwoOfTheErrorAndAllOfThemInTheTooltip) {
    const std::string error = "Could not change Login Items: /home/somebody/" + std::string(150, 'x') + ": No.";
    content.detailLabel.text = words(80);
    open();
    tell(error);
    ElidingLabel* detail = label(words(80));
    ASSERT_TRUE(detail);
    EXPECT_EQ(detail->linesFor(detail->width()).size(), 3);
    EXPECT_GE(detail->height(), 3 * detail->fontMetrics().height());
    ElidingLabel* shown = label(error);
    ASSERT_TRUE(shown);
    EXPECT_EQ(shown->linesFor(shown->width()).size(), 2);
    EXPECT_GE(shown->height(), 2 * shown->fontMetrics().height());
    EXPECT_FALSE(detail->toolTip().isEmpty());
    EXPECT_FALSE(shown->toolTip().isEmpty());
    const auto labels = window.findChildren<ElidingLabel*>();
    for (const ElidingLabel* one : labels)
        for (const ElidingLabel* other : labels)
            if (one != other && one->isVisible() && other->isVisible()) {
                EXPECT_FALSE(QRect(one->mapTo(&window, QPoint()), one->size())
                                 .intersects(QRect(other->mapTo(&window, QPoint()), other->size())))
                    << one->text().toStdString() << " and " << other->text().toStdString();
            }
    EXPECT_EQ(window.width(), 380);
}

TEST_F(PopoverWindowTest, KeepsItsSizeWhenTheTextsFit) {
    content.detailLabel.text = words(80);
    tell("Could not change Login Items: /home/somebody/Library/LaunchAgents: Not a directory");
    open();
    EXPECT_EQ(window.size(), QSize(380, 452));
}

TEST_F(PopoverWindowTest, TellsWhatTheFiguresCountInTheirTooltips) {
    content.usedTooltip = "What is used.";
    content.availableTooltip = "What is free.";
    window.render(content);
    open();
    window.grab(); // labels look while they are painted whether their text fits
    std::map<QString, QString> tooltips;
    for (auto* each : window.findChildren<QLabel*>())
        tooltips[each->text()] += each->toolTip() + QStringLiteral(";");
    EXPECT_EQ(tooltips[QStringLiteral("Used")], QStringLiteral("What is used.;"));
    EXPECT_EQ(tooltips[QStringLiteral("Available")], QStringLiteral("What is free.;"));
    EXPECT_EQ(tooltips[QStringLiteral("—")], QStringLiteral("What is used.;What is free.;"));
}

TEST_F(PopoverWindowTest, EscapeAndControlWCloseItAndReturnPressesTheFocusedButton) {
    const auto press = [&](int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
        QKeyEvent event(QEvent::KeyPress, key, modifiers);
        QCoreApplication::sendEvent(window.focusWidget(), &event);
    };
    open();
    press(Qt::Key_W);
    EXPECT_TRUE(window.isVisible());
    press(Qt::Key_W, Qt::ControlModifier);
    EXPECT_FALSE(window.isVisible());
    open();
    press(Qt::Key_Escape);
    EXPECT_FALSE(window.isVisible());
    open();
    auto* const box = window.findChild<QCheckBox*>();
    box->setFocus();
    const bool wasChecked = box->isChecked();
    press(Qt::Key_Return);
    EXPECT_NE(box->isChecked(), wasChecked);
}

TEST_F(PopoverWindowTest, StaysOpenWhenItLosesTheFocusForAMoment) {
    open();
    ASSERT_TRUE(window.isActiveWindow());
    QWidget other;
    other.show();
    other.activateWindow();
    settle();
    ASSERT_FALSE(window.isActiveWindow());
    window.activateWindow();
    QElapsedTimer elapsed;
    elapsed.start();
    ASSERT_TRUE(runUntil([&] { return elapsed.elapsed() > 200; }));
    EXPECT_TRUE(window.isVisible());
}

TEST_F(PopoverWindowTest, ClosesWhenAnotherWindowKeepsTheFocus) {
    open();
    QWidget other;
    other.show();
    other.activateWindow();
    EXPECT_TRUE(runUntil([&] { return !window.isVisible(); }));
    EXPECT_TRUE(window.closedByItselfJustNow());
}

} // namespace vantry
