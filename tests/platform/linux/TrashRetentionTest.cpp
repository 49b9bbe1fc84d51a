#include "platform/TrashRetention.h"

#include "tests/support/FileFacts.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <string>
#include <sys/stat.h>
#include <utility>

namespace vantry {
namespace {

using std::chrono::days;

TEST(TrashRetention, IsTheSettingOfGnomeInItsSession) {
    const TemporaryFolder programs;
    const auto stopSwitch = StopSwitch::create().value();
    const ScopedEnvironment path("PATH", (programs.path().native() + ":/usr/bin:/bin").c_str());
    const auto gnomeSays = [&](const std::string& removes, const std::string& age) {
        writeFile(programs / "gsettings", "#!/bin/sh\ncase \"$*\" in\n"
                                          "'get org.gnome.desktop.privacy remove-old-trash-files') " +
                                              removes +
                                              " ;;\n"
                                              "'get org.gnome.desktop.privacy old-files-age') " +
                                              age + " ;;\nesac\n");
        chmod((programs / "gsettings").c_str(), 0755);
        return trashRetention(stopSwitch);
    };
    const ScopedEnvironment gnome("XDG_CURRENT_DESKTOP", "ubuntu:GNOME");
    EXPECT_EQ(gnomeSays("echo true", "echo uint32 30"), days(30));
    EXPECT_EQ(gnomeSays("echo true", "echo uint32 0"), days(0));
    for (const auto& [removes, age] : {std::pair("echo false", "echo uint32 30"),
                                       {"exit 1", "echo uint32 30"},
                                       {"echo true", "exit 1"},
                                       {"echo true", "echo 30"},
                                       {"echo true", "echo uint64 30"},
                                       {"echo true", "echo uint32"},
                                       {"echo true", "echo uint32 30x"},
                                       {"echo true", "echo uint32 -1"},
                                       {"echo true", "exec sleep 600"}})
        EXPECT_EQ(gnomeSays(removes, age), std::nullopt) << removes << ", " << age;
    EXPECT_TRUE(stopSwitch->stop());
    EXPECT_EQ(gnomeSays("echo true", "echo uint32 30"), std::nullopt) << "stopped";
    EXPECT_EQ(trashRetention(nullptr), days(30));
    const ScopedEnvironment other("XDG_CURRENT_DESKTOP", "XFCE");
    EXPECT_EQ(trashRetention(nullptr), std::nullopt);
    const ScopedEnvironment none("XDG_CURRENT_DESKTOP", nullptr);
    EXPECT_EQ(trashRetention(nullptr), std::nullopt);
}

} // namespace
} // namespace vantry
