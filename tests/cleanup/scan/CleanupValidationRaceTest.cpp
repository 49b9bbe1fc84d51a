// Somebody exchanges the file, its folder or a folder above while it is validated. An answer is wrong when it says that
// the item may move and what is then held is another one, or lies in another folder.

#include "platform/FoundItem.h"
#include "tests/cleanup/scan/CleanupValidationFixture.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <thread>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

namespace fs = std::filesystem;

bool exchange(const fs::path& one, const fs::path& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

/// Does one thing over and over in a thread of its own, from before it is constructed to before it is destroyed: in
/// bursts without a pause, and with pauses of every length that a validation may take.
class Attacker {
public:
    explicit Attacker(std::function<void()> attack)
        : thread_([this, attack = std::move(attack)] {
              constexpr std::uint64_t kinds = 16;
              while (!isOver_) {
                  attack();
                  const std::uint64_t kind = ++attacks_ / 8 % kinds;
                  for (std::uint64_t left = kind == 0 ? 0 : std::uint64_t{1} << kind; left > 0 && !isOver_;)
                      --left;
              }
          }) {
        while (attacks_ == 0)
            std::this_thread::yield();
    }
    Attacker(const Attacker&) = delete;
    Attacker& operator=(const Attacker&) = delete;
    ~Attacker() {
        isOver_ = true;
        thread_.join();
    }

    [[nodiscard]] std::uint64_t attacks() const { return attacks_; }

private:
    std::atomic<bool> isOver_ = false;
    std::atomic<std::uint64_t> attacks_ = 0;
    std::thread thread_;
};

std::uint64_t rounds() {
    constexpr std::uint64_t usual = 2000;
    const char* text = std::getenv("OMBREL_RACE_ROUNDS");
    std::uint64_t number = 0;
    return text && std::from_chars(text, text + std::strlen(text), number).ec == std::errc() ? number : usual;
}

struct Identity {
    dev_t device = 0;
    ino_t file = 0;

    bool operator==(const Identity&) const = default;
};

Identity identityOf(const fs::path& path) {
    struct stat facts = {};
    EXPECT_EQ(lstat(path.c_str(), &facts), 0) << path;
    return {facts.st_dev, facts.st_ino};
}

Identity identityOf(int fd) {
    struct stat facts = {};
    EXPECT_EQ(fstat(fd, &facts), 0);
    return {facts.st_dev, facts.st_ino};
}

} // namespace

class CleanupValidationRace : public CleanupValidationFixture {
protected:
    CleanupValidationRace() {
        fs::create_directory(aside);
        makeOld(file);
    }

    void SetUp() override {
        writeFile(root / "one", "");
        writeFile(root / "other", "");
        if (!exchange(root / "one", root / "other"))
            GTEST_SKIP() << "a file system that exchanges no names";
    }

    /// Something that by its name, size and date could be the file.
    fs::path makeDecoy(const fs::path& path) const {
        fs::create_directories(path.parent_path());
        return makeOld(path);
    }

    /// Validates again and again during `attack`, until there were enough rounds and both answers.
    void expectNoWrongAnswer(const std::function<void()>& attack) {
        const CleanupCandidate candidate = scanned(file, CleanupCategory::crashReport);
        const Identity expectedFile = identityOf(file);
        const Identity expectedFolder = identityOf(crashReports);
        const std::uint64_t enough = rounds();
        const std::uint64_t atMost = 1000 * std::max<std::uint64_t>(enough, 1000);
        std::uint64_t done = 0;
        std::uint64_t safe = 0;
        std::uint64_t wrong = 0;
        std::map<std::string, std::uint64_t> refusals;
        ASSERT_EQ(failure(candidate), std::nullopt);
        std::uint64_t attacks = 0;
        {
            const Attacker attacker(attack);
            for (; done < enough || ((safe == 0 || refusals.empty()) && done < atMost); ++done) {
                const auto held = CleanupScanner::validatedFile(candidate, environment);
                if (!held) {
                    ++refusals[held.error()];
                    continue;
                }
                ++safe;
                if (identityOf(held->file.descriptor()) != expectedFile ||
                    identityOf(held->file.folder().descriptor()) != expectedFolder)
                    ++wrong;
            }
            attacks = attacker.attacks();
        }
        EXPECT_EQ(wrong, 0U);
        EXPECT_GT(safe, 0U) << "nothing was validated";
        EXPECT_FALSE(refusals.empty()) << "nothing was attacked";
        RecordProperty("wrong", static_cast<int>(wrong));
        if (!std::getenv("OMBREL_RACE_ROUNDS"))
            return;
        std::printf("%llu rounds, %llu attacks: %llu safe, %llu of them wrong\n", static_cast<unsigned long long>(done),
                    static_cast<unsigned long long>(attacks), static_cast<unsigned long long>(safe),
                    static_cast<unsigned long long>(wrong));
        for (const auto& [phrase, count] : refusals)
            std::printf("    %llu %s\n", static_cast<unsigned long long>(count), phrase.c_str());
    }

    /// `other` comes and goes in place of `path`.
    void expectNoWrongAnswerWhile(const fs::path& path, const fs::path& other) {
        expectNoWrongAnswer([=] { exchange(path, other); });
    }

    fs::path aside = root / "aside";
    fs::path file = crashReports / "old.ips";
};

TEST_F(CleanupValidationRace, WhileTheFileIsExchangedWithACopy) {
    expectNoWrongAnswerWhile(file, makeDecoy(aside / "copy.ips"));
}

TEST_F(CleanupValidationRace, WhileTheFileIsExchangedWithALinkToACopy) {
    fs::create_symlink(makeDecoy(aside / "copy.ips"), aside / "link");
    expectNoWrongAnswerWhile(file, aside / "link");
}

// The link leads to the right file, by another name; and yet is no file of the folder.
TEST_F(CleanupValidationRace, WhileTheFileIsExchangedWithALinkToItself) {
    fs::create_hard_link(file, aside / "name.ips");
    fs::create_symlink(aside / "name.ips", aside / "link");
    expectNoWrongAnswerWhile(file, aside / "link");
}

TEST_F(CleanupValidationRace, WhileTheFileIsExchangedWithAPipe) {
    ASSERT_EQ(mkfifo((aside / "pipe").c_str(), 0600), 0);
    expectNoWrongAnswerWhile(file, aside / "pipe");
}

TEST_F(CleanupValidationRace, WhileTheFileIsTakenAwayAndCopiesAreMadeAnewInItsPlace) {
    expectNoWrongAnswer([this] {
        fs::rename(file, aside / "file");
        makeOld(file);
        fs::remove(file);
        fs::rename(aside / "file", file);
    });
}

TEST_F(CleanupValidationRace, WhileTheFolderIsExchangedWithOneThatHoldsACopy) {
    makeDecoy(aside / "folder/old.ips");
    expectNoWrongAnswerWhile(crashReports, aside / "folder");
}

TEST_F(CleanupValidationRace, WhileTheFolderIsExchangedWithALinkToOneThatHoldsACopy) {
    makeDecoy(aside / "folder/old.ips");
    fs::create_directory_symlink(aside / "folder", aside / "link");
    expectNoWrongAnswerWhile(crashReports, aside / "link");
}

TEST_F(CleanupValidationRace, WhileTheFolderIsExchangedWithALinkToOneThatHoldsTheFileItself) {
    fs::create_directory(aside / "folder");
    fs::create_hard_link(file, aside / "folder/old.ips");
    fs::create_directory_symlink(aside / "folder", aside / "link");
    expectNoWrongAnswerWhile(crashReports, aside / "link");
}

TEST_F(CleanupValidationRace, WhileTheFolderIsExchangedWithALinkToItself) {
    fs::create_directory_symlink(aside / "link", aside / "link"); // where the folder then is
    expectNoWrongAnswerWhile(crashReports, aside / "link");
}

TEST_F(CleanupValidationRace, WhileAFolderAboveIsExchangedWithALinkToATreeThatHoldsTheFileItself) {
    fs::create_directories(aside / "tree/Logs/DiagnosticReports");
    fs::create_hard_link(file, aside / "tree/Logs/DiagnosticReports/old.ips");
    fs::create_directory_symlink(aside / "tree", aside / "link");
    expectNoWrongAnswerWhile(home / "Library", aside / "link");
}

TEST_F(CleanupValidationRace, WhileTheHomeIsExchangedWithOneThatHoldsACopy) {
    makeDecoy(aside / "home/Library/Logs/DiagnosticReports/old.ips");
    expectNoWrongAnswerWhile(home, aside / "home");
}

TEST_F(CleanupValidationRace, WhileFileAndFolderAreBothExchanged) {
    makeDecoy(aside / "copy.ips");
    makeDecoy(aside / "folder/old.ips");
    fs::create_directory_symlink(aside / "folder", aside / "link");
    expectNoWrongAnswer([this] {
        exchange(file, aside / "copy.ips");
        exchange(crashReports, aside / "link");
        exchange(crashReports, aside / "link");
        exchange(file, aside / "copy.ips");
    });
}

// The attack is real: it does fool who checks a path and opens it then.
TEST_F(CleanupValidationRace, WhoChecksThePathAndOpensItThenIsFooled) {
    const CleanupCandidate candidate = scanned(file, CleanupCategory::crashReport);
    const Identity expected = identityOf(file);
    makeDecoy(aside / "copy.ips");
    constexpr std::uint64_t patience = 5'000'000;
    bool isFooled = false;
    const Attacker attacker([this] { exchange(file, aside / "copy.ips"); });
    for (std::uint64_t round = 0; round < patience && !isFooled; ++round) {
        if (readFileFingerprint(file).resourceIdentifier != candidate.scannedResourceIdentifier)
            continue;
        isFooled = identityOf(file) != expected;
    }
    EXPECT_TRUE(isFooled);
}

} // namespace vantry
