#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <AppKit/AppKit.h>
#include <functional>
#include <memory>
#include <string>

namespace vantry {

/// What the controls of the rows report.
struct CleanupRowActions {
    std::function<void(const std::string& identifier, bool isOn)> selectionChanged;
    std::function<void(const std::string& identifier)> revealed;
    std::function<void(CleanupAvenue::Action)> avenueAction;
};

/// Shared by all rows: a control may report after its row was taken away.
using SharedRowActions = std::shared_ptr<const CleanupRowActions>;

} // namespace vantry

/// A row of a card: a group to screen readers, named by its title.
@interface OmbrelCleanupRowView : NSView

- (instancetype)initWithActions:(vantry::SharedRowActions)actions;
- (vantry::SharedRowActions)actions;

@end

/// A file or folder that was found.
@interface OmbrelCandidateRowView : OmbrelCleanupRowView

- (void)setContent:(const vantry::CandidateRowContent&)content;
/// Whether the check box can be used, if the row has one.
- (void)setSelectionEnabled:(BOOL)enabled;

@end

/// An avenue of the catalog.
@interface OmbrelAvenueRowView : OmbrelCleanupRowView

- (void)setContent:(const vantry::AvenueRowContent&)content;

@end
