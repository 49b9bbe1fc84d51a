#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/appkit/CleanupLook.h"

/// A figure with a title above it and an explanation below.
@interface OmbrelSummaryCard : OmbrelCardView

- (void)setContent:(const vantry::SummaryCardContent&)content;

@end

/// A symbol and a text in a thin green frame with a faint green fill.
@interface OmbrelNoticeBox : OmbrelCardView

- (void)setSymbolName:(const std::string&)symbolName text:(const std::string&)text;

@end
