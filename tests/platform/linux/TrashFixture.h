#pragma once

#include "platform/linux/Trash.h"

#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace vantry {

/// The bytes that a percent-encoded text stands for.
[[nodiscard]] inline std::string percentDecoded(std::string_view text) {
    constexpr std::size_t escape = 3;
    std::string bytes;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '%') {
            bytes += text[i];
            continue;
        }
        bytes += static_cast<char>(std::stoi(std::string(text.substr(i + 1, escape - 1)), nullptr, 16));
        i += escape - 1;
    }
    return bytes;
}

/// The origin that an info file tells; empty when it is not complete.
[[nodiscard]] inline std::string originIn(std::string_view info) {
    constexpr std::string_view begin = "[Trash Info]\nPath=";
    constexpr std::string_view middle = "\nDeletionDate=";
    constexpr std::string_view date = "2026-11-21T09:44:50\n";
    const auto end = info.find(middle);
    if (!info.starts_with(begin) || end == info.npos || info.size() != end + middle.size() + date.size() ||
        !info.ends_with('\n'))
        return {};
    return percentDecoded(info.substr(begin.size(), end - begin.size()));
}

/// "place/report.log", and a Trash that is not there yet, in a folder of its own.
class TrashFixture : public testing::Test {
protected:
    explicit TrashFixture(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
        : temporary(parent),
          root(std::filesystem::canonical(temporary.path())) {
        std::filesystem::create_directories(place);
        writeFile(file, "what the file holds");
    }

    [[nodiscard]] static PinnedFile pinned(const std::filesystem::path& path) {
        return PinnedFile::open(PinnedFolder::open(path.parent_path()).value(), path.filename()).value();
    }

    [[nodiscard]] static std::string textOf(const TrashMove& move) {
        switch (move.outcome) {
        case TrashMove::Outcome::moved: return "moved";
        case TrashMove::Outcome::notMoved: return move.reason;
        case TrashMove::Outcome::misplaced: break;
        }
        return "misplaced at " + move.path.native() + ": " + move.reason;
    }

    /// What came of it: "moved", or why not.
    [[nodiscard]] std::string move(const PinnedFile& item) const {
        return textOf(moveToTrash(item, item.facts().value(), trash));
    }
    [[nodiscard]] std::string move(const std::filesystem::path& path) const { return move(pinned(path)); }

    /// Where what is in the Trash came from, by its name there; empty for what lacks a complete info file.
    [[nodiscard]] std::map<std::string, std::string> origins() const {
        std::map<std::string, std::string> all;
        if (!std::filesystem::exists(trash / "files"))
            return all;
        for (const auto& entry : std::filesystem::directory_iterator(trash / "files")) {
            const std::string name = entry.path().filename().native();
            all[name] = originIn(readFile(trash / "info" / (name + ".trashinfo")));
        }
        return all;
    }
    [[nodiscard]] std::size_t infoCount() const {
        std::size_t count = 0;
        if (std::filesystem::exists(trash / "info")) {
            for ([[maybe_unused]] const auto& entry : std::filesystem::directory_iterator(trash / "info"))
                ++count;
        }
        return count;
    }
    void makeTrash() const {
        std::filesystem::create_directories(trash / "files");
        std::filesystem::create_directories(trash / "info");
    }

    /// As it was before.
    [[nodiscard]] bool nothingMoved() const {
        return readFile(file) == "what the file holds" && origins().empty() && infoCount() == 0;
    }

    TemporaryFolder temporary;
    std::filesystem::path root;
    std::filesystem::path place = root / "place";
    std::filesystem::path file = place / "report.log";
    std::filesystem::path trash = root / "data/Trash";
};

} // namespace vantry
