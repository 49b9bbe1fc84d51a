#include "platform/ShellModule.h"

#include <cstdio>

/// Loads the symbol that is its argument, calls it, and prints what it answers or why it could not be loaded.
int main(int count, char** arguments) {
    if (count != 2)
        return 2;
    const auto symbol = vantry::loadShellSymbol(arguments[1]);
    if (symbol)
        std::printf("%s", reinterpret_cast<const char* (*)()>(*symbol)());
    else
        std::printf("%s: %s", symbol.error().kind == vantry::ErrorKind::notFound ? "not found" : "failed",
                    symbol.error().message.c_str());
    return 0;
}
