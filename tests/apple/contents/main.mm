// Runs the macOS application on the services of this system and prints what a screen reader meets: in the popover, in
// the "Free Up Space" window once its scan is done, and in the window's guide. Takes no arguments.

#include "app/ShellEntry.h"
#include "tests/apple/Program.h"
#include "tests/apple/appkit/Desktop.h"
#include "tests/apple/foundation/EventLoop.h"

#include <algorithm>
#include <cstdio>

extern "C" int ombrelShellEntry(vantry::ShellLaunch launch);

namespace vantry::apple {

namespace {

bool hasFailed = false;

void waitFor(const char* what, const std::function<bool()>& done) {
    if (runUntil(done))
        return;
    std::fprintf(stderr, "waited in vain for %s\n", what);
    hasFailed = true;
}

NSView* root() { return keyWindow().contentView; }

void print(const char* title) {
    std::printf("== %s\n", title);
    for (std::string& line : spokenContents(root())) {
        std::ranges::replace(line, '\n', ' '); // a line for each element
        std::printf("%s\n", line.c_str());
    }
}

void clickOn(NSView* view) {
    if (view)
        click(view);
    hasFailed = hasFailed || !view;
}

bool hasText(const std::string& part) {
    for (const std::string& line : spokenContents(root()))
        if (line.find(part) != std::string::npos)
            return true;
    return false;
}

void use() {
    waitFor("the figures", [] {
        return statusButton().toolTip &&
               std::string(statusButton().toolTip.UTF8String).find(" used, ") != std::string::npos;
    });
    clickOn(statusButton());
    layOutWindows();
    print("popover");
    clickOn(viewTitled(root(), "Free Up Space…"));
    waitFor("the scan", [] { return hasText("Scan complete"); });
    layOutWindows();
    print("files");
    for (NSView* view : viewsBelow(root()))
        if ([view isKindOfClass:[NSSegmentedControl class]]) {
            choose(static_cast<NSSegmentedControl*>(view), 1);
            break;
        }
    waitFor("the measured guide", [] { return !hasText("Not measured yet"); });
    layOutWindows();
    print("guide");
    [[NSApplication sharedApplication] terminate:nil];
}

} // namespace

} // namespace vantry::apple

int main(int count, char** values) {
    using namespace vantry::apple;
    runWorkerIfRequested(count, values);
    if (count > 1) {
        std::fprintf(stderr, "unknown argument: %s\n", values[1]);
        return EXIT_FAILURE;
    }
    const Program program(count, values);
    setAfterEachTurn([] { layOutWindows(); });
    Desktop::get().whileRunning = use;
    const int status = ombrelShellEntry({});
    for (const std::string& complaint : takeComplaints()) {
        std::fprintf(stderr, "%s\n", complaint.c_str());
        hasFailed = true;
    }
    return hasFailed ? EXIT_FAILURE : status;
}
