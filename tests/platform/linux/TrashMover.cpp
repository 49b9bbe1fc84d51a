// Moves one file to the Trash and tells what came of it, so that it can be killed, disturbed and deceived from outside:
//   trash_mover FILE TRASH [replaced OTHER ASIDE | retaken OTHER ASIDE]
// "replaced": when FILE is about to be moved it goes to ASIDE and OTHER takes its place; "retaken": and when what was
// moved is about to be put back, FILE is back first. Exit status 0 means moved; else the reason is printed.

#include "platform/linux/Trash.h"
#include "tests/support/InterceptedCall.h"

#include <filesystem>
#include <string>
#include <sys/syscall.h>
#include <sys/uio.h>
#include <unistd.h>

namespace {

constexpr int refused = 1;
constexpr int unusable = 2;

// Plain renames, which are not the call that is intercepted; none of them takes the place of a file.
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

// By a call that the move does not make, so that it may fail there and not here.
void tell(std::string text) {
    const iovec bytes{text.data(), text.size()};
    static_cast<void>(writev(STDOUT_FILENO, &bytes, 1));
}

} // namespace

int main(int count, char** arguments) {
    if (count != 3 && count != 6)
        return unusable;
    const std::filesystem::path file = arguments[1];
    const auto folder = vantry::PinnedFolder::open(file.parent_path());
    if (!folder)
        return unusable;
    const auto item = vantry::PinnedFile::open(*folder, file.filename().native());
    if (!item)
        return unusable;
    if (count == 6 && !deceive(arguments[3], file.native(), arguments[4], arguments[5]))
        return unusable;
    const auto facts = item->facts();
    if (!facts)
        return unusable;
    static_cast<void>(getppid()); // where the move begins, for who counts its system calls
    const auto move = vantry::moveToTrash(*item, *facts, arguments[2]);
    static_cast<void>(getppid());
    if (move.outcome == vantry::TrashMove::Outcome::moved)
        return 0;
    tell(move.reason + (move.outcome == vantry::TrashMove::Outcome::misplaced ? "; misplaced\n" : "\n"));
    return refused;
}
