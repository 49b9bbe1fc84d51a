#include "cleanup/model/GuidePlaces.h"

#include "cleanup/model/CleanupAvenue.h"
#include "tests/support/ScopedEnvironment.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <string>
#include <utility>

namespace vantry {
namespace {

TEST(GuidePlaces, APatternIsExpandedByTheHomeFolderAndTheEnvironment) {
    const ScopedEnvironment unset("OMBREL_A", nullptr);
    const ScopedEnvironment set("OMBREL_B", "/disk/b/");
    const ScopedEnvironment relative("OMBREL_C", "c");
    const ScopedEnvironment empty("OMBREL_D", "");
    const ScopedEnvironment list("GOPATH", "/disk/one:/disk/two");
    const ScopedEnvironment folders("CONDA_PKGS_DIRS", "/disk/one,/disk/two");
    const std::pair<const char*, const char*> cases[] = {
        {"/var/crash", "/var/crash"},
        {"~", "/home/ada"},
        {"~/.cache", "/home/ada/.cache"},
        {"${OMBREL_A:-~/.a}/x", "/home/ada/.a/x"},
        {"${OMBREL_B:-~/.b}/x", "/disk/b/x"},
        {"${OMBREL_B:-~/.b}", "/disk/b"},
        {"${OMBREL_C:-~/.c}/x", "/home/ada/.c/x"},
        {"${OMBREL_D:-~/.d}/x", "/home/ada/.d/x"},
        {"${OMBREL_A:-${OMBREL_B:-~/.b}/y}/x", "/disk/b/y/x"},
        {"${OMBREL_A:-${OMBREL_C:-~/.c}/y}/x", "/home/ada/.c/y/x"},
        {"${OMBREL_B:-${OMBREL_A:-~/.a}/y}/*", "/disk/b/*"},
        {"${GOPATH:-~/go}/pkg", "/disk/one/pkg"},
        {"${CONDA_PKGS_DIRS:-~/conda}", "/disk/one"},
    };
    for (const auto& [pattern, path] : cases)
        EXPECT_EQ(expandedPlace(pattern, "/home/ada"), path) << pattern;
}

TEST(GuidePlaces, AVariableThatIsOrHoldsTheHomeFolderCountsAsUnset) {
    const ScopedEnvironment asNamed("HOME", "/link/to/ada");
    for (const char* value : {"/home/ada", "/home/ada/", "/home/./ada", "/home/ada/x/..", "/home", "/", "/link/to/ada/",
                              "/link/to", "/home/ada:/disk"}) {
        const ScopedEnvironment set("GOPATH", value);
        EXPECT_EQ(expandedPlace("${GOPATH:-~/.go}", "/home/ada"), "/home/ada/.go") << value;
    }
    for (const char* value : {"/home/ada/x", "/home/adam", "/home/ad", "/link/to/adam"}) {
        const ScopedEnvironment set("GOPATH", value);
        EXPECT_EQ(expandedPlace("${GOPATH:-~/.go}", "/home/ada"), value);
    }
}

TEST(GuidePlaces, AnAsteriskStandsForAnyCharacters) {
    for (const auto& [name, pattern] : {std::pair("", ""),
                                        {"a", "a"},
                                        {"", "*"},
                                        {"a", "*"},
                                        {"a.old", "*.old"},
                                        {".old", "*.old"},
                                        {"core.1", "core.*"},
                                        {"axbxc", "a*b*c"},
                                        {"abc", "a*b*c"}})
        EXPECT_TRUE(matchesPattern(name, pattern)) << name << " " << pattern;
    for (const auto& [name, pattern] : {std::pair("a", ""),
                                        {"", "a"},
                                        {"a.older", "*.old"},
                                        {"core", "core.*"},
                                        {"xcore.1", "core.*"},
                                        {"acb", "a*b*c"},
                                        {"A", "a"}})
        EXPECT_FALSE(matchesPattern(name, pattern)) << name << " " << pattern;
}

TEST(GuidePlaces, WhatOneAvenueMeasuresInTheCacheFolderIsNotCountedByAnother) {
    constexpr std::string_view cacheFolder = "${XDG_CACHE_HOME:-~/.cache}/";
    std::set<std::string> measured;
    for (const auto& avenue : CleanupAvenue::catalog(HostSystem::linuxDesktop))
        for (const auto& place : avenue.places)
            if (const auto begin = place.path.find(cacheFolder); begin != std::string_view::npos) {
                const auto name = place.path.substr(begin + cacheFolder.size());
                measured.emplace(name.substr(0, name.find_first_of("/}")));
            }
    EXPECT_GE(measured.size(), 10U);
    for (const auto& name : measured)
        EXPECT_EQ(std::ranges::count(cachesOfOthers(), name), 1) << name;
    for (const char* name : {"doc", "ms-playwright", "puppeteer", "pre-commit", "pypoetry", "rclone",
                             "mesa_shader_cache", "mesa_shader_cache_db"})
        EXPECT_TRUE(std::ranges::any_of(cachesOfOthers(), [&](auto other) { return matchesPattern(name, other); }))
            << name;
}

} // namespace
} // namespace vantry
