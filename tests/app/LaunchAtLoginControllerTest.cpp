#include "app/LaunchAtLoginController.h"
#include "tests/app/LaunchAtLoginFixture.h"

#include <sys/stat.h>

namespace vantry {
namespace {

namespace Controller = LaunchAtLoginController;

using LaunchAtLogin = LaunchAtLoginFixture;

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

TEST_F(LaunchAtLogin, DisablingWithNoFilePresentSucceedsAndMakesNothing) {
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
    EXPECT_FALSE(std::filesystem::exists(home_ / ".config"));
}

TEST_F(LaunchAtLogin, RefreshingWithoutAnAgentMakesNone) {
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
}

TEST_F(LaunchAtLogin, APathThatNeitherFileCanHoldIsAnErrorAndChangesNothing) {
    enableOrFail();
    const std::string before = readFile(agent());
    for (const char* path : {"/\xff/ombrel", "/line\nbreak/ombrel"})
        EXPECT_FALSE(Controller::setEnabled(environment(path), true)) << path;
    EXPECT_EQ(readFile(agent()), before);
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

} // namespace
} // namespace vantry
