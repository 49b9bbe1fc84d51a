#pragma once

#include "cleanup/finding/ScanContext.h"
#include "cleanup/measuring/DiskUsage.h"
#include "platform/DirectoryWalk.h"
#include "platform/ItemFacts.h"
#include "tests/support/FileFacts.h"
#include "tests/support/TemporaryFolder.h"
#include "tests/support/TestSystem.h"

#include <algorithm>
#include <chrono>
#include <fcntl.h>
#include <functional>
#include <iterator>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <unistd.h>
#include <vector>

namespace vantry {

inline constexpr std::int64_t mebibyte = 1024 * 1024;

/// Does the workers' job in this process, and fails where the test says so.
class FakeWorkers : public ScanWorkers {
public:
    [[nodiscard]] DirectoryMetrics directoryMetrics(const std::filesystem::path& folder, Deadline deadline) override {
        asked.push_back("measure " + folder.native());
        deadlines.push_back(deadline);
        if (const auto given = metrics.find(folder); given != metrics.end())
            return given->second;
        if (hasPassed(deadline))
            return {};
        const auto totals = walkTree(folder, deadlineIn(std::chrono::seconds(60)), std::make_shared<SpareThreads>(0));
        return {totals.allocatedBytes, totals.newestModification, totals.complete};
    }
    [[nodiscard]] ChildrenMetrics childrenMetrics(const std::filesystem::path& folder, Deadline deadline) override {
        asked.push_back("measure in " + folder.native());
        auto answer = measuresAhead ? CleanupScanner::childrenMetricsInProcess(folder, deadline) : ChildrenMetrics{};
        for (const auto& [given, ofGiven] : metrics)
            if (given == folder || given.parent_path() == folder) {
                answer.children.erase(given.filename());
                answer.whole = {};
            }
        return answer;
    }
    [[nodiscard]] DirectoryMetrics diskUsage(const std::filesystem::path& path, std::span<const std::string> endings,
                                             Deadline deadline) override {
        asked.push_back("use of " + path.native());
        deadlines.push_back(deadline);
        if (const auto given = metrics.find(path); given != metrics.end())
            return given->second;
        return CleanupScanner::diskUsageInProcess(path, endings, deadline);
    }
    [[nodiscard]] ShallowChildren shallowChildren(const std::filesystem::path& folder, Deadline deadline) override {
        asked.push_back("list " + folder.native());
        deadlines.push_back(deadline);
        if (whileListing)
            whileListing(folder);
        if (hung.contains(folder) || hasPassed(deadline))
            return {};
        auto names = visibleNames(folder);
        if (!names)
            return {};
        std::ranges::sort(*names); // an order that does not depend on the file system
        ShallowChildren children{.urls = {}, .complete = true};
        for (const auto& name : *names)
            children.urls.push_back(folder / name);
        std::ranges::copy_if(alsoListed, std::back_inserter(children.urls),
                             [&](const auto& url) { return url.parent_path() == folder; });
        if (afterListing)
            afterListing(folder);
        return children;
    }
    [[nodiscard]] PropertyListTexts propertyListTexts(std::span<const std::filesystem::path> files,
                                                      std::span<const std::string> keys, Deadline deadline) override {
        PropertyListTexts answer{.texts = {}, .complete = listsAreComplete && !hasPassed(deadline)};
        for (const auto& file : files) {
            asked.push_back("read " + file.native());
            auto& texts = answer.texts.emplace_back();
            if (const auto given = lists.find(file); given != lists.end()) {
                texts.emplace();
                for (const auto& key : keys)
                    if (const auto text = given->second.find(key); text != given->second.end())
                        texts->insert(*text);
            }
        }
        if (!answer.complete)
            answer.texts.assign(files.size(), std::nullopt); // the worker did not get that far
        return answer;
    }
    [[nodiscard]] std::optional<std::set<std::string>>
    bundleIdentifiers(const CleanupScanner::ApplicationPlaces& places, Deadline deadline) override {
        asked.emplace_back("look for bundles");
        std::set<std::string> identifiers;
        const bool complete = CleanupScanner::searchBundles(places, [&](const auto& identifier) {
            if (identifier)
                identifiers.insert(*identifier);
            return true;
        });
        return complete && !hasPassed(deadline) ? std::optional(identifiers) : std::nullopt;
    }

    [[nodiscard]] auto timesAsked(const std::string& question) const { return std::ranges::count(asked, question); }
    [[nodiscard]] bool wasAsked(const std::string& question) const { return timesAsked(question) > 0; }

    std::map<std::filesystem::path, DirectoryMetrics> metrics; ///< instead of what is there
    std::set<std::filesystem::path> hung;                      ///< folders whose listing is not complete
    std::vector<std::filesystem::path> alsoListed;             ///< with what is in their folders
    std::map<std::filesystem::path, std::map<std::string, std::string>> lists;
    bool listsAreComplete = true;
    bool measuresAhead = false; ///< what is in a folder at once, when asked to
    std::function<void(const std::filesystem::path&)> whileListing;
    std::function<void(const std::filesystem::path&)> afterListing;
    std::vector<std::string> asked;
    std::vector<Deadline> deadlines; ///< of what was asked, property lists left out
};

/// A made-up home folder at a made-up time, and what a finder needs to look through it.
class ScanFixture {
private:
    TemporaryFolder folder_; // before what lies in it

public:
    ScanFixture() { std::filesystem::create_directories(home()); }

    [[nodiscard]] std::filesystem::path home() const { return folder_ / "home"; }
    [[nodiscard]] std::filesystem::path applications() const { return folder_ / "Applications"; }

    /// A file that occupies `bytes`, rounded up to whole blocks, and was modified `age` ago.
    std::filesystem::path file(const std::filesystem::path& path, std::int64_t bytes, std::chrono::nanoseconds age) {
        const auto url = at(path);
        std::filesystem::create_directories(url.parent_path());
        std::filesystem::remove(url); // truncating an existing file would be slow
        const int fd = open(url.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0644);
        const bool made = fd >= 0 && (bytes == 0 || allocate(fd, bytes));
        close(fd);
        if (!made)
            throw std::runtime_error("cannot make " + url.native());
        setAge(url, age);
        return url;
    }
    std::filesystem::path directory(const std::filesystem::path& path) {
        std::filesystem::create_directories(at(path));
        return at(path);
    }
    /// An information file at `path`, in which a bundle says what it is called.
    std::filesystem::path information(const std::filesystem::path& path, const std::string& identifier) {
        std::filesystem::create_directories(at(path).parent_path());
        writeFile(at(path), R"(<plist version="1.0"><dict><key>CFBundleIdentifier</key><string>)" + identifier +
                                "</string></dict></plist>");
        return at(path);
    }
    /// A folder with one file in it. Both were modified `age` ago.
    std::filesystem::path folderWithFile(const std::filesystem::path& path, std::int64_t bytes,
                                         std::chrono::nanoseconds age) {
        file(path / "data", bytes, age);
        setAge(at(path), age);
        return at(path);
    }
    std::filesystem::path link(const std::filesystem::path& path, const std::filesystem::path& target) {
        std::filesystem::create_directories(at(path).parent_path());
        std::filesystem::create_symlink(target, at(path));
        return at(path);
    }
    void setAge(const std::filesystem::path& path, std::chrono::nanoseconds age) const {
        setModified(at(path), now - age);
    }
    [[nodiscard]] std::filesystem::path at(const std::filesystem::path& path) const {
        return path.is_absolute() ? path : home() / path;
    }

    SystemTime now = std::chrono::sys_days(std::chrono::year(2026) / 6 / 1);
    FakeWorkers workers;
    ScanEnvironment environment{.places = {.home = home(),
                                           .applications = applications(),
                                           .systemApplications = folder_ / "System/Applications"},
                                .workers = {},
                                .now = [this] { return now; }};
    ScanBudget budget{.deadline = deadlineIn(std::chrono::seconds(60)), .limitedCategories = {}};
    ScanContext context{environment, workers, budget};
};

/// The last components, in order.
[[nodiscard]] inline std::vector<std::string> namesOf(const std::vector<CleanupCandidate>& candidates) {
    std::vector<std::string> names;
    for (const auto& candidate : candidates)
        names.push_back(candidate.url.filename().native());
    return names;
}

} // namespace vantry
