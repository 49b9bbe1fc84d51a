#include "app/LaunchAtLoginController.h"
#include "tests/app/LaunchAtLoginFixture.h"

#include <gmock/gmock.h>
#include <iterator>
#include <regex>
#include <sys/stat.h>

namespace vantry {
namespace {

namespace Controller = LaunchAtLoginController;

using LaunchAtLogin = LaunchAtLoginFixture;

TEST_F(LaunchAtLogin, TheAgentFileIsNamedAfterTheBundleIdentifier) {
    EXPECT_EQ(Controller::launchAgentURL(environment()), agent());
}

TEST_F(LaunchAtLogin, EnablingCreatesTheFolderAndWritesExactlyFiveKeys) {
    EXPECT_FALSE(Controller::isEnabled(environment()));
    enableOrFail();
    EXPECT_TRUE(Controller::isEnabled(environment()));
    const std::string text = std::regex_replace(readFile(agent()), std::regex("\\s+<"), "<");
    for (const char* entry : {"<key>Label</key><string>app.ombrel.Ombrel</string>",
                              "<key>ProgramArguments</key><array><string>/usr/bin/open</string><string>-g</string>"
                              "<string>/opt/ombrel/ombrel</string></array>",
                              "<key>RunAtLoad</key><true/>", "<key>LimitLoadToSessionType</key><string>Aqua</string>",
                              "<key>ProcessType</key><string>Interactive</string>"})
        EXPECT_THAT(text, testing::HasSubstr(entry));
    const std::regex key("<key>");
    EXPECT_EQ(std::distance(std::sregex_iterator(text.begin(), text.end(), key), std::sregex_iterator()), 5);
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

TEST_F(LaunchAtLogin, AnUnchangedFileIsNotRewrittenButMadeReadable) {
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

TEST_F(LaunchAtLogin, DisablingWithoutAFileSucceedsAndCreatesNothing) {
    ASSERT_TRUE(Controller::setEnabled(environment(), false));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
    EXPECT_FALSE(std::filesystem::exists(home_ / ".config"));
}

TEST_F(LaunchAtLogin, RefreshingWithoutAnAgentCreatesNone) {
    ASSERT_TRUE(Controller::refreshIfEnabled(environment()));
    EXPECT_FALSE(std::filesystem::exists(home_ / "Library"));
}

TEST_F(LaunchAtLogin, APathThatTheFilesCannotHoldIsAnErrorAndChangesNothing) {
    enableOrFail();
    const std::string before = readFile(agent());
    EXPECT_FALSE(Controller::setEnabled(environment("/\xff/ombrel"), true));
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

TEST_F(LaunchAtLogin, TheTargetOfALinkIsNeverRemoved) {
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
