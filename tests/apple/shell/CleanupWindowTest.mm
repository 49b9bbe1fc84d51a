#include "tests/apple/shell/CleanupWindowFixture.h"

#include <algorithm>

namespace vantry::apple {

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

/// The longest possible file names, and other texts longer than they ever get.
CleanupWindowContent overlongFiles() {
    CleanupWindowContent content = cannedFiles(7);
    content.titleLabel = content.subtitleLabel = content.statusLabel = repeated("overlong ", 30);
    for (SummaryCardContent* card : {&content.macStorageCard, &content.foundCard, &content.selectedCard})
        card->title = card->value = card->detail = repeated("overlong ", 12);
    for (CleanupSectionContent& section : content.sections) {
        section.title = section.subtitle = repeated("overlong ", 30);
        for (CandidateRowContent& row : section.candidates) {
            row.title = repeated("x", 255);
            row.reason = row.note = repeated("overlong ", 50);
            row.sizeText = row.badge = repeated("overlong ", 5);
        }
    }
    content.progressIndicator = true;
    return content;
}

CleanupWindowContent empty() {
    CleanupWindowContent content = cannedFiles(0);
    content.emptyState = EmptyStateContent{"checkmark.circle", "No cleanup files found",
                                           "The scan found 0 B it can offer here. Open Storage Guide for space managed "
                                           "by apps or macOS."};
    return content;
}

} // namespace

TEST_F(AppKitCleanupWindow, HasTheStoredFrames) {
    withWindow(cannedFiles(5), usualSize, [&] { expectFrames("cleanup-files", root()); });
    withWindow(cannedFiles(5), leastSize, [&] { expectFrames("cleanup-files-least", root()); });
    withWindow(overlongFiles(), leastSize, [&] { expectFrames("cleanup-overlong", root()); });
    withWindow(cannedGuide(), leastSize, [&] { expectFrames("cleanup-guide", root()); });
    withWindow(empty(), usualSize, [&] { expectFrames("cleanup-empty", root()); });
    withWindow(cannedScan(), usualSize, [&] { expectFrames("cleanup-scan", root()); });
}

TEST_F(AppKitCleanupWindow, CannotGetSmallerThanItsContents) {
    withWindow(cannedFiles(5), NSMakeSize(100, 100), [&] {
        EXPECT_EQ(NSWidth(root().bounds), leastSize.width);
        EXPECT_EQ(NSHeight(root().bounds), leastSize.height);
    });
}

TEST_F(AppKitCleanupWindow, HundredsOfRowsAreBuiltInSlicesAndStayTheSameViews) {
    CleanupWindowContent content = cannedFiles(400);
    @autoreleasepool {
        window.emplace(actions());
        window->renderCleanupWindow(content);
        window->showCleanupWindow();
        EXPECT_EQ(checkBoxes().size(), 8U) << "of the first 24 rows";
        runPosted();
        EXPECT_EQ(checkBoxes().size(), 134U);
        settle();
        const std::vector<NSView*> before = checkBoxes();
        content.statusLabel = "Something else";
        content.sections.front().candidates.erase(content.sections.front().candidates.begin());
        window->renderCleanupWindow(content);
        settle();
        EXPECT_EQ(checkBoxes(), std::vector<NSView*>(before.begin() + 1, before.end()));
        EXPECT_TRUE(viewTitled(root(), "Something else"));
        window.reset();
    }
}

TEST_F(AppKitCleanupWindow, PendingRowsDoNotKeepAClosedWindowAlive) {
    @autoreleasepool {
        window.emplace(actions());
        window->renderCleanupWindow(cannedFiles(400));
        window.reset();
    }
    EXPECT_FALSE(objc::liveObjects().contains("OmbrelCleanupResultsView"));
}

TEST_F(AppKitCleanupWindow, SectionsThatAreNotShownYetCanBeReordered) {
    CleanupWindowContent content = cannedFiles(400);
    @autoreleasepool {
        window.emplace(actions());
        window->renderCleanupWindow(content);
        window->showCleanupWindow();
        EXPECT_EQ(viewTitled(root(), content.sections.back().title), nil);
        content.sections.erase(content.sections.begin());
        window->renderCleanupWindow(content);
        settle();
        EXPECT_NE(viewTitled(root(), content.sections.back().title), nil);
        window.reset();
    }
}

TEST_F(AppKitCleanupWindow, AMissingTextOfARowTakesNoSpace) {
    CleanupWindowContent guide = cannedGuide();
    withWindow(guide, usualSize, [&] {
        for (CleanupSectionContent& section : guide.sections)
            for (AvenueRowContent& row : section.avenues)
                row.usage.clear();
        window->renderCleanupWindow(guide);
        settle();
        for (NSView* view : viewsBelow(first<NSClipView>(root())))
            if ([view isKindOfClass:[NSTextField class]])
                EXPECT_NE(textOf(static_cast<NSTextField*>(view).stringValue), "")
                    << framesOf(view.superview.superview);
    });
}

TEST_F(AppKitCleanupWindow, TwiceAsManyRowsTakeTwiceTheWorkToLayOut) {
    std::size_t steps[2] = {};
    for (const int factor : {1, 2})
        withWindow(cannedFiles(60 * factor), usualSize, [&] { steps[factor - 1] = layOutWindows(); });
    EXPECT_GT(steps[0], 0U);
    EXPECT_LT(steps[1], steps[0] * 5 / 2);
}

TEST_F(AppKitCleanupWindow, EveryControlReports) {
    withWindow(cannedFiles(6), usualSize, [&] {
        window->renderCleanupWindow([] {
            CleanupWindowContent content = cannedFiles(6);
            content.trashButton.enabled = true;
            return content;
        }());
        settle();
        for (const char* title : {"Scan Again", "Select Low-Risk Files", "Move to Trash…"})
            click(viewTitled(root(), title));
        choose(first<NSSegmentedControl>(root()), 1);
        click(checkBoxes().front());
        click(revealButtons().back());
        EXPECT_THAT(reports,
                    ElementsAre("scan", "suggested", "trash", "guide", "candidate-0 on", "reveal candidate-5"));
    });
    reports.clear();
    withWindow(cannedGuide(), usualSize, [&] {
        for (NSView* view : viewsBelow(root()))
            if ([view isKindOfClass:[NSButton class]])
                click(view);
        EXPECT_GT(reports.size(), 15U);
        EXPECT_EQ(std::ranges::count(reports, "scan"), 1);
        EXPECT_EQ(std::ranges::count(reports, "open home"), 1);
    });
}

TEST_F(AppKitCleanupWindow, ControlsShowTheContentUntilTheNextOne) {
    CleanupWindowContent content = cannedFiles(6);
    withWindow(content, usualSize, [&] {
        auto* const box = static_cast<NSButton*>(checkBoxes().front());
        auto* const mode = first<NSSegmentedControl>(root());
        click(box);
        choose(mode, 1);
        EXPECT_EQ(box.state, NSControlStateValueOff);
        EXPECT_EQ(mode.selectedSegment, 0);
        content.sections.front().candidates.front().selected = true;
        content.modeControl = CleanupWindowMode::storageGuide;
        content.selectSuggestedButton.hidden = true;
        content.selectionEnabled = false;
        window->renderCleanupWindow(content);
        settle();
        EXPECT_EQ(box.state, NSControlStateValueOn);
        EXPECT_EQ(mode.selectedSegment, 1);
        EXPECT_EQ(viewTitled(root(), "Select Low-Risk Files"), nil);
        reports.clear();
        click(box);
        EXPECT_THAT(reports, IsEmpty());
    });
}

TEST_F(AppKitCleanupWindow, AControlMayRemoveItsOwnRow) {
    withWindow(cannedFiles(6), usualSize, [&] {
        onSelection = [this] { window->renderCleanupWindow(cannedGuide()); };
        click(checkBoxes().front());
        EXPECT_THAT(reports, ElementsAre("candidate-0 on"));
    });
}

TEST_F(AppKitCleanupWindow, ResultsGoBackToTheTop) {
    withWindow(cannedFiles(60), usualSize, [&] {
        NSClipView* const clip = first<NSClipView>(root());
        click(checkBoxes().back());
        EXPECT_GT(NSMinY(clip.bounds), 0);
        window->scrollCleanupResultsToTop();
        EXPECT_EQ(NSMinY(clip.bounds), 0);
    });
}

TEST_F(AppKitCleanupWindow, PageUpAndPageDownScrollTheResults) {
    withWindow(cannedFiles(60), usualSize, [&] {
        NSClipView* const clip = first<NSClipView>(root());
        const CGFloat page = NSHeight(clip.bounds);
        press(pageUpKey);
        EXPECT_EQ(NSMinY(clip.bounds), 0);
        press(pageDownKey);
        press(pageDownKey);
        EXPECT_EQ(NSMinY(clip.bounds), 2 * page);
        press(pageUpKey);
        EXPECT_EQ(NSMinY(clip.bounds), page);
        for (int pages = 0; pages < 60; ++pages)
            press(pageDownKey);
        EXPECT_EQ(NSMaxY(clip.bounds), NSHeight(first<NSScrollView>(root()).documentView.frame));
    });
}

TEST_F(AppKitCleanupWindow, EverythingHasANameForScreenReaders) {
    for (const CleanupWindowContent& content : {cannedFiles(12), cannedGuide(), cannedScan()})
        withWindow(content, usualSize, [&] { expectNamesForScreenReaders(root()); });
    withWindow(cannedFiles(1), usualSize, [&] {
        NSView* const box = checkBoxes().front();
        EXPECT_EQ(textOf(box.accessibilityLabel), "Select low-risk file Installer 0.dmg");
        EXPECT_EQ(
            textOf(box.accessibilityHelp),
            "Downloaded more than 21 days ago. Removing it does not uninstall the app. · Uses 100.0 MB · Low Risk");
        EXPECT_EQ(textOf(revealButtons().front().accessibilityLabel), "Reveal Installer 0.dmg in Finder");
        EXPECT_EQ(textOf(box.superview.accessibilityRole), "AXGroup");
        EXPECT_EQ(textOf(box.superview.accessibilityLabel), "Installer 0.dmg");
        NSView* const card = box.superview.superview.superview;
        EXPECT_EQ(textOf(card.accessibilityRole), "AXList");
        EXPECT_EQ(
            textOf(card.accessibilityLabel),
            textOf(static_cast<NSTextField*>(viewTitled(root(), std::string(allCleanupAreas[4].title))).stringValue));
    });
}

TEST_F(AppKitCleanupWindow, ButtonsOfAvenuesThatOpenTheSamePlaceTellTheAvenues) {
    withWindow(cannedGuide(), usualSize, [&] {
        std::vector<std::string> helps;
        for (const char* title : {"Open Home Folder", "Open Photos"})
            helps.push_back(textOf(viewTitled(root(), title).accessibilityHelp));
        for (const CleanupSectionContent& section : cannedGuide().sections)
            for (const AvenueRowContent& avenue : section.avenues)
                if (avenue.button)
                    std::erase(helps,
                               avenue.title + (avenue.button->tooltip.empty() ? "" : " · ") + avenue.button->tooltip);
        EXPECT_THAT(helps, IsEmpty());
    });
}

TEST_F(AppKitCleanupWindow, IsRedrawnWhenTheAppearanceChanges) {
    withWindow(cannedFiles(6), usualSize, [&] {
        const auto colorOfTheFirstCard = [&] {
            CGContextRef picture = drawWindow(keyWindow());
            const Rgba color = colorAt(picture, 34, 90);
            CGContextRelease(picture);
            return color;
        };
        EXPECT_GT(colorOfTheFirstCard().red, 0.95);
        setAppearance(keyWindow(), Appearance::dark);
        EXPECT_TRUE(checkBoxes().front().superview.superview.superview.needsDisplay);
        EXPECT_LT(colorOfTheFirstCard().red, 0.2);
    });
}

TEST_F(AppKitCleanupWindow, TheFocusStaysInTheRowThatIsRenderedAgain) {
    CleanupWindowContent content = cannedFiles(6);
    withWindow(content, usualSize, [&] {
        NSView* const box = checkBoxes().back();
        [keyWindow() makeFirstResponder:box];
        content.sections.front().candidates.clear();
        content.sections.erase(content.sections.begin());
        window->renderCleanupWindow(content);
        settle();
        EXPECT_EQ(keyWindow().firstResponder, box);
        press(spaceKey);
        EXPECT_THAT(reports, ElementsAre("candidate-3 on"));
    });
}

TEST_F(AppKitCleanupWindow, WhenARowIsRemovedItsNeighbourGetsTheFocus) {
    CleanupWindowContent content = cannedFiles(30);
    withWindow(content, usualSize, [&] {
        auto& rows = content.sections.front().candidates;
        const std::string next = rows[4].identifier;
        [keyWindow() makeFirstResponder:checkBoxes()[1]]; // of the fourth row
        rows.erase(rows.begin() + 3);
        window->renderCleanupWindow(content);
        ASSERT_TRUE([keyWindow().firstResponder isKindOfClass:[NSButton class]]);
        auto* focused = static_cast<NSView*>(keyWindow().firstResponder);
        EXPECT_EQ(textOf(focused.identifier), next);
        EXPECT_EQ(std::ranges::count(revealButtons(), focused), 1) << "there is no check box";
        [keyWindow() makeFirstResponder:checkBoxes().back()];
        content.sections.resize(1);
        rows.resize(1);
        window->renderCleanupWindow(content);
        EXPECT_EQ(keyWindow().firstResponder, checkBoxes().front());
    });
}

TEST_F(AppKitCleanupWindow, EscapeCancelsAndCommandWCloses) {
    withWindow(cannedFiles(1), usualSize, [&] {
        press(escapeKey);
        press(letterW);
        press(letterW, false, NSEventModifierFlagCommand | NSEventModifierFlagShift);
        EXPECT_THAT(reports, ElementsAre("cancel"));
        EXPECT_TRUE(window->cleanupWindowIsShown());
        press(letterW, false, NSEventModifierFlagCommand | NSEventModifierFlagCapsLock);
        EXPECT_THAT(reports, ElementsAre("cancel", "closed"));
        EXPECT_FALSE(window->cleanupWindowIsShown());
        window->showCleanupWindow();
        EXPECT_TRUE(window->cleanupWindowIsShown());
    });
    EXPECT_THAT(reports, ElementsAre("cancel", "closed")) << "taken apart without a report";
}

TEST_F(AppKitCleanupWindow, ComesBackFromTheDock) {
    withWindow(cannedFiles(1), usualSize, [&] {
        NSWindow* const shown = keyWindow();
        miniaturize(shown);
        EXPECT_TRUE(window->cleanupWindowIsShown());
        window->showCleanupWindow();
        EXPECT_FALSE(shown.miniaturized);
        EXPECT_EQ(keyWindow(), shown);
    });
}

} // namespace vantry::apple
