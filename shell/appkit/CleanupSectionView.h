#pragma once

#include "shell/appkit/CleanupRowView.h"

/// A header and a card with rows of one kind. Rows are placed one by one, so that a section with hundreds can be built
/// piece by piece.
@interface OmbrelCleanupSectionView : NSView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;

/// Rows that are in both contents stay the same views. If the list of rows changed, call `placeNextRow` until it is
/// complete.
- (void)setContent:(const vantry::CleanupSectionContent&)content;
@property(nonatomic, readonly) vantry::CleanupArea area;

@property(nonatomic, readonly) BOOL isComplete;    ///< all rows are placed
@property(nonatomic, readonly) BOOL nextRowIsKept; ///< the next row is reused from an earlier content
- (void)placeNextRow;
@property(nonatomic, readonly) NSArray<OmbrelCleanupRowView*>* rows; ///< the placed ones

@property(nonatomic) BOOL selectionEnabled; ///< of the check boxes, also in rows placed later; initially NO

@end
