#include "tests/IncludeRules.h"

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <sstream>

namespace vantry {

std::vector<std::string_view> words(std::string_view text) {
    std::vector<std::string_view> found;
    for (std::size_t end = 0; end < text.size();) {
        const auto begin = text.find_first_not_of(" \n", end);
        end = std::min(text.find_first_of(" \n", begin), text.size());
        if (begin < text.size())
            found.push_back(text.substr(begin, end - begin));
    }
    return found;
}

std::string contentsOf(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

namespace {

/// What stands between backticks, without a slash at the end.
std::vector<std::string> quotedNames(std::string_view text) {
    std::vector<std::string> names;
    for (auto begin = text.find('`'); begin != std::string_view::npos; begin = text.find('`')) {
        const auto end = text.find('`', begin + 1);
        auto name = text.substr(begin + 1, end - begin - 1);
        if (name.ends_with('/'))
            name.remove_suffix(1);
        names.emplace_back(name);
        text.remove_prefix(end + 1);
    }
    return names;
}

} // namespace

// The table: | folders | what lives there | may include |. Rows without a third cell hold no code.
const std::vector<Folder>& folders() {
    static const std::vector<Folder> table = [] {
        std::vector<Folder> read;
        std::istringstream lines(contentsOf(std::filesystem::path(OMBREL_SOURCE_ROOT) / "CONTRIBUTING.md"));
        for (std::string line; std::getline(lines, line) && (read.empty() || line.starts_with("| `"));) {
            if (!line.starts_with("| `"))
                continue;
            const auto first = line.find(" | ");
            const auto second = line.find(" | ", first + 3);
            const std::string_view allowed = second == std::string::npos ? "" : std::string_view(line).substr(second);
            if (allowed.find_first_not_of(" |") == std::string_view::npos)
                continue;
            for (const auto& name : quotedNames(std::string_view(line).substr(0, first)))
                read.push_back({name, allowed.starts_with(" | everything") ? std::vector<std::string>{"*"}
                                                                           : quotedNames(allowed)});
        }
        std::vector<std::string> all;
        std::ranges::transform(read, std::back_inserter(all), &Folder::name);
        for (auto& folder : read)
            if (folder.mayInclude == std::vector<std::string>{"*"})
                folder.mayInclude = all;
        return read;
    }();
    return table;
}

bool isBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && path.substr(folder.size()).starts_with('/');
}

namespace {

bool isBelowAny(std::string_view path, std::string_view names) {
    return std::ranges::any_of(words(names), [path](std::string_view name) { return isBelow(path, name); });
}

bool isAnyOf(std::string_view name, std::string_view names) { return std::ranges::count(words(names), name) > 0; }

/// The row that a path belongs to: the longest name that it starts with.
const Folder* folderOf(std::string_view path) {
    const Folder* found = nullptr;
    for (const Folder& folder : folders())
        if (isBelow(path, folder.name) && (!found || folder.name.size() > found->name.size()))
            found = &folder;
    return found;
}

bool isQtHeader(std::string_view name) {
    const auto file = name.substr(name.rfind('/') + 1);
    const auto isUpper = [](char c) { return std::isupper(static_cast<unsigned char>(c)) != 0; };
    return (name.size() > 1 && name[0] == 'Q' && (isUpper(name[1]) || name[1] == 't')) || isBelow(name, "qpa") ||
           (file.starts_with('q') && file.ends_with(".h") && name == file);
}

bool isX11Header(std::string_view name) { return isBelowAny(name, "xcb X11"); }

bool isAppleFrameworkHeader(std::string_view name) {
    return isBelowAny(name,
                      R"(AppKit ApplicationServices AVFoundation Carbon Cocoa CoreFoundation CoreGraphics CoreImage
        CoreMedia CoreServices CoreText CoreVideo DiskArbitration dispatch Foundation ImageIO IOKit objc os QuartzCore
        Security ServiceManagement SystemConfiguration UniformTypeIdentifiers)");
}

bool isOtherToolkitHeader(std::string_view name) {
    return isBelowAny(name, "gdk gio gtk glib wayland") || name == "glib.h";
}

bool isLinuxHeader(std::string_view name) {
    return isBelowAny(name, "linux asm") ||
           isAnyOf(name, R"(sys/epoll.h sys/eventfd.h sys/fanotify.h sys/inotify.h sys/pidfd.h sys/prctl.h
               sys/sendfile.h sys/signalfd.h sys/syscall.h sys/timerfd.h sys/sysmacros.h sys/vfs.h mntent.h)");
}

bool isDarwinHeader(std::string_view name) {
    return isBelowAny(name, "mach mach-o") ||
           isAnyOf(name, R"(libproc.h copyfile.h sandbox.h Availability.h TargetConditionals.h sys/attr.h
               sys/clonefile.h sys/event.h)");
}

bool asksForTheSystem(std::string_view condition) {
    const auto names = words(R"(__APPLE__ __MACH__ __linux linux __gnu_linux__ __unix __FreeBSD__ _WIN32 TARGET_OS_
        Q_OS_ __OBJC__ __has_include __GLIBC__)");
    return std::ranges::any_of(names,
                               [condition](std::string_view name) { return condition.find(name) != condition.npos; });
}

std::string_view trimmed(std::string_view text) {
    const auto first = text.find_first_not_of(" \t\r");
    return first == std::string_view::npos ? std::string_view()
                                           : text.substr(first, text.find_last_not_of(" \t\r") - first + 1);
}

} // namespace

std::vector<Finding> findingsIn(std::string_view file, std::string_view text) {
    std::vector<Finding> findings;
    std::size_t lineNumber = 0;
    const auto report = [&](Rule rule, std::string_view what) {
        std::ostringstream line;
        line << file << ':' << lineNumber << ": " << what;
        findings.push_back({rule, line.str()});
    };

    const Folder* const folder = folderOf(file);
    if (!folder) {
        report(Rule::layer, "is in a folder that has no place in the order");
        return findings;
    }
    const bool isFreeToAsk = folder->name == "tests" || folder->name == "bench";
    const bool isForLinux = isFreeToAsk || isBelow(file, "platform/linux") || folder->name == "shell/qt";
    const bool isForApple = isFreeToAsk || folder->name == "platform/apple" || folder->name == "shell/appkit";
    const bool drawsWithX11 = isFreeToAsk || folder->name == "shell/qt";
    const bool usesQt = drawsWithX11 || folder->name == "platform/linux/pictures";

    const auto checkInclude = [&](std::string_view argument) {
        const bool quoted = argument.starts_with('"');
        const auto end = argument.empty() ? std::string_view::npos : argument.find(quoted ? '"' : '>', 1);
        if ((!quoted && !argument.starts_with('<')) || end == std::string_view::npos)
            return report(Rule::layer, "includes what cannot be read without a preprocessor");
        const auto name = argument.substr(1, end - 1);

        if (const Folder* const other = folderOf(name)) {
            const bool wiring =
                file == "app/main.cpp" && isBelow(other->name, "platform"); // chooses the system's services
            if (other != folder && !wiring &&
                std::ranges::find(folder->mayInclude, other->name) == folder->mayInclude.end())
                report(Rule::layer, folder->name + " may not include " + std::string(name));
            return;
        }
        if (quoted && !name.ends_with(".moc"))
            report(Rule::layer, std::string(name) + " is not named by its path from the root");
        if ((isQtHeader(name) && !usesQt) || (isX11Header(name) && !drawsWithX11) ||
            (isAppleFrameworkHeader(name) && !isForApple) || isOtherToolkitHeader(name))
            report(Rule::toolkit, "may not include the toolkit header " + std::string(name));
        if ((isLinuxHeader(name) && !isForLinux) || (isDarwinHeader(name) && !isForApple))
            report(Rule::system, "may not include " + std::string(name) + ", which other systems lack");
    };

    for (std::size_t begin = 0; begin < text.size();) {
        const auto end = std::min(text.find('\n', begin), text.size());
        auto line = trimmed(text.substr(begin, end - begin));
        begin = end + 1;
        ++lineNumber;
        if (line.starts_with("@import"))
            report(Rule::toolkit, "imports a module where a header would do");
        if (!line.starts_with('#'))
            continue;
        line = trimmed(line.substr(1));
        if (line.starts_with("include") || line.starts_with("import"))
            checkInclude(trimmed(line.substr(line.starts_with("include") ? 7 : 6)));
        else if ((line.starts_with("if") || line.starts_with("elif")) && !isForLinux && !isForApple &&
                 asksForTheSystem(line))
            report(Rule::conditional, "asks the preprocessor which system this is");
    }
    return findings;
}

} // namespace vantry
