#pragma once

#include "shell/appkit/CleanupRowView.h"

/// A header and a card with rows, all of one kind. Rows are placed one after the other, so that a section of hundreds
/// can be built piece by piece.
@interface OmbrelCleanupSectionView : NSView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;

/// Keeps the rows that stay. Where the rows are other ones than before, those that are new are not placed yet.
- (void)setContent:(const vantry::CleanupSectionContent&)content;
@property(nonatomic, readonly) vantry::CleanupArea area;

@property(nonatomic, readonly) BOOL isComplete;    ///< all rows are placed
@property(nonatomic, readonly) BOOL nextRowIsKept; ///< the next row exists already, from an earlier content
- (void)placeNextRow;

@property(nonatomic) BOOL selectionEnabled; ///< of the check boxes, also of rows that are placed later; NO at first

@end
