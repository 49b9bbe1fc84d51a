#pragma once

#include "cleanup/window/CleanupWindowContent.h"
#include "shell/appkit/CleanupLook.h"

/// One figure with what it is above it and what it means below.
@interface OmbrelSummaryCard : OmbrelCardView

- (void)setContent:(const vantry::SummaryCardContent&)content;

@end

/// A thin green frame, faintly filled, with a symbol and a text.
@interface OmbrelNoticeBox : OmbrelCardView

- (void)setSymbolName:(const std::string&)symbolName text:(const std::string&)text;

@end
