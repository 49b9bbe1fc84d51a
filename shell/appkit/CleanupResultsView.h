#pragma once

#include "shell/appkit/CleanupSectionView.h"

#include <optional>
#include <vector>

/// What a scan found, in sections below each other, or what stands there in their place. The first rows are built at
/// once, the rest in slices of the event loop. Rows that are rendered again stay the same views.
@interface OmbrelCleanupResultsView : NSScrollView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;
- (void)setEmptyState:(const std::optional<vantry::EmptyStateContent>&)emptyState
             sections:(const std::vector<vantry::CleanupSectionContent>&)sections;
/// Whether the check boxes of the rows can be used, also of those that are built later.
- (void)setSelectionEnabled:(BOOL)enabled;
- (void)scrollToTop;

@end
