// The order of the folders. The table in CONTRIBUTING.md states it; the sources and the build are checked against it.

#include "tests/IncludeRules.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <filesystem>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

namespace {

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
