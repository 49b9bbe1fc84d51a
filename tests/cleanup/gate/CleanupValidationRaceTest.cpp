// Another thread exchanges the file, its folder or a folder above while the file is validated. An answer is wrong when
// it allows the move but the pinned file is another one, or lies in another folder.

#include "platform/FoundItem.h"
#include "tests/cleanup/gate/CleanupValidationFixture.h"

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
#include <tuple>
#include <unistd.h>
#include <utility>

namespace vantry {

namespace {

namespace fs = std::filesystem;

bool exchange(const fs::path& one, const fs::path& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

/// Repeats one action in a thread of its own as long as it lives: in bursts without a pause, and with pauses of every
/// length that a validation may take.
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
public:
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

    /// A file with the same name, size and date.
    fs::path makeDecoy(const fs::path& path) const {
        fs::create_directories(path.parent_path());
        return makeOld(path);
    }

    [[nodiscard]] fs::path hardLinkIn(const fs::path& folder, const char* name) const {
        fs::create_directories(folder);
        fs::create_hard_link(file, folder / name);
        return folder / name;
    }
    [[nodiscard]] fs::path linkTo(const fs::path& target) const {
        fs::create_symlink(target, aside / "link");
        return aside / "link";
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
                const auto held = CleanupScanner::validatedFile(candidate, places, clock);
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

    fs::path aside = root / "aside";
    fs::path file = crashReports / "old.ips";
};

/// What comes and goes in place of the file, or of a folder that leads to it.
struct Exchange {
    const char* name;
    const char* place;
    std::function<fs::path(const CleanupValidationRace&)> other;
};

class CleanupValidationExchanges : public CleanupValidationRace, public testing::WithParamInterface<Exchange> {};

TEST_P(CleanupValidationExchanges, NeverLetsAnotherFilePass) {
    const fs::path place = root / "home" / GetParam().place;
    const fs::path other = GetParam().other(*this);
    expectNoWrongAnswer([=] { exchange(place, other); });
}

constexpr const char* theFile = "Library/Logs/DiagnosticReports/old.ips";
constexpr const char* itsFolder = "Library/Logs/DiagnosticReports";
const Exchange exchanges[] = {
    {"TheFileWithACopy", theFile, [](auto& test) { return test.makeDecoy(test.aside / "copy.ips"); }},
    {"TheFileWithALinkToACopy", theFile,
     [](auto& test) { return test.linkTo(test.makeDecoy(test.aside / "copy.ips")); }},
    // The link leads to the right file by another name, but the file is not one of the folder.
    {"TheFileWithALinkToItself", theFile,
     [](auto& test) { return test.linkTo(test.hardLinkIn(test.aside, "name.ips")); }},
    {"TheFileWithAPipe", theFile,
     [](auto& test) {
         EXPECT_EQ(mkfifo((test.aside / "pipe").c_str(), 0600), 0);
         return test.aside / "pipe";
     }},
    {"TheFolderWithOneThatHoldsACopy", itsFolder,
     [](auto& test) { return test.makeDecoy(test.aside / "folder/old.ips").parent_path(); }},
    {"TheFolderWithALinkToOneThatHoldsACopy", itsFolder,
     [](auto& test) { return test.linkTo(test.makeDecoy(test.aside / "folder/old.ips").parent_path()); }},
    {"TheFolderWithALinkToOneThatHoldsTheFileItself", itsFolder,
     [](auto& test) { return test.linkTo(test.hardLinkIn(test.aside / "folder", "old.ips").parent_path()); }},
    {"TheFolderWithALinkToItself", itsFolder, [](auto& test) { return test.linkTo(test.aside / "link"); }},
    {"AFolderAboveWithALinkToATreeThatHoldsTheFileItself", "Library",
     [](auto& test) {
         std::ignore = test.hardLinkIn(test.aside / "tree/Logs/DiagnosticReports", "old.ips");
         return test.linkTo(test.aside / "tree");
     }},
    {"TheHomeWithOneThatHoldsACopy", "",
     [](auto& test) {
         test.makeDecoy(test.aside / "home/Library/Logs/DiagnosticReports/old.ips");
         return test.aside / "home";
     }},
};
INSTANTIATE_TEST_SUITE_P(, CleanupValidationExchanges, testing::ValuesIn(exchanges),
                         [](const auto& exchange) { return exchange.param.name; });

TEST_F(CleanupValidationRace, NeverLetsACopyPassThatIsMadeInPlaceOfTheFile) {
    expectNoWrongAnswer([this] {
        fs::rename(file, aside / "file");
        makeOld(file);
        fs::remove(file);
        fs::rename(aside / "file", file);
    });
}

TEST_F(CleanupValidationRace, NeverLetsAnotherFilePassWhenFileAndFolderAreBothExchanged) {
    const fs::path copy = makeDecoy(aside / "copy.ips");
    const fs::path link = linkTo(makeDecoy(aside / "folder/old.ips").parent_path());
    expectNoWrongAnswer([=, this] {
        exchange(file, copy);
        exchange(crashReports, link);
        exchange(crashReports, link);
        exchange(file, copy);
    });
}

// The attack is real: it fools code that checks a path first and opens it afterwards.
TEST_F(CleanupValidationRace, CheckingThePathAndThenOpeningItIsFooled) {
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
