#include "cleanup/measuring/BundleSearch.h"

#include "base/Text.h"
#include "base/UniqueFd.h"
#include "cleanup/measuring/PropertyListFile.h"
#include "cleanup/model/CleanupRules.h"
#include "platform/PropertyList.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <dirent.h>
#include <fcntl.h>
#include <memory>
#include <set>
#include <string_view>
#include <sys/stat.h>
#include <system_error>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

using namespace std::string_view_literals;

// Folders with these extensions are bundles even without "Contents".
constexpr std::array bundleExtensions{"app"sv,     "appex"sv,    "audiounit"sv,   "bundle"sv, "component"sv,
                                      "driver"sv,  "dext"sv,     "framework"sv,   "kext"sv,   "mdimporter"sv,
                                      "plugin"sv,  "prefpane"sv, "qlgenerator"sv, "saver"sv,  "systemextension"sv,
                                      "service"sv, "vst"sv,      "vst3"sv,        "xpc"sv};

// These folders are not part of a bundle's structure, and they can be very large.
constexpr std::array foldersOfData{"_codesignature"sv, "_masreceipt"sv,      "data"sv,      "headers"sv, "modules"sv,
                                   "privateheaders"sv, "privateresources"sv, "resources"sv, "sc_info"sv, "sdks"sv};
constexpr std::array extensionsOfData{"lproj"sv, "dsym"sv, "docset"sv, "sdk"sv};

// Where a bundle keeps its information: applications and most others, frameworks, and bundles without "Contents".
constexpr std::array placesOfInformation{"Contents/Info.plist"sv, "Resources/Info.plist"sv, "Info.plist"sv};
const auto identifierKeys = std::to_array<std::string>({"CFBundleIdentifier"});

template <std::size_t Count>
bool contains(const std::array<std::string_view, Count>& texts, std::string_view text) {
    return std::ranges::find(texts, text) != texts.end();
}

bool isBundle(const std::filesystem::path& folder) { return contains(bundleExtensions, lowercaseExtension(folder)); }

bool holdsData(const std::filesystem::path& folder) {
    return contains(foldersOfData, asciiLowercase(folder.filename().native())) ||
           contains(extensionsOfData, lowercaseExtension(folder));
}

bool liesIn(const std::filesystem::path& path, const std::filesystem::path& folder) {
    return path == folder || path.native().starts_with(folder.native() + "/");
}

// Errors that mean that there is no item; a broken link counts.
bool meansNothing(int error) { return error == ENOENT || error == ENOTDIR || error == ELOOP; }

enum class Kind { folder, link, other };

// Absent if there is no item, or it cannot be examined.
std::optional<Kind> kindAt(const std::filesystem::path& path) {
    struct stat facts = {};
    if (lstat(path.c_str(), &facts) != 0)
        return std::nullopt;
    return S_ISDIR(facts.st_mode) ? Kind::folder : S_ISLNK(facts.st_mode) ? Kind::link : Kind::other;
}

class BundleSearch {
public:
    BundleSearch(const ApplicationPlaces& places, const BundleTelling& tell) : places_(places), tell_(tell) {}

    [[nodiscard]] bool run() {
        for (const auto& folder : places_.folders)
            addPlace(folder);
        while (complete_ && !pending_.empty()) {
            const Folder folder = std::move(pending_.back());
            pending_.pop_back();
            visit(folder);
        }
        return complete_;
    }

private:
    // All paths are free of links.
    struct Folder {
        std::filesystem::path path;
        std::filesystem::path bundle; ///< the outermost bundle around it; empty in an applications folder
    };

    struct Entry {
        std::filesystem::path path;
        Kind kind;
    };

    void cut() { complete_ = false; }

    // An applications folder. One that is a link, or that is missing or cannot be examined, is treated as a link in
    // such a folder is.
    void addPlace(const std::filesystem::path& folder) {
        std::error_code error;
        const auto real = std::filesystem::canonical(folder, error);
        if (!error && kindAt(folder) == Kind::folder)
            pending_.push_back({real, {}});
        else
            addTarget(folder, {});
    }

    void visit(Folder folder) {
        const auto entries = list(folder.path);
        if (!entries)
            return;
        if (folder.bundle.empty() && isBundle(folder.path))
            folder.bundle = folder.path;
        if (!tell_(folder.path.has_extension() ? identifier(folder) : std::nullopt))
            return cut();
        for (const auto& [path, kind] : *entries)
            if (folder.bundle.empty() || !holdsData(path)) {
                if (kind == Kind::folder)
                    pending_.push_back({path, folder.bundle});
                else
                    addTarget(path, folder.bundle);
            }
    }

    // Adds the target of the link `path` if it is a folder that belongs to the search. Nothing is done for a link that
    // leads nowhere or to something else than a folder. What may be a bundle and either cannot be examined or lies
    // elsewhere cuts the search.
    void addTarget(const std::filesystem::path& path, const std::filesystem::path& bundle) {
        std::error_code error;
        const auto target = std::filesystem::canonical(path, error);
        if (error && meansNothing(error.value()))
            return;
        const bool mayBeBundle = bundle.empty() || isBundle(path) || isBundle(target);
        if (error ? !mayBeBundle : kindAt(target) != Kind::folder)
            return;
        if (!error && !bundle.empty() && liesIn(target, bundle)) {
            if (!holdsData(target))
                pending_.push_back({target, bundle});
        } else if (!error && mayBeBundle && isOfSystem(target)) {
            pending_.push_back({target, {}});
        } else if (mayBeBundle) {
            cut(); // it may hold bundles
        }
    }

    [[nodiscard]] bool isOfSystem(const std::filesystem::path& path) const {
        return liesIn(path, places_.system) && !liesIn(path, places_.system / "Volumes/Data"); // homes lie there
    }

    // The folders and links in `folder`. Absent if it is gone or was visited before.
    std::optional<std::vector<Entry>> list(const std::filesystem::path& folder) {
        UniqueFd fd(open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        struct stat facts = {};
        if (!fd || fstat(fd.get(), &facts) != 0) {
            if (!meansNothing(errno))
                cut();
            return std::nullopt;
        }
        if (!visited_.emplace(facts.st_dev, facts.st_ino).second)
            return std::nullopt;
        const std::unique_ptr<DIR, int (*)(DIR*)> stream(fdopendir(fd.get()), closedir);
        if (!stream) {
            cut();
            return std::nullopt;
        }
        std::ignore = fd.release(); // the stream owns it
        std::vector<Entry> entries;
        for (errno = 0; const dirent* entry = readdir(stream.get()); errno = 0)
            if (const std::string_view name(entry->d_name); name != "." && name != "..")
                if (const auto kind = kindOf(*entry, folder); kind != Kind::other)
                    entries.push_back({folder / name, kind});
        if (errno != 0)
            cut();
        return entries;
    }

    static Kind kindOf(const dirent& entry, const std::filesystem::path& folder) {
        switch (entry.d_type) {
        case DT_DIR: return Kind::folder;
        case DT_LNK: return Kind::link;
        case DT_UNKNOWN: return kindAt(folder / entry.d_name).value_or(Kind::link); // addTarget sees what is there
        default: return Kind::other;
        }
    }

    // The identifier of the bundle, from the first information file that exists.
    std::optional<std::string> identifier(const Folder& folder) {
        for (const auto place : placesOfInformation) {
            if (place != placesOfInformation.front() && folder.bundle.empty())
                break; // not a bundle: a folder with a dot in its name
            std::error_code error;
            const auto file = std::filesystem::canonical(folder.path / place, error);
            if (error && meansNothing(error.value()))
                continue;
            const auto& container = folder.bundle.empty() ? folder.path : folder.bundle;
            if (error || !liesIn(file, container)) {
                cut();
                return std::nullopt;
            }
            return identifierIn(file);
        }
        return std::nullopt;
    }

    std::optional<std::string> identifierIn(const std::filesystem::path& file) {
        struct stat facts = {};
        if (asciiLowercase(file.filename().native()) != "info.plist" || lstat(file.c_str(), &facts) != 0 ||
            !S_ISREG(facts.st_mode))
            return std::nullopt;
        const auto contents = contentsOfPropertyListFile(file);
        if (!contents) {
            cut();
            return std::nullopt;
        }
        const auto texts = propertyListTexts(*contents, identifierKeys);
        if (!texts || !texts->contains(identifierKeys.front()))
            return std::nullopt;
        return texts->at(identifierKeys.front());
    }

    const ApplicationPlaces& places_;
    const BundleTelling& tell_;
    std::vector<Folder> pending_;
    std::set<std::pair<dev_t, ino_t>> visited_;
    bool complete_ = true;
};

} // namespace

bool searchBundles(const ApplicationPlaces& places, const BundleTelling& tell) {
    return BundleSearch(places, tell).run();
}

} // namespace vantry::CleanupScanner
