// expect: 'activate' is only available on macOS 14.0 or newer
#include <AppKit/AppKit.h>
void f() { [NSApplication.sharedApplication activate]; }
