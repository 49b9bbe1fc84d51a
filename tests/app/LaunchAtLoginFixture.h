#pragma once

#include "app/LaunchAtLoginController.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <gtest/gtest.h>
#include <set>

namespace vantry {

/// A temporary home folder, with an autostart folder on systems that have one.
class LaunchAtLoginFixture : public testing::Test {
protected:
    [[nodiscard]] LaunchAtLoginController::Environment
    environment(const std::string& application = "/opt/ombrel/ombrel") const {
        return {.home = home_.path(),
                .runningApplication = application,
                .installedApplications = {home_ / "local/ombrel", home_ / "usr/ombrel"}};
    }
    /// Creates an executable file in the home folder.
    [[nodiscard]] std::string install(const std::string& name) const {
        const auto file = home_ / name;
        std::filesystem::create_directories(file.parent_path());
        writeFile(file, "");
        std::filesystem::permissions(file, std::filesystem::perms(0755));
        return file.native();
    }
    void expectBothStart(const std::string& application) const {
        EXPECT_NE(readFile(agent()).find("<string>" + application + "</string>"), std::string::npos) << application;
        EXPECT_NE(readFile(autostart()).find("Exec=\"" + application + "\"\n"), std::string::npos) << application;
    }
    void addToEntry(const std::string& line) const {
        auto entry = readFile(autostart());
        writeFile(autostart(), entry + line + "\n");
    }
    [[nodiscard]] std::filesystem::path agents() const { return home_ / "Library/LaunchAgents"; }
    [[nodiscard]] std::filesystem::path agent() const { return agents() / "app.ombrel.Ombrel.plist"; }
    [[nodiscard]] std::filesystem::path autostart() const {
        return home_ / ".config/autostart/app.ombrel.Ombrel.desktop";
    }
    [[nodiscard]] std::set<std::string> agentNames() const {
        std::set<std::string> names;
        if (std::filesystem::exists(agents()))
            for (const auto& entry : std::filesystem::directory_iterator(agents()))
                names.insert(entry.path().filename().native());
        return names;
    }
    /// Switches the login item as an ordinary user, because root passes every permission check.
    [[nodiscard]] std::string errorForOrdinaryUser(bool enabled) const {
        return inChildProcess([&]() -> std::string {
            if (!becomeUser(unknownUser()))
                return "no other user";
            const auto answer = LaunchAtLoginController::setEnabled(environment(), enabled);
            return answer ? "no error" : answer.error().message;
        });
    }
    void enableOrFail() const {
        const auto enabled = LaunchAtLoginController::setEnabled(environment(), true);
        ASSERT_TRUE(enabled) << enabled.error().message;
    }

    TemporaryFolder home_;
    ScopedEnvironment homeVariable_{"HOME", home_.path().c_str()};
    ScopedEnvironment configurationVariable_{"XDG_CONFIG_HOME", nullptr};
};

} // namespace vantry
