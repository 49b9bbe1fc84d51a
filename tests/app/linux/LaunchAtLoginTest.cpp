#include "tests/app/LaunchAtLoginFixture.h"
#include "tests/support/PrivateMounts.h"
#include "tests/support/RefusedCall.h"
#include "tests/support/TestSystem.h"

#include <cerrno>
#include <cstdlib>
#include <sys/mount.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <vector>

namespace vantry {
namespace {

namespace Controller = LaunchAtLoginController;

using LaunchAtLoginOnLinux = LaunchAtLoginFixture;

TEST_F(LaunchAtLoginOnLinux, DisablingRemovesTheAgentAndTheAutostartEntry) {
    enableOrFail();
    ASSERT_TRUE(std::filesystem::exists(autostart()));
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_TRUE(agentNames().empty());
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

TEST_F(LaunchAtLoginOnLinux, TheAgentIsWrittenAsMacOSWouldWithItsKeysInThisOrder) {
    enableOrFail();
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

TEST_F(LaunchAtLoginOnLinux, APathThatOnlyTheAutostartEntryCannotHoldIsAnErrorAndChangesNothing) {
    enableOrFail();
    const std::string before = readFile(agent());
    for (const char* path : {"/line\nbreak/ombrel", "/tab\t/ombrel", "/delete\x7f/ombrel"}) {
        const auto refused = Controller::setEnabled(environment(path), true);
        ASSERT_FALSE(refused) << path;
        EXPECT_EQ(refused.error().message, "The path of the application holds characters that a desktop entry cannot.");
        EXPECT_EQ(readFile(agent()), before);
    }
}

TEST_F(LaunchAtLoginOnLinux, AnInstalledCopyIsPreferredToARunningOneThatIsNotInstalled) {
    const auto usr = install("usr/ombrel");
    enableOrFail();
    expectBothStart(usr);
    const auto local = install("local/ombrel");
    enableOrFail();
    expectBothStart(local);
    ASSERT_TRUE(Controller::setEnabled(environment(usr), true));
    expectBothStart(usr);
}

TEST_F(LaunchAtLoginOnLinux, RefreshingStartsACopyThatWasInstalledSince) {
    enableOrFail();
    expectBothStart("/opt/ombrel/ombrel");
    const auto local = install("local/ombrel");
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    expectBothStart(local);
}

TEST_F(LaunchAtLoginOnLinux, AFileThatIsNotExecutableIsNoInstalledCopy) {
    std::filesystem::create_directories(home_ / "local/ombrel");
    std::filesystem::create_directories(home_ / "usr");
    writeFile(home_ / "usr/ombrel", "not executable");
    enableOrFail();
    expectBothStart("/opt/ombrel/ombrel");
}

TEST_F(LaunchAtLoginOnLinux, ACopyThatIsNotInstalledKeepsTheEntryOfAnInstalledOne) {
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

TEST_F(LaunchAtLoginOnLinux, RefreshingKeepsTheUsersChangesToACorrectEntry) {
    enableOrFail();
    addToEntry("X-GNOME-Autostart-Delay=20");
    const auto entry = readFile(autostart());
    writeFile(agent(), "outdated");
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    EXPECT_EQ(readFile(autostart()), entry);
    expectBothStart("/opt/ombrel/ombrel");
}

TEST_F(LaunchAtLoginOnLinux, AnEntryThatTheUserDisabledOrRemovedIsOffAndStaysUnchanged) {
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

TEST_F(LaunchAtLoginOnLinux, RefreshingWritesAnExistingAgentForTheCurrentLocation) {
    enableOrFail();
    ASSERT_TRUE(Controller::refreshIfEnabled(environment("/new/place/ombrel")));
    EXPECT_NE(readFile(agent()).find("<string>/new/place/ombrel</string>"), std::string::npos);
    EXPECT_NE(readFile(autostart()).find("Exec=\"/new/place/ombrel\"\n"), std::string::npos);
}

TEST_F(LaunchAtLoginOnLinux, AnUnusualApplicationPathIsWrittenUnchanged) {
    ASSERT_TRUE(Controller::setEnabled(environment("/R&D <new> \"é\" 100%/ombrel"), true));
    EXPECT_NE(readFile(agent()).find("/R&amp;D &lt;new&gt; \"é\" 100%/ombrel"), std::string::npos);
    EXPECT_NE(readFile(autostart()).find(R"(Exec="/R&D <new> \\"é\\" 100%%/ombrel")"), std::string::npos);
}

TEST_F(LaunchAtLoginOnLinux, OnlyTheTwoFilesCount) {
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

TEST_F(LaunchAtLoginOnLinux, AFolderInThePlaceOfTheFileIsNoAgentAndStays) {
    std::filesystem::create_directories(agent() / "inside");
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_FALSE(Controller::setEnabled(environment(), true));
    EXPECT_FALSE(std::filesystem::exists(autostart()));
    EXPECT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_TRUE(std::filesystem::exists(agent() / "inside"));
}

TEST_F(LaunchAtLoginOnLinux, WhenTheAutostartEntryCannotBeWrittenTheAgentIsRestoredOrRemoved) {
    writeFile(home_ / ".config", "a file in place of the folder");
    const auto refused = Controller::setEnabled(environment(), true);
    ASSERT_FALSE(refused);
    EXPECT_EQ(refused.error().message, autostart().parent_path().native() + ": Not a directory");
    EXPECT_TRUE(agentNames().empty());

    writeFile(agent(), "what stood there before");
    ASSERT_FALSE(Controller::setEnabled(environment(), true));
    EXPECT_EQ(readFile(agent()), "what stood there before");
}

TEST_F(LaunchAtLoginOnLinux, AFolderThatCannotBeMadeIsNamedInTheError) {
    std::filesystem::permissions(home_.path(), std::filesystem::perms(0555));
    EXPECT_EQ(errorForOrdinaryUser(true), agents().native() + ": Permission denied");
}

TEST_F(LaunchAtLoginOnLinux, AReadOnlyFolderIsAnErrorWithTheSystemsTextAndNothingChanges) {
    std::filesystem::create_directories(agents());
    std::filesystem::permissions(home_.path(), std::filesystem::perms::all);
    std::filesystem::permissions(agents(), std::filesystem::perms(0555));
    EXPECT_EQ(errorForOrdinaryUser(true), agent().native() + ": Permission denied");
    EXPECT_FALSE(Controller::isEnabled(environment()));
    EXPECT_FALSE(std::filesystem::exists(autostart()));
}

// It could not be restored if writing the autostart entry failed.
TEST_F(LaunchAtLoginOnLinux, AnAgentThatCannotBeReadIsNotReplaced) {
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

TEST_F(LaunchAtLoginOnLinux, AnAgentOfMoreThanAMebibyteIsNotReplaced) {
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

TEST_F(LaunchAtLoginOnLinux, AnAgentThatCannotBeRemovedKeepsItsAutostartEntry) {
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

TEST_F(LaunchAtLoginOnLinux, AnAutostartEntryThatCannotBeRemovedKeepsItsAgent) {
    enableOrFail();
    std::filesystem::permissions(autostart().parent_path(), std::filesystem::perms(0555));
    for (const auto& folder : {home_.path(), home_ / ".config", home_ / "Library", agents()})
        std::filesystem::permissions(folder, std::filesystem::perms::all);
    EXPECT_EQ(errorForOrdinaryUser(false), autostart().native() + ": Permission denied");
    EXPECT_TRUE(Controller::isEnabled(environment()));
}

TEST_F(LaunchAtLoginOnLinux, WithoutAnAutostartFolderTheAgentCountsAlone) {
    std::filesystem::permissions(home_.path(), std::filesystem::perms::all);
    const auto said = inChildProcess([&]() -> std::string {
        if (!becomeUser(unknownUser()) || unsetenv("HOME") != 0 || unsetenv("XDG_CONFIG_HOME") != 0)
            return "no other user";
        std::string steps;
        const auto report = [&](bool changed) {
            steps += changed ? "" : "refused, ";
            steps += Controller::isEnabled(environment()) ? "enabled; " : "disabled; ";
        };
        report(true);
        report(Controller::setEnabled(environment(), true).has_value());
        report(Controller::refreshIfEnabled(environment()).has_value());
        report(Controller::setEnabled(environment(), false).has_value());
        const auto refused = Controller::setEnabled(environment("/\xff/ombrel"), true);
        report(refused.has_value());
        return refused ? steps : steps + refused.error().message;
    });
    if (said == "no other user")
        GTEST_SKIP() << "has to become another user";
    EXPECT_EQ(said, "disabled; enabled; enabled; disabled; "
                    "refused, disabled; A property list cannot hold this text.");
}

TEST_F(LaunchAtLoginOnLinux, AnAgentThatCannotBeRemovedGetsNoNewAutostartEntry) {
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

TEST_F(LaunchAtLoginOnLinux, AFullDiskIsAnErrorThatKeepsTheOldFileAndLeavesNoOther) {
    std::filesystem::create_directories(agents());
    const auto answer = inChildProcess([&]() -> std::string {
        if (!keepMountsPrivate() || mount("none", agents().c_str(), "tmpfs", 0, "size=16k") != 0)
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

TEST_F(LaunchAtLoginOnLinux, TheCurrentEnvironmentIsTheUsersHomeAndTheRunningApplication) {
    const auto current = Controller::currentEnvironment();
    ASSERT_TRUE(current) << current.error().message;
    EXPECT_EQ(current->home, home_.path());
    EXPECT_EQ(current->runningApplication, std::filesystem::read_symlink("/proc/self/exe"));
    EXPECT_EQ(current->installedApplications,
              (std::vector<std::filesystem::path>{"/usr/local/bin/ombrel", "/usr/bin/ombrel"}));
}

TEST_F(LaunchAtLoginOnLinux, ThereIsNoCurrentEnvironmentForAUserWithoutAHome) {
    EXPECT_EQ(inChildProcess([]() -> std::string {
                  if (unsetenv("HOME") != 0 || !becomeUser(unknownUser()))
                      return "no other user";
                  const auto current = Controller::currentEnvironment();
                  return current ? current->home.native() : current.error().message;
              }),
              "home folder: No such file or directory");
}

TEST_F(LaunchAtLoginOnLinux, ThereIsNoCurrentEnvironmentWhereTheRunningApplicationIsUnknown) {
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
