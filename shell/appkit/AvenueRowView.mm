#include "shell/appkit/CleanupRowView.h"

#include "base/Text.h"
#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat buttonWidth = 170;

} // namespace

@implementation OmbrelAvenueRowView {
    AvenueRowContent _content;
    NSImageView* _symbol;
    NSTextField* _titleLabel;
    NSTextField* _detailLabel;
    NSTextField* _statusLabel;
    NSTextField* _usageLabel;
    NSStackView* _status;
    NSButton* _button;
}

- (instancetype)initWithActions:(SharedRowActions)actions {
    if ((self = [super initWithActions:std::move(actions)])) {
        _symbol = makeSymbolView(cleanupSymbolSide);
        _titleLabel = makeWrappingLabel(cleanupRowTitleFont);
        _detailLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _statusLabel = makeWrappingLabel(cleanupStrongFont);
        _usageLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        _button = [NSButton buttonWithTitle:@"" target:self action:@selector(avenueActionPressed:)];
        _button.translatesAutoresizingMaskIntoConstraints = NO;
        _button.font = nsFont(cleanupBodyFont);
        _button.hidden = YES;
        [self layOut];
    }
    return self;
}

- (void)layOut {
    NSStackView* texts = verticalStack(cleanupRowLineGap, @[ _titleLabel, _detailLabel ]);
    _status = verticalStack(cleanupRowLineGap, @[ _statusLabel, _usageLabel ]);
    for (NSView* view in @[ _symbol, texts, _status, _button ])
        [self addSubview:view];
    [NSLayoutConstraint activateConstraints:@[
        [_symbol.centerXAnchor constraintEqualToAnchor:self.leadingAnchor
                                              constant:cleanupCardPadding + cleanupSymbolSide / 2],
        [_symbol.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [texts.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:cleanupTextInset],
        [texts.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [texts.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor constant:cleanupRowPadding],
        [_status.leadingAnchor constraintEqualToAnchor:texts.trailingAnchor constant:cleanupColumnGap],
        [_status.widthAnchor constraintEqualToConstant:cleanupStatusWidth],
        [_status.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
        [_status.topAnchor constraintGreaterThanOrEqualToAnchor:self.topAnchor constant:cleanupRowPadding],
        [_status.trailingAnchor constraintEqualToAnchor:self.trailingAnchor
                                               constant:-(cleanupCardPadding + buttonWidth + cleanupColumnGap)],
        [_button.leadingAnchor constraintEqualToAnchor:_status.trailingAnchor constant:cleanupColumnGap],
        [_button.widthAnchor constraintEqualToConstant:buttonWidth],
        [_button.centerYAnchor constraintEqualToAnchor:self.centerYAnchor],
    ]];
}

- (void)setContent:(const AvenueRowContent&)content {
    if (_content == content)
        return;
    _content = content;
    self.accessibilityLabel = nsString(content.title);
    showSymbol(_symbol, content.symbolName, cleanupSymbolSize, SystemColor::secondaryLabel);
    _titleLabel.stringValue = nsString(content.title);
    _detailLabel.stringValue = nsString(content.detail);
    _statusLabel.stringValue = nsString(content.status);
    _statusLabel.textColor = nsColor(content.statusColor);
    _usageLabel.stringValue = nsString(content.usage);
    setFullWidth(_status, _usageLabel, _statusLabel, !content.usage.empty());
    _button.hidden = !content.button;
    if (content.button) {
        _button.title = nsString(content.button->title);
        _button.toolTip = nsString(content.button->tooltip);
        _button.enabled = content.button->enabled;
        // Several avenues open the same place, so the help names the avenue.
        _button.accessibilityHelp = nsString(joinedTexts({content.title, content.button->tooltip}));
    }
}

- (void)avenueActionPressed:(id)sender {
    if (_content.button)
        self.actions->avenueAction(_content.button->action);
}

@end
