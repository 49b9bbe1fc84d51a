// An attacker keeps exchanging or writing to the file, or exchanging its folder, a parent folder, the Trash or a folder
// of it, while the file is moved. After each round each file must be where the attacker put it, or in the Trash with a
// complete info file. OMBREL_RACE_ROUNDS sets the number of rounds and prints the outcomes.

#include "tests/platform/linux/TrashFixture.h"
#include "tests/support/RacingAttacker.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

constexpr auto wasModified = "it was modified after the scan";
constexpr auto replaced = "something else was in its place";
constexpr auto movedFolder = "its folder is not to be found in its place";
constexpr auto movedTrash = "the Trash was moved meanwhile";
constexpr auto misplaced = "misplaced at ";

bool exchange(const fs::path& one, const fs::path& other) {
    return renameat2(AT_FDCWD, one.c_str(), AT_FDCWD, other.c_str(), RENAME_EXCHANGE) == 0;
}

bool moveAway(const fs::path& from, const fs::path& to) {
    return renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0;
}

ino_t numberOf(const fs::path& path) {
    struct stat facts = {};
    return lstat(path.c_str(), &facts) == 0 ? facts.st_ino : 0;
}

const char* roundsAskedFor() { return std::getenv("OMBREL_RACE_ROUNDS"); }

std::uint64_t rounds() {
    constexpr std::uint64_t usual = 300;
    const char* text = roundsAskedFor();
    std::uint64_t number = 0;
    return text && std::from_chars(text, text + std::strlen(text), number).ec == std::errc() ? number : usual;
}

/// An item that must not be lost: its place, and where an attacker may put it.
struct Item {
    fs::path home;
    std::vector<fs::path> places;
    ino_t number = 0;
};

/// One pair of names that is exchanged.
struct Pair {
    fs::path one;
    fs::path other;
    ino_t number = 0; // of `one`
};

} // namespace

class TrashRace : public TrashFixture {
protected:
    TrashRace() : TrashFixture(folderForManyFiles()) {
        fs::create_directory(aside);
        fs::create_directory(root / "stage");
        makeTrash();
    }

    void SetUp() override {
        writeFile(root / "one", "");
        writeFile(root / "two", "");
        if (!exchange(root / "one", root / "two"))
            GTEST_SKIP() << "a file system that exchanges no names";
    }

    void keep(const fs::path& home, std::vector<fs::path> places) {
        places.push_back(home);
        items.push_back({home, std::move(places), numberOf(home)});
    }

    /// The file and something else, which change places.
    void expectNothingLostWhileTheFileIsExchangedWith(const fs::path& other) {
        keep(file, {other});
        keep(other, {file});
        pairs = {}; // the items are put where they belong one by one
        expectNothingLost([=, this] { exchange(file, other); }, replaced);
    }

    void expectNothingLostWhile(const fs::path& one, const fs::path& other, const char* hit) {
        pairs = {{one, other, numberOf(one)}};
        expectNothingLost([=] { exchange(one, other); }, hit);
    }

    void expectNothingLost(const std::function<void()>& attack, const std::string& hit) {
        const std::uint64_t enough = rounds();
        const std::uint64_t atMost = std::max<std::uint64_t>(enough, 200'000);
        std::uint64_t done = 0;
        std::map<std::string, std::uint64_t> answers;
        RacingAttacker attacker(attack);
        for (; done < enough || ((answers["moved"] == 0 || answers[hit] == 0) && done < atMost); ++done) {
            const PinnedFile item = pinned(file);
            attacker.attack();
            const std::string answer = move(item);
            attacker.rest();
            ++answers[answer];
            check(answer);
            if (HasFailure()) {
                ADD_FAILURE() << "in round " << done << ", which ended with: " << answer;
                return;
            }
            reset();
        }
        EXPECT_GT(answers["moved"], 0U) << "nothing was moved";
        EXPECT_GT(answers[hit], 0U) << "the attack never hit";
        if (!roundsAskedFor())
            return;
        std::printf("%s: %llu rounds, %llu attacks\n", testing::UnitTest::GetInstance()->current_test_info()->name(),
                    static_cast<unsigned long long>(done), static_cast<unsigned long long>(attacker.attacks()));
        for (const auto& [answer, count] : answers)
            std::printf("    %llu %s\n", static_cast<unsigned long long>(count), answer.c_str());
        std::fflush(stdout);
    }

    /// Where each thing is, info files aside; by its number.
    [[nodiscard]] std::map<ino_t, std::vector<fs::path>> findAll() const {
        std::map<ino_t, std::vector<fs::path>> found;
        for (const auto& entry : fs::recursive_directory_iterator(root)) {
            if (!fs::is_directory(entry.symlink_status()) && !entry.path().native().ends_with(".trashinfo"))
                found[numberOf(entry.path())].push_back(entry.path());
        }
        return found;
    }

    /// An info file beside the folder that an item is in. A folder that is exchanged alone has it elsewhere.
    [[nodiscard]] bool hasInfo(const fs::path& inTrash) const {
        std::vector<fs::path> folders{inTrash.parent_path().parent_path() / "info"};
        folders.insert(folders.end(), strayInfo.begin(), strayInfo.end());
        return std::any_of(folders.begin(), folders.end(), [&](const fs::path& folder) {
            return originIn(readFile(folder / (inTrash.filename().native() + ".trashinfo"))) == file;
        });
    }

    void check(const std::string& answer) {
        auto found = findAll();
        bool isInTrash = false;
        for (const Item& item : items) {
            const auto& paths = found[item.number];
            ASSERT_EQ(paths.size(), 1U) << item.home;
            if (std::count(item.places.begin(), item.places.end(), paths[0]) != 0)
                continue;
            ASSERT_EQ(paths[0].parent_path().filename(), "files") << item.home << " is at " << paths[0];
            ASSERT_TRUE(hasInfo(paths[0])) << item.home << " is at " << paths[0] << " without its origin";
            isInTrash = true;
            if (answer == "moved") {
                ASSERT_EQ(item.home, file) << "another file was moved";
            }
        }
        ASSERT_EQ(isInTrash, answer == "moved" || answer.starts_with(misplaced));
    }

    void reset() {
        for (const Pair& pair : pairs) {
            if (numberOf(pair.one) != pair.number) {
                ASSERT_TRUE(exchange(pair.one, pair.other));
            }
        }
        auto found = findAll();
        for (const Item& item : items) {
            const fs::path path = found[item.number].front();
            if (path != item.home) {
                ASSERT_TRUE(moveAway(path, root / "stage" / std::to_string(item.number)));
            }
        }
        for (const Item& item : items) {
            if (numberOf(item.home) != item.number) {
                ASSERT_TRUE(moveAway(root / "stage" / std::to_string(item.number), item.home));
            }
        }
        for (const fs::path& folder :
             {trash / "info", aside / "Trash/info", aside / "data/Trash/info", aside / "info"}) {
            std::error_code isNone;
            if (!fs::is_directory(fs::symlink_status(folder, isNone)))
                continue;
            for (const auto& entry : fs::directory_iterator(folder))
                fs::remove(entry);
        }
    }

    void makeAnotherTrash(const fs::path& path) {
        fs::create_directories(path / "files");
        fs::create_directories(path / "info");
    }

    fs::path aside = root / "aside";
    std::vector<Item> items;
    std::vector<Pair> pairs;
    std::vector<fs::path> strayInfo;
};

TEST_F(TrashRace, WhileTheFileIsExchangedWithACopy) {
    writeFile(aside / "copy", "what the file holds");
    expectNothingLostWhileTheFileIsExchangedWith(aside / "copy");
}

TEST_F(TrashRace, WhileTheFileIsExchangedWithALinkToItself) {
    fs::create_symlink(aside / "link", aside / "link"); // where the file then is
    expectNothingLostWhileTheFileIsExchangedWith(aside / "link");
}

TEST_F(TrashRace, WhileTheFileIsExchangedWithAPipe) {
    ASSERT_EQ(mkfifo((aside / "pipe").c_str(), 0600), 0);
    expectNothingLostWhileTheFileIsExchangedWith(aside / "pipe");
}

// By a descriptor, so that the file may also change in the Trash.
TEST_F(TrashRace, WhileAnotherProgramWritesToTheFile) {
    const UniqueFd written(open(file.c_str(), O_WRONLY | O_CLOEXEC));
    keep(file, {});
    expectNothingLost(
        [&, size = off_t{0}]() mutable {
            size = (size + 1) % 4096;
            EXPECT_EQ(ftruncate(written.get(), size), 0);
        },
        wasModified);
}

// A file that is put back then finds its name taken.
TEST_F(TrashRace, WhileTheFileGoesAndComesBackAndAnotherHasItsNameMeanwhile) {
    const fs::path other = aside / "other";
    const fs::path away = aside / "away";
    writeFile(other, "another file");
    keep(file, {other, away});
    keep(other, {file, away});
    expectNothingLost(
        [=, this] {
            moveAway(file, away);
            moveAway(other, file);
            moveAway(file, other);
            moveAway(away, file);
        },
        misplaced + (trash / "files/report.log").native() + ": " + replaced);
}

TEST_F(TrashRace, WhileItsFolderIsExchangedWithOneThatHoldsAnother) {
    fs::create_directory(aside / "folder");
    writeFile(aside / "folder/report.log", "another file");
    keep(file, {aside / "folder/report.log"});
    keep(aside / "folder/report.log", {file});
    expectNothingLostWhile(place, aside / "folder", movedFolder);
}

TEST_F(TrashRace, WhileItsFolderIsExchangedWithALinkToOneThatHoldsAnother) {
    fs::create_directory(aside / "folder");
    writeFile(aside / "folder/report.log", "another file");
    fs::create_directory_symlink(aside / "folder", aside / "link");
    keep(file, {aside / "link/report.log"});
    keep(aside / "folder/report.log", {});
    expectNothingLostWhile(place, aside / "link", movedFolder);
}

TEST_F(TrashRace, WhileItsFolderIsExchangedWithALinkToItself) {
    fs::create_directory_symlink(aside / "link", aside / "link");
    keep(file, {aside / "link/report.log"});
    expectNothingLostWhile(place, aside / "link", movedFolder);
}

TEST_F(TrashRace, WhileAFolderAboveIsExchanged) {
    place = root / "above/place";
    file = place / "report.log";
    fs::create_directories(place);
    writeFile(file, "what the file holds");
    fs::create_directories(aside / "above/place");
    writeFile(aside / "above/place/report.log", "another file");
    keep(file, {aside / "above/place/report.log"});
    keep(aside / "above/place/report.log", {file});
    expectNothingLostWhile(root / "above", aside / "above", movedFolder);
}

TEST_F(TrashRace, WhileTheTrashIsExchangedWithAnother) {
    makeAnotherTrash(aside / "Trash");
    keep(file, {});
    expectNothingLostWhile(trash, aside / "Trash", movedTrash);
}

TEST_F(TrashRace, WhileTheTrashIsExchangedWithALinkToItself) {
    fs::create_directory_symlink(aside / "Trash", aside / "Trash");
    keep(file, {});
    expectNothingLostWhile(trash, aside / "Trash", "the Trash is a link or not a folder");
}

TEST_F(TrashRace, WhileTheFolderOfTheTrashIsExchanged) {
    makeAnotherTrash(aside / "data/Trash");
    keep(file, {});
    expectNothingLostWhile(root / "data", aside / "data", movedTrash);
}

TEST_F(TrashRace, WhileTheFilesOfTheTrashAreExchanged) {
    fs::create_directory(aside / "files");
    strayInfo = {trash / "info"};
    keep(file, {});
    expectNothingLostWhile(trash / "files", aside / "files", movedTrash);
}

TEST_F(TrashRace, WhileTheInfoOfTheTrashIsExchanged) {
    fs::create_directory(aside / "info");
    strayInfo = {aside / "info"};
    keep(file, {});
    expectNothingLostWhile(trash / "info", aside / "info", movedTrash);
}

TEST_F(TrashRace, WhileTheInfoOfTheTrashIsExchangedWithALinkToItself) {
    fs::create_directory_symlink(aside / "info", aside / "info");
    strayInfo = {aside / "info"};
    keep(file, {});
    expectNothingLostWhile(trash / "info", aside / "info", "the Trash is a link or not a folder");
}

TEST_F(TrashRace, WhileTheFilesOfTheTrashAreExchangedWithALinkToOtherFiles) {
    fs::create_directory(aside / "elsewhere");
    fs::create_directory_symlink(aside / "elsewhere", aside / "files");
    strayInfo = {trash / "info"};
    keep(file, {});
    expectNothingLostWhile(trash / "files", aside / "files", "the Trash is a link or not a folder");
    EXPECT_TRUE(fs::is_empty(aside / "elsewhere"));
}

TEST_F(TrashRace, WhileFileFolderAndTrashAreExchanged) {
    const fs::path other = aside / "copy";
    writeFile(other, "another file");
    fs::create_directory(aside / "folder");
    writeFile(aside / "folder/report.log", "a third file");
    makeAnotherTrash(aside / "Trash");
    const std::vector<fs::path> all{file, other, aside / "folder/report.log"};
    for (const fs::path& home : all)
        keep(home, all);
    pairs = {{place, aside / "folder", numberOf(place)}, {trash, aside / "Trash", numberOf(trash)}};
    expectNothingLost(
        [=, this] {
            exchange(file, other);
            exchange(place, aside / "folder");
            exchange(trash, aside / "Trash");
        },
        replaced);
}

} // namespace vantry
