// Moves files to the Trash and keeps the record of the move, and beside it makes the same things durable without a
// check and a question: what a move costs, as a multiple of what its waiting for the disk costs alone.
//   trash-bench FOLDER [ROUNDS]      FOLDER is on the disk to be measured; exit status 1 when the target is missed

#include "cleanup/move/CleanupHistory.h"
#include "platform/linux/Trash.h"

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

namespace fs = std::filesystem;

using Clock = std::chrono::steady_clock;

constexpr int files = 100;
constexpr int usualRounds = 15;
constexpr double target = 1.6;

[[noreturn]] void fail(const std::string& what) {
    std::perror(what.c_str());
    std::exit(2);
}

void makeFiles(const fs::path& folder) {
    for (int i = 0; i < files; ++i)
        std::ofstream(folder / ("report " + std::to_string(i) + ".log")) << std::string(4096, 'x');
    sync();
}

double milliseconds(Clock::duration duration) { return std::chrono::duration<double, std::milli>(duration).count(); }

double moveAll(const fs::path& folder, const fs::path& trash) {
    const auto pinned = vantry::PinnedFolder::open(folder);
    if (!pinned)
        fail("the folder cannot be pinned");
    const auto begin = Clock::now();
    std::vector<vantry::CleanupCandidate> moved;
    const auto record = vantry::CleanupRecord::startedAt(std::chrono::system_clock::now());
    const auto save = [&](vantry::RecordVersion version) {
        if (!vantry::saveHistory(moved, folder.parent_path(), record, version))
            fail("the record was not written");
    };
    for (int i = 0; i < files; ++i) {
        const auto file = vantry::PinnedFile::open(*pinned, "report " + std::to_string(i) + ".log");
        const auto facts = file ? file->facts() : std::nullopt;
        if (!facts || vantry::moveToTrash(*file, *facts, trash).outcome != vantry::TrashMove::Outcome::moved)
            fail("a file was not moved");
        moved.push_back(vantry::CleanupCandidate::withFingerprint(folder / file->name(), file->name(),
                                                                  vantry::CleanupCategory::log, "", 4096,
                                                                  vantry::CleanupConfidence::suggested, {}, {}));
        save(vantry::RecordVersion::interim);
    }
    save(vantry::RecordVersion::last);
    return milliseconds(Clock::now() - begin);
}

/// The time that is spent waiting for the disk: for an info file, its folder, and the two folders of a rename.
double waitForAll(const fs::path& folder, const fs::path& trash) {
    const vantry::UniqueFd source(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const vantry::UniqueFd moved(open((trash / "files").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const vantry::UniqueFd info(open((trash / "info").c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const std::string text(120, 'x');
    Clock::duration waited{};
    const auto wait = [&waited](int fd) {
        const auto begin = Clock::now();
        if (fsync(fd) != 0)
            fail("fsync");
        waited += Clock::now() - begin;
    };
    for (int i = 0; i < files; ++i) {
        const std::string name = "report " + std::to_string(i) + ".log";
        const vantry::UniqueFd fd(openat(info.get(), (name + ".trashinfo").c_str(), O_WRONLY | O_CREAT | O_EXCL, 0600));
        if (!fd || write(fd.get(), text.data(), text.size()) != static_cast<ssize_t>(text.size()))
            fail("info file");
        wait(fd.get());
        wait(info.get());
        if (renameat(source.get(), name.c_str(), moved.get(), name.c_str()) != 0)
            fail("renameat");
        wait(source.get());
        wait(moved.get());
    }
    return milliseconds(waited);
}

/// What `measured` says about `files` new files and an empty Trash. They stay, for ext4 without a journal is slow to
/// create a file shortly after many were deleted.
template <class Measured>
double oneRound(const fs::path& root, const Measured& measured) {
    const fs::path folder = root / "place";
    const fs::path trash = root / "Trash";
    fs::create_directories(folder);
    fs::create_directories(trash / "files");
    fs::create_directories(trash / "info");
    makeFiles(folder);
    return measured(folder, trash);
}

double median(std::vector<double> all) {
    std::sort(all.begin(), all.end());
    return all[all.size() / 2];
}

} // namespace

int main(int count, char** arguments) {
    if (count < 2)
        return 2;
    const int rounds = count > 2 ? std::max(std::atoi(arguments[2]), 1) : usualRounds;
    std::string name = std::string(arguments[1]) + "/ombrel-trash-bench-XXXXXX";
    if (!mkdtemp(name.data()))
        fail(name);
    const fs::path root = fs::canonical(name);
    std::vector<double> moves;
    std::vector<double> waits;
    std::vector<double> ratios; // of two rounds one after the other: a disk is not always as fast
    for (int i = 0; i < rounds; ++i) {
        moves.push_back(oneRound(root / std::to_string(i) / "moved", moveAll));
        waits.push_back(oneRound(root / std::to_string(i) / "waited for", waitForAll));
        ratios.push_back(moves.back() / waits.back());
    }
    fs::remove_all(root);
    const double ratio = median(ratios);
    std::printf(
        "%d files to the Trash: %.1f ms; waiting for the disk alone: %.1f ms; %.2f times (target: at most %.1f)\n",
        files, median(moves), median(waits), ratio, target);
    return ratio <= target ? 0 : 1;
}
