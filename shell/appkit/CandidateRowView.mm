#include "shell/appkit/CleanupRowView.h"

#include "base/Text.h"
#include "platform/apple/FoundationValues.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat revealSize = 13;
constexpr CGFloat badgeAlpha = 0.15;

} // namespace

@implementation OmbrelCandidateRowView {
    CandidateRowContent _content;
    NSButton* _checkBox;
    NSImageView* _symbol;
    NSTextField* _titleLabel;
    NSTextField* _reasonLabel;
    NSTextField* _noteLabel;
    NSStackView* _texts;
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
        _titleLabel = makeTextLabel(cleanupRowTitleFont);
        _titleLabel.lineBreakMode = NSLineBreakByTruncatingMiddle;
        _reasonLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _noteLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _sizeLabel = makeTextLabel(cleanupStrongFont);
        _sizeLabel.alignment = NSTextAlignmentRight;
        _badge = [[OmbrelCardView alloc] initWithFrame:NSZeroRect];
        _badgeLabel = makeTextLabel(cleanupBadgeFont);
        [_badge addSubview:_badgeLabel];
        pinEdges(_badgeLabel, _badge, cleanupBadgePadding, 2);
        _revealButton = [[NSButton alloc] initWithFrame:NSZeroRect];
        _revealButton.translatesAutoresizingMaskIntoConstraints = NO;
        _revealButton.bordered = NO;
        _revealButton.title = @"";
        _revealButton.image = symbolPicture("magnifyingglass", revealSize);
        _revealButton.imagePosition = NSImageOnly;
        _revealButton.contentTintColor = nsColor(SystemColor::secondaryLabel);
        _revealButton.target = self;
        _revealButton.action = @selector(revealPressed:);
        [self layOut];
    }
    return self;
}

- (void)layOut {
    _texts = verticalStack(cleanupRowLineGap, @[ _titleLabel, _reasonLabel, _noteLabel ]);
    for (NSView* view in @[ _checkBox, _symbol, _texts, _sizeLabel, _badge, _revealButton ])
        [self addSubview:view];
    NSView* middle = [[NSView alloc] initWithFrame:NSZeroRect]; // the column of the amount and the badge
    middle.translatesAutoresizingMaskIntoConstraints = NO;
    [self addSubview:middle];
    const CGFloat symbolCentre = cleanupCardPadding + cleanupSymbolSide / 2;
    [NSLayoutConstraint activateConstraints:@[
        [_checkBox.centerXAnchor constraintEqualToAnchor:self.leadingAnchor constant:symbolCentre],
        [_checkBox.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_symbol.centerXAnchor constraintEqualToAnchor:self.leadingAnchor constant:symbolCentre],
        [_symbol.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_texts.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:cleanupTextInset],
        [_texts.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_texts.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor constant:cleanupRowPadding],
        [middle.leadingAnchor constraintEqualToAnchor:_texts.trailingAnchor constant:cleanupAmountGap],
        [middle.widthAnchor constraintEqualToConstant:cleanupAmountWidth],
        [middle.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_sizeLabel.leadingAnchor constraintEqualToAnchor:middle.leadingAnchor],
        [_sizeLabel.trailingAnchor constraintEqualToAnchor:middle.trailingAnchor],
        [_sizeLabel.topAnchor constraintEqualToAnchor:middle.topAnchor],
        [_badge.topAnchor constraintEqualToAnchor:_sizeLabel.bottomAnchor constant:cleanupBadgeGap],
        [_badge.trailingAnchor constraintEqualToAnchor:middle.trailingAnchor],
        [_badge.leadingAnchor constraintGreaterThanOrEqualToAnchor:middle.leadingAnchor],
        [_badge.bottomAnchor constraintEqualToAnchor:middle.bottomAnchor],
        [_revealButton.leadingAnchor constraintEqualToAnchor:middle.trailingAnchor constant:cleanupRevealGap],
        [_revealButton.trailingAnchor constraintEqualToAnchor:self.trailingAnchor constant:-cleanupRevealInset],
        [_revealButton.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_revealButton.widthAnchor constraintEqualToConstant:cleanupRevealSide],
        [_revealButton.heightAnchor constraintEqualToConstant:cleanupRevealSide],
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
    _checkBox.accessibilityHelp =
        nsString(joinedTexts({content.reason, content.note, content.sizeText, content.sizeDetail, content.badge}));
    [self showSelection];
    _symbol.hidden = content.symbolName.empty();
    if (!content.symbolName.empty())
        showSymbol(_symbol, content.symbolName, cleanupSymbolSize, content.badgeColor);
    _titleLabel.stringValue = nsString(content.title);
    _reasonLabel.stringValue = nsString(content.reason);
    _noteLabel.stringValue = nsString(content.note);
    setFullWidth(_texts, _noteLabel, _reasonLabel, !content.note.empty());
    _sizeLabel.stringValue = nsString(content.sizeText);
    _badgeLabel.stringValue = nsString(content.badge);
    _badgeLabel.textColor = nsColor(content.badgeColor);
    _badge.fillColor = nsColor(content.badgeColor, badgeAlpha);
    _revealButton.identifier = identifier;
    _revealButton.accessibilityLabel = nsString(content.revealAccessibilityLabel);
    _revealButton.toolTip = nsString(content.revealTooltip);
}

- (void)setSelectionEnabled:(BOOL)enabled {
    _checkBox.enabled = enabled;
}

- (void)showSelection {
    _checkBox.state = _content.selected ? NSControlStateValueOn : NSControlStateValueOff;
}

// The answer is a new content, in which the box may be unchanged, so the box shows the content again.
- (void)candidateSelectionChanged:(NSButton*)sender {
    const bool isOn = sender.state == NSControlStateValueOn;
    [self showSelection];
    self.actions->selectionChanged(textFromFoundation(sender.identifier), isOn);
}

- (void)revealPressed:(NSButton*)sender {
    self.actions->revealed(textFromFoundation(sender.identifier));
}

@end
