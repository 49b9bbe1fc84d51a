#include "tests/shell/qt/CleanupWindowFixture.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QCheckBox>
#include <QLabel>
#include <QScreen>
#include <QScrollBar>

namespace vantry {

namespace {

using testing::ElementsAre;

using CleanupWindowTest = CleanupWindowFixture;

QStringList textsOf(const QWidget& window) {
    QStringList texts;
    for (const auto* label : window.findChildren<QLabel*>())
        if (label->isVisible())
            texts.append(label->text());
    return texts;
}

} // namespace

TEST_F(CleanupWindowTest, ShowsTheTextsOfItsContent) {
    const CleanupWindowContent content = cannedFiles(12);
    show(content);
    EXPECT_EQ(window.windowTitle().toStdString(), content.windowTitle);
    for (const std::string& text :
         {content.titleLabel, content.subtitleLabel, content.statusLabel, content.selectionLabel})
        EXPECT_TRUE(textsOf(window).contains(QString::fromStdString(text))) << text;
    EXPECT_EQ(window.minimumSize(), QSize(780, 620));
    EXPECT_EQ(window.results().rowCount(), 12);
}

TEST_F(CleanupWindowTest, HasItsSizeEvenWhenShownBeforeItIsRendered) {
    window.showCleanupWindow();
    EXPECT_EQ(window.size(),
              QSize(940, 760).boundedTo(window.screen()->availableSize() - QSize(40, 40)).expandedTo(QSize(780, 620)));
}

TEST_F(CleanupWindowTest, ButtonsFollowTheContent) {
    CleanupWindowContent content = cannedFiles(6);
    show(content);
    EXPECT_TRUE(button(QStringLiteral("Select Low-Risk Files"))->isEnabled());
    EXPECT_FALSE(button(QStringLiteral("Move to Trash…"))->isEnabled());
    show(cannedGuide());
    EXPECT_FALSE(button(QStringLiteral("Select Low-Risk Files"))->isVisible());
    EXPECT_FALSE(button(QStringLiteral("Move to Trash…"))->isVisible());
    EXPECT_TRUE(button(QStringLiteral("Scan Again"))->isVisible());
}

TEST_F(CleanupWindowTest, ButtonsReport) {
    CleanupWindowContent content = cannedFiles(6);
    content.trashButton.enabled = true;
    show(content);
    for (const auto* title : {"Scan Again", "Select Low-Risk Files", "Move to Trash…"})
        button(QString::fromUtf8(title))->click();
    EXPECT_THAT(reports, ElementsAre("scan", "suggested", "trash"));
}

TEST_F(CleanupWindowTest, ReturnPressesTheFocusedButton) {
    show(cannedFiles(6));
    auto* scan = button(QStringLiteral("Scan Again"));
    scan->setFocus();
    press(scan, Qt::Key_Return);
    EXPECT_THAT(reports, ElementsAre("scan"));
}

TEST_F(CleanupWindowTest, ArrowsReportTheModeAndTheContentDecides) {
    show(cannedFiles(6));
    auto* control = window.findChild<SegmentedControl*>();
    control->segment(0)->setFocus();
    press(control->segment(0), Qt::Key_Right);
    EXPECT_THAT(reports, ElementsAre("guide"));
    EXPECT_TRUE(control->segment(0)->isChecked()) << "nobody has rendered the other mode";
    window.renderCleanupWindow(cannedGuide());
    EXPECT_TRUE(control->segment(1)->isChecked());
    EXPECT_THAT(reports, ElementsAre("guide")) << "rendering is no choice of the user";
}

TEST_F(CleanupWindowTest, TheFocusReturnsToAButtonThatWasDisabledMeanwhile) {
    CleanupWindowContent content = cannedFiles(6);
    show(content);
    auto* scan = button(QStringLiteral("Scan Again"));
    scan->setFocus();
    window.renderCleanupWindow(cannedScan());
    EXPECT_NE(window.focusWidget(), scan);
    ASSERT_TRUE(window.focusWidget());
    window.renderCleanupWindow(content);
    EXPECT_EQ(window.focusWidget(), scan);
}

TEST_F(CleanupWindowTest, CheckBoxesAreEnabledAsTheContentSays) {
    constexpr int count = 400;
    CleanupWindowContent content = cannedFiles(count);
    window.renderCleanupWindow(content);
    window.showCleanupWindow();
    ASSERT_LT(window.results().builtRowCount(), count) << "some rows are to be built later";
    const auto* box = control(0, 0);
    for (const bool enabled : {false, true}) {
        content.selectionEnabled = enabled;
        window.renderCleanupWindow(content);
        buildAll();
        for (int row = 0; row < count; ++row)
            for (const QWidget* each : window.results().row(row)->controls())
                EXPECT_EQ(each->isEnabled(), enabled || !qobject_cast<const QCheckBox*>(each)) << row;
        EXPECT_EQ(control(0, 0), box) << "no row is built again";
    }
}

TEST_F(CleanupWindowTest, ANewCheckBoxIsDisabledWhileSelectionIsDisabled) {
    CleanupWindowContent content = cannedFiles(6);
    const CandidateRowContent selectable = content.sections.front().candidates.front();
    ASSERT_TRUE(selectable.symbolName.empty());
    content.sections.front().candidates.front().symbolName = "eye.fill";
    content.selectionEnabled = false;
    show(content);
    content.sections.front().candidates.front() = selectable;
    window.renderCleanupWindow(content);
    EXPECT_FALSE(control(0, 0)->isEnabled());
}

TEST_F(CleanupWindowTest, TheFocusReturnsToACheckBoxThatWasDisabledMeanwhile) {
    CleanupWindowContent content = cannedFiles(6);
    show(content);
    buildAll();
    control(0, 0)->setFocus();
    content.selectionEnabled = false;
    window.renderCleanupWindow(content);
    ASSERT_TRUE(window.focusWidget());
    EXPECT_TRUE(window.focusWidget()->isEnabled());
    content.selectionEnabled = true;
    window.renderCleanupWindow(content);
    EXPECT_EQ(window.focusWidget(), control(0, 0));
}

TEST_F(CleanupWindowTest, EscapeReportsCancel) {
    show(cannedFiles(6));
    press(window.focusWidget(), Qt::Key_Escape);
    EXPECT_THAT(reports, ElementsAre("cancel"));
    EXPECT_TRUE(window.isVisible());
}

TEST_F(CleanupWindowTest, ClosingIsReportedAfterTheWindowIsHidden) {
    show(cannedFiles(6));
    bool wasVisible = true;
    onClosed = [&] { wasVisible = window.isVisible(); };
    window.close();
    EXPECT_THAT(reports, ElementsAre("closed"));
    EXPECT_FALSE(wasVisible);
    onClosed = {};
}

TEST_F(CleanupWindowTest, KeepsItsContentWhileItIsClosed) {
    show(cannedFiles(6));
    window.close();
    EXPECT_FALSE(window.isVisible());
    window.renderCleanupWindow(cannedFiles(9));
    window.showCleanupWindow();
    EXPECT_TRUE(window.isVisible());
    EXPECT_EQ(window.results().rowCount(), 9);
}

TEST_F(CleanupWindowTest, ResultsGoBackToTheTop) {
    show(cannedFiles(60));
    window.results().verticalScrollBar()->setValue(500);
    window.scrollCleanupResultsToTop();
    EXPECT_EQ(window.results().verticalScrollBar()->value(), 0);
}

TEST_F(CleanupWindowTest, ScreenReadersGetTheFigures) {
    const CleanupWindowContent content = cannedFiles(12);
    show(content);
    QStringList names;
    for (auto* widget : window.findChildren<QWidget*>())
        if (auto* interface = QAccessible::queryAccessibleInterface(widget);
            interface && interface->role() == QAccessible::StaticText)
            names.append(interface->text(QAccessible::Name));
    EXPECT_TRUE(names.contains(QStringLiteral("Mac Storage Used: 334.38 GB")));
    EXPECT_TRUE(names.contains(QString::fromStdString(content.notice)));
}

} // namespace vantry
