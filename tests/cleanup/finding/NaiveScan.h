#pragma once

#include "tests/cleanup/finding/NaivePlaces.h"
#include "tests/cleanup/finding/ScanFixture.h"
#include "tests/support/TestSystem.h"

#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// A second implementation of a scan, without deadlines.
namespace vantry::naive {

struct Found {
    std::string path;
    std::string title;
    CleanupCategory category;
    std::int64_t size;
    bool isLowerBound = false;

    bool operator==(const Found&) const = default;
    friend void PrintTo(const Found& found, std::ostream* stream) {
        *stream << rawValue(found.category) << " " << found.path << " (" << found.title << ") "
                << (found.isLowerBound ? "at least " : "") << found.size;
    }
};

struct Answer {
    std::vector<Found> candidates;
    std::map<CleanupCategory, std::string> states;
    std::map<CleanupCategory, std::string> amounts;
};

class Scan {
public:
    Scan(const ScanFixture& made, std::set<std::string> running) : made_(made), running_(std::move(running)) {}

    Answer answer() {
        for (const auto& use : uses)
            switch (use.finds) {
            case files: addFiles(use, home(use.place)); break;
            case folders: addFolders(use, home(use.place)); break;
            case wholeFolder: addWhole(use, home(use.place)); break;
            case installerApps: addInstallers(); break;
            case savedStates: addOrphans(home(use.place)); break;
            case deviceBackups: addBackups(home(use.place)); break;
            }
        removeDuplicates();
        std::stable_sort(found_.begin(), found_.end(), [](const Found& a, const Found& b) {
            const int areaOfA = static_cast<int>(area(a.category));
            const int areaOfB = static_cast<int>(area(b.category));
            if (areaOfA != areaOfB)
                return areaOfA < areaOfB;
            if (lowRisk(a.category) != lowRisk(b.category))
                return lowRisk(a.category);
            return a.size > b.size;
        });
        Answer result{.candidates = found_, .states = {}, .amounts = {}};
        addStates(result);
        addAmounts(result);
        return result;
    }

private:
    [[nodiscard]] std::string home(const std::string& place) const {
        return (made_.home() / place).lexically_normal().native();
    }

    [[nodiscard]] SystemTime cutoff(int days) const { return made_.now - std::chrono::seconds(86400) * days; }
    static SystemTime dateOf(const struct stat& said) {
        return SystemTime(std::chrono::nanoseconds(modificationTime(said)));
    }

    // The result of measuring `folder`, which the fake workers may cut short.
    [[nodiscard]] DirectoryMetrics sum(const std::string& folder) const {
        if (const auto given = made_.workers.metrics.find(folder); given != made_.workers.metrics.end())
            return given->second;
        DirectoryMetrics all{.complete = true};
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (const auto said = look(entry.path().native()); said && S_ISREG(said->st_mode)) {
                all.size += said->st_blocks * 512;
                all.newestModificationDate = std::max(all.newestModificationDate, std::optional(dateOf(*said)));
            }
        return all;
    }
    static bool isKnown(const DirectoryMetrics& measured) { return measured.complete || measured.size > 0; }

    // Adds a folder that a finder measured.
    void addMeasured(const std::string& path, const std::string& title, CleanupCategory category) {
        const auto inside = sum(path);
        if (!inside.complete)
            limited_.insert(category);
        if (isKnown(inside))
            found_.push_back({path, title, category, inside.size, !inside.complete});
    }

    // Whether a folder below the home folder, the last one included, is a link.
    [[nodiscard]] bool leadsThroughLink(std::string path) const {
        for (; path.size() > made_.home().native().size(); path.resize(path.rfind('/')))
            if (isLink(path))
                return true;
        return false;
    }

    void keepLargest(std::vector<Found> some, const Use& use) {
        std::stable_sort(some.begin(), some.end(), [](const Found& a, const Found& b) { return a.size > b.size; });
        if (some.size() > use.count) {
            limited_.insert(use.category);
            some.resize(use.count);
        }
        found_.insert(found_.end(), some.begin(), some.end());
    }

    // An old and large file.
    [[nodiscard]] bool isOffered(const std::string& path, const Use& use) const {
        return (use.names.empty() ? !isOfAnotherDownload(path) : use.names.contains(extension(path))) && isFile(path) &&
               dateOf(*look(path)) < cutoff(use.days) && bytesOf(path) >= use.minimum;
    }

    void addFiles(const Use& use, const std::string& folder) {
        if (isLink(folder) || (lowRisk(use.category) && leadsThroughLink(folder)))
            return;
        std::vector<Found> some;
        for (const auto& path : list(folder))
            if (isOffered(path, use))
                some.push_back({path, name(path), use.category, bytesOf(path)});
        keepLargest(some, use);
    }

    void addFolders(const Use& use, const std::string& folder) {
        if (isLink(folder))
            return;
        std::vector<Found> some;
        for (const auto& path : list(folder)) {
            if (!isRealFolder(path) || use.names.contains(name(path)) || dateOf(*look(path)) >= cutoff(use.days))
                continue;
            const auto inside = sum(path);
            if (!inside.complete)
                limited_.insert(use.category);
            if (inside.newestModificationDate.value_or(SystemTime::min()) < cutoff(use.days) &&
                inside.size >= use.minimum)
                some.push_back({path, name(path), use.category, inside.size, !inside.complete});
        }
        keepLargest(some, use);
    }

    void addWhole(const Use& use, const std::string& folder) {
        if (isRealFolder(folder) && (sum(folder).size > 0 || !sum(folder).complete))
            addMeasured(folder, use.title, use.category);
    }

    [[nodiscard]] std::vector<std::string> installerPaths() const {
        std::vector<std::string> paths;
        for (const auto& path : list(made_.applications().native()))
            if (extension(path) == "app" && name(path).rfind("Install macOS", 0) == 0)
                paths.push_back(path);
        return paths;
    }
    void addInstallers() {
        for (const auto& path : installerPaths())
            if (isRealFolder(path))
                addMeasured(path, stem(path), macOSInstaller);
    }

    // Collects the identifiers of the bundles in `folder`. `outermost` is the bundle that `folder` lies in, or empty.
    static void addBundles(const std::string& folder, std::string outermost, Names& claimed, bool& cut) {
        if (extension(folder) == "app") {
            if (outermost.empty())
                outermost = folder;
            std::ifstream stream(folder + "/Contents/Info.plist");
            const std::string text{std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
            const std::string begin = "<key>CFBundleIdentifier</key><string>";
            if (const auto at = text.find(begin); at != std::string::npos)
                claimed.insert(
                    lower(text.substr(at + begin.size(), text.find('<', at + begin.size()) - at - begin.size())));
        }
        for (const auto& entry : std::filesystem::directory_iterator(folder)) {
            const auto path = entry.path().native();
            if (!outermost.empty() && name(path) == "Resources")
                continue;
            if (isRealFolder(path)) {
                addBundles(path, outermost, claimed, cut);
            } else if (isLink(path) && leadsToFolder(path)) {
                const auto target = std::filesystem::canonical(path).native();
                if (!outermost.empty() && target.starts_with(outermost + "/"))
                    addBundles(target, outermost, claimed, cut);
                else
                    cut = cut || outermost.empty() || extension(path) == "app";
            }
        }
    }

    void addOrphans(const std::string& root) {
        const auto isState = [](const auto& path) { return extension(path) == "savedstate"; };
        if (std::ranges::none_of(list(root), isState))
            return;
        Names claimed;
        bool cut = false;
        for (const auto& folder : {made_.applications().native(), home("Applications")})
            if (isRealFolder(folder))
                addBundles(folder, "", claimed, cut);
            else if (leadsToFolder(folder))
                cut = true;
        if (cut) {
            limited_.insert(orphan);
            return;
        }
        for (const auto& identifier : running_)
            claimed.insert(lower(identifier));
        for (const auto& path : list(root))
            if (isState(path) && isRealFolder(path) && !claimed.contains(lower(stem(path))))
                addMeasured(path, stem(path), orphan);
    }

    void addBackups(const std::string& root) {
        std::vector<std::pair<std::string, std::string>> records; // path, identity
        for (const auto& path : list(root)) {
            if (!isRealFolder(path))
                continue;
            std::string identity;
            if (const auto texts = made_.workers.lists.find(path + "/Info.plist"); texts != made_.workers.lists.end())
                for (const char* key : {"Target Identifier", "Unique Identifier", "GUID"})
                    if (identity.empty() && texts->second.contains(key))
                        identity = texts->second.at(key);
            if (identity.empty() && name(path).substr(0, name(path).find('-')).size() >= 20)
                identity = name(path).substr(0, name(path).find('-'));
            if (!identity.empty())
                records.emplace_back(path, identity);
        }
        for (const auto& [path, identity] : records)
            for (const auto& [other, same] : records)
                if (identity == same && modificationTime(*look(other)) > modificationTime(*look(path))) {
                    addMeasured(path, "Older backup · " + name(path), deviceBackup);
                    break;
                }
    }

    void removeDuplicates() {
        std::vector<Found> kept;
        for (const auto& one : found_)
            if (const auto other = std::ranges::find(kept, one.path, &Found::path); other == kept.end())
                kept.push_back(one);
            else if (!lowRisk(other->category) && lowRisk(one.category))
                *other = one;
        found_ = kept;
    }

    [[nodiscard]] std::vector<std::string> places(CleanupCategory category) const {
        std::vector<std::string> all;
        for (const auto& use : uses)
            if (use.category == category)
                all.push_back(home(use.place));
        return all;
    }

    void addStates(Answer& result) const {
        for (const auto& row : allCleanupCategories) {
            std::string state = "Not on This Mac";
            for (const auto& place : places(row.value))
                if (isRealFolder(place)) {
                    state = limited_.contains(row.value) || missedPlace(row.value) ? "Scan Incomplete" : "Checked";
                    break;
                } else if (leadsToFolder(place)) {
                    state = "Couldn’t Check";
                }
            if (row.value == deviceBackup && isLink(places(row.value)[0]))
                state = "Stored Somewhere Else";
            result.states[row.value] = state;
        }
    }
    // A missing place limits a finder that has several.
    [[nodiscard]] bool missedPlace(CleanupCategory category) const {
        if (category != developerArchive && category != deviceSoftware)
            return false;
        for (const auto& place : places(category))
            if (!isRealFolder(place) && !isLink(place))
                return true;
        return false;
    }

    struct Amount {
        std::int64_t bytes = 0;
        bool known = true;
        bool exact = true;
    };
    static std::string text(const Amount& amount) {
        return !amount.known ? "?" : (amount.exact ? "=" : ">") + std::to_string(amount.bytes);
    }
    static Amount together(const std::vector<Amount>& parts) {
        Amount all;
        all.known = parts.empty();
        for (const auto& part : parts) {
            all.known = all.known || part.known;
            all.exact = all.exact && part.known && part.exact;
            all.bytes += part.bytes;
        }
        return all;
    }
    [[nodiscard]] Amount amountOf(const std::string& place) const {
        if (!look(place))
            return {};
        if (!isRealFolder(place))
            return {0, false, false};
        return {sum(place).size, isKnown(sum(place)), sum(place).complete};
    }
    static Amount matching(const std::string& folder, const Names& extensions) {
        Amount all{0, true, isRealFolder(folder)};
        for (const auto& path : list(folder))
            if (isFile(path) && extensions.contains(extension(path)))
                all.bytes += bytesOf(path);
        return all;
    }

    void addAmounts(Answer& result) const {
        for (const auto& row : allCleanupCategories) {
            std::vector<Amount> parts;
            for (const auto& place : places(row.value))
                parts.push_back(amountOf(place));
            result.amounts[row.value] = text(together(parts));
        }
        std::vector<Amount> caches;
        for (const auto& place : places(developerCache))
            caches.push_back(isFile(place) ? Amount{bytesOf(place), true, true} : amountOf(place));
        result.amounts[developerCache] = text(together(caches));
        result.amounts[crashReport] = "=0";
        const auto downloads = home("Downloads");
        result.amounts[installer] = text(matching(downloads, installers));
        result.amounts[archive] = text(matching(downloads, archives));
        result.amounts[interruptedDownload] = text(matching(downloads, partials));
        Amount oldAndLarge{0, true, isRealFolder(downloads)};
        for (const auto& path : list(downloads))
            if (isOffered(path, *std::ranges::find(uses, largeDownload, &Use::category)))
                oldAndLarge.bytes += bytesOf(path);
        result.amounts[largeDownload] = text(oldAndLarge);
        std::vector<Amount> apps;
        for (const auto& path : installerPaths())
            if (!isLink(path))
                apps.push_back(isRealFolder(path) ? amountOf(path) : Amount{bytesOf(path), true, true});
        result.amounts[macOSInstaller] = isRealFolder(made_.applications().native()) ? text(together(apps)) : "?";
        std::vector<Amount> parts;
        for (const auto& place : places(deviceSoftware))
            if (look(place))
                parts.push_back(matching(place, updates));
        result.amounts[deviceSoftware] = text(together(parts));
    }

    const ScanFixture& made_;
    std::set<std::string> running_;
    std::vector<Found> found_;
    std::set<CleanupCategory> limited_;
};

} // namespace vantry::naive
