#include "shell/appkit/CleanupPanels.h"

#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

using namespace vantry;

namespace {

constexpr CGFloat accentGap = 12;
constexpr CGFloat accentInset = 2;

constexpr CGFloat noticeSymbolSize = 16;
constexpr CGFloat noticeEdgeAlpha = 0.55;
constexpr CGFloat noticeFillAlpha = 0.09;

} // namespace

@implementation OmbrelSummaryCard {
    SummaryCardContent _content;
    OmbrelCardView* _accent;
    NSTextField* _titleLabel;
    NSTextField* _valueLabel;
    NSTextField* _detailLabel;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        _accent = [[OmbrelCardView alloc] initWithFrame:NSZeroRect];
        _titleLabel = makeTextLabel(cleanupStrongFont, SystemColor::secondaryLabel);
        _valueLabel = makeTextLabel(cleanupFigureFont);
        _detailLabel = makeWrappingLabel(cleanupDetailFont, SystemColor::secondaryLabel);
        NSStackView* texts = verticalStack(2, @[ _titleLabel, _valueLabel, _detailLabel ]);
        [self addSubview:_accent];
        [self addSubview:texts];
        // Low priority: cards side by side are as high as the highest one.
        NSLayoutConstraint* height = [texts.bottomAnchor constraintEqualToAnchor:self.bottomAnchor
                                                                        constant:-cleanupCardPadding];
        height.priority = NSLayoutPriorityDefaultLow;
        [NSLayoutConstraint activateConstraints:@[
            [_accent.widthAnchor constraintEqualToConstant:cleanupAccentWidth],
            [_accent.leadingAnchor constraintEqualToAnchor:self.leadingAnchor constant:cleanupCardPadding],
            [_accent.topAnchor constraintEqualToAnchor:self.topAnchor constant:cleanupCardPadding + accentInset],
            [_accent.bottomAnchor constraintEqualToAnchor:self.bottomAnchor
                                                 constant:-(cleanupCardPadding + accentInset)],
            [texts.leadingAnchor constraintEqualToAnchor:_accent.trailingAnchor constant:accentGap],
            [texts.trailingAnchor constraintEqualToAnchor:self.trailingAnchor constant:-cleanupCardPadding],
            [texts.topAnchor constraintEqualToAnchor:self.topAnchor constant:cleanupCardPadding],
            [texts.bottomAnchor constraintLessThanOrEqualToAnchor:self.bottomAnchor constant:-cleanupCardPadding],
            height,
        ]];
        self.accessibilityElement = YES;
        self.accessibilityRole = NSAccessibilityGroupRole;
    }
    return self;
}

- (void)setContent:(const SummaryCardContent&)content {
    if (_content == content)
        return;
    _content = content;
    _accent.fillColor = nsColor(content.color);
    _titleLabel.stringValue = nsString(content.title);
    _valueLabel.stringValue = nsString(content.value);
    _valueLabel.textColor = nsColor(content.color);
    _detailLabel.stringValue = nsString(content.detail);
    self.accessibilityLabel = nsString(content.title);
}

@end

@implementation OmbrelNoticeBox {
    NSImageView* _symbol;
    NSTextField* _label;
}

- (instancetype)initWithFrame:(NSRect)frame {
    if ((self = [super initWithFrame:frame])) {
        self.fillColor = nsColor(SystemColor::green, noticeFillAlpha);
        self.edgeColor = nsColor(SystemColor::green, noticeEdgeAlpha);
        self.cornerRadius = cleanupCardRadius;
        _symbol = makeSymbolView(cleanupSymbolSide);
        _label = makeWrappingLabel(cleanupBodyFont);
        NSStackView* row = horizontalStack(accentGap, @[ _symbol, _label ]);
        [self addSubview:row];
        pinEdges(row, self, cleanupCardPadding, cleanupNoticePadding);
    }
    return self;
}

- (void)setSymbolName:(const std::string&)symbolName text:(const std::string&)text {
    showSymbol(_symbol, symbolName, noticeSymbolSize, SystemColor::green);
    _label.stringValue = nsString(text);
}

@end
