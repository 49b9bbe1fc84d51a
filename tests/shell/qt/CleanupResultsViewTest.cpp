#include "tests/shell/qt/CleanupWindowFixture.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QScrollBar>
#include <QTimer>
#include <map>
#include <optional>

namespace vantry {

namespace {

using testing::ElementsAre;

using CleanupResultsViewTest = CleanupWindowFixture;

/// Counts how often each of the rows is painted.
class PaintCounter : public QObject {
public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint)
            ++counts[watched];
        return false;
    }
    std::map<QObject*, int> counts;
};

CandidateRowContent& firstLowRisk(CleanupWindowContent& content) { return content.sections.at(0).candidates.at(0); }

QAccessibleInterface* accessible(QObject* object) { return QAccessible::queryAccessibleInterface(object); }

} // namespace

TEST_F(CleanupResultsViewTest, VisibleRowsAreBuiltAtOnceAndTheOthersLater) {
    show(cannedFiles(0));
    window.renderCleanupWindow(cannedFiles(400));
    const int atOnce = window.results().builtRowCount();
    EXPECT_GT(atOnce, 2);
    EXPECT_LT(atOnce, 60);
    for (int row = 0; row < 4; ++row)
        EXPECT_TRUE(window.results().row(row)) << row;
    buildAll();
}

TEST_F(CleanupResultsViewTest, TheEventLoopRunsBetweenTheSlices) {
    show(cannedFiles(0));
    window.renderCleanupWindow(cannedFiles(4000));
    int beats = 0;
    QTimer heart;
    QObject::connect(&heart, &QTimer::timeout, [&] {
        if (window.results().builtRowCount() < window.results().rowCount())
            ++beats;
    });
    heart.start(0);
    buildAll();
    EXPECT_GE(beats, 3);
}

TEST_F(CleanupResultsViewTest, NothingMovesWhileRowsAreBuilt) {
    show(cannedFiles(0));
    window.renderCleanupWindow(cannedFiles(400));
    const int height = window.results().widget()->height();
    buildAll();
    EXPECT_EQ(window.results().widget()->height(), height);
}

TEST_F(CleanupResultsViewTest, ScrollingBuildsTheRowsThatBecomeVisible) {
    show(cannedFiles(0));
    window.renderCleanupWindow(cannedFiles(400));
    auto* bar = window.results().verticalScrollBar();
    bar->setValue(bar->maximum());
    EXPECT_TRUE(window.results().row(399));
    EXPECT_FALSE(window.results().row(200));
    window.scrollCleanupResultsToTop();
    EXPECT_EQ(bar->value(), 0);
}

TEST_F(CleanupResultsViewTest, TabVisitsTheRowsInOrderHoweverTheyWereBuilt) {
    show(cannedFiles(0));
    window.renderCleanupWindow(cannedFiles(100));
    auto* bar = window.results().verticalScrollBar();
    bar->setValue(bar->maximum()); // builds the last rows before those in the middle
    buildAll();
    QWidget* at = control(0, 0);
    for (int row = 0; row < 100; ++row)
        for (QWidget* expected : window.results().row(row)->controls()) {
            ASSERT_EQ(at, expected) << "row " << row;
            do
                at = at->nextInFocusChain();
            while (!(at->focusPolicy() & Qt::TabFocus) || at->isHidden());
        }
}

TEST_F(CleanupResultsViewTest, RenderingASelectionRepaintsOnlyItsRow) {
    CleanupWindowContent content = cannedFiles(30);
    show(content);
    buildAll();
    settle();
    PaintCounter counter;
    for (int row = 0; row < 30; ++row)
        window.results().row(row)->installEventFilter(&counter);
    CleanupRowView* const before = window.results().row(0);
    firstLowRisk(content).selected = true;
    window.renderCleanupWindow(content);
    settle();
    EXPECT_EQ(window.results().row(0), before);
    EXPECT_TRUE(static_cast<QCheckBox*>(control(0, 0))->isChecked());
    EXPECT_EQ(counter.counts.size(), 1U);
    EXPECT_EQ(counter.counts.count(before), 1U);
}

TEST_F(CleanupResultsViewTest, TickingABoxReportsAndTheContentDecides) {
    CleanupWindowContent content = cannedFiles(6);
    show(content);
    auto* box = static_cast<QCheckBox*>(control(0, 0));
    box->click();
    EXPECT_THAT(reports, ElementsAre("candidate-0 on"));
    EXPECT_FALSE(box->isChecked()) << "the content does not say so";
    onSelection = [&] {
        firstLowRisk(content).selected = true;
        window.renderCleanupWindow(content);
    };
    box->setFocus();
    press(box, Qt::Key_Space);
    EXPECT_TRUE(box->isChecked());
    EXPECT_EQ(window.focusWidget(), box);
}

TEST_F(CleanupResultsViewTest, AReportMayRemoveItsOwnRow) {
    show(cannedFiles(6));
    onSelection = [&] { window.renderCleanupWindow(cannedScan()); };
    static_cast<QCheckBox*>(control(0, 0))->click();
    settle();
    EXPECT_EQ(window.results().rowCount(), 0);
}

TEST_F(CleanupResultsViewTest, TheOtherControlsReport) {
    show(cannedFiles(6));
    static_cast<QAbstractButton*>(control(1, 0))->click();
    window.renderCleanupWindow(cannedGuide());
    buildAll();
    for (int row = 0; row < window.results().rowCount(); ++row)
        for (QWidget* each : window.results().row(row)->controls())
            if (static_cast<QPushButton*>(each)->text() == QStringLiteral("Open Photos"))
                static_cast<QPushButton*>(each)->click();
    EXPECT_THAT(reports, ElementsAre("reveal candidate-1", "open photos"));
}

TEST_F(CleanupResultsViewTest, WhenARowIsRemovedItsNeighbourGetsTheFocus) {
    CleanupWindowContent content = cannedFiles(30);
    show(content);
    buildAll();
    control(3, 0)->setFocus();
    CleanupRowView* const next = window.results().row(4);
    auto& rows = content.sections.at(0).candidates;
    rows.erase(rows.begin() + 3);
    window.renderCleanupWindow(content);
    EXPECT_EQ(window.results().row(3), next);
    EXPECT_EQ(window.focusWidget(), next->controls().front());
}

TEST_F(CleanupResultsViewTest, RemainingRowsStayTheSameWidgets) {
    CleanupWindowContent content = cannedFiles(30);
    show(content);
    buildAll();
    CleanupRowView* const last = window.results().row(29);
    content.sections.erase(content.sections.begin());
    window.renderCleanupWindow(content);
    buildAll();
    EXPECT_EQ(window.results().row(window.results().rowCount() - 1), last);
}

TEST_F(CleanupResultsViewTest, UpAndDownKeepTheColumn) {
    show(cannedFiles(9));
    buildAll();
    QWidget* reveal = control(0, 1);
    reveal->setFocus();
    press(reveal, Qt::Key_Down);
    EXPECT_EQ(window.focusWidget(), control(1, 0)) << "the button to reveal is the only control of that row";
    press(window.focusWidget(), Qt::Key_Up);
    EXPECT_EQ(window.focusWidget(), reveal);
}

TEST_F(CleanupResultsViewTest, DownSkipsDisabledButtons) {
    CleanupWindowContent content = cannedGuide();
    auto& rows = content.sections.at(1).avenues; // all of its rows have a button
    for (auto& row : rows)
        row.button->enabled = &row == &rows.front() || &row == &rows.at(3);
    show(content);
    buildAll();
    const int first = static_cast<int>(content.sections.at(0).avenues.size());
    control(first, 0)->setFocus();
    press(control(first, 0), Qt::Key_Down);
    EXPECT_EQ(window.focusWidget(), control(first + 3, 0));
}

TEST_F(CleanupResultsViewTest, TheFocusedControlIsScrolledIntoView) {
    show(cannedFiles(100));
    buildAll();
    ASSERT_TRUE(runUntil([&] { return window.isActiveWindow(); }));
    control(70, 0)->setFocus(Qt::TabFocusReason);
    const QRect row(window.results().row(70)->mapTo(window.results().viewport(), QPoint(0, 0)),
                    window.results().row(70)->size());
    EXPECT_TRUE(window.results().viewport()->rect().contains(row));
    control(0, 0)->setFocus(Qt::TabFocusReason);
    EXPECT_EQ(window.results().verticalScrollBar()->value(), 0);
}

TEST_F(CleanupResultsViewTest, TheTopRowStaysThereWhenTheWindowGetsNarrower) {
    show(cannedFiles(100));
    buildAll();
    window.results().verticalScrollBar()->setValue(2000);
    std::optional<int> topRow;
    for (int row = 0; row < 100 && !topRow; ++row)
        if (window.results().row(row)->mapTo(window.results().viewport(), QPoint(0, 0)).y() >= 0)
            topRow = row;
    ASSERT_TRUE(topRow);
    window.resize(window.minimumSize());
    settle();
    const int y = window.results().row(*topRow)->mapTo(window.results().viewport(), QPoint(0, 0)).y();
    EXPECT_GE(y, -100);
    EXPECT_LE(y, 160);
}

TEST_F(CleanupResultsViewTest, TheEmptyStateIsSlightlyAboveTheMiddle) {
    show(cannedScan());
    auto* content = window.results().widget();
    QWidget* block = nullptr;
    for (auto* each : content->findChildren<QWidget*>(QString(), Qt::FindDirectChildrenOnly))
        if (each->isVisible())
            block = each;
    ASSERT_TRUE(block);
    EXPECT_LE(block->width(), 250);
    EXPECT_EQ(block->geometry().center().x(), content->rect().center().x());
    EXPECT_NEAR(block->geometry().center().y(), content->rect().center().y() - 80, 1);
    EXPECT_EQ(accessible(block)->text(QAccessible::Name), QStringLiteral("Checking storage…"));
    EXPECT_EQ(content->height(), window.results().viewport()->height()) << "there is nothing to scroll";
}

TEST_F(CleanupResultsViewTest, ScreenReadersGetTheWholeRow) {
    show(cannedFiles(6));
    auto* row = accessible(window.results().row(0));
    EXPECT_EQ(row->role(), QAccessible::ListItem);
    EXPECT_EQ(row->text(QAccessible::Name), QStringLiteral("Installer 0.dmg"));
    EXPECT_TRUE(row->text(QAccessible::Description).contains(QStringLiteral("Low Risk")));
    EXPECT_EQ(row->parent()->role(), QAccessible::List);
    EXPECT_EQ(row->parent()->text(QAccessible::Name), QStringLiteral("Temporary App Files"));

    auto* box = accessible(control(0, 0));
    EXPECT_EQ(box->role(), QAccessible::CheckBox);
    EXPECT_EQ(box->text(QAccessible::Name), QStringLiteral("Select low-risk file Installer 0.dmg"));
    EXPECT_TRUE(box->state().checkable);
    EXPECT_FALSE(box->state().checked);
    EXPECT_FALSE(box->text(QAccessible::Description).isEmpty());
    auto* reveal = accessible(control(0, 1));
    EXPECT_EQ(reveal->role(), QAccessible::Button);
    EXPECT_EQ(reveal->text(QAccessible::Name), QStringLiteral("Reveal Installer 0.dmg in Finder"));
    EXPECT_EQ(control(0, 0)->objectName(), QStringLiteral("candidate-0"));
    EXPECT_EQ(control(0, 1)->objectName(), QStringLiteral("candidate-0"));
    EXPECT_EQ(control(0, 1)->toolTip(), QStringLiteral("Reveal in Finder"));
}

TEST_F(CleanupResultsViewTest, ThePathIsThePlainTextTooltip) {
    CleanupWindowContent content = cannedFiles(6);
    firstLowRisk(content).tooltip = "/home/<b>x</b> & y";
    show(content);
    EXPECT_TRUE(window.results().row(0)->toolTip().contains(QStringLiteral("&lt;b&gt;x&lt;/b&gt; &amp; y")));
}

} // namespace vantry
