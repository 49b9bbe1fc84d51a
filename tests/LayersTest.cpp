// The order of the folders. The table in CONTRIBUTING.md states it; the sources and the build are checked against it.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

enum class Rule {
    layer,   ///< a folder includes from itself and from those below it
    toolkit, ///< Qt belongs to shell/qt and the picture decoders, X11 to shell/qt, Apple's frameworks to shell/appkit
             ///< and platform/apple
    system,  ///< one system's headers stay in the folders of that system
    conditional ///< the build chooses between systems, not the preprocessor
};

struct Finding {
    Rule rule;
    std::string text; ///< file:line: what
};

/// A folder and the folders that it may include from besides itself. A folder without a row of its own belongs to the
/// row of the folder around it.
struct Folder {
    std::string name;
    std::vector<std::string> mayInclude;
};

/// The words of a text, for lists that would take a line for each.
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

/// The table in CONTRIBUTING.md: | folders | what lives there | may include |. Rows without a third cell hold no code.
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

/// Everything in `text` that breaks a rule. `file` is the path from the root of the tree.
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

struct Tree {
    std::vector<std::string> files; ///< paths from the root
    std::vector<Finding> findings;
};

bool isSource(const std::filesystem::path& path) {
    constexpr std::array extensions = {".h", ".cpp", ".mm", ".m", ".c"};
    return std::ranges::find(extensions, path.extension()) != extensions.end();
}

const Tree& wholeTree() {
    static const Tree tree = [] {
        namespace fs = std::filesystem;
        Tree read;
        const fs::path root = OMBREL_SOURCE_ROOT;
        for (fs::recursive_directory_iterator entry(root), end; entry != end; ++entry) {
            const std::string name = entry->path().filename().string();
            // At the root: what is built, and the declarations that stand in for Apple's headers.
            if (entry->is_directory() &&
                (name.starts_with('.') || (entry.depth() == 0 && (name == "build" || name == "tools"))))
                entry.disable_recursion_pending();
            if (!entry->is_regular_file() || !isSource(entry->path()))
                continue;
            const std::string text = contentsOf(entry->path());
            read.files.push_back(entry->path().lexically_relative(root).generic_string());
            std::ranges::move(findingsIn(read.files.back(), text), std::back_inserter(read.findings));
        }
        return read;
    }();
    return tree;
}

std::string findingsOfTree(Rule rule) {
    std::string texts;
    for (const Finding& finding : wholeTree().findings)
        if (finding.rule == rule)
            texts += finding.text + "\n";
    return texts;
}

struct Case {
    std::string_view file;
    std::string_view text;
};

} // namespace

TEST(Layers, TheTreeIsFound) {
    for (const std::string_view file : {"base/Result.h", "platform/VolumeCapacity.h", "storage/StorageReader.cpp",
                                        "rendering/VantryView.cpp", "app/main.cpp", "tests/LayersTest.cpp"})
        EXPECT_TRUE(std::ranges::count(wholeTree().files, file)) << file << " was not read";
}

TEST(Layers, AFolderIncludesOnlyFromTheFoldersBelowIt) { EXPECT_EQ(findingsOfTree(Rule::layer), ""); }

TEST(Layers, ToolkitHeadersAreIncludedOnlyWhereTheToolkitIsUsed) { EXPECT_EQ(findingsOfTree(Rule::toolkit), ""); }

TEST(Layers, SharedCodeIncludesNoHeaderThatOneSystemLacks) { EXPECT_EQ(findingsOfTree(Rule::system), ""); }

TEST(Layers, SharedCodeDoesNotAskThePreprocessorForTheSystem) { EXPECT_EQ(findingsOfTree(Rule::conditional), ""); }

TEST(Layers, APlantedViolationIsFoundWithItsFileAndLine) {
    const auto findings = findingsIn("base/Color.cpp", "#include \"base/Color.h\"\n\n#include \"app/Shell.h\"\n");
    ASSERT_EQ(findings.size(), 1U);
    EXPECT_EQ(findings[0].rule, Rule::layer);
    EXPECT_EQ(findings[0].text, "base/Color.cpp:3: base may not include app/Shell.h");
}

TEST(Layers, AnIncludeIsReportedExactlyWhenTheTableDoesNotAllowIt) {
    for (const Folder& folder : folders())
        for (const Folder& other : folders()) {
            const auto text = "#include \"" + other.name + "/B.h\"";
            const bool isAllowed = &other == &folder || std::ranges::count(folder.mayInclude, other.name) > 0;
            EXPECT_EQ(findingsIn(folder.name + "/A.cpp", text).empty(), isAllowed) << folder.name << ": " << text;
        }
}

TEST(Layers, TheRowsOfTheTableStandInTheOrderOfTheLayers) {
    const auto rowOf = [](const std::string& name) { return std::ranges::find(folders(), name, &Folder::name); };
    ASSERT_NE(rowOf("tests"), folders().end());
    for (auto row = folders().begin(); row != rowOf("tests"); ++row)
        for (const auto& name : row->mayInclude) {
            EXPECT_LT(rowOf(name), row) << row->name << " and " << name;
            EXPECT_FALSE(isBelow(name, "shell")) << row->name;
            EXPECT_TRUE(!isBelow(name, "platform") || isBelow(row->name, "shell") || isBelow(row->name, "platform"))
                << row->name;
        }
}

TEST(Layers, AFolderLinksOnlyWithWhatItMayInclude) {
    int links = 0;
    for (const Folder& folder : folders()) {
        auto text = contentsOf(std::filesystem::path(OMBREL_SOURCE_ROOT) / folder.name / "CMakeLists.txt");
        text.erase(0, std::min(text.find("ombrel_add_folder("), text.size()));
        text.erase(std::min(text.find(')'), text.size()));
        text.erase(0, std::min(text.find("LINKS"), text.size()));
        for (const auto word : words(text))
            if (word.starts_with("ombrel_")) {
                ++links;
                EXPECT_TRUE(std::ranges::any_of(folder.mayInclude,
                                                [&](std::string name) {
                                                    std::ranges::replace(name, '/', '_');
                                                    return "ombrel_" + name == word;
                                                }))
                    << folder.name << " links with " << word;
            }
    }
    EXPECT_GT(links, 20) << "the links were not found";
}

TEST(Layers, EveryOtherKindOfViolationIsFound) {
    const struct {
        Rule rule;
        std::vector<Case> cases;
    } tables[] = {
        {Rule::layer,
         {
             {"base/A.h", "#include <platform/B.h>"},
             {"base/A.h", "  #  include   \"storage/B.h\"  // why"},
             {"base/A.h", "#import \"app/B.h\""},
             {"app/main.cpp", "#include \"shell/qt/B.h\""},
             {"app/A.cpp", "#include \"B.h\""},
             {"app/A.cpp", "#include \"../base/B.h\""},
             {"app/A.cpp", "#include HEADER"},
             {"app/A.cpp", "#include"},
             {"cleanup/A.cpp", ""},
             {"misc/A.cpp", ""},
             {"A.cpp", ""},
         }},
        {Rule::toolkit,
         {
             {"app/A.cpp", "#include <QString>"},
             {"app/A.cpp", "#include <QtCore/QString>"},
             {"app/A.cpp", "#include <QtGlobal>"},
             {"app/A.cpp", "#include <qstring.h>"},
             {"rendering/A.cpp", "#include <qpa/qplatformwindow.h>"},
             {"platform/linux/A.cpp", "#include <QDBusConnection>"},
             {"platform/linux/pictures/A.cpp", "#include <xcb/xcb.h>"},
             {"platform/linux/A.cpp", "#include <xcb/xcb.h>"},
             {"platform/linux/A.cpp", "#include <X11/Xlib.h>"},
             {"platform/apple/A.mm", "#include <QString>"},
             {"platform/A.h", "#import <Foundation/Foundation.h>"},
             {"storage/A.cpp", "#include <CoreFoundation/CoreFoundation.h>"},
             {"app/A.cpp", "#include <dispatch/dispatch.h>"},
             {"shell/qt/A.cpp", "#include <AppKit/AppKit.h>"},
             {"shell/appkit/A.mm", "#include <QWidget>"},
             {"shell/appkit/A.mm", "@import AppKit;"},
             {"shell/qt/A.cpp", "#include <gtk/gtk.h>"},
         }},
        {Rule::system,
         {
             {"base/A.cpp", "#include <linux/fs.h>"},
             {"app/A.cpp", "#include <sys/prctl.h>"},
             {"app/A.cpp", "#include <mach/mach.h>"},
             {"platform/linux/A.cpp", "#include <libproc.h>"},
             {"platform/apple/A.cpp", "#include <sys/inotify.h>"},
         }},
        {Rule::conditional,
         {
             {"base/A.cpp", "#ifdef __APPLE__"},
             {"app/main.cpp", "#ifndef __linux__"},
             {"app/A.cpp", "#if defined(__linux__) && !defined(NDEBUG)"},
             {"app/A.cpp", "# elif TARGET_OS_OSX"},
             {"app/A.cpp", "#if __has_include(<AppKit/AppKit.h>)"},
             {"platform/A.h", "#ifdef __OBJC__"},
         }},
    };
    for (const auto& [rule, cases] : tables) {
        for (const auto& [file, text] : cases) {
            const auto findings = findingsIn(file, text);
            ASSERT_EQ(findings.size(), 1U) << file << ": " << text;
            EXPECT_EQ(findings[0].rule, rule) << findings[0].text;
        }
    }
}

TEST(Layers, WhatIsAllowedIsNotReported) {
    const Case cases[] = {
        {"base/A.cpp", "#include \"base/A.h\"\n#include <expected>\n#include <unistd.h>\n#include <sys/stat.h>\n"},
        {"base/A.h", "#pragma once\n#ifndef NDEBUG\n#endif\n// #include \"app/B.h\"\n"},
        {"platform/linux/A.cpp", "#include \"platform/A.h\"\n#include \"platform/linux/B.h\"\n#include <linux/fs.h>\n"},
        {"platform/linux/pictures/A.cpp", "#include \"platform/linux/A.h\"\n#include <QImage>\n"},
        {"platform/apple/A.mm", "#include \"platform/A.h\"\n#import <Foundation/Foundation.h>\n#ifdef __OBJC__\n"},
        {"rendering/A.cpp", "#include <quadmath>\n"},
        {"cleanup/finding/A.cpp", "#include <nlohmann/json.hpp>\n"},
        {"app/A.cpp", "#include <fmt/format.h>\n"},
        {"app/main.cpp", "#include \"platform/linux/A.h\"\n"},
        {"shell/qt/A.cpp",
         "#include \"app/A.h\"\n#include \"platform/linux/A.h\"\n#include <QMenu>\n#include \"A.moc\"\n"},
        {"shell/qt/A.cpp", "#include <xcb/xfixes.h>\n#ifdef Q_OS_LINUX\n"},
        {"shell/appkit/A.mm", "#include \"app/A.h\"\n#include \"platform/apple/A.h\"\n#import <AppKit/AppKit.h>\n"},
        {"tests/shell/qt/A.cpp", "#include \"shell/qt/A.h\"\n#include \"tests/B.h\"\n#include <QImage>\n"},
        {"bench/A.cpp", "#include \"rendering/A.h\"\n#include <benchmark/benchmark.h>\n"},
    };
    for (const auto& [file, text] : cases)
        for (const Finding& finding : findingsIn(file, text))
            ADD_FAILURE() << finding.text;
}

} // namespace vantry
