// The move to the Trash, where the system and other programs do not do what was asked for.

#include "platform/Trash.h"

#include "tests/apple/platform/FoundationFixture.h"

namespace vantry::apple {

namespace {

namespace fs = std::filesystem;
using enum TrashMove::Outcome;

class AppleTrash : public FoundationFixture {
protected:
    /// Pins the file, lets `before` happen, and moves it.
    TrashMove move(const std::function<void()>& before = [] {}) {
        const PinnedFile pinned = pinnedFile();
        const auto facts = pinned.facts();
        before();
        return facts ? moveToTrash(pinned, *facts) : TrashMove{notMoved, "no facts", {}};
    }
    [[nodiscard]] static std::string textIn(const fs::path& path) {
        std::ifstream stream(path);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    /// Where the system puts it.
    fs::path arrived = root / ".Trash/file";
};

} // namespace

TEST_F(AppleTrash, AFileIsMoved) {
    EXPECT_EQ(move(), (TrashMove{moved, "", {}}));
    EXPECT_EQ(textIn(arrived), "text");
    EXPECT_FALSE(fs::exists(file));
}

TEST_F(AppleTrash, ANameThatIsTakenInTheTrashIsNoMistake) {
    writeFile(arrived, "older");
    EXPECT_EQ(move(), (TrashMove{moved, "", {}}));
    EXPECT_EQ(textIn(arrived), "older");
    EXPECT_EQ(textIn(root / ".Trash/file 2"), "text");
}

TEST_F(AppleTrash, WhatIsNotInItsPlaceIsNotGivenToTheSystem) {
    system.beforeTrashing = [] { ADD_FAILURE() << "the system was asked"; };
    EXPECT_EQ(move([&] { fs::rename(file, folder / "elsewhere"); }),
              (TrashMove{notMoved, "it is not to be found in its place", {}}));
    fs::rename(folder / "elsewhere", file);
    EXPECT_EQ(move([&] { fs::rename(folder / "other", file); }),
              (TrashMove{notMoved, "something else is in its place", {}}));
    EXPECT_EQ(move([&] {
                  fs::rename(file, folder / "elsewhere");
                  fs::create_symlink("elsewhere", file);
              }),
              (TrashMove{notMoved, "something else is in its place", {}}));
    fs::rename(folder / "elsewhere", file);
    EXPECT_EQ(move([&] { fs::rename(folder, root / "moved"); }),
              (TrashMove{notMoved, "its folder is not to be found in its place", {}}));
}

TEST_F(AppleTrash, AFileThatWasChangedSinceItWasCheckedIsLeft) {
    system.beforeTrashing = [] { ADD_FAILURE() << "the system was asked"; };
    EXPECT_EQ(move([&] { writeFile(file, "longer text"); }),
              (TrashMove{notMoved, "it was modified after the scan", {}}));
    EXPECT_EQ(textIn(file), "longer text");
}

TEST_F(AppleTrash, AnErrorIsTold) {
    system.trashError = NSFileWriteNoPermissionError;
    const TrashMove answer = move();
    EXPECT_EQ(answer.outcome, notMoved);
    EXPECT_NE(answer.reason.find("513"), std::string::npos) << answer.reason;
    EXPECT_EQ(textIn(file), "text");
    system.beforeTrashing = [&] { fs::remove(file); };
    EXPECT_EQ(move().outcome, notMoved) << "somebody was quicker";
}

TEST_F(AppleTrash, AnErrorForAFileThatArrivedNeverthelessIsNone) {
    system.trashError = NSFileWriteUnknownError;
    system.movesInSpiteOfError = true;
    EXPECT_EQ(move(), (TrashMove{moved, "", {}}));
    EXPECT_EQ(textIn(arrived), "text");
}

TEST_F(AppleTrash, WithoutTheNameOfWhatArrivedTheFileTellsWhereItIs) {
    system.tellsWhatArrived = false;
    EXPECT_EQ(move(), (TrashMove{moved, "", {}}));
    writeFile(file, "text");
    fs::remove(arrived);
    system.afterTrashing = [&](const fs::path& trashed) { fs::rename(trashed, root / "lost"); };
    EXPECT_EQ(move(), (TrashMove{misplaced, "the system did not say where it is", root / "lost"}));
}

TEST_F(AppleTrash, AnotherItemThatArrivedIsPutBack) {
    system.beforeTrashing = [&] {
        fs::rename(file, folder / "renamed");
        writeFile(file, "somebody else's");
    };
    EXPECT_EQ(move(), (TrashMove{notMoved, "something else was in its place", {}}));
    EXPECT_EQ(textIn(file), "somebody else's");
    EXPECT_FALSE(fs::exists(arrived));
    EXPECT_EQ(textIn(folder / "renamed"), "text");
}

TEST_F(AppleTrash, AnotherItemThatCannotBePutBackIsTold) {
    system.beforeTrashing = [&] {
        fs::rename(file, folder / "renamed");
        writeFile(file, "somebody else's");
    };
    system.afterTrashing = [&](const fs::path&) { writeFile(file, "a third one"); };
    EXPECT_EQ(move(), (TrashMove{misplaced, "something else was in its place", arrived}));
    EXPECT_EQ(textIn(file), "a third one");
    EXPECT_EQ(textIn(arrived), "somebody else's");
}

TEST_F(AppleTrash, AFileThatIsTakenOutOfTheTrashIsFollowed) {
    system.afterTrashing = [&](const fs::path& trashed) { fs::rename(trashed, root / "taken"); };
    EXPECT_EQ(move(), (TrashMove{misplaced, "another program took it out of the Trash", root / "taken"}));
    fs::rename(root / "taken", file);
    system.afterTrashing = [&](const fs::path& trashed) { fs::rename(trashed, file); };
    EXPECT_EQ(move(), (TrashMove{notMoved, "another program took it out of the Trash", {}}));
    system.afterTrashing = [](const fs::path& trashed) { fs::remove(trashed); };
    EXPECT_EQ(move(), (TrashMove{misplaced, "another program removed it from the Trash", {}}));
}

TEST_F(AppleTrash, AFileThatIsChangedOnItsWayIsPutBackIfThatCanBe) {
    system.afterTrashing = [](const fs::path& trashed) { writeFile(trashed, "changed meanwhile"); };
    EXPECT_EQ(move(), (TrashMove{notMoved, "it was modified after the scan", {}}));
    EXPECT_EQ(textIn(file), "changed meanwhile");
    system.afterTrashing = [&](const fs::path& trashed) {
        writeFile(trashed, "changed again");
        writeFile(file, "a new one");
    };
    EXPECT_EQ(move(), (TrashMove{moved, "", {}}));
    EXPECT_EQ(textIn(file), "a new one");
    EXPECT_EQ(textIn(arrived), "changed again");
}

} // namespace vantry::apple
