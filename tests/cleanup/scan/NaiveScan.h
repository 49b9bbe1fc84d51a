#pragma once

#include "tests/cleanup/scan/ScanFixture.h"

#include "cleanup/model/CleanupCategory.h"
#include "tests/support/TestSystem.h"

#include <cctype>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

/// What a scan has to find, written down a second time: slow, plain, and sharing nothing with the product but its
/// vocabulary. Knows no deadlines.
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
        Answer result;
        addFolders(home("Library/Caches"), CleanupCategory::cache, 30, 26214400, 35,
                   {"Homebrew", "CocoaPods", "org.swift.swiftpm"});
        addFiles(home("Library/Logs"), CleanupCategory::log, 30, 524288, 40, {"log", "txt", "out"});
        addFiles(home("Library/Logs/DiagnosticReports"), CleanupCategory::crashReport, 30, 524288, 30,
                 {"crash", "ips", "diag", "spin", "hang"});
        addFiles(home("Downloads"), CleanupCategory::installer, 21, 5242880, 30, installers);
        addFiles(home("Downloads"), CleanupCategory::archive, 45, 26214400, 30, archives);
        addFiles(home("Downloads"), CleanupCategory::interruptedDownload, 14, 5242880, 20, partials);
        addFiles(home("Downloads"), CleanupCategory::largeDownload, 90, 262144000, 30, {});
        addFolders(home("Library/Developer/Xcode/Archives"), CleanupCategory::developerArchive, 180, 262144000, 20, {});
        addFolders(home("Library/Developer/Xcode/iOS DeviceSupport"), CleanupCategory::developerArchive, 180, 262144000,
                   20, {});
        addWhole("Library/Developer/Xcode/DerivedData", "Xcode Derived Data", CleanupCategory::developerBuild);
        addWhole("Library/Developer/CoreSimulator/Caches", "Simulator Caches", CleanupCategory::developerBuild);
        addWhole("Library/Caches/Homebrew", "Homebrew Cache", CleanupCategory::developerCache);
        addWhole("Library/Caches/CocoaPods", "CocoaPods Cache", CleanupCategory::developerCache);
        addWhole("Library/Caches/org.swift.swiftpm", "Swift Package Manager Cache", CleanupCategory::developerCache);
        addWhole(".npm/_cacache", "npm Cache", CleanupCategory::developerCache);
        addWhole(".gradle/caches", "Gradle Cache", CleanupCategory::developerCache);
        addInstallers();
        addOrphans();
        addBackups();
        for (const char* device : {"iPhone", "iPad", "iPod"})
            addFiles(home(std::string("Library/iTunes/") + device + " Software Updates"),
                     CleanupCategory::deviceSoftware, 90, 262144000, 10, {"ipsw", "ipcc", "dmg"});
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
        result.candidates = found_;
        addStates(result);
        addAmounts(result);
        return result;
    }

private:
    using Names = std::set<std::string>;

    inline static const Names installers{"dmg", "pkg", "xip"};
    inline static const Names archives{"zip", "7z", "rar", "tar", "gz", "bz2", "xz", "tgz", "tbz", "tbz2"};
    inline static const Names partials{"download", "crdownload", "part", "partial"};

    [[nodiscard]] std::string home(const std::string& place) const { return (made_.home() / place).native(); }

    static bool lowRisk(CleanupCategory category) {
        return category == CleanupCategory::log || category == CleanupCategory::crashReport ||
               category == CleanupCategory::installer || category == CleanupCategory::interruptedDownload;
    }

    static std::optional<struct stat> look(const std::string& path) {
        struct stat said = {};
        return lstat(path.c_str(), &said) == 0 ? std::optional(said) : std::nullopt;
    }
    static bool isRealFolder(const std::string& path) {
        const auto said = look(path);
        return said && S_ISDIR(said->st_mode);
    }
    static bool isLink(const std::string& path) {
        const auto said = look(path);
        return said && S_ISLNK(said->st_mode);
    }
    static bool leadsToFolder(const std::string& path) {
        struct stat said = {};
        return stat(path.c_str(), &said) == 0 && S_ISDIR(said.st_mode);
    }
    [[nodiscard]] std::int64_t cutoff(int days) const {
        return made_.now.time_since_epoch().count() - std::int64_t{days} * 86400 * 1'000'000'000;
    }

    static std::vector<std::string> list(const std::string& folder) {
        std::vector<std::string> paths;
        if (isRealFolder(folder))
            for (const auto& entry : std::filesystem::directory_iterator(folder))
                if (entry.path().filename().native()[0] != '.')
                    paths.push_back(entry.path().native());
        std::sort(paths.begin(), paths.end());
        return paths;
    }
    static std::string name(const std::string& path) { return path.substr(path.rfind('/') + 1); }
    static std::string stem(const std::string& path) { return name(path).substr(0, name(path).rfind('.')); }
    static std::string extension(const std::string& path) {
        const auto dot = name(path).rfind('.');
        std::string text = dot == std::string::npos || dot == 0 ? "" : name(path).substr(dot + 1);
        for (auto& character : text)
            character = static_cast<char>(std::tolower(character));
        return text;
    }
    static std::string lower(std::string text) {
        for (auto& character : text)
            character = static_cast<char>(std::tolower(character));
        return text;
    }

    struct Sum {
        std::int64_t size = 0;
        std::optional<std::int64_t> newest;
        bool isCut = false;

        [[nodiscard]] bool isKnown() const { return !isCut || size > 0; }
    };
    // What measuring `folder` gives, which the fakes may cut short.
    [[nodiscard]] Sum sum(const std::string& folder) const {
        Sum all;
        if (const auto given = made_.workers.metrics.find(folder); given != made_.workers.metrics.end()) {
            all.size = given->second.size;
            if (const auto newest = given->second.newestModificationDate)
                all.newest = newest->time_since_epoch().count();
            all.isCut = !given->second.complete;
            return all;
        }
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (const auto said = look(entry.path().native()); said && S_ISREG(said->st_mode)) {
                all.size += said->st_blocks * 512;
                all.newest = std::max(all.newest.value_or(modificationTime(*said)), modificationTime(*said));
            }
        return all;
    }

    // A folder that the finder of a category measured.
    void addMeasured(std::vector<Found>& some, const std::string& path, const std::string& title,
                     CleanupCategory category) {
        const auto inside = sum(path);
        if (inside.isCut)
            limited_.insert(category);
        if (inside.isKnown())
            some.push_back({path, title, category, inside.size, inside.isCut});
    }

    // Whether a folder below the home folder, the last one included, is a link.
    [[nodiscard]] bool leadsThroughLink(std::string path) const {
        for (; path.size() > made_.home().native().size(); path.resize(path.rfind('/')))
            if (isLink(path))
                return true;
        return false;
    }

    void keepLargest(std::vector<Found> some, CleanupCategory category, std::size_t count) {
        std::stable_sort(some.begin(), some.end(), [](const Found& a, const Found& b) { return a.size > b.size; });
        if (some.size() > count) {
            limited_.insert(category);
            some.resize(count);
        }
        found_.insert(found_.end(), some.begin(), some.end());
    }

    void addFiles(const std::string& folder, CleanupCategory category, int days, std::int64_t minimum,
                  std::size_t count, const Names& extensions) {
        if (isLink(folder) || (lowRisk(category) && leadsThroughLink(folder)))
            return;
        std::vector<Found> some;
        for (const auto& path : list(folder)) {
            const auto said = look(path);
            const auto end = extension(path);
            if (!extensions.empty() ? !extensions.contains(end)
                                    : installers.contains(end) || archives.contains(end) || partials.contains(end))
                continue;
            if (S_ISREG(said->st_mode) && modificationTime(*said) < cutoff(days) && said->st_blocks * 512 >= minimum)
                some.push_back({path, name(path), category, said->st_blocks * 512});
        }
        keepLargest(some, category, count);
    }

    void addFolders(const std::string& folder, CleanupCategory category, int days, std::int64_t minimum,
                    std::size_t count, const Names& excluded) {
        if (isLink(folder))
            return;
        std::vector<Found> some;
        for (const auto& path : list(folder)) {
            const auto said = look(path);
            if (!S_ISDIR(said->st_mode) || excluded.contains(name(path)) || modificationTime(*said) >= cutoff(days))
                continue;
            const auto inside = sum(path);
            if (inside.isCut)
                limited_.insert(category);
            if ((!inside.newest || *inside.newest < cutoff(days)) && inside.size >= minimum)
                some.push_back({path, name(path), category, inside.size, inside.isCut});
        }
        keepLargest(some, category, count);
    }

    void addWhole(const std::string& place, const std::string& title, CleanupCategory category) {
        std::vector<Found> some;
        if (isRealFolder(home(place)))
            addMeasured(some, home(place), title, category);
        if (!some.empty() && some.front().size > 0)
            found_.push_back(some.front());
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
                addMeasured(found_, path, stem(path), CleanupCategory::macOSInstaller);
    }

    // What the bundles in `folder` call themselves, which lies in the bundle `outermost` if that is not empty.
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

    void addOrphans() {
        const auto root = home("Library/Saved Application State");
        bool anyState = false;
        for (const auto& path : list(root))
            anyState = anyState || extension(path) == "savedstate";
        if (!anyState)
            return;
        Names claimed;
        bool cut = false;
        for (const auto& folder : {made_.applications().native(), home("Applications")})
            if (isRealFolder(folder))
                addBundles(folder, "", claimed, cut);
            else if (leadsToFolder(folder))
                cut = true;
        if (cut) {
            limited_.insert(CleanupCategory::orphan);
            return;
        }
        for (const auto& identifier : running_)
            claimed.insert(lower(identifier));
        for (const auto& path : list(root))
            if (extension(path) == "savedstate" && isRealFolder(path) && !claimed.contains(lower(stem(path))))
                addMeasured(found_, path, stem(path), CleanupCategory::orphan);
    }

    void addBackups() {
        const auto root = home("Library/Application Support/MobileSync/Backup");
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
                    addMeasured(found_, path, "Older backup · " + name(path), CleanupCategory::deviceBackup);
                    break;
                }
    }

    void removeDuplicates() {
        std::vector<Found> kept;
        for (const auto& one : found_) {
            bool isNew = true;
            for (auto& other : kept)
                if (other.path == one.path) {
                    isNew = false;
                    if (!lowRisk(other.category) && lowRisk(one.category))
                        other = one;
                }
            if (isNew)
                kept.push_back(one);
        }
        found_ = kept;
    }

    [[nodiscard]] std::vector<std::string> places(CleanupCategory category) const {
        switch (category) {
        case CleanupCategory::cache: return {home("Library/Caches")};
        case CleanupCategory::log: return {home("Library/Logs")};
        case CleanupCategory::crashReport: return {home("Library/Logs/DiagnosticReports")};
        case CleanupCategory::installer:
        case CleanupCategory::archive:
        case CleanupCategory::interruptedDownload:
        case CleanupCategory::largeDownload: return {home("Downloads")};
        case CleanupCategory::macOSInstaller: return {made_.applications().native()};
        case CleanupCategory::orphan: return {home("Library/Saved Application State")};
        case CleanupCategory::developerBuild:
            return {home("Library/Developer/Xcode/DerivedData"), home("Library/Developer/CoreSimulator/Caches")};
        case CleanupCategory::developerCache:
            return {home("Library/Caches/Homebrew"), home("Library/Caches/CocoaPods"),
                    home("Library/Caches/org.swift.swiftpm"), home(".npm/_cacache"), home(".gradle/caches")};
        case CleanupCategory::developerArchive:
            return {home("Library/Developer/Xcode/Archives"), home("Library/Developer/Xcode/iOS DeviceSupport")};
        case CleanupCategory::deviceBackup: return {home("Library/Application Support/MobileSync/Backup")};
        case CleanupCategory::deviceSoftware:
            return {home("Library/iTunes/iPhone Software Updates"), home("Library/iTunes/iPad Software Updates"),
                    home("Library/iTunes/iPod Software Updates")};
        }
        return {};
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
            if (row.value == CleanupCategory::deviceBackup && isLink(places(row.value)[0]))
                state = "Stored Somewhere Else";
            result.states[row.value] = state;
        }
    }
    // A finder of several places is limited by one that is not there to be listed.
    [[nodiscard]] bool missedPlace(CleanupCategory category) const {
        if (category != CleanupCategory::developerArchive && category != CleanupCategory::deviceSoftware)
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
    [[nodiscard]] Amount whole(const std::string& place) const {
        if (!look(place))
            return {};
        if (!isRealFolder(place))
            return {0, false, false};
        return {sum(place).size, sum(place).isKnown(), !sum(place).isCut};
    }
    static Amount matching(const std::string& folder, const Names& extensions) {
        Amount all{0, true, isRealFolder(folder)};
        for (const auto& path : list(folder))
            if (const auto said = look(path); S_ISREG(said->st_mode) && extensions.contains(extension(path)))
                all.bytes += said->st_blocks * 512;
        return all;
    }

    void addAmounts(Answer& result) const {
        for (const auto& row : allCleanupCategories) {
            std::vector<Amount> parts;
            for (const auto& place : places(row.value))
                parts.push_back(whole(place));
            result.amounts[row.value] = text(together(parts));
        }
        std::vector<Amount> caches;
        for (const auto& place : places(CleanupCategory::developerCache))
            caches.push_back(look(place) && S_ISREG(look(place)->st_mode)
                                 ? Amount{look(place)->st_blocks * 512, true, true}
                                 : whole(place));
        result.amounts[CleanupCategory::developerCache] = text(together(caches));
        result.amounts[CleanupCategory::crashReport] = "=0";
        const auto downloads = home("Downloads");
        result.amounts[CleanupCategory::installer] = text(matching(downloads, installers));
        result.amounts[CleanupCategory::archive] = text(matching(downloads, archives));
        result.amounts[CleanupCategory::interruptedDownload] = text(matching(downloads, partials));
        Amount large{0, true, isRealFolder(downloads)};
        for (const auto& path : list(downloads)) {
            const auto said = look(path);
            const auto end = extension(path);
            if (!installers.contains(end) && !archives.contains(end) && !partials.contains(end) &&
                S_ISREG(said->st_mode) && modificationTime(*said) < cutoff(90) && said->st_blocks * 512 >= 262144000)
                large.bytes += said->st_blocks * 512;
        }
        result.amounts[CleanupCategory::largeDownload] = text(large);
        std::vector<Amount> apps;
        for (const auto& path : installerPaths())
            if (!isLink(path))
                apps.push_back(isRealFolder(path) ? whole(path) : Amount{look(path)->st_blocks * 512, true, true});
        result.amounts[CleanupCategory::macOSInstaller] =
            isRealFolder(made_.applications().native()) ? text(together(apps)) : "?";
        std::vector<Amount> updates;
        for (const auto& place : places(CleanupCategory::deviceSoftware))
            if (look(place))
                updates.push_back(matching(place, {"ipsw", "ipcc", "dmg"}));
        result.amounts[CleanupCategory::deviceSoftware] = text(together(updates));
    }

    const ScanFixture& made_;
    std::set<std::string> running_;
    std::vector<Found> found_;
    std::set<CleanupCategory> limited_;
};

} // namespace vantry::naive
