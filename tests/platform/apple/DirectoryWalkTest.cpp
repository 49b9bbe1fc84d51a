#include "platform/DirectoryWalk.h"

#include "base/UniqueFd.h"
#include "tests/platform/apple/OnDarwin.h"
#include "tests/support/DeepTree.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/darwin/Darwin.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <functional>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <sys/attr.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace vantry {

namespace {

namespace fs = std::filesystem;

TreeTotals walk(const fs::path& tree) {
    return walkTree(tree, deadlineIn(std::chrono::minutes(2)), std::make_shared<SpareThreads>(0));
}

std::set<std::string> setOf(const Result<std::vector<std::string>>& names) {
    return names ? std::set<std::string>(names->begin(), names->end()) : std::set<std::string>{names.error().message};
}

/// "file" and "folder/inside", each of 10,000 bytes.
class AppleDirectoryWalk : public OnDarwin {
protected:
    AppleDirectoryWalk() {
        fs::create_directory(tree / "folder");
        writeFile(tree / "file", std::string(10'000, 'x'));
        writeFile(tree / "folder/inside", std::string(10'000, 'x'));
    }

    /// What the walk finds when each reading of "folder" fails with `error`.
    TreeTotals walkWhereFolderFails(int error) {
        const int readingsOfRoot = 2; // its entries, and its end
        system.readings = 0;
        system.beforeReading = [=](int count) { return count > readingsOfRoot ? error : 0; };
        return walk(tree.path());
    }

    const TemporaryFolder tree{folderForManyFiles()};
};

template <class Value>
Value valueAt(const std::vector<char>& record, std::size_t at) {
    Value value = {};
    std::memcpy(&value, record.data() + at, sizeof value);
    return value;
}

template <class Value>
void setValueAt(std::vector<char>& record, std::size_t at, Value value) {
    std::memcpy(record.data() + at, &value, sizeof value);
}

/// Where a record mentions its name.
std::size_t nameReference(const std::vector<char>& record) {
    constexpr std::size_t begin = sizeof(std::uint32_t) + sizeof(attribute_set_t);
    const auto returned = valueAt<attribute_set_t>(record, sizeof(std::uint32_t));
    return begin + ((returned.commonattr & ATTR_CMN_ERROR) != 0 ? sizeof(std::uint32_t) : 0);
}

} // namespace

TEST_F(AppleDirectoryWalk, OpensNothingWhereAFileSystemMayHang) {
    const auto path = fs::canonical(tree.path());
    EXPECT_TRUE(walk(path).complete);
    system.readings = 0;
    system.mounts.push_back({"smbfs", path.native()});
    EXPECT_EQ(walk(path), TreeTotals());
    EXPECT_EQ(walk(path / "folder"), TreeTotals());
    EXPECT_EQ(system.readings, 0);
}

TEST_F(AppleDirectoryWalk, HidesWhatHasTheHiddenFlag) {
    writeFile(tree / "hidden", "");
    writeFile(tree / ".dotted", "");
    system.setFlags(tree / "hidden", UF_HIDDEN);
    system.setFlags(tree / "file", ~UF_HIDDEN & ~SF_DATALESS); // all of the others
    EXPECT_EQ(setOf(visibleNames(tree.path())), (std::set<std::string>{"file", "folder"}));
    EXPECT_EQ(setOf(allNames(tree.path())), (std::set<std::string>{"file", "folder", "hidden", ".dotted"}));
    EXPECT_EQ(walk(tree.path()).regularFiles, 4U);
}

TEST_F(AppleDirectoryWalk, DownloadsNothing) {
    system.setFlags(tree / "folder", SF_DATALESS);
    system.setFlags(tree / "file", SF_DATALESS);
    EXPECT_EQ(setOf(visibleNames(tree.path())), (std::set<std::string>{"file", "folder"}));
    EXPECT_EQ(walk(tree.path()).regularFiles, 1U);
    EXPECT_TRUE(walk(tree.path()).complete) << "what is not on the disk takes no room";
    // Of a folder that is not on the disk itself nothing is known.
    EXPECT_EQ(walk(tree / "folder"), TreeTotals());
    EXPECT_EQ(visibleNames(tree / "folder").error(), errorFromErrno(EDEADLK, (tree / "folder").native()));
    EXPECT_EQ(system.fetched, std::vector<std::string>());
}

TEST_F(AppleDirectoryWalk, DownloadsNothingThatIsEvictedDuringTheWalk) {
    system.beforeReading = [this](int count) {
        if (count == 2)
            system.setFlags(tree / "folder", SF_DATALESS);
        return 0;
    };
    EXPECT_EQ(walk(tree.path()).regularFiles, 1U);
    EXPECT_EQ(system.fetched, std::vector<std::string>());
}

TEST_F(AppleDirectoryWalk, RestoresThePolicyOfItsThread) {
    for (const int policy : {IOPOL_MATERIALIZE_DATALESS_FILES_DEFAULT, IOPOL_MATERIALIZE_DATALESS_FILES_OFF, 2}) {
        setiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD, policy);
        static_cast<void>(walk(tree.path()));
        static_cast<void>(allNames(tree.path()));
        EXPECT_EQ(getiopolicy_np(IOPOL_TYPE_VFS_MATERIALIZE_DATALESS_FILES, IOPOL_SCOPE_THREAD), policy);
    }
}

TEST_F(AppleDirectoryWalk, SkipsAnEntryOfWhichOnlyTheNameIsKnown) {
    const auto whole = walk(tree.path());
    for (const auto& [error, complete] :
         {std::pair(EIO, true), {EACCES, true}, {ENOENT, true}, {EMFILE, false}, {ENFILE, false}, {ENOMEM, false}})
        for (const std::string name : {"file", "folder", "inside"}) {
            system.errorOfEntry = [&, error = error](std::string_view entry) { return entry == name ? error : 0; };
            const auto totals = walk(tree.path());
            EXPECT_EQ(totals.regularFiles, 1U) << name;
            EXPECT_EQ(totals.allocatedBytes, whole.allocatedBytes / 2) << name;
            EXPECT_EQ(totals.complete, complete) << name << ": " << std::strerror(error);
            EXPECT_EQ(setOf(allNames(tree.path())), (std::set<std::string>{"file", "folder"}));
        }
}

TEST_F(AppleDirectoryWalk, SkipsAnUnreadableFolder) {
    for (const auto& [error, complete] :
         {std::pair(ERANGE, true), {EIO, true}, {ENOTSUP, true}, {EMFILE, false}, {ENFILE, false}, {ENOMEM, false}}) {
        const auto totals = walkWhereFolderFails(error);
        EXPECT_EQ(totals.regularFiles, 1U) << std::strerror(error);
        EXPECT_EQ(totals.complete, complete) << std::strerror(error);
    }
}

TEST_F(AppleDirectoryWalk, OfAnUnreadableFolderIsEmptyAndIncomplete) {
    for (const int error : {ERANGE, EIO, EMFILE}) {
        system.beforeReading = [=](int) { return error; };
        EXPECT_EQ(walk(tree.path()), TreeTotals()) << std::strerror(error);
        EXPECT_EQ(allNames(tree.path()).error(), errorFromErrno(error, tree.path().native()));
    }
}

TEST_F(AppleDirectoryWalk, RetriesAfterAnInterruption) {
    const auto whole = walk(tree.path());
    system.beforeReading = [](int count) { return count % 3 != 0 ? EINTR : 0; };
    EXPECT_EQ(walk(tree.path()), whole);
    EXPECT_EQ(setOf(allNames(tree.path())), (std::set<std::string>{"file", "folder"}));
}

TEST_F(AppleDirectoryWalk, IsIncompleteWhenTheKindOfAnEntryIsUnknown) {
    system.tellsTypes = false;
    EXPECT_EQ(walk(tree.path()), TreeTotals());
    EXPECT_EQ(setOf(visibleNames(tree.path())), (std::set<std::string>{"file", "folder"}));
}

TEST_F(AppleDirectoryWalk, CountsAllForksOrElseTheData) {
    struct stat facts = {};
    ASSERT_EQ(stat((tree / "file").c_str(), &facts), 0);
    const std::int64_t total = facts.st_blocks * 512;
    fs::remove_all(tree / "folder");
    EXPECT_EQ(walk(tree.path()).allocatedBytes, total);
    system.tellsTotalSizes = false;
    EXPECT_EQ(walk(tree.path()).allocatedBytes, total - 512);
}

TEST_F(AppleDirectoryWalk, RejectsIncompleteRecords) {
    using Change = std::function<void(std::vector<char>&)>;
    const std::pair<const char*, Change> changes[] = {
        {"no length", [](auto& record) { setValueAt(record, 0, std::uint32_t{0}); }},
        {"too short for its length", [](auto& record) { setValueAt(record, 0, std::uint32_t{3}); }},
        {"without room for its name", [](auto& record) { setValueAt(record, 0, std::uint32_t{32}); }},
        {"longer than the buffer", [](auto& record) { setValueAt(record, 0, std::uint32_t{1} << 30); }},
        {"the longest", [](auto& record) { setValueAt(record, 0, ~std::uint32_t{0}); }},
        {"no name",
         [](auto& record) {
             auto returned = valueAt<attribute_set_t>(record, 4);
             returned.commonattr &= ~ATTR_CMN_NAME;
             setValueAt(record, 4, returned);
         }},
        {"a name behind the record",
         [](auto& record) { setValueAt(record, nameReference(record), static_cast<std::int32_t>(record.size())); }},
        {"a name before the record",
         [](auto& record) { setValueAt(record, nameReference(record), std::int32_t{-4096}); }},
        {"a name that is longer than the record",
         [](auto& record) { setValueAt(record, nameReference(record) + 4, ~std::uint32_t{0}); }},
        {"a name that is a bit longer than the rest of the record",
         [](auto& record) {
             setValueAt(record, nameReference(record) + 4, static_cast<std::uint32_t>(record.size()));
         }},
        {"a name of no length", [](auto& record) { setValueAt(record, nameReference(record) + 4, std::uint32_t{0}); }},
        {"a name without an end",
         [](auto& record) {
             const std::size_t length = nameReference(record) + 4;
             setValueAt(record, length, valueAt<std::uint32_t>(record, length) - 1);
         }},
    };
    for (const auto& [what, change] : changes) {
        system.changeRecord = [&](std::string_view name, std::vector<char>& record) {
            if (name == "inside" || name == "other")
                change(record);
        };
        const auto totals = walk(tree.path());
        EXPECT_EQ(totals.regularFiles, 1U) << what;
        EXPECT_EQ(walk(tree / "folder"), TreeTotals()) << what;
        EXPECT_EQ(allNames(tree / "folder").error(), errorFromErrno(EIO, (tree / "folder").native())) << what;
    }
}

TEST_F(AppleDirectoryWalk, FindsTheEntriesThatStayInAFolderThatChanges) {
    constexpr int count = 3000; // several readings
    for (int i = 0; i < count; ++i)
        writeFile(tree / ("folder/removed " + std::to_string(i)), "");
    for (int i = 0; i < count; ++i)
        writeFile(tree / ("folder/" + std::to_string(i)), "");
    system.beforeReading = [&](int reading) {
        for (int i = 0; reading == 4 && i < count; ++i) {
            fs::remove(tree / ("folder/removed " + std::to_string(i)));
            writeFile(tree / ("folder/added " + std::to_string(i)), "");
        }
        return 0;
    };
    const auto totals = walk(tree.path());
    EXPECT_GT(system.readings, 5);
    EXPECT_GE(totals.regularFiles, count + 2U);
    EXPECT_LE(totals.regularFiles, 3 * count + 2U);
    EXPECT_TRUE(totals.complete);
}

TEST_F(AppleDirectoryWalk, ReadsLargePiecesAgainAfterManyFolders) {
    constexpr int count = 5000;
    for (const char* name : {"before", "folders", "after"}) // whichever of the files is read last
        fs::create_directory(tree / name);
    for (int i = 0; i < count; ++i) {
        fs::create_directory(tree / ("folders/" + std::to_string(i)));
        for (const char* name : {"before/", "after/"})
            writeFile(tree / (name + std::to_string(i)), "");
    }
    EXPECT_EQ(walk(tree.path()).regularFiles, 2U * count + 2);
    EXPECT_LT(system.readings, count + 80); // one of each empty folder
}

// A place inside a folder cannot be returned to. What was read before is skipped by its number.
TEST_F(AppleDirectoryWalk, IsIncompleteWhenAFolderChangesBeforeItIsReadFurther) {
    constexpr int count = 1500; // folders, of which one reading names some hundred
    for (int i = 0; i < count; ++i) {
        const auto folder = tree / ("folder/" + std::to_string(i));
        fs::create_directory(folder);
        writeFile(folder / "file", "");
    }
    for (const bool changes : {false, true}) {
        std::vector<std::string> read;
        system.changeRecord = [&](std::string_view name, std::vector<char>&) {
            if (fs::exists(tree / ("folder/" + std::string(name))))
                read.emplace_back(name);
        };
        system.readings = 0;
        system.beforeReading = [&](int reading) {
            if (reading == 4) { // of the first of them: from far inside, "folder" will be closed
                UniqueFd inside(::open((tree / ("folder/" + read.back())).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
                for (int level = 0; level < 100; ++level)
                    inside = makeFolderIn(inside, "d");
            }
            for (std::size_t i = 0; changes && reading == 100 && i < 300; ++i)
                fs::remove_all(tree / ("folder/" + read[i]));
            return 0;
        };
        const auto totals = walk(tree.path());
        EXPECT_EQ(totals.complete, !changes);
        EXPECT_EQ(totals.regularFiles == count + 2U, !changes);
    }
}

// Far inside, the folders on the way there are closed; another program puts others in their place.
TEST_F(AppleDirectoryWalk, DoesNotMistakeAnotherFolderForAClosedOne) {
    constexpr int depth = 100;
    constexpr int exchanged = 20;
    constexpr auto newest = SystemTime(std::chrono::seconds(7'258'118'400));
    const TemporaryFolder outside(folderForManyFiles());
    // On each level one folder is walked before what is below it, and one after it.
    const auto build = [](const fs::path& top, timespec date) {
        UniqueFd folder(::open(top.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
        for (int level = 0; level < depth; ++level) {
            UniqueFd below;
            for (const char* name : {"a", "d", "z"}) {
                UniqueFd made = makeFolderIn(folder, name);
                if (*name == 'd') {
                    below = std::move(made);
                    continue;
                }
                makeFileIn(made, "file");
                const timespec times[] = {{0, UTIME_OMIT}, date};
                utimensat(made.get(), "file", times, 0);
            }
            folder = std::move(below);
        }
    };
    build(tree.path(), {1, 0});
    build(outside.path(), {7'258'118'400, 0});
    fs::remove_all(tree / "folder");
    fs::remove(tree / "file");
    const auto whole = walk(tree.path());
    EXPECT_EQ(whole.regularFiles, 2U * depth);
    EXPECT_TRUE(whole.complete);
    fs::path place;
    for (int level = 0; level < exchanged; ++level)
        place /= "d";
    for (const bool isThere : {true, false}) {
        system.readings = 0;
        system.beforeReading = [&](int reading) {
            if (reading == 3 * depth) { // of four on each level on the way down

                fs::rename(tree.path() / place, outside / "original");
                if (isThere)
                    fs::rename(outside.path() / place, tree.path() / place);
            }
            return 0;
        };
        const auto totals = walk(tree.path());
        EXPECT_FALSE(totals.complete);
        EXPECT_LT(totals.newestModification, newest);
        EXPECT_LT(totals.regularFiles, whole.regularFiles);
        EXPECT_GT(totals.regularFiles, static_cast<std::uint64_t>(exchanged));
        if (isThere)
            fs::rename(tree.path() / place, outside.path() / place);
        fs::rename(outside / "original", tree.path() / place);
        system.beforeReading = nullptr;
        EXPECT_EQ(walk(tree.path()), whole);
    }
}

} // namespace vantry
