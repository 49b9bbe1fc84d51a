#include "shell/appkit/AlertSheet.h"

#include "shell/appkit/AppKitConversions.h"

#include <AppKit/AppKit.h>
#include <dispatch/dispatch.h>
#include <utility>

namespace vantry {

void showAlertSheet(const AlertContent& alert, std::function<void(AlertAnswer)> answered, NSWindow* window) {
    NSAlert* sheet = [[NSAlert alloc] init];
    sheet.alertStyle = NSAlertStyleWarning;
    sheet.messageText = nsString(alert.message);
    sheet.informativeText = nsString(alert.informativeText);
    for (const std::string& title : alert.buttons)
        [sheet addButtonWithTitle:nsString(title)]; // the first is the default one
    if (alert.buttons.size() > 1)
        sheet.buttons.lastObject.keyEquivalent = @"\033"; // Escape, whatever the button is called
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
