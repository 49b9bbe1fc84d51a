#include "shell/appkit/AlertSheet.h"

#include "cleanup/window/AlertText.h"
#include "shell/appkit/AppKitConversions.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <utility>

namespace vantry {

namespace {

constexpr Font textFont{11};
constexpr CGFloat textWidth = 220; // slightly less than the width of an alert's text

double widthOf(const std::string& text) {
    NSFont* font = nsFont(textFont);
    return
        [[NSAttributedString alloc] initWithString:nsString(text) attributes:@{NSFontAttributeName : font}].size.width;
}

} // namespace

void showAlertSheet(const AlertContent& alert, std::function<void(AlertAnswer)> answered, NSWindow* window) {
    NSAlert* sheet = [[NSAlert alloc] init];
    sheet.alertStyle = NSAlertStyleWarning;
    sheet.messageText = nsString(alert.message);
    const std::string shownText = fittedInformativeText(alert, textWidth, widthOf);
    sheet.informativeText = nsString(shownText);
    if (shownText != alert.informativeText) {
        sheet.window.contentView.toolTip = nsString(alert.informativeText);
        sheet.window.accessibilityHelp = nsString(alert.informativeText);
    }
    for (const std::string& title : alert.buttons)
        [sheet addButtonWithTitle:nsString(title)]; // the first button is the default
    if (alert.buttons.size() > 1)
        sheet.buttons.lastObject.keyEquivalent = @"\033"; // Escape, whatever the button's title
    sheet.window.preventsApplicationTerminationWhenModal = NO;
    [sheet
        beginSheetModalForWindow:window
               completionHandler:^(NSModalResponse response) {
                   answerLater(answered, response == NSAlertFirstButtonReturn ? AlertAnswer::first : AlertAnswer::last);
               }];
}

void closeAlertSheet(NSWindow* window) {
    if (NSWindow* sheet = window.attachedSheet)
        [window endSheet:sheet returnCode:NSModalResponseCancel];
}

void answerLater(std::function<void(AlertAnswer)> answered, AlertAnswer answer) {
    dispatch_async(dispatch_get_main_queue(), ^{
        answered(answer);
    });
}

} // namespace vantry
