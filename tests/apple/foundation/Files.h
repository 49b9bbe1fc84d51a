#pragma once

#include <Foundation/Foundation.h>
#include <filesystem>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace vantry::apple {

/// What the system does with files and says about them, as far as a test has a say in it. Main thread.
struct FileSystem {
    static FileSystem& get();
    /// As it is at first.
    static void reset();

    std::filesystem::path trash; ///< the user's
    /// What other programs do right before and right after an item is moved to the Trash.
    std::function<void()> beforeTrashing;
    std::function<void(const std::filesystem::path& arrived)> afterTrashing;
    NSInteger trashError = 0; ///< of Cocoa, unless 0
    bool movesInSpiteOfError = false;
    bool tellsWhatArrived = true;

    /// Answers in the place of true resource values and attributes, by their keys; nil is none.
    std::map<std::string, id> values;
    /// The item whose values were asked for, before they are read.
    std::function<void(const std::filesystem::path& item)> beforeReading;

    /// What a coordinator hands out in the place of the path that it was asked for, one call for each.
    std::function<std::vector<std::filesystem::path>(const std::filesystem::path&)> coordinate;

    std::filesystem::path bundle, executable; ///< of the application; one without a bundle identifier has no bundle
    /// The number of applications with a bundle identifier, or the negative code of an error.
    std::map<std::string, int> applications;
};

} // namespace vantry::apple
