#pragma once

#include "shell/appkit/CleanupSectionView.h"

#include <optional>
#include <vector>

/// The sections that a scan found, or the empty state. The first rows are built at once, the others in slices of the
/// event loop. A row that is rendered again stays the same view.
@interface OmbrelCleanupResultsView : NSScrollView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;
- (void)setEmptyState:(const std::optional<vantry::EmptyStateContent>&)emptyState
             sections:(const std::vector<vantry::CleanupSectionContent>&)sections;
/// Enables or disables the check boxes of all rows, including rows that are built later.
- (void)setSelectionEnabled:(BOOL)enabled;
- (void)scrollToTop;
/// Down, or up by a negative number.
- (void)scrollByPages:(CGFloat)pages;

@end
