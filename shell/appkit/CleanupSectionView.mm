#include "shell/appkit/CleanupSectionView.h"

#include "shell/appkit/AppKitConversions.h"
#include "shell/appkit/CleanupLook.h"
#include "shell/appkit/Stacks.h"
#include "shell/appkit/SymbolPicture.h"

#include <map>
#include <utility>

using namespace vantry;

namespace {

constexpr CGFloat headerTextGap = 11;
constexpr CGFloat headerInset = 3;
constexpr CGFloat separatorHeight = 1;

/// The same in every content that shows the same thing.
const std::string& keyOf(const CandidateRowContent& content) { return content.identifier; }
const std::string& keyOf(const AvenueRowContent& content) { return content.title; }

std::vector<std::string> keysOf(const CleanupSectionContent& content) {
    std::vector<std::string> keys;
    for (const CandidateRowContent& candidate : content.candidates)
        keys.push_back(keyOf(candidate));
    for (const AvenueRowContent& avenue : content.avenues)
        keys.push_back(keyOf(avenue));
    return keys;
}

NSView* makeSeparator() {
    NSView* holder = [[NSView alloc] initWithFrame:NSZeroRect];
    holder.translatesAutoresizingMaskIntoConstraints = NO;
    NSBox* line = [[NSBox alloc] initWithFrame:NSZeroRect];
    line.translatesAutoresizingMaskIntoConstraints = NO;
    line.boxType = NSBoxSeparator;
    [holder addSubview:line];
    [NSLayoutConstraint activateConstraints:@[
        [holder.heightAnchor constraintEqualToConstant:separatorHeight],
        [line.leadingAnchor constraintEqualToAnchor:holder.leadingAnchor constant:cleanupTextInset],
        [line.trailingAnchor constraintEqualToAnchor:holder.trailingAnchor],
        [line.centerYAnchor constraintEqualToAnchor:holder.centerYAnchor],
    ]];
    return holder;
}

} // namespace

@implementation OmbrelCleanupSectionView {
    SharedRowActions _actions;
    CleanupSectionContent _content;
    std::vector<std::string> _keys;                         ///< keys of all rows, placed or not
    std::vector<OmbrelCleanupRowView*> _rows;               ///< the placed rows, those of the first keys
    std::map<std::string, OmbrelCleanupRowView*> _keptRows; ///< rows of an earlier content, not placed yet
    NSImageView* _symbol;
    NSTextField* _titleLabel;
    NSTextField* _subtitleLabel;
    NSTextField* _trailingLabel;
    OmbrelCardView* _card;
    NSStackView* _rowStack;
}

- (instancetype)initWithActions:(SharedRowActions)actions {
    if ((self = [super initWithFrame:NSZeroRect])) {
        _actions = std::move(actions);
        self.translatesAutoresizingMaskIntoConstraints = NO;
        NSView* header = [self makeHeader];
        _card = [OmbrelCardView card];
        _card.accessibilityElement = YES;
        _card.accessibilityRole = NSAccessibilityListRole;
        _rowStack = verticalStack(0, @[]);
        [_card addSubview:_rowStack];
        pinEdges(_rowStack, _card, 0, 0);
        NSStackView* stack = verticalStack(cleanupHeaderToCard, @[ header, _card ]);
        [self addSubview:stack];
        pinEdges(stack, self, 0, 0);
    }
    return self;
}

- (NSView*)makeHeader {
    _symbol = makeSymbolView(cleanupSymbolSide);
    _titleLabel = makeTextLabel(cleanupHeadingFont);
    _subtitleLabel = makeTextLabel(cleanupDetailFont, SystemColor::secondaryLabel);
    _trailingLabel = makeTextLabel(cleanupDetailFont, SystemColor::secondaryLabel);
    setHorizontalHugging(_trailingLabel, NSLayoutPriorityDefaultHigh);
    setHorizontalResistance(_trailingLabel, NSLayoutPriorityDefaultHigh);
    setHorizontalHugging(_subtitleLabel, NSLayoutPriorityDefaultLow);
    NSStackView* lines =
        verticalStack(1, @[ _titleLabel, horizontalStack(headerTextGap, @[ _subtitleLabel, _trailingLabel ]) ]);
    NSStackView* header = horizontalStack(headerTextGap, @[ _symbol, lines ]);
    header.edgeInsets = NSEdgeInsetsMake(0, headerInset, 0, headerInset);
    return header;
}

- (CleanupArea)area {
    return _content.area;
}

- (void)setContent:(const CleanupSectionContent&)content {
    if (_content == content)
        return;
    const bool keepsKind = content.avenues.empty() == _content.avenues.empty();
    std::vector<std::string> keys = keysOf(content);
    const bool keepsRows = keepsKind && keys == _keys;
    _content = content;
    if (!keepsRows)
        [self takeRowsAway:keepsKind];
    _keys = std::move(keys);
    for (std::size_t index = 0; index < _rows.size(); ++index)
        [self fillRow:_rows[index] at:index];

    showSymbol(_symbol, content.symbolName, cleanupSymbolSize, SystemColor::label);
    _titleLabel.stringValue = nsString(content.title);
    _subtitleLabel.stringValue = nsString(content.subtitle);
    _trailingLabel.stringValue = nsString(content.trailingText);
    _card.accessibilityLabel = nsString(content.title);
}

// The rows stay alive, because the call may come from a control of one of them.
- (void)takeRowsAway:(BOOL)keepsThem {
    if (!keepsThem)
        _keptRows.clear();
    else
        for (std::size_t index = 0; index < _rows.size(); ++index)
            _keptRows.emplace(_keys[index], _rows[index]);
    _rows.clear();
    for (NSView* view in _rowStack.arrangedSubviews)
        [view removeFromSuperview];
}

- (void)setSelectionEnabled:(BOOL)enabled {
    if (_selectionEnabled == enabled)
        return;
    _selectionEnabled = enabled;
    for (std::size_t index = 0; index < _rows.size(); ++index)
        [self fillRow:_rows[index] at:index];
}

- (NSArray<OmbrelCleanupRowView*>*)rows {
    return [NSArray arrayWithObjects:_rows.data() count:_rows.size()];
}

- (BOOL)isComplete {
    return _rows.size() == _keys.size();
}

- (BOOL)nextRowIsKept {
    return !self.isComplete && _keptRows.contains(_keys[_rows.size()]);
}

- (void)placeNextRow {
    if (self.isComplete)
        return;
    const std::size_t index = _rows.size();
    OmbrelCleanupRowView* row = nil;
    if (const auto kept = _keptRows.find(_keys[index]); kept != _keptRows.end()) {
        row = kept->second;
        _keptRows.erase(kept);
    } else {
        row = [self makeRow];
    }
    _rows.push_back(row);
    [self fillRow:row at:index];
    if (index > 0)
        addFullWidth(_rowStack, makeSeparator());
    addFullWidth(_rowStack, row);
    if (self.isComplete)
        _keptRows.clear();
}

- (OmbrelCleanupRowView*)makeRow {
    return _content.avenues.empty() ? [[OmbrelCandidateRowView alloc] initWithActions:_actions]
                                    : [[OmbrelAvenueRowView alloc] initWithActions:_actions];
}

- (void)fillRow:(OmbrelCleanupRowView*)row at:(std::size_t)index {
    if (!_content.avenues.empty()) {
        [static_cast<OmbrelAvenueRowView*>(row) setContent:_content.avenues[index]];
        return;
    }
    auto* candidate = static_cast<OmbrelCandidateRowView*>(row);
    [candidate setContent:_content.candidates[index]];
    [candidate setSelectionEnabled:_selectionEnabled];
}

@end
