#pragma once

#include "cleanup/window/CleanupWindowContent.h"

#include <functional>

@class NSWindow;

namespace vantry {

/// Shows a warning alert as a sheet of `window`. `answered` is called once, in a later turn of the event loop, also
/// when the sheet is closed.
void showAlertSheet(const AlertContent& alert, std::function<void(AlertAnswer)> answered, NSWindow* window);

/// Closes the sheet of `window`, if it has one. The answer is then the last button.
void closeAlertSheet(NSWindow* window);

/// Calls `answered` in a later turn of the event loop.
void answerLater(std::function<void(AlertAnswer)> answered, AlertAnswer answer);

} // namespace vantry
