#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace vantry {

// The rules for `#include` lines: the order of the folders, which the table in CONTRIBUTING.md states, and which
// toolkits and systems a folder may use.

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

/// The rows of the table that hold code.
[[nodiscard]] const std::vector<Folder>& folders();

/// Everything in `text` that breaks a rule. `file` is the path from the root of the tree.
[[nodiscard]] std::vector<Finding> findingsIn(std::string_view file, std::string_view text);

[[nodiscard]] bool isBelow(std::string_view path, std::string_view folder);

/// The words of a text, for lists that would take a line for each.
[[nodiscard]] std::vector<std::string_view> words(std::string_view text);

[[nodiscard]] std::string contentsOf(const std::filesystem::path& file);

} // namespace vantry
