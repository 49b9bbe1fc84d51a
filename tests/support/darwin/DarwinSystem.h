#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <sys/types.h>
#include <utility>
#include <vector>

namespace vantry {

/// The stand-in for Darwin, as far as a test has a say in it. Set up while one thread runs.
struct DarwinSystem {
    /// As it is at first.
    static void reset();
    static DarwinSystem& get();

    /// Gives the item at `path` itself the flags of chflags(2), and SF_DATALESS, which only the system can set there.
    void setFlags(const std::filesystem::path& path, std::uint32_t flags);
    [[nodiscard]] std::uint32_t flagsOf(dev_t device, ino_t inode) const;

    /// Called before each reading of a folder with its number, from 1. What it answers, unless 0, is the errno that the
    /// reading fails with.
    std::function<int(int)> beforeReading;
    /// The errno that the record of an entry tells instead of facts, or 0.
    std::function<int(std::string_view name)> errorOfEntry;
    /// Changes the record of an entry, but not its size, before it is given to the caller.
    std::function<void(std::string_view name, std::vector<char>& record)> changeRecord;
    bool tellsTypes = true;      ///< of entries
    bool tellsTotalSizes = true; ///< of files with all of their forks

    struct Mount {
        std::string type;
        std::filesystem::path path;
    };
    std::vector<Mount> mounts{{"apfs", "/"}};
    int mountsError = 0; ///< the errno that asking for them fails with, unless 0

    /// Called before a process is watched. What it answers, unless 0, is the errno that the watching fails with.
    std::function<int(pid_t)> beforeWatching;

    std::string executable = "/proc/self/exe";   ///< a path of the program that runs, which may lead through links
    std::map<std::string, std::string> programs; ///< what is started instead of a program
    std::filesystem::path userTemporaryFolder;   ///< without one, nobody can tell it

    int readings = 0;                 ///< how many there were
    std::vector<std::string> fetched; ///< folders whose contents were fetched, by the paths that they were opened by

private:
    std::map<std::pair<dev_t, ino_t>, std::uint32_t> flags_;
};

} // namespace vantry
