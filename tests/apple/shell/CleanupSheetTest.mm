#include "shell/appkit/KeyGuard.h"
#include "tests/apple/shell/CleanupWindowFixture.h"

#include <utility>

namespace vantry::apple {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

class AppKitCleanupSheet : public AppKitCleanupWindow {
protected:
    /// The answers, in order.
    void ask() {
        window->ask({"Move 2 selected items to the Trash?", "This moves about 3 MB.", {"Move to Trash", "Keep Them"}},
                    [this](AlertAnswer answer) { answers.push_back(answer); });
    }

    std::vector<AlertAnswer> answers;
};

} // namespace

TEST_F(AppKitCleanupSheet, ASheetAnswersOnceInALaterTurn) {
    withWindow(cannedFiles(6), usualSize, [&] {
        for (const auto& [title, answer] :
             {std::pair("Move to Trash", AlertAnswer::first), {"Keep Them", AlertAnswer::last}}) {
            answers.clear();
            ask();
            click(viewTitled(keyWindow().contentView, title));
            EXPECT_THAT(answers, IsEmpty());
            settle();
            EXPECT_THAT(answers, ElementsAre(answer));
        }
    });
}

TEST_F(AppKitCleanupSheet, KeysAnswerASheetUnlessTheyWereHeld) {
    withWindow(cannedFiles(6), usualSize, [&] {
        const KeyGuard guard;
        for (const auto& [key, answer] : {std::pair(returnKey, AlertAnswer::first), {escapeKey, AlertAnswer::last}}) {
            answers.clear();
            ask();
            NSWindow* const sheet = keyWindow();
            [sheet makeFirstResponder:viewTitled(sheet.contentView, "Move to Trash")];
            for (const unsigned short held : {returnKey, spaceKey, escapeKey})
                press(held, true);
            settle();
            EXPECT_THAT(answers, IsEmpty());
            press(key);
            settle();
            EXPECT_THAT(answers, ElementsAre(answer));
        }
        EXPECT_THAT(reports, IsEmpty()) << "the window behind the sheet";
    });
}

TEST_F(AppKitCleanupSheet, AClosedSheetAnswersWithItsLastButton) {
    withWindow(cannedFiles(6), usualSize, [&] {
        ask();
        ask(); // replaces the first
        settle();
        EXPECT_THAT(answers, ElementsAre(AlertAnswer::last));
        [windowTitled("Ombrel · Free Up Space") close];
        settle();
        EXPECT_THAT(answers, ElementsAre(AlertAnswer::last, AlertAnswer::last));
        ask(); // on a closed window
        EXPECT_EQ(answers.size(), 2U);
        settle();
        EXPECT_EQ(answers.size(), 3U);
        window->showCleanupWindow();
        ask();
    });
    settle();
    EXPECT_EQ(answers, std::vector(4, AlertAnswer::last)) << "the last went with the window";
}

TEST_F(AppKitCleanupSheet, ATextTooLongForASheetIsInItsTooltip) {
    withWindow(cannedFiles(6), usualSize, [&] {
        const AlertContent alert{
            "Some items changed since the scan", repeated("A name of a file, ", 60) + "\n\nScan again.", {"OK"}};
        window->ask(alert, [](AlertAnswer) {});
        NSAlert* const sheet = alertOf(windowTitled("Ombrel · Free Up Space"));
        EXPECT_LT(sheet.informativeText.length, alert.informativeText.size());
        EXPECT_EQ(textOf(keyWindow().contentView.toolTip), alert.informativeText);
        EXPECT_EQ(textOf(keyWindow().accessibilityHelp), alert.informativeText);
        EXPECT_EQ(sheet.alertStyle, NSAlertStyleWarning);
        press(returnKey);
    });
}

TEST_F(AppKitCleanupSheet, ASheetWithOneButtonClosesOnReturnAndDoesNotBlockQuitting) {
    withWindow(cannedFiles(6), usualSize, [&] {
        window->ask({"Some items changed since the scan", "No items were changed.", {"OK"}},
                    [this](AlertAnswer answer) { answers.push_back(answer); });
        EXPECT_FALSE(keyWindow().preventsApplicationTerminationWhenModal);
        press(returnKey);
        settle();
        EXPECT_THAT(answers, ElementsAre(AlertAnswer::first));
    });
}

} // namespace vantry::apple
