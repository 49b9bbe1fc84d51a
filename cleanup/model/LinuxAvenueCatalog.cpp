#include "cleanup/model/CleanupAvenue.h"

#include <algorithm>
#include <cstdlib>

namespace vantry {

namespace {

using Area = CleanupArea;
using Mode = CleanupAvenue::Mode;
using Category = CleanupCategory;
using Action = CleanupAvenue::Action;
using enum CleanupAvenue::Place::Kind;

// The avenue of macOS with this title, where Linux has the same one. A title that macOS does not have ends the program.
const CleanupAvenue& likeOnMacOS(std::string_view title) {
    const auto& avenues = CleanupAvenue::catalog();
    const auto found = std::ranges::find(avenues, title, &CleanupAvenue::title);
    if (found == avenues.end())
        std::abort();
    return *found;
}

// Each other entry: title, text, then symbol, treatment, categories and button; with places of its own also its name
// for programs, the places, and the owner's command. What the owners say of their places is from their documentation.
// clang-format off
std::vector<CleanupAvenue> everyAvenueOfLinux() {
    return {
        likeOnMacOS("Temporary app files"),
        likeOnMacOS("Logs and crash reports"),
        {Area::quickWins, "Caches that have not changed for 30 days",
         "What apps keep to load faster, without the caches that are listed by themselves. Quit an app before you remove "
         "its cache.",
         "shippingbox", Mode::manageInApp, {}, {},
         "appCaches", {{"${XDG_CACHE_HOME:-~/.cache}", oldCaches}}},
        {Area::quickWins, "Caches of Flatpak apps",
         "What Flatpak apps keep to load faster. Each app creates its own again.",
         "shippingbox", Mode::manageInApp, {}, {},
         "flatpakAppCaches", {{"~/.var/app/*/cache"}}},
        {Area::quickWins, "Temporary website files",
         "Clear them in the browser. History, passwords, sign-ins, cookies, and tabs are never scanned.",
         "safari", Mode::manageInApp, {}, {},
         "browserCaches", {{"${XDG_CACHE_HOME:-~/.cache}/mozilla"}, {"${XDG_CACHE_HOME:-~/.cache}/google-chrome"},
                           {"${XDG_CACHE_HOME:-~/.cache}/chromium"}}},
        {Area::quickWins, "Thumbnails",
         "Small previews of pictures and documents. GNOME keeps them for 180 days, up to 512 MB.",
         "camera.viewfinder", Mode::macOSManaged, {}, {},
         "thumbnails", {{"${XDG_CACHE_HOME:-~/.cache}/thumbnails"}}},
        {Area::quickWins, "Old logs of sessions and tools",
         "Earlier sessions’ messages, and logs of single programs. npm keeps its last ten.",
         "doc.text.magnifyingglass", Mode::manageInApp, {}, {},
         "oldLogs", {{"~/.xsession-errors.old"}, {"${XDG_DATA_HOME:-~/.local/share}/xorg/*.old"},
                     {"${npm_config_cache:-${NPM_CONFIG_CACHE:-~/.npm}}/_logs"},
                     {"${XDG_STATE_HOME:-~/.local/state}/*/*.log"}}},
        {Area::quickWins, "Submitted crash reports",
         "Reports that Firefox has already sent.",
         "doc.text.magnifyingglass", Mode::manageInApp, {}, {},
         "submittedCrashReports", {{"~/.mozilla/firefox/Crash Reports/submitted"}}},

        {Area::downloads, "Downloaded app installers",
         "Old .deb, .rpm, .snap, .flatpak, .dmg, .pkg, and .xip files used to install apps. Removing one does not uninstall "
         "the app.",
         "shippingbox.and.arrow.backward", Mode::scanned, {Category::installer}, Action::downloads},
        {Area::downloads, "Compressed files",
         "ZIP, RAR, and 7z files may be the only copy of something important, so they open in the file manager only.",
         "archivebox", Mode::scanned, {Category::archive}, Action::downloads},
        likeOnMacOS("Interrupted downloads"),
        likeOnMacOS("Large and old downloads"),
        {Area::downloads, "Large or old personal files",
         "Desktop, Documents, Videos, Music, and external drives are not swept automatically.",
         "folder", Mode::keptPrivate, {}, Action::home},
        likeOnMacOS("Duplicates and similar media"),
        {Area::downloads, "Screenshots and recordings",
         "Review in the file manager; image contents are not analyzed here.",
         "camera.viewfinder", Mode::keptPrivate, {}, Action::home},

        {Area::apps, "Unused apps",
         "Uninstall with the software or package manager so the app and its documents remain understandable.",
         "app.dashed", Mode::manageInApp, {}, {}},
        {Area::apps, "Flatpak apps and runtimes",
         "Runtimes that no app uses any more can go. Files with several names are counted once.",
         "square.on.square", Mode::manageInApp, {}, {},
         "flatpak", {{"/var/lib/flatpak"}, {"${FLATPAK_USER_DIR:-${XDG_DATA_HOME:-~/.local/share}/flatpak}"}},
         "flatpak uninstall --unused"},
        {Area::apps, "Data of removed Flatpak apps",
         "Data and settings of apps that are no longer installed, by their identifiers. They may hold documents.",
         "puzzlepiece.extension", Mode::manageInApp, {}, {},
         "flatpakLeftBehind", {{"~/.var/app", leftBehind}}, "flatpak uninstall --delete-data"},
        {Area::apps, "Snaps",
         "Installed snaps and the revisions before. A revision that is listed as disabled can be removed: snap remove NAME "
         "--revision N",
         "square.on.square", Mode::manageInApp, {}, {},
         "snap", {{"/var/lib/snapd/snaps"}}, "snap list --all"},
        {Area::apps, "App data and saved content",
         "These folders can contain accounts, saves, projects, or downloads, so Ombrel never deletes them.",
         "folder.badge.gearshape", Mode::manageInApp, {}, {}},
        {Area::apps, "Shader caches of Steam",
         "Steam compiles them again. They can be switched off in Steam’s settings.",
         "gamecontroller", Mode::manageInApp, {}, {},
         "steamShaders", {{"~/.local/share/Steam/steamapps/shadercache"}}},
        {Area::apps, "Windows folders of Steam games",
         "They can hold saved games. Uninstall a game in Steam to remove its folder.",
         "gamecontroller", Mode::manageInApp, {}, {},
         "steamPrefixes", {{"~/.local/share/Steam/steamapps/compatdata"}}},
        {Area::apps, "Game libraries and emulator content",
         "Remove games through Steam or their launcher. ROMs, BIOS files, saves, memory cards, and mods are "
         "intentionally excluded.",
         "gamecontroller", Mode::manageInApp, {}, {}},
        {Area::apps, "Old system installers",
         "Full system installers in the applications folder can occupy many gigabytes.",
         "macbook.and.iphone", Mode::scanned, {Category::macOSInstaller}, Action::applications},
        likeOnMacOS("Old window data from removed apps"),

        {Area::developer, "pip",
         "What pip has downloaded and built. Its layout is pip’s own business, so leave single files alone.",
         "terminal", Mode::manageInApp, {}, {},
         "pip", {{"${PIP_CACHE_DIR:-${XDG_CACHE_HOME:-~/.cache}/pip}"}}, "pip cache purge"},
        {Area::developer, "uv",
         "Environments may link into it: it is never safe to change it directly.",
         "terminal", Mode::manageInApp, {}, {},
         "uv", {{"${UV_CACHE_DIR:-${XDG_CACHE_HOME:-~/.cache}/uv}"}}, "uv cache prune"},
        {Area::developer, "conda",
         "Packages that environments link to; removing them by hand breaks those.",
         "terminal", Mode::manageInApp, {}, {},
         "conda", {{"${CONDA_PKGS_DIRS:-~/miniconda3/pkgs}"}, {"${CONDA_PKGS_DIRS:-~/anaconda3/pkgs}"},
                   {"${CONDA_PKGS_DIRS:-~/miniforge3/pkgs}"}, {"${CONDA_PKGS_DIRS:-~/.conda/pkgs}"}},
         "conda clean --all"},
        {Area::developer, "npm",
         "Strictly a cache, says npm. Its command checks it and removes what is not needed.",
         "terminal", Mode::manageInApp, {}, {},
         "npm", {{"${npm_config_cache:-${NPM_CONFIG_CACHE:-~/.npm}}/_cacache"}}, "npm cache verify"},
        {Area::developer, "pnpm",
         "Packages that projects link to. Removing those that no project uses is safe.",
         "terminal", Mode::manageInApp, {}, {},
         "pnpm", {{"${XDG_DATA_HOME:-~/.local/share}/pnpm/store"}}, "pnpm store prune"},
        {Area::developer, "Cargo",
         "Crates and repositories that Cargo downloads again. One missing file breaks builds, so never remove single ones.",
         "terminal", Mode::manageInApp, {}, {},
         "cargo", {{"${CARGO_HOME:-~/.cargo}/registry"}, {"${CARGO_HOME:-~/.cargo}/git"}}},
        {Area::developer, "Go build cache",
         "Results of compiling, which Go makes again. The command removes all of them.",
         "terminal", Mode::manageInApp, {}, {},
         "goBuild", {{"${GOCACHE:-${XDG_CACHE_HOME:-~/.cache}/go-build}"}}, "go clean -cache"},
        {Area::developer, "Go modules",
         "Downloaded modules. Their folders are read-only, so that a file manager cannot remove them. The command removes all "
         "of them.",
         "terminal", Mode::manageInApp, {}, {},
         "goModules", {{"${GOMODCACHE:-${GOPATH:-~/go}/pkg/mod}"}}, "go clean -modcache"},
        {Area::developer, "Gradle",
         "Gradle removes by itself what has not been used for 30 days.",
         "terminal", Mode::manageInApp, {}, {},
         "gradle", {{"${GRADLE_USER_HOME:-~/.gradle}/caches"}}},
        {Area::developer, "ccache",
         "Results of compiling. It keeps itself to 5 GB unless it was told otherwise. The command removes all of them.",
         "terminal", Mode::manageInApp, {}, {},
         "ccache", {{"${CCACHE_DIR:-${XDG_CACHE_HOME:-~/.cache}/ccache}"}, {"${CCACHE_DIR:-~/.ccache}"}}, "ccache -C"},
        {Area::developer, "JetBrains IDEs",
         "Indexes and caches, and Local History: versions of files that may be nowhere else. In the IDE, Delete Leftover IDE "
         "Directories removes those of old versions.",
         "hammer", Mode::manageInApp, {}, {},
         "jetbrains", {{"${XDG_CACHE_HOME:-~/.cache}/JetBrains/*"}}},
        {Area::developer, "Visual Studio Code",
         "Caches that the editor makes again. The history of files, which lies beside them, is not counted.",
         "hammer", Mode::manageInApp, {}, {},
         "vscode", {{"${XDG_CONFIG_HOME:-~/.config}/Code/Cache"}, {"${XDG_CONFIG_HOME:-~/.config}/Code/CachedData"},
                    {"${XDG_CONFIG_HOME:-~/.config}/Code/CachedExtensionVSIXs"}}},
        {Area::developer, "Hugging Face models",
         "Downloaded models. Files that several versions share are counted once.",
         "cube.transparent", Mode::manageInApp, {}, {},
         "huggingface", {{"${HF_HUB_CACHE:-${HF_HOME:-${XDG_CACHE_HOME:-~/.cache}/huggingface}/hub}"}},
         "hf cache prune"},
        {Area::developer, "Ollama models",
         "Downloaded models. Remove one by its name: ollama rm NAME",
         "cube.transparent", Mode::manageInApp, {}, {},
         "ollama", {{"${OLLAMA_MODELS:-~/.ollama/models}"}, {"/usr/share/ollama/.ollama/models"}}, "ollama list"},
        {Area::developer, "Docker",
         "Images, containers, and volumes, which can hold databases. The command removes only images that have no name and no "
         "container.",
         "cube.transparent", Mode::manageInApp, {}, {},
         "docker", {{"/var/lib/docker"}}, "docker image prune"},
        {Area::developer, "Podman",
         "Images and containers, also those of toolboxes. The command removes only images that have no name and no container. "
         "Do not use podman system prune: it removes stopped toolboxes.",
         "cube.transparent", Mode::manageInApp, {}, {},
         "podman", {{"${XDG_DATA_HOME:-~/.local/share}/containers/storage"}}, "podman image prune"},
        {Area::developer, "Virtual machines",
         "Disks of virtual machines and emulated devices can hold irreplaceable work; remove them in their own manager.",
         "cube.transparent", Mode::manageInApp, {}, {},
         "virtualMachines", {{"~/.android/avd"}, {"~/VirtualBox VMs"},
                             {"${XDG_DATA_HOME:-~/.local/share}", diskImages}}},
        {Area::developer, "Vagrant boxes",
         "Downloaded boxes. Its command removes old versions of them.",
         "cube.transparent", Mode::manageInApp, {}, {},
         "vagrant", {{"${VAGRANT_HOME:-~/.vagrant.d}/boxes"}}, "vagrant box prune"},
        {Area::developer, "Project build folders and dependencies",
         "node_modules, build, dist, .next, Python environments, and engine-generated data require user-chosen "
         "project roots.",
         "folder.badge.questionmark", Mode::keptPrivate, {}, Action::home},
        likeOnMacOS("Rebuildable project data"),
        {Area::developer, "Coding-tool downloads and caches",
         "npm and Gradle, which are listed above too, Homebrew, SwiftPM, and CocoaPods. They remain review-only.",
         "terminal", Mode::scanned, {Category::developerCache}, Action::developer},
        likeOnMacOS("Archives and device support"),

        likeOnMacOS("Old iPhone and iPad backups"),
        likeOnMacOS("Downloaded device software"),

        {Area::system, "Trash",
         "What is in it stays recoverable until it is deleted. Empty it in the file manager.",
         "trash", Mode::macOSManaged, {}, {},
         "trash", {{"${XDG_DATA_HOME:-~/.local/share}/Trash"}}},
        {Area::system, "Trash inside snaps",
         "Files that were put into the Trash from a snap’s own file dialogs. File managers do not show them.",
         "trash", Mode::manageInApp, {}, {},
         "snapTrash", {{"~/snap/*/*/.local/share/Trash"}}},
        {Area::system, "Packages downloaded by APT",
         "APT downloads one again when it is needed.",
         "internaldrive", Mode::macOSManaged, {}, {},
         "aptArchives", {{"/var/cache/apt/archives"}}, "sudo apt-get clean"},
        {Area::system, "Packages downloaded by DNF",
         "Packages and, for the most part, lists of packages; DNF downloads them again. The command removes only the packages.",
         "internaldrive", Mode::macOSManaged, {}, {},
         "dnfCache", {{"/var/cache/dnf"}}, "sudo dnf clean packages"},
        {Area::system, "Packages downloaded by pacman",
         "Its command keeps the last three versions of each package.",
         "internaldrive", Mode::macOSManaged, {}, {},
         "pacmanCache", {{"/var/cache/pacman/pkg"}}, "paccache -r"},
        {Area::system, "System journal",
         "It limits itself to a tenth of the disk, or 4 GB.",
         "doc.text.magnifyingglass", Mode::macOSManaged, {}, {},
         "journal", {{"/var/log/journal"}}, "sudo journalctl --vacuum-size=500M"},
        {Area::system, "Core dumps",
         "Memory of programs that have crashed. systemd removes those it has collected after a few days.",
         "waveform.path.ecg", Mode::macOSManaged, {}, {},
         "coreDumps", {{"/var/crash"}, {"/var/lib/systemd/coredump"}, {"~", coreDumps}}, "coredumpctl list"},
        {Area::system, "Space the system can free automatically",
         "Snapshots and caches that the system made are normally reclaimed by their own programs.",
         "clock.arrow.circlepath", Mode::macOSManaged, {}, {}},
        {Area::system, "System data and temporary updates",
         "The system owns swap, sleep images, indexes, and other runtime storage.",
         "internaldrive", Mode::macOSManaged, {}, {}},
        {Area::system, "Other users and shared folders",
         "Another user’s files are not scanned. An administrator can review them.",
         "person.2", Mode::keptPrivate, {}, {}},
        {Area::system, "External drives and protected storage",
         "Use the file manager, a disk utility, or the owning backup app for other drives and protected storage.",
         "externaldrive.connected.to.line.below", Mode::macOSManaged, {}, {}},
    };
}
// clang-format on

} // namespace

const std::vector<CleanupAvenue>& CleanupAvenue::catalog(HostSystem system) {
    static const std::vector<CleanupAvenue> avenues = everyAvenueOfLinux();
    return system == HostSystem::macOS ? catalog() : avenues;
}

} // namespace vantry
