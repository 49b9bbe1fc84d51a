// Other programs that empty the Trash, take items out of it or write to the file during the move.

#include "tests/platform/linux/DisturbedTrashFixture.h"

#include <cerrno>
#include <chrono>
#include <fstream>
#include <functional>
#include <vector>

namespace vantry {

namespace fs = std::filesystem;

using Origins = std::map<std::string, std::string>;

namespace {

constexpr auto changedTrash = "another program changed the Trash meanwhile";
constexpr auto takenOut = "another program took it out of the Trash";
constexpr auto modified = "it was modified after the scan";
constexpr auto theirInfo = "[Trash Info]\nPath=/their/report.log\nDeletionDate=2026-11-21T09:44:50\n";

// The system calls of a move to an existing Trash.
constexpr int syncOfInfoFolder = 2;
constexpr int syncOfSource = 3;
constexpr int moving = 1;
constexpr int puttingBack = 2;

void append(const fs::path& path, const std::string& text) { std::ofstream(path, std::ios::app) << text; }

} // namespace

class TrashOthers : public DisturbedTrashFixture {
protected:
    void SetUp() override {
        makeTrash();
        DisturbedTrashFixture::SetUp();
    }

    /// The outcome of a move when `deed` is done before the call, and the place of the file is taken when it is put
    /// back.
    [[nodiscard]] std::string moveWithItsPlaceTaken(const std::function<void()>& deed) const {
        return moveWhile([&](int count) {
            if (count == moving)
                deed();
            if (count == puttingBack)
                fs::rename(other, file);
        });
    }
    [[nodiscard]] std::string moveWhileSyncing(int which, const std::function<void()>& deed) const {
        const auto before = [&](int count) {
            if (count == which)
                deed();
        };
        return moveWhile(before, SYS_fsync);
    }
    /// Another one after any rename.
    [[nodiscard]] fs::file_time_type dateOfOldPlace() const {
        fs::last_write_time(place, fs::last_write_time(place) - std::chrono::hours(1));
        return fs::last_write_time(place);
    }
    void replaceInfo() const {
        fs::remove(info);
        writeFile(info, theirInfo);
    }
    [[nodiscard]] std::string misplacedAt(const fs::path& path, const std::string& reason) const {
        return "misplaced at " + path.native() + ": " + reason;
    }

    /// The folders that a move syncs, in order.
    [[nodiscard]] std::vector<std::string> syncs(const std::function<void()>& inBetween) const {
        const fs::path log = root / "syncs";
        const auto before = [&](int count) {
            const auto link = "/proc/self/fd/" + std::to_string(InterceptedCall::firstArgument);
            append(log, fs::read_symlink(link).filename().native() + '\n');
            if (count == syncOfSource)
                inBetween();
        };
        std::vector<std::string> names{moveWhile(before, SYS_fsync)};
        std::ifstream lines(log);
        for (std::string line; std::getline(lines, line);)
            names.push_back(line);
        return names;
    }
};

TEST_F(TrashOthers, AnInfoFileRemovedBeforeTheRenamePutsTheFileBack) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == moving)
                      fs::remove(info);
              }),
              changedTrash);
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashOthers, AnInfoFileReplacedByAnotherOfItsNamePutsTheFileBack) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == moving)
                      replaceInfo();
              }),
              changedTrash);
    EXPECT_EQ(readFile(file), "what the file holds");
    EXPECT_EQ(origins(), Origins());
    EXPECT_EQ(readFile(info), theirInfo);
}

TEST_F(TrashOthers, AnInfoFileRemovedDuringTheSyncPutsTheFileBack) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource, [&] { fs::remove(info); }), changedTrash);
    EXPECT_TRUE(nothingMoved());
}

// The Trash may be emptied during the sync.
TEST_F(TrashOthers, AFileWithoutItsInfoFileIsPutBackBeforeTheSync) {
    const auto failToSync = failsToSync(EIO);
    EXPECT_EQ(moveWhile([&](int count) {
                  failToSync(count);
                  if (count == moving)
                      fs::remove(info);
              }),
              changedTrash);
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashOthers, AFileWhoseInfoFileIsGoneBeforeTheMoveIsNotTouched) {
    const auto before = dateOfOldPlace();
    EXPECT_EQ(moveWhileSyncing(syncOfInfoFolder, [&] { fs::remove(info); }), changedTrash);
    EXPECT_TRUE(nothingMoved());
    EXPECT_EQ(fs::last_write_time(place), before);
}

TEST_F(TrashOthers, AFileReplacedBeforeTheMoveIsNotTouched) {
    EXPECT_EQ(moveWhileSyncing(syncOfInfoFolder,
                               [&] {
                                   fs::rename(file, aside);
                                   fs::rename(other, file);
                               }),
              "something else is in its place");
    EXPECT_EQ(readFile(file), "another file");
    EXPECT_EQ(readFile(aside), "what the file holds");
    EXPECT_EQ(origins(), Origins());
}

TEST_F(TrashOthers, AFileThatCannotBeLookedAtInTheTrashIsPutBack) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource,
                               [] {
                                   if (!refuseCall(SYS_statx, EIO))
                                       _exit(1);
                               }),
              "what arrived in the Trash could not be looked at");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashOthers, AFileWhoseFolderCannotBeSyncedIsPutBack) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource, [] { InterceptedCall::answer = EIO; }),
              "the disk could not confirm the move: the disk reports an error");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashOthers, AFileThatCannotBePutBackGetsANewInfoFile) {
    EXPECT_EQ(moveWithItsPlaceTaken([&] { fs::remove(info); }), "moved");
    EXPECT_EQ(readFile(file), "another file");
    EXPECT_EQ(readFile(inTrash), "what the file holds");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashOthers, AFileWithoutAnInfoFileThatCannotBePutBackIsMisplaced) {
    EXPECT_EQ(moveWithItsPlaceTaken([&] { replaceInfo(); }), misplacedAt(inTrash, changedTrash));
    EXPECT_EQ(readFile(file), "another file");
    EXPECT_EQ(readFile(inTrash), "what the file holds");
    EXPECT_EQ(readFile(info), theirInfo);
}

TEST_F(TrashOthers, AMisplacedFileHasItsWholePathWithoutTheSystemsHelp) {
    const auto deed = [&] {
        replaceInfo();
        if (!refuseCall(SYS_readlink, EACCES))
            _exit(1);
    };
    EXPECT_EQ(moveWithItsPlaceTaken(deed), misplacedAt(inTrash, changedTrash));
}

TEST_F(TrashOthers, AFileDeletedFromTheTrashIsReportedAsGone) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource,
                               [&] {
                                   fs::remove(info);
                                   fs::remove(inTrash);
                               }),
              misplacedAt("", "another program removed it from the Trash"));
    EXPECT_EQ(infoCount(), 0U);
}

TEST_F(TrashOthers, AFileTakenOutOfTheTrashIsReportedWhereItIs) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource, [&] { fs::rename(inTrash, aside); }), misplacedAt(aside, takenOut));
    EXPECT_EQ(readFile(aside), "what the file holds");
}

TEST_F(TrashOthers, AFileThatAnotherProgramRestoredWasNotMoved) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource,
                               [&] {
                                   fs::rename(inTrash, file);
                                   fs::remove(info);
                               }),
              takenOut);
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashOthers, ATrashWithoutItsFolderTakesNothing) {
    EXPECT_EQ(moveWhile([&](int) { fs::remove_all(trash / "files"); }), "the Trash was moved meanwhile");
    EXPECT_EQ(readFile(file), "what the file holds");
}

TEST_F(TrashOthers, AFileInATrashThatWasMovedAwayIsReportedWhereItIs) {
    EXPECT_EQ(moveWithItsPlaceTaken([&] {
                  fs::rename(trash, aside);
                  makeTrash();
              }),
              misplacedAt(aside / "files/report.log", "the Trash was moved meanwhile"));
    EXPECT_EQ(readFile(aside / "files/report.log"), "what the file holds");
    EXPECT_EQ(originIn(readFile(aside / "info/report.log.trashinfo")), file);
}

TEST_F(TrashOthers, AFileThatChangedSinceTheCheckIsNotTouched) {
    const PinnedFile item = pinned(file);
    const PinnedFileFacts facts = item.facts().value();
    const std::vector<std::function<void(PinnedFileFacts&)>> cases{
        [](auto& checked) { ++*checked.contentBytes; },
        [](auto& checked) { *checked.allocatedBytes += 512; },
        [](auto& checked) { *checked.fingerprint.contentModificationDate += std::chrono::nanoseconds(1); },
        [](auto& checked) { checked.fingerprint.contentModificationDate.reset(); },
    };
    const auto before = dateOfOldPlace();
    for (const auto& change : cases) {
        PinnedFileFacts checked = facts;
        change(checked);
        EXPECT_EQ(textOf(moveToTrash(item, checked, trash)), modified);
        EXPECT_TRUE(nothingMoved());
        EXPECT_EQ(fs::last_write_time(place), before);
    }
    EXPECT_EQ(textOf(moveToTrash(item, facts, trash)), "moved");
}

TEST_F(TrashOthers, AFileThatGrowsBeforeTheRenameIsPutBack) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == moving)
                      append(file, " and more");
              }),
              modified);
    EXPECT_EQ(readFile(file), "what the file holds and more");
    EXPECT_EQ(origins(), Origins());
    EXPECT_EQ(infoCount(), 0U);
}

TEST_F(TrashOthers, AFileThatGrowsDuringTheSyncIsPutBack) {
    EXPECT_EQ(moveWhileSyncing(syncOfSource, [&] { append(inTrash, " and more"); }), modified);
    EXPECT_EQ(readFile(file), "what the file holds and more");
    EXPECT_EQ(origins(), Origins());
    EXPECT_EQ(infoCount(), 0U);
}

TEST_F(TrashOthers, AChangedFileThatCannotBePutBackIsInTheTrash) {
    EXPECT_EQ(moveWithItsPlaceTaken([&] { append(file, " and more"); }), "moved");
    EXPECT_EQ(readFile(inTrash), "what the file holds and more");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashOthers, AFileThatCannotBeSyncedOrPutBackIsInTheTrash) {
    const auto failToSync = failsToSync(EIO);
    EXPECT_EQ(moveWithItsPlaceTaken([&] { failToSync(moving); }), "moved");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashOthers, AFileOfAFolderThatWasMovedAndThatCannotBePutBackIsInTheTrash) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == moving)
                      fs::rename(place, aside);
                  if (count == puttingBack)
                      fs::rename(other, aside / "report.log");
              }),
              "moved");
    EXPECT_EQ(readFile(aside / "report.log"), "another file");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashOthers, TheSourceFolderIsSyncedFirst) {
    EXPECT_EQ(syncs([] {}), (std::vector<std::string>{"moved", "report.log.trashinfo", "info", "place", "files"}));
}

TEST_F(TrashOthers, TheFoldersOfANewTrashAreOnTheDiskBeforeTheMove) {
    fs::remove_all(root / "data");
    EXPECT_EQ(syncs([] {}), (std::vector<std::string>{"moved", root.filename(), "data", "Trash", "Trash",
                                                      "report.log.trashinfo", "info", "place", "files"}));
}

TEST_F(TrashOthers, TheTrashIsSyncedFirstWhenTheFileIsPutBack) {
    EXPECT_EQ(syncs([&] { fs::remove(info); }), (std::vector<std::string>{changedTrash, "report.log.trashinfo", "info",
                                                                          "place", "files", "files", "place"}));
}

} // namespace vantry
