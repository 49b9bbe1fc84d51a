// The order of the folders, read from the sources themselves: what a file includes, and what it asks the preprocessor.

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cctype>
#include <filesystem>
#include <fstream>
#include <initializer_list>
#include <iterator>
#include <span>
#include <sstream>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

enum class Rule {
    layer,      ///< a folder includes from itself and from those below it
    toolkit,    ///< Qt and X11 belong to shell/qt, Apple's frameworks to shell/appkit and platform/apple
    system,     ///< one system's headers stay in the folders of that system
    conditional ///< the build chooses between systems, not the preprocessor
};

struct Finding {
    Rule rule;
    std::string text; ///< file:line: what
};

/// A folder with what it may include besides itself. Files in a folder that has no row of its own belong to the row
/// above.
struct Folder {
    std::string_view name;
    std::vector<std::string_view> mayInclude;
};

const std::vector<std::string_view> anything = {"base",           "platform",  "platform/linux", "platform/apple",
                                                "storage",        "rendering", "cleanup/model",  "cleanup/scan",
                                                "cleanup/window", "app",       "shell/qt",       "shell/appkit",
                                                "tests",          "bench"};

const std::vector<Folder> folders = {
    {"base", {}},
    {"platform", {"base"}},
    {"platform/linux", {"platform", "base"}},
    {"platform/apple", {"platform", "base"}},
    {"storage", {"platform", "base"}},
    {"rendering", {"storage", "platform", "base"}},
    {"cleanup/model", {"storage", "platform", "base"}},
    {"cleanup/scan", {"cleanup/model", "storage", "platform", "base"}},
    {"cleanup/window", {"cleanup/scan", "cleanup/model", "storage", "platform", "base"}},
    {"app", {"cleanup/window", "cleanup/scan", "cleanup/model", "rendering", "storage", "platform", "base"}},
    {"shell/qt",
     {"app", "cleanup/window", "cleanup/scan", "cleanup/model", "rendering", "storage", "platform", "platform/linux",
      "base"}},
    {"shell/appkit",
     {"app", "cleanup/window", "cleanup/scan", "cleanup/model", "rendering", "storage", "platform", "platform/apple",
      "base"}},
    {"tests", anything},
    {"bench", anything},
};

bool isBelow(std::string_view path, std::string_view folder) {
    return path.starts_with(folder) && path.substr(folder.size()).starts_with('/');
}

bool isBelowAny(std::string_view path, std::initializer_list<std::string_view> names) {
    return std::ranges::any_of(names, [path](std::string_view name) { return isBelow(path, name); });
}

/// The row that a path belongs to: the longest name that it starts with.
const Folder* folderOf(std::string_view path) {
    const Folder* found = nullptr;
    for (const Folder& folder : folders)
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

bool isX11Header(std::string_view name) { return isBelowAny(name, {"xcb", "X11"}); }

bool isAppleFrameworkHeader(std::string_view name) {
    return isBelowAny(name, {"AppKit",
                             "ApplicationServices",
                             "AVFoundation",
                             "Carbon",
                             "Cocoa",
                             "CoreFoundation",
                             "CoreGraphics",
                             "CoreImage",
                             "CoreMedia",
                             "CoreServices",
                             "CoreText",
                             "CoreVideo",
                             "DiskArbitration",
                             "dispatch",
                             "Foundation",
                             "ImageIO",
                             "IOKit",
                             "objc",
                             "os",
                             "QuartzCore",
                             "Security",
                             "ServiceManagement",
                             "SystemConfiguration",
                             "UniformTypeIdentifiers"});
}

bool isOtherToolkitHeader(std::string_view name) {
    return isBelowAny(name, {"gdk", "gio", "gtk", "glib", "wayland"}) || name == "glib.h";
}

bool isLinuxHeader(std::string_view name) {
    constexpr std::array names = {"sys/epoll.h",   "sys/eventfd.h", "sys/fanotify.h",  "sys/inotify.h",
                                  "sys/pidfd.h",   "sys/prctl.h",   "sys/sendfile.h",  "sys/signalfd.h",
                                  "sys/syscall.h", "sys/timerfd.h", "sys/sysmacros.h", "sys/vfs.h",
                                  "mntent.h"};
    return isBelowAny(name, {"linux", "asm"}) || std::ranges::find(names, name) != names.end();
}

bool isDarwinHeader(std::string_view name) {
    constexpr std::array names = {"libproc.h",       "copyfile.h",           "sandbox.h",
                                  "Availability.h",  "TargetConditionals.h", "sys/attr.h",
                                  "sys/clonefile.h", "sys/event.h"};
    return isBelowAny(name, {"mach", "mach-o"}) || std::ranges::find(names, name) != names.end();
}

bool asksForTheSystem(std::string_view condition) {
    constexpr std::array names = {"__APPLE__", "__MACH__",      "__linux",  "linux",      "__gnu_linux__",
                                  "__unix",    "__FreeBSD__",   "_WIN32",   "TARGET_OS_", "Q_OS_",
                                  "__OBJC__",  "__has_include", "__GLIBC__"};
    return std::ranges::any_of(
        names, [condition](std::string_view name) { return condition.find(name) != std::string_view::npos; });
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
    const bool isForLinux = isFreeToAsk || folder->name == "platform/linux" || folder->name == "shell/qt";
    const bool isForApple = isFreeToAsk || folder->name == "platform/apple" || folder->name == "shell/appkit";
    const bool drawsWithQt = isFreeToAsk || folder->name == "shell/qt";

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
                report(Rule::layer, std::string(folder->name) + " may not include " + std::string(name));
            return;
        }
        if (quoted && !name.ends_with(".moc"))
            report(Rule::layer, std::string(name) + " is not named by its path from the root");
        if (((isQtHeader(name) || isX11Header(name)) && !drawsWithQt) ||
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
            std::ifstream stream(entry->path(), std::ios::binary);
            const std::string text((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
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

TEST(Layers, EveryKindOfViolationIsFound) {
    const struct {
        Rule rule;
        std::vector<Case> cases;
    } tables[] = {
        {Rule::layer,
         {
             {"base/A.h", "#include \"platform/B.h\""},
             {"base/A.h", "#include <platform/B.h>"},
             {"base/A.h", "  #  include   \"storage/B.h\"  // why"},
             {"base/A.h", "#import \"app/B.h\""},
             {"base/A.h", "#include \"tests/B.h\""},
             {"platform/A.h", "#include \"storage/B.h\""},
             {"platform/A.h", "#include \"platform/linux/B.h\""},
             {"platform/A.h", "#include \"platform/apple/B.h\""},
             {"platform/linux/A.cpp", "#include \"platform/apple/B.h\""},
             {"platform/linux/A.cpp", "#include \"storage/B.h\""},
             {"platform/apple/A.mm", "#include \"platform/linux/B.h\""},
             {"platform/apple/A.mm", "#include \"app/B.h\""},
             {"storage/A.cpp", "#include \"platform/linux/B.h\""},
             {"storage/A.cpp", "#include \"rendering/B.h\""},
             {"rendering/A.cpp", "#include \"cleanup/model/B.h\""},
             {"rendering/A.cpp", "#include \"app/B.h\""},
             {"cleanup/model/A.cpp", "#include \"rendering/B.h\""},
             {"cleanup/model/A.cpp", "#include \"cleanup/scan/B.h\""},
             {"cleanup/scan/A.cpp", "#include \"cleanup/window/B.h\""},
             {"cleanup/window/A.cpp", "#include \"rendering/B.h\""},
             {"cleanup/window/A.cpp", "#include \"app/B.h\""},
             {"app/A.cpp", "#include \"shell/qt/B.h\""},
             {"app/A.cpp", "#include \"platform/linux/B.h\""},
             {"app/main.cpp", "#include \"shell/qt/B.h\""},
             {"shell/qt/A.cpp", "#include \"platform/apple/B.h\""},
             {"shell/qt/A.cpp", "#include \"shell/appkit/B.h\""},
             {"shell/qt/A.cpp", "#include \"tests/B.h\""},
             {"shell/appkit/A.mm", "#include \"shell/qt/B.h\""},
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
        {"platform/apple/A.mm", "#include \"platform/A.h\"\n#import <Foundation/Foundation.h>\n#ifdef __OBJC__\n"},
        {"storage/A.cpp", "#include \"platform/A.h\"\n#include \"base/A.h\"\n"},
        {"rendering/A.cpp", "#include \"storage/A.h\"\n#include <quadmath>\n"},
        {"cleanup/scan/A.cpp", "#include \"cleanup/model/A.h\"\n#include <nlohmann/json.hpp>\n"},
        {"cleanup/window/A.cpp", "#include \"cleanup/scan/A.h\"\n#include \"cleanup/model/A.h\"\n"},
        {"app/A.cpp", "#include \"rendering/A.h\"\n#include \"cleanup/window/A.h\"\n#include <fmt/format.h>\n"},
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
