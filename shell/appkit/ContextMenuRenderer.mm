#include "shell/appkit/ContextMenuRenderer.h"

#include "platform/apple/FoundationValues.h"
#include "shell/appkit/AppKitConversions.h"

#include <AppKit/AppKit.h>
#include <utility>
#include <variant>

using namespace vantry;

@interface OmbrelMenuTarget : NSObject
- (instancetype)initWithHandler:(MenuItemHandler)chosen;
- (void)refreshMenuItem:(NSMenuItem*)sender;
- (void)settingsMenuItem:(NSMenuItem*)sender;
- (void)cleanupMenuItem:(NSMenuItem*)sender;
- (void)percentageMenuItem:(NSMenuItem*)sender;
- (void)barStyleMenuItem:(NSMenuItem*)sender;
- (void)segmentSizingMenuItem:(NSMenuItem*)sender;
- (void)loginMenuItem:(NSMenuItem*)sender;
- (void)quitMenuItem:(NSMenuItem*)sender;
@end

@implementation OmbrelMenuTarget {
    MenuItemHandler _chosen;
}

- (instancetype)initWithHandler:(MenuItemHandler)chosen {
    if ((self = [super init]))
        _chosen = std::move(chosen);
    return self;
}

- (void)choose:(MenuCommand)command from:(NSMenuItem*)sender {
    MenuItemContent item;
    item.title = textFromFoundation(sender.title);
    item.command = command;
    if ([sender.representedObject isKindOfClass:[NSString class]])
        item.representedObject = textFromFoundation(sender.representedObject);
    _chosen(item);
}

- (void)refreshMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::refresh from:sender];
}

- (void)settingsMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::openStorageSettings from:sender];
}

- (void)cleanupMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::freeUpSpace from:sender];
}

- (void)percentageMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::showPercentage from:sender];
}

- (void)barStyleMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::barStyle from:sender];
}

- (void)segmentSizingMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::segmentSizing from:sender];
}

- (void)loginMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::launchAtLogin from:sender];
}

- (void)quitMenuItem:(NSMenuItem*)sender {
    [self choose:MenuCommand::quit from:sender];
}

@end

namespace vantry {

namespace {

SEL actionFor(MenuCommand command) {
    switch (command) {
    case MenuCommand::refresh: return @selector(refreshMenuItem:);
    case MenuCommand::openStorageSettings: return @selector(settingsMenuItem:);
    case MenuCommand::freeUpSpace: return @selector(cleanupMenuItem:);
    case MenuCommand::showPercentage: return @selector(percentageMenuItem:);
    case MenuCommand::barStyle: return @selector(barStyleMenuItem:);
    case MenuCommand::segmentSizing: return @selector(segmentSizingMenuItem:);
    case MenuCommand::launchAtLogin: return @selector(loginMenuItem:);
    case MenuCommand::quit: return @selector(quitMenuItem:);
    }
    return nullptr;
}

NSMenu* makeEmptyMenu() {
    NSMenu* menu = [[NSMenu alloc] initWithTitle:@""];
    menu.autoenablesItems = NO; // the content decides
    return menu;
}

struct ItemMaker {
    OmbrelMenuTarget* target;

    NSMenuItem* operator()(const MenuItemContent& content) const {
        NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:nsString(content.title)
                                                      action:actionFor(content.command)
                                               keyEquivalent:nsString(content.keyEquivalent)];
        item.target = target;
        if (content.checked)
            item.state = *content.checked ? NSControlStateValueOn : NSControlStateValueOff;
        if (!content.representedObject.empty())
            item.representedObject = nsString(content.representedObject);
        return item;
    }
    NSMenuItem* operator()(const SubmenuContent& content) const {
        NSMenuItem* item = [[NSMenuItem alloc] initWithTitle:nsString(content.title) action:nil keyEquivalent:@""];
        item.target = target;
        item.enabled = content.enabled;
        item.submenu = makeEmptyMenu();
        for (const MenuItemContent& inner : content.items)
            [item.submenu addItem:(*this)(inner)];
        return item;
    }
    NSMenuItem* operator()(const MenuSeparator&) const { return [NSMenuItem separatorItem]; }
};

} // namespace

OmbrelMenuTarget* makeMenuTarget(MenuItemHandler chosen) {
    return [[OmbrelMenuTarget alloc] initWithHandler:std::move(chosen)];
}

NSMenu* makeContextMenu(const ContextMenuContent& content, OmbrelMenuTarget* target) {
    NSMenu* menu = makeEmptyMenu();
    for (const MenuEntry& entry : content.entries)
        [menu addItem:std::visit(ItemMaker{target}, entry)];
    return menu;
}

} // namespace vantry
