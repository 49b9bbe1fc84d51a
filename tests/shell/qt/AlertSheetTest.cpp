#include "tests/shell/qt/CleanupWindowFixture.h"

#include <gmock/gmock.h>

#include <QLabel>
#include <QPointer>
#include <QTextDocument>

namespace vantry {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AlertSheetTest : public CleanupWindowFixture {
protected:
    void ask() {
        window.ask(
            {"Move 2 selected items to the Trash?", "This moves approximately 3 MB.", {"Move to Trash", "Cancel"}},
            [this](AlertAnswer answer) { answers.push_back(answer); });
    }
    void tell(const std::string& text) {
        window.ask({"Some items changed since the scan", text, {"OK"}},
                   [this](AlertAnswer answer) { answers.push_back(answer); });
        settle();
    }
    QLabel* label(const QString& end) {
        for (auto* each : sheet()->findChildren<QLabel*>())
            if (each->text().endsWith(end))
                return each;
        return nullptr;
    }
    AlertSheet* sheet() {
        for (auto* each : window.findChildren<AlertSheet*>())
            if (each->isVisible())
                return each;
        return nullptr;
    }

    std::vector<AlertAnswer> answers;
};

} // namespace

TEST_F(AlertSheetTest, ItsButtonsAnswerInALaterTurnOfTheEventLoop) {
    show(cannedFiles(6));
    for (const auto& [title, answer] :
         {std::pair("Move to Trash", AlertAnswer::first), {"Cancel", AlertAnswer::last}}) {
        answers.clear();
        ask();
        ASSERT_TRUE(sheet());
        button(QString::fromUtf8(title))->click();
        EXPECT_THAT(answers, IsEmpty());
        settle();
        EXPECT_THAT(answers, ElementsAre(answer));
        EXPECT_FALSE(sheet());
    }
}

TEST_F(AlertSheetTest, BlocksItsWindowAndNamesItself) {
    show(cannedFiles(6));
    ask();
    EXPECT_EQ(sheet()->windowModality(), Qt::WindowModal);
    EXPECT_EQ(sheet()->accessibleName(), QStringLiteral("Move 2 selected items to the Trash?"));
    EXPECT_EQ(sheet()->accessibleDescription(), QStringLiteral("This moves approximately 3 MB."));
}

TEST_F(AlertSheetTest, ReturnPressesTheFirstButton) {
    show(cannedFiles(6));
    ask();
    EXPECT_TRUE(button(QStringLiteral("Move to Trash"))->isDefault());
    press(sheet(), Qt::Key_Return);
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::first));
}

TEST_F(AlertSheetTest, EscapePressesTheLastButton) {
    show(cannedFiles(6));
    ask();
    press(sheet(), Qt::Key_Escape);
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
    EXPECT_TRUE(window.isVisible());
    EXPECT_THAT(reports, IsEmpty()) << "the window has heard of it";
}

TEST_F(AlertSheetTest, ClosingItsWindowAnswersWithTheLastButton) {
    show(cannedFiles(6));
    ask();
    window.close();
    EXPECT_THAT(answers, IsEmpty());
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
    EXPECT_FALSE(sheet());
}

TEST_F(AlertSheetTest, AskingWhileTheWindowIsClosedAnswersWithTheLastButton) {
    window.renderCleanupWindow(cannedFiles(6));
    ask();
    EXPECT_THAT(answers, IsEmpty());
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
}

TEST_F(AlertSheetTest, ASecondSheetAnswersTheFirst) {
    show(cannedFiles(6));
    ask();
    ask();
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
    ASSERT_TRUE(sheet());
    press(sheet(), Qt::Key_Return);
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last, AlertAnswer::first));
}

TEST_F(AlertSheetTest, LongNamesLeaveRoomForTheLastSentenceAndTheButton) {
    show(cannedFiles(6));
    window.resize(window.minimumSize());
    const std::string sentence = "Scan again before moving anything. No items were changed.";
    const std::string reason = ".log: the file changed after the scan";
    std::string words;
    while (words.size() < 245)
        words += "W WW ";
    std::string path;
    while (path.size() < 245)
        path += "/home/.9/WWWW-WWWW";
    for (const std::string& name : {std::string(120, 'W'), std::string(250, 'x'), words, path}) {
        std::string text;
        for (int line = 0; line < 4; ++line)
            text += (line == 0 ? "" : "\n") + name + reason;
        text += "\n\n" + sentence;
        tell(text);
        QLabel* shown = label(QString::fromStdString(sentence));
        ASSERT_TRUE(shown);
        const QRect needed =
            shown->fontMetrics().boundingRect(QRect(0, 0, shown->width(), 10000), Qt::TextWordWrap, shown->text());
        EXPECT_LE(needed.width(), shown->width()) << name;
        EXPECT_LE(needed.height(), shown->height()) << name;
        EXPECT_TRUE(window.rect().contains(QRect(window.mapFromGlobal(sheet()->pos()), sheet()->size()))) << name;
        EXPECT_TRUE(sheet()->rect().contains(button(QStringLiteral("OK"))->geometry())) << name;
        EXPECT_EQ(shown->text().count(QStringLiteral("…")), 4) << name;
        EXPECT_EQ(shown->accessibleDescription().toStdString(), text);
        QTextDocument tooltip;
        tooltip.setHtml(shown->toolTip());
        EXPECT_EQ(tooltip.toPlainText().toStdString(), text);
        EXPECT_EQ(sheet()->accessibleDescription().toStdString(), text);
    }
}

TEST_F(AlertSheetTest, ATextThatFitsIsShownUnchanged) {
    show(cannedFiles(6));
    tell("old.log: the file changed\n\nNo items were changed.");
    QLabel* shown = label(QStringLiteral("old.log: the file changed\n\nNo items were changed."));
    ASSERT_TRUE(shown);
    EXPECT_TRUE(shown->toolTip().isEmpty());
}

TEST_F(AlertSheetTest, NothingCoversTheWindowAfterwards) {
    show(cannedFiles(6));
    const auto children = window.children().size();
    ask();
    press(sheet(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(window.children().size(), children);
}

} // namespace vantry
