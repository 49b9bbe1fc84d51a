#include "platform/ShellModule.h"

#include <gtest/gtest.h>

#include <string>

extern "C" int ombrelSymbolOfTheExecutable() { return 7; }

namespace vantry {

TEST(AppleShellModule, IsTheExecutable) {
    const auto symbol = loadShellSymbol("ombrelSymbolOfTheExecutable");
    ASSERT_TRUE(symbol);
    EXPECT_EQ(reinterpret_cast<int (*)()>(*symbol)(), 7);
}

TEST(AppleShellModule, HasNoMissingSymbolAndNoneOfLibraries) {
    for (const std::string name : {"ombrelMissingSymbol", "gnu_get_libc_version"}) {
        const auto symbol = loadModuleSymbol("libombrel-pictures.so", name);
        ASSERT_FALSE(symbol) << name;
        EXPECT_EQ(symbol.error().kind, ErrorKind::notFound);
        EXPECT_NE(symbol.error().message.find(name), std::string::npos) << symbol.error().message;
    }
}

} // namespace vantry
