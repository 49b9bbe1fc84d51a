#pragma once

#include "app/CleanupWindowActions.h"

#include <AppKit/AppKit.h>
#include <memory>

namespace vantry {

/// Shared by all rows, because a control may report after its row was removed.
using SharedRowActions = std::shared_ptr<const CleanupRowActions>;

} // namespace vantry

/// A row of a card. Screen readers see a group with the row's title.
@interface OmbrelCleanupRowView : NSView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;
- (vantry::SharedRowActions)actions;

@end

/// A file or folder that was found.
@interface OmbrelCandidateRowView : OmbrelCleanupRowView

- (void)setContent:(const vantry::CandidateRowContent&)content;
/// Enables or disables the check box, if the row has one.
- (void)setSelectionEnabled:(BOOL)enabled;

@end

/// An avenue of the catalog.
@interface OmbrelAvenueRowView : OmbrelCleanupRowView

- (void)setContent:(const vantry::AvenueRowContent&)content;

@end
