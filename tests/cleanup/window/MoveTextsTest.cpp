#include "cleanup/window/MoveTexts.h"
#include "tests/support/Candidates.h"

#include <gtest/gtest.h>

namespace vantry {

namespace {

std::vector<std::string> lines(std::size_t count) {
    std::vector<std::string> result;
    for (std::size_t i = 1; i <= count; ++i)
        result.push_back("file" + std::to_string(i) + ": it changed");
    return result;
}

TEST(MoveTexts, TheAlertAboutAProtectedSelection) {
    EXPECT_EQ(protectedSelectionAlert(),
              (AlertContent{"Protected files cannot be selected",
                            "Ombrel blocked a review-only or protected item. Only individual low-risk files may move "
                            "to the Trash.",
                            {"OK"}}));
}

TEST(MoveTexts, TheAlertsAboutChangedFilesListFourOfThem) {
    struct Case {
        std::size_t count;
        std::string listed;
    };
    const std::string four = "file1: it changed\nfile2: it changed\nfile3: it changed\nfile4: it changed";
    for (const auto& [count, listed] : {Case{1, "file1: it changed"}, Case{2, "file1: it changed\nfile2: it changed"},
                                        Case{4, four}, Case{5, four}, Case{400, four}}) {
        EXPECT_EQ(changedSinceScanAlert(lines(count)),
                  (AlertContent{"Some items changed since the scan",
                                listed + "\n\nScan again before moving anything. No items were changed.",
                                {"OK"}}));
        EXPECT_EQ(changedBeforeMoveAlert(lines(count)),
                  (AlertContent{"The files changed before they could be moved",
                                listed + "\n\nNothing was moved. Scan again to refresh the safety checks.",
                                {"OK"}}));
    }
}

TEST(MoveTexts, TheAlertAboutMisplacedItemsNamesEachAndWhereItIs) {
    std::vector<MisplacedItem> items;
    std::string expected;
    for (const char* name : {"a", "b", "c", "d", "e"}) {
        items.push_back({logAt(std::string("/l/") + name),
                         {.outcome = TrashMove::Outcome::misplaced,
                          .reason = "something else was in its place",
                          .path = std::string("/trash/") + name + "\n2"}});
        expected += std::string(name) + ": it is at /trash/" + name + "\xef\xbf\xbd" + "2\n";
    }
    items.push_back(
        {logAt("/l/f"),
         {.outcome = TrashMove::Outcome::misplaced, .reason = "another program removed it from the Trash"}});
    expected += "f: another program removed it from the Trash\n";
    EXPECT_EQ(
        misplacedAlert(items),
        (AlertContent{"Some items could not be put back",
                      expected + "\nAnother program interfered while they were being moved. Ombrel deleted nothing.",
                      {"OK"}}));
}

TEST(MoveTexts, AFailureIsOneLineWhateverTheNameHolds) {
    EXPECT_EQ(failureLine(logAt("/l/painter.log"), "it changed"), "painter.log: it changed");
    EXPECT_EQ(failureLine(logAt("/l/a\n\nNothing"), "it changed"), "a\xef\xbf\xbd\xef\xbf\xbdNothing: it changed");
}

TEST(MoveTexts, TheConfirmation) {
    const auto alert = [](const char* message, const char* size) {
        return AlertContent{message,
                            std::string("This moves approximately ") + size +
                                " to the Trash so it remains recoverable. The space is not actually freed until you "
                                "empty the Trash.",
                            {"Move to Trash", "Cancel"}};
    };
    EXPECT_EQ(confirmationAlert({1, 1'500'000}), alert("Move 1 selected item to the Trash?", "1.5 MB"));
    EXPECT_EQ(confirmationAlert({2, 0}), alert("Move 2 selected items to the Trash?", "0 B"));
}

TEST(MoveTexts, TheOutcomeOfAMove) {
    struct Case {
        std::size_t moved;
        std::size_t failed;
        bool recorded;
        const char* text;
    };
    for (const auto& [moved, failed, recorded, text] :
         {Case{1, 0, true, "Moved 1 item to the Trash · a privacy-safe local record was saved"},
          Case{2, 0, true, "Moved 2 items to the Trash · a privacy-safe local record was saved"},
          Case{1, 0, false, "Moved 1 item to the Trash"}, Case{3, 0, false, "Moved 3 items to the Trash"},
          Case{2, 1, true, "Moved 2 items to the Trash; 1 could not be moved"},
          Case{1, 2, true, "Moved 1 item to the Trash; 2 could not be moved"},
          Case{0, 3, false, "Moved 0 items to the Trash; 3 could not be moved"}})
        EXPECT_EQ(movedText(moved, failed, recorded), text);
}

} // namespace

} // namespace vantry
