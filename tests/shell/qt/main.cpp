#include "shell/qt/CleanupControls.h"
#include "shell/qt/GuardedApplication.h"

#include <gtest/gtest.h>

// The toolkit's libraries are not built with the thread sanitizer, which cannot see how their threads synchronize.
// NOLINTNEXTLINE(readability-identifier-naming): named by the thread sanitizer
extern "C" const char* __tsan_default_suppressions() { return "race:libQt6Core.so\nrace:libQt6Gui.so\n"; }

int main(int count, char** arguments) {
    testing::InitGoogleTest(&count, arguments);
    qputenv("QT_QPA_PLATFORM", "offscreen"); // the tests need no display
    const vantry::GuardedApplication application(count, arguments);
    vantry::installCleanupAccessibility(); // before the first widget, as the front end does
    return RUN_ALL_TESTS();
}
