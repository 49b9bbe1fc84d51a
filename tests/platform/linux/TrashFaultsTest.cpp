// System calls that fail, and files that are exchanged between two calls.

#include "tests/platform/linux/DisturbedTrashFixture.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstdio>
#include <exception>
#include <functional>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utility>
#include <vector>

namespace vantry {

namespace fs = std::filesystem;

using Origins = std::map<std::string, std::string>;

using TrashFaults = DisturbedTrashFixture;

TEST_F(TrashFaults, EachHasAReasonAndLeavesTheFileInItsPlace) {
    struct Case {
        long call;
        int errorNumber;
        const char* reason;
    };
    const std::vector<Case> cases{
        {SYS_renameat2, EXDEV, "it is on another file system than the Trash"},
        {SYS_renameat2, ENOENT, "it is not to be found in its place"},
        {SYS_renameat2, EACCES, "it could not be moved: the system does not permit it"},
        {SYS_renameat2, EPERM, "it could not be moved: the system does not permit it"},
        {SYS_renameat2, EROFS, "it could not be moved: the disk is read-only"},
        {SYS_renameat2, ENOSPC, "it could not be moved: the disk is full"},
        {SYS_renameat2, EDQUOT, "it could not be moved: your share of the disk is used up"},
        {SYS_renameat2, EIO, "it could not be moved: the disk reports an error"},
        {SYS_renameat2, ENOMEM, "it could not be moved: memory is short"},
        {SYS_renameat2, ENAMETOOLONG, "it could not be moved: a name is too long"},
        {SYS_renameat2, EBUSY, "it could not be moved: it is in use"},
        {SYS_renameat2, EINTR, "it could not be moved: the system was busy"},
        {SYS_renameat2, EAGAIN, "it could not be moved: the system was busy"},
        {SYS_renameat2, EINVAL, "it could not be moved: the file system does not offer a safe way"},
        {SYS_renameat2, ENOSYS, "it could not be moved: the file system does not offer a safe way"},
        {SYS_renameat2, EEXIST, "too many files in the Trash have its name"},
        {SYS_openat, EMFILE, "its folder could not be opened: too many files are open"},
        {SYS_openat, ENFILE, "its folder could not be opened: too many files are open"},
        {SYS_openat, EINTR, "its folder could not be opened: the system was busy"},
        {SYS_mkdirat, ENOSPC, "the Trash could not be opened: the disk is full"},
        {SYS_mkdirat, EDQUOT, "the Trash could not be opened: your share of the disk is used up"},
        {SYS_mkdirat, EROFS, "the Trash could not be opened: the disk is read-only"},
        {SYS_mkdirat, EMLINK, "the Trash could not be opened: a folder holds too many others"},
        {SYS_openat2, EMFILE, "its folder is not to be found in its place"},
    };
    for (const auto& [call, errorNumber, reason] : cases) {
        EXPECT_EQ(moveWithout(call, errorNumber), reason) << errorNumber;
        EXPECT_TRUE(nothingMoved()) << reason;
        fs::remove_all(trash.parent_path());
    }
}

TEST_F(TrashFaults, AnExistingFolderThatCannotBeOpenedIsNotMade) {
    writeFile(root / "data", "a file");
    EXPECT_EQ(moveWithout(SYS_mkdirat, EIO).find("the disk reports an error"), std::string::npos);
    EXPECT_EQ(readFile(file), "what the file holds");
}

TEST_F(TrashFaults, ATrashThatCannotBeMadeInItsFolderHasAReason) {
    fs::create_directory(root / "data");
    EXPECT_EQ(moveWithout(SYS_mkdirat, ENOSPC), "the Trash could not be made: the disk is full");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashFaults, AFolderIsNotMadeInOneThatCouldNotBeMade) {
    trash = root / "data/share/Trash";
    EXPECT_EQ(moveWhile(
                  [](int count) {
                      if (count == 1)
                          InterceptedCall::answer = EDQUOT;
                  },
                  SYS_mkdirat),
              "the Trash could not be opened: your share of the disk is used up");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashFaults, AFolderThatCannotBeSyncedAfterItWasMadeIsNotUsed) {
    EXPECT_EQ(moveWhile(
                  [](int /*count*/) {
                      if (!refuseCall(SYS_openat, EDQUOT))
                          _exit(1);
                  },
                  SYS_mkdirat),
              "the Trash could not be opened: your share of the disk is used up");
    EXPECT_TRUE(nothingMoved());
}

// The limit of the file system is asked for right before.
TEST_F(TrashFaults, ANameThatCannotBeLookedUpIsNotUsed) {
    EXPECT_EQ(moveWhile(
                  [](int /*count*/) {
                      if (!refuseCall(SYS_newfstatat, EIO))
                          _exit(1);
                  },
                  SYS_fstatfs),
              "the Trash could not be written to: the disk reports an error");
    EXPECT_TRUE(nothingMoved());
}

TEST_F(TrashFaults, NamesFitTheFileSystemOfTheTrash) {
    file = place / (std::string(251, 'x') + ".log");
    // A server in user space may report 0. FAT reports 1530 because it counts 6 bytes for each of its 255 characters.
    for (const auto& [limit, length] : std::vector<std::pair<int, std::size_t>>{{143, 133}, {0, 245}, {1530, 245}}) {
        writeFile(file, "what the file holds");
        EXPECT_EQ(moveWhile(
                      [&](int /*count*/) {
                          auto* facts = reinterpret_cast<struct statfs*>(InterceptedCall::secondArgument);
                          *facts = {};
                          facts->f_namelen = limit;
                          InterceptedCall::answer = 0;
                      },
                      SYS_fstatfs),
                  "moved");
        ASSERT_EQ(origins().size(), 1U);
        EXPECT_EQ(origins().begin()->first.size(), length);
        EXPECT_TRUE(origins().begin()->first.ends_with(".log"));
        fs::remove_all(trash);
    }
}

TEST_F(TrashFaults, AFailedFsyncPutsTheFileBack) {
    makeTrash();
    for (const auto& [errorNumber, reason] : std::vector<std::pair<int, const char*>>{
             {EIO, "the disk reports an error"}, {ENOSPC, "the disk is full"}, {EINTR, "the system was busy"}}) {
        // The info file is synced first.
        EXPECT_EQ(moveWithout(SYS_fsync, errorNumber), std::string("the Trash could not be written to: ") + reason);
        EXPECT_TRUE(nothingMoved());
        // Every sync after the move.
        EXPECT_EQ(moveWhile(failsToSync(errorNumber)), std::string("the disk could not confirm the move: ") + reason);
        EXPECT_EQ(readFile(file), "what the file holds");
        EXPECT_EQ(origins(), Origins());
        fs::remove_all(trash / "info"); // the info file stays, since it is unknown what is on the disk
        makeTrash();
    }
}

// Errors of file systems that cannot sync folders and need no sync.
TEST_F(TrashFaults, FileSystemsWithoutFsyncAreSupported) {
    for (const int errorNumber : {EINVAL, ENOSYS, ENOTSUP}) {
        EXPECT_EQ(moveWithout(SYS_fsync, errorNumber), "moved");
        EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
        fs::remove_all(trash);
        writeFile(file, "what the file holds");
    }
}

TEST_F(TrashFaults, AReplacementInTheLastMomentIsPutBack) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1) {
                      fs::rename(file, aside);
                      fs::rename(other, file);
                  }
              }),
              "something else was in its place");
    EXPECT_EQ(readFile(aside), "what the file holds");
    EXPECT_EQ(readFile(file), "another file");
    EXPECT_EQ(origins(), Origins());
    EXPECT_EQ(infoCount(), 0U);
}

TEST_F(TrashFaults, WhatCannotBePutBackStaysInTheTrashWithItsOrigin) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1) {
                      fs::rename(file, aside);
                      fs::rename(other, file);
                  }
                  if (count == 2)
                      fs::rename(aside, file);
              }),
              "misplaced at " + (trash / "files/report.log").native() + ": something else was in its place");
    EXPECT_EQ(readFile(file), "what the file holds");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
    EXPECT_EQ(readFile(trash / "files/report.log"), "another file");
}

TEST_F(TrashFaults, ALinkAFolderOrAPipeInThePlaceOfTheFileIsPutBack) {
    const std::vector<std::function<void()>> makers{
        [&] { fs::create_symlink(aside, file); },
        [&] { fs::create_directory(file); },
        [&] { static_cast<void>(mkfifo(file.c_str(), 0600)); },
    };
    for (const auto& make : makers) {
        EXPECT_EQ(moveWhile([&](int count) {
                      if (count == 1) {
                          fs::rename(file, aside);
                          make();
                      }
                  }),
                  "something else was in its place");
        EXPECT_EQ(readFile(aside), "what the file holds");
        EXPECT_TRUE(fs::symlink_status(file).type() != fs::file_type::regular && fs::exists(fs::symlink_status(file)));
        EXPECT_EQ(origins(), Origins());
        EXPECT_EQ(infoCount(), 0U);
        fs::remove(file);
        fs::rename(aside, file);
    }
}

TEST_F(TrashFaults, ANameTakenInTheLastMomentIsNotOverwritten) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1)
                      fs::rename(other, trash / "files/report.log");
              }),
              "moved");
    EXPECT_EQ(readFile(trash / "files/report.log"), "another file");
    EXPECT_EQ(readFile(trash / "files/report.2.log"), "what the file holds");
    EXPECT_EQ(origins(), (Origins{{"report.log", ""}, {"report.2.log", file}}));
}

TEST_F(TrashFaults, ATrashThatIsMovedAwayIsNotUsed) {
    for (const char* part : {"", "files", "info"}) {
        makeTrash();
        const fs::path moved = *part ? trash / part : trash;
        EXPECT_EQ(moveWhile([&](int count) {
                      if (count == 1) {
                          fs::rename(moved, aside);
                          makeTrash();
                      }
                  }),
                  "the Trash was moved meanwhile")
            << part;
        EXPECT_TRUE(nothingMoved()) << part;
        EXPECT_TRUE(fs::is_empty(*part ? aside : aside / "files")) << part;
        fs::remove_all(aside);
        fs::remove_all(trash);
    }
}

// Its recorded origin would restore it to another folder.
TEST_F(TrashFaults, AnItemOfAFolderReplacedInTheLastMomentIsPutBackThere) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1) {
                      fs::rename(place, aside);
                      fs::create_directory(place);
                      writeFile(file, "another file");
                  }
              }),
              "its folder is not to be found in its place");
    EXPECT_EQ(readFile(file), "another file");
    EXPECT_EQ(readFile(aside / "report.log"), "what the file holds");
    EXPECT_EQ(origins(), Origins());
    EXPECT_EQ(infoCount(), 0U);
}

// The rename happens, but the call returns an error.
TEST_F(TrashFaults, AMoveThatIsReportedAsFailedButHappenedCounts) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1)
                      fs::rename(file, trash / "files/report.log");
              }),
              "moved");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashFaults, AnInterruptedRenameIsTriedSixteenTimes) {
    for (const int errorNumber : {EINTR, EAGAIN}) {
        const auto moveWithInterruptions = [&](int interruptions) {
            return moveWhile([&](int count) {
                if (count <= interruptions)
                    InterceptedCall::answer = errorNumber;
            });
        };
        EXPECT_EQ(moveWithInterruptions(16), "it could not be moved: the system was busy");
        EXPECT_TRUE(nothingMoved());
        EXPECT_EQ(moveWithInterruptions(15), "moved");
        EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
        fs::rename(inTrash, file);
        fs::remove(info);
    }
}

// The first fifty names are counted, the next fifty end in eight random digits.
TEST_F(TrashFaults, AHundredNamesAreTried) {
    struct Case {
        int taken;
        const char* answer;
        std::string name;
    };
    for (const auto& [taken, answer, name] :
         {Case{49, "moved", "report.50.log"}, Case{50, "moved", "report.########.log"},
          Case{99, "moved", "report.########.log"},
          Case{100, "too many files in the Trash have its name", "report.log"}}) {
        fs::remove_all(trash);
        writeFile(file, "what the file holds");
        EXPECT_EQ(moveWhile([&](int count) {
                      if (count <= taken)
                          InterceptedCall::answer = EEXIST;
                  }),
                  answer);
        ASSERT_EQ(origins().size(), std::string_view(answer) == "moved" ? 1U : 0U);
        for (const auto& [found, origin] : origins()) {
            EXPECT_EQ(origin, file);
            EXPECT_EQ(found.size(), name.size());
            if (name.contains('#'))
                EXPECT_EQ(found.find_first_not_of("0123456789ABCDEF", name.find('#')), found.rfind('.')) << found;
            else
                EXPECT_EQ(found, name);
        }
    }
}

// The item in the Trash may be the moved file.
TEST_F(TrashFaults, WhatMayHaveBeenMovedKeepsItsOrigin) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1) {
                      fs::rename(file, aside);
                      fs::rename(other, trash / "files/report.log");
                  }
              }),
              "it is not to be found in its place");
    EXPECT_EQ(readFile(aside), "what the file holds");
    EXPECT_EQ(origins(), (Origins{{"report.log", file}}));
}

TEST_F(TrashFaults, AHalfWrittenInfoFileIsNotUsed) {
    const std::string answer = inChildProcess([&]() -> std::string {
        const rlimit limit{40, 40}; // bytes of a file
        if (std::signal(SIGXFSZ, SIG_IGN) == SIG_ERR || setrlimit(RLIMIT_FSIZE, &limit) != 0)
            return "no limit";
        return move(file);
    });
    EXPECT_EQ(answer, "the Trash could not be written to: a file may not be that large");
    EXPECT_TRUE(nothingMoved());
}

// The identity of the info file is checked before it is deleted.
TEST_F(TrashFaults, AnInfoFileOfAnotherProgramIsNotDeleted) {
    EXPECT_EQ(moveWhile([&](int count) {
                  if (count == 1) {
                      fs::rename(file, aside);
                      fs::rename(trash / "info/report.log.trashinfo", root / "ours");
                      writeFile(trash / "info/report.log.trashinfo", "somebody else's");
                  }
              }),
              "it is not to be found in its place");
    EXPECT_EQ(readFile(trash / "info/report.log.trashinfo"), "somebody else's");
}

} // namespace vantry
