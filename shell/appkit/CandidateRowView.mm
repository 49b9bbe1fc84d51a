#include "shell/appkit/CleanupRowView.h"

#include "platform/apple/FoundationValues.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat lineGap = 2;
constexpr CGFloat amountWidth = 124;
constexpr CGFloat columnGap = 16;
constexpr CGFloat revealSide = 28;
constexpr CGFloat revealInset = 12;
constexpr CGFloat revealGap = 8;
constexpr CGFloat revealSize = 13;
constexpr CGFloat badgePadding = 8;
constexpr CGFloat badgeGap = 5;
constexpr CGFloat badgeAlpha = 0.15;

} // namespace

@implementation OmbrelCandidateRowView {
    CandidateRowContent _content;
    NSButton* _checkBox;
    NSImageView* _symbol;
    NSTextField* _titleLabel;
    NSTextField* _reasonLabel;
    NSTextField* _noteLabel;
    NSTextField* _sizeLabel;
    OmbrelCardView* _badge;
    NSTextField* _badgeLabel;
    NSButton* _revealButton;
}

- (instancetype)initWithActions:(SharedRowActions)actions {
    if ((self = [super initWithActions:std::move(actions)])) {
        _checkBox = [NSButton checkboxWithTitle:@"" target:self action:@selector(candidateSelectionChanged:)];
        _checkBox.translatesAutoresizingMaskIntoConstraints = NO;
        _checkBox.allowsMixedState = NO;
        _symbol = makeSymbolView(cleanupSymbolSide);
        _titleLabel = makeCleanupLabel(cleanupRowTitleFont, SystemColor::label);
        _titleLabel.lineBreakMode = NSLineBreakByTruncatingMiddle;
        _reasonLabel = makeCleanupWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _noteLabel = makeCleanupWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _sizeLabel = makeCleanupLabel(cleanupStrongFont, SystemColor::label);
        _sizeLabel.alignment = NSTextAlignmentRight;
        _badge = [[OmbrelCardView alloc] initWithFrame:NSZeroRect];
        _badgeLabel = makeCleanupLabel(cleanupBadgeFont, SystemColor::label);
        [_badge addSubview:_badgeLabel];
        pinEdges(_badgeLabel, _badge, badgePadding, 2);
        _revealButton = [[NSButton alloc] initWithFrame:NSZeroRect];
        _revealButton.translatesAutoresizingMaskIntoConstraints = NO;
        _revealButton.bordered = NO;
        _revealButton.title = @"";
        _revealButton.image = symbolPicture("magnifyingglass", revealSize);
        _revealButton.imagePosition = NSImageOnly;
        _revealButton.contentTintColor = nsColor(SystemColor::secondaryLabel);
        _revealButton.toolTip = nsString(revealTooltip);
        _revealButton.target = self;
        _revealButton.action = @selector(revealPressed:);
        [self layOut];
    }
    return self;
}

- (void)layOut {
    NSStackView* texts = verticalStack(lineGap, @[ _titleLabel, _reasonLabel, _noteLabel ]);
    for (NSView* view in @[ _checkBox, _symbol, texts, _sizeLabel, _badge, _revealButton ])
        [self addSubview:view];
    NSView* middle = [[NSView alloc] initWithFrame:NSZeroRect]; // holds the amount and the badge apart
    middle.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:middle];
    const CGFloat symbolCentre = cleanupCardPadding + cleanupSymbolSide / 2;
    [NSLayoutConstraint activateConstraints:@[
        [_checkBox.centerXAnchor constraintEqualToAnchor:self.leadingAnchor constant:symbolCentre],
        [_checkBox.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_symbol.centerXAnchor constraintEqualToAnchor:self.leadingAnchor constant:symbolCentre],
        [_symbol.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [texts.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:cleanupTextInset],
        [texts.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [texts.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor constant:cleanupRowPadding],
        [middle.leadingAnchor constraintEqualToAnchor:texts.trailingAnchor constant:columnGap],
        [middle.widthAnchor constraintEqualToConstant:amountWidth],
        [middle.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_sizeLabel.leadingAnchor constraintEqualToAnchor:middle.leadingAnchor],
        [_sizeLabel.trailingAnchor constraintEqualToAnchor:middle.trailingAnchor],
        [_sizeLabel.topAnchor constraintEqualToAnchor:middle.topAnchor],
        [_badge.topAnchor constraintEqualToAnchor:_sizeLabel.bottomAnchor constant:badgeGap],
        [_badge.trailingAnchor constraintEqualToAnchor:middle.trailingAnchor],
        [_badge.leadingAnchor constraintGreaterThanOrEqualToAnchor:middle.leadingAnchor],
        [_badge.bottomAnchor constraintEqualToAnchor:middle.bottomAnchor],
        [_revealButton.leadingAnchor constraintEqualToAnchor:middle.trailingAnchor constant:revealGap],
        [_revealButton.trailingAnchor constraintEqualToAnchor:self.trailingAnchor constant:-revealInset],
        [_revealButton.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_revealButton.widthAnchor constraintEqualToConstant:revealSide],
        [_revealButton.heightAnchor constraintEqualToConstant:revealSide],
    ]];
}

- (void)setContent:(const CandidateRowContent&)content {
    if (_content == content)
        return;
    _content = content;
    NSString* identifier = nsString(content.identifier);
    self.accessibilityLabel = nsString(content.title);
    self.accessibilityHelp = nsString(content.sizeDetail);
    self.toolTip = nsString(content.tooltip);
    _checkBox.hidden = !content.symbolName.empty();
    _checkBox.identifier = identifier;
    _checkBox.accessibilityLabel = nsString(content.selectionAccessibilityLabel);
    [self showSelection];
    _symbol.hidden = content.symbolName.empty();
    if (!content.symbolName.empty())
        showSymbol(_symbol, content.symbolName, cleanupSymbolSize, content.badgeColor);
    _titleLabel.stringValue = nsString(content.title);
    _reasonLabel.stringValue = nsString(content.reason);
    _noteLabel.stringValue = nsString(content.note);
    _noteLabel.hidden = content.note.empty();
    _sizeLabel.stringValue = nsString(content.sizeText);
    _badgeLabel.stringValue = nsString(content.badge);
    _badgeLabel.textColor = nsColor(content.badgeColor);
    _badge.fillColor = nsColor(content.badgeColor, badgeAlpha);
    _revealButton.identifier = identifier;
    _revealButton.accessibilityLabel = nsString(content.revealAccessibilityLabel);
}

- (void)setSelectionEnabled:(BOOL)enabled {
    _checkBox.enabled = enabled;
}

- (void)showSelection {
    _checkBox.state = _content.selected ? NSControlStateValueOn : NSControlStateValueOff;
}

// The answer to the report is a new content, in which the box may be as it was.
- (void)candidateSelectionChanged:(NSButton*)sender {
    const bool isOn = sender.state == NSControlStateValueOn;
    [self showSelection];
    self.actions->selectionChanged(textFromFoundation(sender.identifier), isOn);
}

- (void)revealPressed:(NSButton*)sender {
    self.actions->revealed(textFromFoundation(sender.identifier));
}

@end
