// Moves one file to the Trash and prints the outcome. Scripts kill, disturb and deceive it:
//   trash_mover FILE TRASH [replaced OTHER ASIDE | retaken OTHER ASIDE | meddled DEED NUMBER]
// "replaced": when FILE is about to be moved it goes to ASIDE and OTHER takes its place; "retaken": and when what was
// moved is about to be put back, FILE is back first; "meddled": before the system call NUMBER of the move, counted from
// 1, another program does one of the deeds below.
// Exit status 0: moved; 1: not moved, and the reason is printed; 3: misplaced, and the reason and the path are printed,
// a line each; 4: the move has fewer calls. A last line of a meddled move, "meddled:", says "unseen" when the move was
// on the disk and did not look at that again, and "deleted" when the file was deleted.

#include "platform/linux/Trash.h"
#include "tests/support/InterceptedCall.h"
#include "tests/support/TracedChild.h"

#include <charconv>
#include <filesystem>
#include <fstream>
#include <string>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

namespace fs = std::filesystem;

constexpr int notMoved = 1;
constexpr int unusable = 2;
constexpr int misplaced = 3;
constexpr int over = 4;

// Plain renames, which are not intercepted. None of them replaces a file.
bool deceive(const std::string& how, const std::string& file, const std::string& other, const std::string& aside) {
    const auto move = [](const std::string& from, const std::string& to) {
        if (access(to.c_str(), F_OK) != 0)
            static_cast<void>(rename(from.c_str(), to.c_str()));
    };
    return vantry::interceptCall(SYS_renameat2, [=](int count) {
        if (count == 1) {
            move(file, aside);
            move(other, file);
        } else if (how == "retaken") {
            move(aside, file);
        }
    });
}

// By a call that the move does not use, so that injected failures do not affect it.
void tell(std::string text) {
    const iovec bytes{text.data(), text.size()};
    static_cast<void>(writev(STDOUT_FILENO, &bytes, 1));
}

int move(const vantry::PinnedFile& file, const fs::path& trash) {
    const auto facts = file.facts();
    if (!facts)
        return unusable;
    static_cast<void>(getppid()); // marks the start of the move for scripts that count its system calls
    const auto move = vantry::moveToTrash(file, *facts, trash);
    static_cast<void>(getppid());
    switch (move.outcome) {
    case vantry::TrashMove::Outcome::moved: return 0;
    case vantry::TrashMove::Outcome::notMoved: tell(move.reason + '\n'); return notMoved;
    case vantry::TrashMove::Outcome::misplaced: break;
    }
    tell(move.reason + '\n' + move.path.native() + '\n');
    return misplaced;
}

/// Another program.
class Meddler {
public:
    Meddler(std::string deed, const fs::path& file, const fs::path& trash)
        : deed_(std::move(deed)),
          file_(file, std::ios::app),
          info_(trash / "info" / (file.filename().native() + ".trashinfo")),
          moved_(trash / "files" / file.filename()) {}

    /// False for a deed that nobody knows.
    bool act() {
        isDone_ = true;
        if (deed_ == "file grown")
            return static_cast<bool>(file_ << ", grown" << std::flush);
        std::error_code isNone;
        fs::remove(info_, isNone);
        if (deed_ == "info replaced")
            std::ofstream(info_) << "[Trash Info]\nPath=/their/report.log\nDeletionDate=2020-01-01T00:00:00\n";
        else if (deed_ == "Trash emptied")
            isDeleted_ = fs::remove(moved_, isNone);
        return deed_ == "info removed" || deed_ == "info replaced" || deed_ == "Trash emptied";
    }

    // Names are looked at in the Trash, the contents by what the pin tells. A move that is not yet on the disk has to
    // look again.
    void watch(const vantry::TracedCall& call) {
        const bool isOfInfo = call.number == SYS_newfstatat && call.text(1) == info_.filename();
        const bool isOfItem = call.number == SYS_statx && call.text(1) == moved_.filename();
        const bool isOfContents = call.number == SYS_statx && call.text(1).empty();
        const bool isLook = deed_ == "file grown" ? isOfContents : isOfInfo || (deed_ == "Trash emptied" && isOfItem);
        const bool isUnfinished = call.number == SYS_renameat2 || call.number == SYS_fsync;
        isSeen_ = isSeen_ || (isDone_ && (isLook || isUnfinished));
    }

    [[nodiscard]] bool isDone() const { return isDone_; }
    [[nodiscard]] std::string report() const {
        return std::string("meddled:") + (isSeen_ ? "" : " unseen") + (isDeleted_ ? " deleted\n" : "\n");
    }

private:
    std::string deed_;
    std::ofstream file_;
    fs::path info_;
    fs::path moved_;
    bool isDone_ = false;
    bool isSeen_ = false;
    bool isDeleted_ = false;
};

int moveMeddledWith(const vantry::PinnedFile& file, const fs::path& trash, Meddler meddler, int number) {
    bool isInside = false;
    bool isKnown = true;
    const int status = vantry::traceCalls([&] { return move(file, trash); },
                                          [&](const vantry::TracedCall& call) {
                                              if (call.number == SYS_getppid)
                                                  isInside = !isInside;
                                              else if (isInside && --number == 0)
                                                  isKnown = meddler.act();
                                              if (isInside)
                                                  meddler.watch(call);
                                          });
    if (status < 0 || !isKnown)
        return unusable;
    if (!meddler.isDone())
        return over;
    tell(meddler.report());
    return status;
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3 && count != 6)
        return unusable;
    const fs::path file = arguments[1];
    const fs::path trash = arguments[2];
    const auto folder = vantry::PinnedFolder::open(file.parent_path());
    if (!folder)
        return unusable;
    const auto item = vantry::PinnedFile::open(*folder, file.filename().native());
    if (!item)
        return unusable;
    if (count == 3)
        return move(*item, trash);
    const std::string how = arguments[3];
    if (how == "meddled") {
        const std::string text = arguments[5];
        int number = 0;
        if (std::from_chars(text.data(), text.data() + text.size(), number).ec != std::errc())
            return unusable;
        return moveMeddledWith(*item, trash, Meddler(arguments[4], file, trash), number);
    }
    return deceive(how, file.native(), arguments[4], arguments[5]) ? move(*item, trash) : unusable;
}
