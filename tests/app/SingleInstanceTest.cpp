#include "app/SingleInstance.h"
#include "tests/support/TemporaryFolder.h"

#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <future>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

namespace vantry {

namespace {

using testing::HasSubstr;

constexpr const char* testName = "ombrel-test";

class TheOneInstance : public testing::Test {
protected:
    Result<std::unique_ptr<SingleInstance>> claim() { return SingleInstance::claim(folder.path(), testName); }
    Result<void> ask(InstanceRequest request) { return SingleInstance::ask(folder.path(), testName, request); }

    [[nodiscard]] std::filesystem::path socketFile() const {
        return folder.path() / (std::string(testName) + ".socket");
    }

    /// Binds a socket to the instance's address and leaves its file behind, like a killed process.
    void leaveSocketBehind() const {
        const UniqueFd socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
        const sockaddr_un address = addressOfSocket();
        ASSERT_EQ(bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    }

    void sendDatagram(const std::string& bytes) const {
        const UniqueFd socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
        const sockaddr_un address = addressOfSocket();
        ASSERT_EQ(sendto(socket.get(), bytes.data(), bytes.size(), MSG_DONTWAIT,
                         reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  static_cast<ssize_t>(bytes.size()));
    }

    TemporaryFolder folder;

private:
    [[nodiscard]] sockaddr_un addressOfSocket() const {
        sockaddr_un address = {};
        address.sun_family = AF_UNIX;
        std::strncpy(address.sun_path, socketFile().c_str(), sizeof address.sun_path - 1);
        return address;
    }
};

TEST_F(TheOneInstance, IsTheFirstToClaim) {
    const auto first = claim();
    ASSERT_TRUE(first && *first);
    const auto second = claim();
    ASSERT_TRUE(second) << second.error().message;
    EXPECT_EQ(*second, nullptr);
}

TEST_F(TheOneInstance, NeitherWaitsOnItsSocketNorGivesItToChildren) {
    const auto instance = claim();
    ASSERT_TRUE(instance && *instance);
    EXPECT_EQ(fcntl((*instance)->descriptor(), F_GETFL) & O_NONBLOCK, O_NONBLOCK);
    EXPECT_EQ(fcntl((*instance)->descriptor(), F_GETFD) & FD_CLOEXEC, FD_CLOEXEC);
}

TEST_F(TheOneInstance, CanBeClaimedAgainAfterTheFirstEnded) {
    for (int i = 0; i < 3; ++i) {
        const auto instance = claim();
        EXPECT_TRUE(instance && *instance);
    }
    EXPECT_FALSE(std::filesystem::exists(socketFile()));
}

TEST_F(TheOneInstance, IsOnePerName) {
    const auto first = claim();
    const auto other = SingleInstance::claim(folder.path(), "ombrel-other");
    ASSERT_TRUE(first && *first);
    EXPECT_TRUE(other && *other);
}

TEST_F(TheOneInstance, ReceivesRequestsInOrder) {
    const auto instance = claim();
    ASSERT_TRUE(instance && *instance);
    EXPECT_EQ((*instance)->receive(), std::nullopt);
    const std::vector<InstanceRequest> requests{InstanceRequest::showPopover, InstanceRequest::showCleanup,
                                                InstanceRequest::showCleanup, InstanceRequest::showPopover};
    for (const auto request : requests)
        ASSERT_TRUE(ask(request));
    for (const auto request : requests)
        EXPECT_EQ((*instance)->receive(), request);
    EXPECT_EQ((*instance)->receive(), std::nullopt);
}

TEST_F(TheOneInstance, StillReceivesRequestsAfterAnotherStartTriedToClaim) {
    const auto instance = claim();
    ASSERT_TRUE(claim());
    ASSERT_TRUE(ask(InstanceRequest::showCleanup));
    EXPECT_EQ((*instance)->receive(), InstanceRequest::showCleanup);
}

TEST_F(TheOneInstance, SkipsUnknownMessages) {
    const auto instance = claim();
    ASSERT_TRUE(instance && *instance);
    const std::vector<std::string> garbage{"",
                                           "popove",
                                           "popover ",
                                           "Popover",
                                           "popovercleanup",
                                           std::string("popover\0", 8),
                                           "cleanup\n",
                                           "\xff\xfe",
                                           std::string(64, 'x'),
                                           "cleanup" + std::string(1024, ' ')};
    for (const auto& bytes : garbage) {
        SCOPED_TRACE(testing::PrintToString(bytes));
        sendDatagram(bytes);
        EXPECT_EQ((*instance)->receive(), std::nullopt) << "and does not wait for better";
        sendDatagram(bytes);
        sendDatagram("cleanup");
        EXPECT_EQ((*instance)->receive(), InstanceRequest::showCleanup);
        EXPECT_EQ((*instance)->receive(), std::nullopt);
    }
}

TEST_F(TheOneInstance, ReplacesASocketThatWasLeftBehind) {
    leaveSocketBehind();
    ASSERT_TRUE(std::filesystem::exists(socketFile()));
    const auto instance = claim();
    ASSERT_TRUE(instance && *instance) << instance.error().message;
    ASSERT_TRUE(ask(InstanceRequest::showPopover));
    EXPECT_EQ((*instance)->receive(), InstanceRequest::showPopover);
}

TEST_F(TheOneInstance, KeepsItsFilesFromOthers) {
    const mode_t before = umask(0);
    const auto instance = claim();
    umask(before);
    ASSERT_TRUE(instance && *instance);
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        EXPECT_EQ(entry.status().permissions(),
                  std::filesystem::perms::owner_read | std::filesystem::perms::owner_write)
            << entry.path();
}

TEST_F(TheOneInstance, DoesNotFollowALinkInThePlaceOfItsLock) {
    const auto target = folder.path() / "somebody's file";
    writeFile(target, "untouched");
    std::filesystem::create_symlink(target, folder.path() / (std::string(testName) + ".lock"));
    EXPECT_FALSE(claim());
    EXPECT_EQ(readFile(target), "untouched");
}

TEST_F(TheOneInstance, IsAnErrorWhenItsFilesCannotBeCreated) {
    struct Case {
        std::string what;
        std::filesystem::path folder;
        std::string testName;
        ErrorKind kind;
    };
    const auto file = folder.path() / "file";
    writeFile(file, "no folder");
    const std::vector<Case> cases{
        {"the folder is missing", folder.path() / "missing", testName, ErrorKind::notFound},
        {"the folder is a file", file, testName, ErrorKind::notFound},
        {"too long for a socket", folder.path(), std::string(110, 'n'), ErrorKind::invalid},
        {"too long for a file", folder.path(), std::string(300, 'n'), ErrorKind::invalid},
    };
    for (const auto& [what, where, called, kind] : cases) {
        SCOPED_TRACE(what);
        const auto instance = SingleInstance::claim(where, called);
        ASSERT_FALSE(instance);
        EXPECT_EQ(instance.error().kind, kind);
        EXPECT_THAT(instance.error().message, HasSubstr(where.native()));
    }
}

TEST_F(TheOneInstance, ReleasesItsLockWhenClaimingFails) {
    std::filesystem::create_directory(socketFile());
    EXPECT_FALSE(claim()) << "a folder in the socket's place";
    std::filesystem::remove(socketFile());
    const auto instance = claim();
    EXPECT_TRUE(instance && *instance);
}

TEST_F(TheOneInstance, AskingFailsForAnImpossibleAddress) {
    const auto file = folder.path() / "file";
    writeFile(file, "no folder");
    const auto start = std::chrono::steady_clock::now();
    const auto tooLong = SingleInstance::ask(folder.path(), std::string(110, 'n'), InstanceRequest::showPopover);
    const auto inAFile = SingleInstance::ask(file, testName, InstanceRequest::showPopover);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(2)) << "nothing to wait for";
    ASSERT_FALSE(tooLong);
    EXPECT_EQ(tooLong.error().kind, ErrorKind::invalid);
    ASSERT_FALSE(inAFile);
    EXPECT_EQ(inAFile.error().kind, ErrorKind::notFound);
}

// An instance may still be starting, so asking takes two seconds; both requests wait at the same time.
TEST_F(TheOneInstance, AskingNobodyFailsAfterTwoSeconds) {
    leaveSocketBehind();
    const auto start = std::chrono::steady_clock::now();
    const auto timed = [this, start](const char* whom) {
        const auto result = SingleInstance::ask(folder.path(), whom, InstanceRequest::showPopover);
        return std::pair(result, std::chrono::steady_clock::now() - start);
    };
    auto toNoSocket = std::async(std::launch::async, timed, "ombrel-missing");
    auto toDeadSocket = std::async(std::launch::async, timed, testName);
    for (auto* answer : {&toNoSocket, &toDeadSocket}) {
        const auto [result, elapsed] = answer->get();
        ASSERT_FALSE(result);
        EXPECT_THAT(result.error().message, HasSubstr(".socket: "));
        EXPECT_GE(elapsed, std::chrono::seconds(2));
        EXPECT_LT(elapsed, std::chrono::seconds(20)) << "generous, for a machine under load";
    }
}

TEST(InstanceName, DiffersBetweenHomesAndSessions) {
    const std::vector<std::string> names{
        instanceName("/home/ada", ":0"), instanceName("/home/ada", ":1"), instanceName("/home/ada", ""),
        instanceName("/home/bob", ":0"), instanceName("/home", "ada:0"),  instanceName("/home/ada:", "0"),
        instanceName("/home/ada/x", ""), instanceName("/home/ad", "a:0"), instanceName("", ""),
    };
    for (std::size_t i = 0; i < names.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_NE(names[i], names[j]) << i << " and " << j;
}

TEST(InstanceName, IsTheSameInEveryStartAndEveryVersion) {
    EXPECT_EQ(instanceName("/home/ada", ":0"), "ombrel-864afe6dd06c986f");
    EXPECT_EQ(instanceName("/home/ada", ":0"), instanceName("/home/bob/../ada", ":0"));
    EXPECT_EQ(instanceName("/home/ada", ":0"), instanceName("/home//./ada", ":0"));
    EXPECT_EQ(instanceName("/home/ada", ":0"), instanceName("/home/ada/", ":0"));
}

TEST(InstanceName, IsAShortFileName) {
    for (const std::string& home : {std::string("/home/ada"), "/" + std::string(4000, 'h'), std::string("/h\xff/\n")})
        EXPECT_THAT(instanceName(home, ":0"), testing::MatchesRegex("ombrel-[0-9a-f]{16}"));
}

} // namespace

} // namespace vantry
