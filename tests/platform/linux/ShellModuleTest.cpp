#include "platform/ShellModule.h"

#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <string>

namespace vantry {

namespace {

namespace fs = std::filesystem;

const fs::path parts = OMBREL_SHELL_MODULE_PARTS;

/// An installation of the probe, with or without front ends.
class ShellModule : public testing::Test {
protected:
    ShellModule() {
        fs::create_directories(programs);
        fs::create_directories(modules);
        fs::copy_file(parts / "shell_module_probe", programs / "probe");
    }

    void putBesideTheProgram(const char* module) const { put(programs, module); }
    void putWhereItIsInstalled(const char* module) const { put(modules, module); }

    [[nodiscard]] std::string load(const std::string& symbol) const {
        // Found by its own path, wherever it is started from.
        FILE* output = popen(("cd / && " + (programs / "probe").native() + " " + symbol).c_str(), "r");
        if (!output)
            return "not started";
        std::string said;
        std::array<char, 256> buffer{};
        while (const std::size_t length = fread(buffer.data(), 1, buffer.size(), output))
            said.append(buffer.data(), length);
        pclose(output);
        return said;
    }

    const TemporaryFolder root;
    const fs::path programs = root / OMBREL_INSTALLED_PROGRAM_FOLDER;
    const fs::path modules = root / OMBREL_INSTALLED_MODULE_FOLDER;

private:
    static void put(const fs::path& folder, const char* module) {
        fs::copy_file(parts / module, folder / "libombrel-qt.so");
    }
};

} // namespace

TEST_F(ShellModule, ThatIsNotInstalledIsNotFound) {
    EXPECT_EQ(load("nameOfFrontEnd"), "not found: libombrel-qt.so is not installed");
}

TEST_F(ShellModule, IsLoadedFromTheFolderOfTheProgram) {
    putBesideTheProgram("first.so");
    EXPECT_EQ(load("nameOfFrontEnd"), "first");
}

TEST_F(ShellModule, IsLoadedFromWhereItIsInstalled) {
    putWhereItIsInstalled("second.so");
    EXPECT_EQ(load("nameOfFrontEnd"), "second");
}

TEST_F(ShellModule, TheOneBesideTheProgramComesFirst) {
    putBesideTheProgram("first.so");
    putWhereItIsInstalled("second.so");
    EXPECT_EQ(load("nameOfFrontEnd"), "first");
}

TEST_F(ShellModule, ASymbolThatItLacksIsAnErrorThatNamesIt) {
    putBesideTheProgram("first.so");
    const std::string said = load("noSuchSymbol");
    EXPECT_TRUE(said.starts_with("failed: ")) << said;
    EXPECT_NE(said.find("noSuchSymbol"), said.npos) << said;
}

TEST_F(ShellModule, AFileThatIsNoModuleIsAnErrorThatNamesIt) {
    writeFile(programs / "libombrel-qt.so", "no module");
    const std::string said = load("nameOfFrontEnd");
    EXPECT_TRUE(said.starts_with("failed: ")) << said;
    EXPECT_NE(said.find((programs / "libombrel-qt.so").native()), said.npos) << said;
}

TEST_F(ShellModule, ABrokenOneDoesNotHideTheInstalledOne) {
    writeFile(programs / "libombrel-qt.so", "no module");
    putWhereItIsInstalled("second.so");
    EXPECT_EQ(load("nameOfFrontEnd"), "second");
}

TEST_F(ShellModule, TheSearchPathOfTheLoaderIsIgnored) {
    fs::create_directory(root / "elsewhere");
    fs::copy_file(parts / "first.so", root / "elsewhere/libombrel-qt.so");
    const ScopedEnvironment path("LD_LIBRARY_PATH", (root / "elsewhere").c_str());
    EXPECT_EQ(load("nameOfFrontEnd"), "not found: libombrel-qt.so is not installed");
}

} // namespace vantry
