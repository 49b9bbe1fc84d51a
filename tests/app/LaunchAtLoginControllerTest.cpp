#include "app/LaunchAtLoginController.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <cerrno>
#include <cstdlib>
#include <gtest/gtest.h>
#include <set>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <vector>

namespace vantry {
namespace {

namespace Controller = LaunchAtLoginController;

// A home of its own, with the autostart folder in it wherever the system has one.
class LaunchAtLogin : public testing::Test {
protected:
    [[nodiscard]] Controller::Environment environment(const std::string& application = "/opt/ombrel/ombrel") const {
        return {.home = home_.path(),
                .runningApplication = application,
                .installedApplications = {home_ / "local/ombrel", home_ / "usr/ombrel"}};
    }
    /// An executable file of that name in the home folder.
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
    /// What the system says about switching the login item, as an ordinary user, since root may do everything.
    [[nodiscard]] std::string errorForOrdinaryUser(bool enabled) const {
        return inChildProcess([&]() -> std::string {
            if (!becomeUser(unknownUser()))
                return "no other user";
            const auto answer = Controller::setEnabled(environment(), enabled);
            return answer ? "no error" : answer.error().message;
        });
    }
    void enableOrFail() const {
        const auto enabled = Controller::setEnabled(environment(), true);
        ASSERT_TRUE(enabled) << enabled.error().message;
    }

    TemporaryFolder home_;
    ScopedEnvironment homeVariable_{"HOME", home_.path().c_str()};
    ScopedEnvironment configurationVariable_{"XDG_CONFIG_HOME", nullptr};
};

TEST_F(LaunchAtLogin, TheAgentFileIsNamedAfterTheBundleIdentifier) {
    EXPECT_EQ(Controller::launchAgentURL(environment()), agent());
}

TEST_F(LaunchAtLogin, EnablingMakesTheFolderAndWritesExactlyFiveKeys) {
    EXPECT_FALSE(Controller::isEnabled(environment()));
    enableOrFail();
    EXPECT_TRUE(Controller::isEnabled(environment()));
    EXPECT_EQ(readFile(agent()), "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                 "<!DOCTYPE plist PUBLIC \"-//Apple//DTD PLIST 1.0//EN\" "
                                 "\"http://www.apple.com/DTDs/PropertyList-1.0.dtd\">\n"
                                 "<plist version=\"1.0\">\n"
                                 "<dict>\n"
                                 "\t<key>Label</key>\n"
                                 "\t<string>app.ombrel.Ombrel</string>\n"
                                 "\t<key>ProgramArguments</key>\n"
                                 "\t<array>\n"
                                 "\t\t<string>/usr/bin/open</string>\n"
                                 "\t\t<string>-g</string>\n"
                                 "\t\t<string>/opt/ombrel/ombrel</string>\n"
                                 "\t</array>\n"
                                 "\t<key>RunAtLoad</key>\n"
                                 "\t<true/>\n"
                                 "\t<key>LimitLoadToSessionType</key>\n"
                                 "\t<string>Aqua</string>\n"
                                 "\t<key>ProcessType</key>\n"
                                 "\t<string>Interactive</string>\n"
                                 "</dict>\n"
                                 "</plist>\n");
}

TEST_F(LaunchAtLogin, TheAgentFileIsReadableByAllWhateverTheUmask) {
    const mode_t before = umask(0077);
    enableOrFail();
    umask(before);
    struct stat facts = {};
    ASSERT_EQ(stat(agent().c_str(), &facts), 0);
    EXPECT_EQ(facts.st_mode & 07777, 0644U);
}

TEST_F(LaunchAtLogin, EnablingTwiceLeavesOneFileWithTheSameContent) {
    enableOrFail();
    const std::string first = readFile(agent());
    enableOrFail();
    EXPECT_EQ(readFile(agent()), first);
    EXPECT_EQ(agentNames(), std::set<std::string>{"app.ombrel.Ombrel.plist"});
}

TEST_F(LaunchAtLogin, WhatIsThereAlreadyIsNotWrittenAgainButReadableByAll) {
    enableOrFail();
    struct stat before = {};
    struct stat after = {};
    ASSERT_EQ(chmod(agent().c_str(), 0600), 0);
    ASSERT_EQ(stat(agent().c_str(), &before), 0);
    enableOrFail();
    ASSERT_EQ(stat(agent().c_str(), &after), 0);
    EXPECT_EQ(after.st_ino, before.st_ino) << "each writing may be announced to the user";
    EXPECT_EQ(after.st_mode & 07777, 0644U);
}

TEST_F(LaunchAtLogin, DisablingRemovesTheAgentAndTheAutostartEntry) {
    enableOrFail();
    ASSERT_TRUE(std::filesystem::exists(autostart()));
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_TRUE(agentNames().empty());
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

TEST_F(LaunchAtLogin, DisablingWithNoFilePresentSucceedsAndMakesNothing) {
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
    EXPECT_FALSE(std::filesystem::exists(home_ / ".config"));
}

TEST_F(LaunchAtLogin, AnInstalledCopyIsPreferredToARunningOneThatIsNotInstalled) {
    const auto usr = install("usr/ombrel");
    enableOrFail();
    expectBothStart(usr);
    const auto local = install("local/ombrel");
    enableOrFail();
    expectBothStart(local);
    ASSERT_TRUE(Controller::setEnabled(environment(usr), true));
    expectBothStart(usr);
}

TEST_F(LaunchAtLogin, WhatCannotBeRunIsNoInstalledCopy) {
    std::filesystem::create_directories(home_ / "local/ombrel");
    std::filesystem::create_directories(home_ / "usr");
    writeFile(home_ / "usr/ombrel", "not executable");
    enableOrFail();
    expectBothStart("/opt/ombrel/ombrel");
}

TEST_F(LaunchAtLogin, ACopyThatIsNotInstalledLeavesTheEntryToAnInstalledOne) {
    const auto local = install("local/ombrel");
    const auto usr = install("usr/ombrel");
    ASSERT_TRUE(Controller::setEnabled(environment(usr), true));
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    expectBothStart(usr);
    std::filesystem::remove_all(home_ / "usr");
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    expectBothStart(local);
    std::filesystem::remove_all(home_ / "local");
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    expectBothStart("/opt/ombrel/ombrel");
}

TEST_F(LaunchAtLogin, RefreshingKeepsWhatTheUserAddedToARightEntry) {
    enableOrFail();
    addToEntry("X-GNOME-Autostart-Delay=20");
    const auto entry = readFile(autostart());
    writeFile(agent(), "outdated");
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    EXPECT_EQ(readFile(autostart()), entry);
    expectBothStart("/opt/ombrel/ombrel");
}

TEST_F(LaunchAtLogin, AnEntryThatTheUserSwitchedOffOrRemovedIsOffAndStaysAsItIs) {
    for (const char* line : {"Hidden=true", "X-GNOME-Autostart-enabled=false", ""}) {
        enableOrFail();
        writeFile(agent(), "outdated");
        if (*line)
            addToEntry(line);
        else
            std::filesystem::remove(autostart());
        const auto entry = *line ? readFile(autostart()) : "";
        EXPECT_FALSE(Controller::isEnabled(environment())) << line;
        ASSERT_TRUE(Controller::refreshIfEnabled(environment("/new/place/ombrel")));
        EXPECT_EQ(readFile(agent()), "outdated") << line;
        EXPECT_EQ(std::filesystem::exists(autostart()) ? readFile(autostart()) : "", entry) << line;
        enableOrFail();
        EXPECT_TRUE(Controller::isEnabled(environment())) << line;
        expectBothStart("/opt/ombrel/ombrel");
    }
}

TEST_F(LaunchAtLogin, RefreshingWritesAnExistingAgentForTheCurrentLocation) {
    enableOrFail();
    ASSERT_TRUE(Controller::refreshIfEnabled(environment("/new/place/ombrel")));
    EXPECT_NE(readFile(agent()).find("<string>/new/place/ombrel</string>"), std::string::npos);
    EXPECT_NE(readFile(autostart()).find("Exec=\"/new/place/ombrel\"\n"), std::string::npos);
}

TEST_F(LaunchAtLogin, RefreshingWithoutAnAgentMakesNone) {
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
}

TEST_F(LaunchAtLogin, AnUnusualApplicationPathIsWrittenAsItIs) {
    ASSERT_TRUE(Controller::setEnabled(environment("/R&D <new> \"é\" 100%/ombrel"), true));
    EXPECT_NE(readFile(agent()).find("/R&amp;D &lt;new&gt; \"é\" 100%/ombrel"), std::string::npos);
    EXPECT_NE(readFile(autostart()).find(R"(Exec="/R&D <new> \\"é\\" 100%%/ombrel")"), std::string::npos);
}

TEST_F(LaunchAtLogin, APathThatNeitherFileCanHoldIsAnErrorAndChangesNothing) {
    enableOrFail();
    const std::string before = readFile(agent());
    for (const char* path : {"/\xff/ombrel", "/line\nbreak/ombrel"})
        EXPECT_FALSE(Controller::setEnabled(environment(path), true)) << path;
    EXPECT_EQ(readFile(agent()), before);
}

TEST_F(LaunchAtLogin, BothFilesAreTheOnlyTruth) {
    enableOrFail();
    std::filesystem::remove(agent());
    EXPECT_FALSE(Controller::isEnabled(environment()));
    writeFile(agent(), "anything");
    EXPECT_TRUE(Controller::isEnabled(environment()));
    std::filesystem::remove(autostart());
    EXPECT_FALSE(Controller::isEnabled(environment()));
    std::filesystem::create_directory(autostart());
    EXPECT_FALSE(Controller::isEnabled(environment()));
}

TEST_F(LaunchAtLogin, AFolderInThePlaceOfTheFileIsNoAgentAndStays) {
    std::filesystem::create_directories(agent() / "inside");
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_FALSE(Controller::setEnabled(environment(), true));
    EXPECT_FALSE(std::filesystem::exists(autostart()));
    EXPECT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_TRUE(std::filesystem::exists(agent() / "inside"));
}

TEST_F(LaunchAtLogin, ADanglingLinkIsNoAgentAndIsReplacedByEnabling) {
    std::filesystem::create_directories(agents());
    std::filesystem::create_symlink(home_ / "nowhere", agent());
    EXPECT_FALSE(Controller::isEnabled(environment()));
    enableOrFail();
    EXPECT_TRUE(Controller::isEnabled(environment()));
    EXPECT_FALSE(std::filesystem::is_symlink(agent()));
    EXPECT_FALSE(std::filesystem::exists(home_ / "nowhere"));
}

TEST_F(LaunchAtLogin, WhatALinkLeadsToIsNeverRemoved) {
    enableOrFail();
    writeFile(home_ / "kept", "kept");
    std::filesystem::remove(agent());
    std::filesystem::create_symlink(home_ / "kept", agent());
    EXPECT_TRUE(Controller::isEnabled(environment()));
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_EQ(readFile(home_ / "kept"), "kept");
}

TEST_F(LaunchAtLogin, WhenTheAutostartEntryCannotBeWrittenTheAgentIsPutBackToItsBytesOrItsAbsence) {
    writeFile(home_ / ".config", "a file in place of the folder");
    const auto refused = Controller::setEnabled(environment(), true);
    ASSERT_FALSE(refused);
    EXPECT_FALSE(refused.error().message.empty());
    EXPECT_TRUE(agentNames().empty());

    writeFile(agent(), "what stood there before");
    ASSERT_FALSE(Controller::setEnabled(environment(), true));
    EXPECT_EQ(readFile(agent()), "what stood there before");
}

TEST_F(LaunchAtLogin, AReadOnlyFolderIsAnErrorWithTheSystemsTextAndNothingChanges) {
    std::filesystem::create_directories(agents());
    std::filesystem::permissions(home_.path(), std::filesystem::perms::all);
    std::filesystem::permissions(agents(), std::filesystem::perms(0555));
    EXPECT_EQ(errorForOrdinaryUser(true), agent().native() + ": Permission denied");
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

// It could not be put back if the autostart entry failed.
TEST_F(LaunchAtLogin, AnAgentThatCannotBeReadIsNotReplaced) {
    std::filesystem::create_directories(agents());
    writeFile(agent(), "unreadable");
    std::filesystem::permissions(agent(), std::filesystem::perms::none);
    for (const auto& folder : {home_.path(), agents()})
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    EXPECT_EQ(errorForOrdinaryUser(true), agent().native() + ": Permission denied");
    std::filesystem::permissions(agent(), std::filesystem::perms(0644));
    EXPECT_EQ(readFile(agent()), "unreadable");
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

TEST_F(LaunchAtLogin, AnAgentOfMoreThanAMebibyteIsNotReplaced) {
    std::filesystem::create_directories(agents());
    const std::string largest(1 << 20, 'x');
    writeFile(agent(), largest + 'x');
    const auto refused = Controller::setEnabled(environment(), true);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, agent().native() + ": too large");
    EXPECT_TRUE(readFile(agent()) == largest + 'x') << "too long to be printed";
    EXPECT_FALSE(std::filesystem::exists(autostart()));

    writeFile(agent(), largest);
    enableOrFail();
    EXPECT_LT(readFile(agent()).size(), largest.size());
}

TEST_F(LaunchAtLogin, AnAgentThatCannotBeRemovedKeepsItsAutostartEntry) {
    enableOrFail();
    addToEntry("X-GNOME-Autostart-Delay=20");
    const std::string entry = readFile(autostart());
    std::filesystem::permissions(agents(), std::filesystem::perms(0555));
    for (const auto& folder : {home_.path(), home_ / ".config", home_ / ".config/autostart"})
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    EXPECT_EQ(errorForOrdinaryUser(false), agent().native() + ": Permission denied");
    EXPECT_TRUE(Controller::isEnabled(environment()));
    EXPECT_EQ(readFile(autostart()), entry);
}

TEST_F(LaunchAtLogin, AnAgentThatCannotBeRemovedGetsNoAutostartEntryThatItDidNotHave) {
    std::filesystem::create_directories(agents());
    writeFile(agent(), "without an entry");
    std::filesystem::create_directories(autostart().parent_path());
    std::filesystem::permissions(agents(), std::filesystem::perms(0555));
    for (const auto& folder : {home_.path(), home_ / ".config", home_ / ".config/autostart"})
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    EXPECT_EQ(errorForOrdinaryUser(false), agent().native() + ": Permission denied");
    EXPECT_TRUE(std::filesystem::exists(agent()));
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

TEST_F(LaunchAtLogin, AFullDiskIsAnErrorThatLeavesTheOldFileAndNothingBeside) {
    std::filesystem::create_directories(agents());
    const auto answer = inChildProcess([&]() -> std::string {
        if (unshare(CLONE_NEWNS) != 0 || mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
            mount("none", agents().c_str(), "tmpfs", 0, "size=16k") != 0)
            return "cannot mount";
        writeFile(agent(), "old");
        std::ofstream(agents() / "filler") << std::string(1 << 20, 'x'); // fails where the space ends
        const auto refused = Controller::setEnabled(environment(), true);
        const bool draftLeft = std::filesystem::exists(agents() / ".app.ombrel.Ombrel.plist.new");
        return (refused ? "enabled" : refused.error().message) + (draftLeft ? ", draft left" : "") + ", " +
               readFile(agent());
    });
    if (answer == "cannot mount")
        GTEST_SKIP() << "this user may not mount a small disk";
    EXPECT_EQ(answer, agent().native() + ": No space left on device, old");
}

TEST_F(LaunchAtLogin, TheCurrentEnvironmentIsTheUsersHomeAndTheRunningApplication) {
    const auto current = Controller::currentEnvironment();
    ASSERT_TRUE(current) << current.error().message;
    EXPECT_EQ(current->home, home_.path());
    EXPECT_EQ(current->runningApplication, std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_EQ(current->installedApplications,
              (std::vector<std::filesystem::path>{"/usr/local/bin/ombrel", "/usr/bin/ombrel"}));
}

TEST_F(LaunchAtLogin, ThereIsNoCurrentEnvironmentForAUserWithoutAHome) {
    EXPECT_EQ(inChildProcess([]() -> std::string {
                  if (unsetenv("HOME") != 0 || !becomeUser(unknownUser()))
                      return "no other user";
                  const auto current = Controller::currentEnvironment();
                  return current ? current->home.native() : current.error().message;
              }),
              "home folder: No such file or directory");
}

TEST_F(LaunchAtLogin, ThereIsNoCurrentEnvironmentWhereTheRunningApplicationIsUnknown) {
    const auto answer = inChildProcess([]() -> std::string {
#ifdef SYS_readlink
        if (!refuseCall(SYS_readlink, EACCES))
            return "not refused";
#endif
        if (!refuseCall(SYS_readlinkat, EACCES))
            return "not refused";
        const auto current = Controller::currentEnvironment();
        return current ? current->runningApplication.native() : current.error().message;
    });
    EXPECT_EQ(answer, "/proc/self/exe: Permission denied");
}

} // namespace
} // namespace vantry
