#include "tests/shell/qt/CleanupWindowFixture.h"

#include <gmock/gmock.h>

#include <QPointer>

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

TEST_F(AlertSheetTest, TheFirstButtonIsWhatReturnMeans) {
    show(cannedFiles(6));
    ask();
    EXPECT_TRUE(button(QStringLiteral("Move to Trash"))->isDefault());
    press(sheet(), Qt::Key_Return);
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::first));
}

TEST_F(AlertSheetTest, EscapeIsTheLastButton) {
    show(cannedFiles(6));
    ask();
    press(sheet(), Qt::Key_Escape);
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
    EXPECT_TRUE(window.isVisible());
}

TEST_F(AlertSheetTest, ClosingItsWindowIsTheLastButton) {
    show(cannedFiles(6));
    ask();
    window.close();
    EXPECT_THAT(answers, IsEmpty());
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
    EXPECT_FALSE(sheet());
}

TEST_F(AlertSheetTest, AskingWhileTheWindowIsClosedIsAnsweredWithTheLastButton) {
    window.render(cannedFiles(6));
    ask();
    EXPECT_THAT(answers, IsEmpty());
    settle();
    EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
}

TEST_F(AlertSheetTest, ASecondOneAnswersTheFirst) {
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

TEST_F(AlertSheetTest, NothingIsLeftOverTheWindowAfterwards) {
    show(cannedFiles(6));
    const auto children = window.children().size();
    ask();
    press(sheet(), Qt::Key_Escape);
    settle();
    EXPECT_EQ(window.children().size(), children);
}

} // namespace vantry
