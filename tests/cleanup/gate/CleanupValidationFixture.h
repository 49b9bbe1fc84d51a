#pragma once

#include "cleanup/gate/CleanupValidation.h"
#include "cleanup/model/CleanupCandidate.h"
#include "platform/FoundItem.h"
#include "tests/support/FileFacts.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

namespace vantry {

/// A home with the approved folders, and old files in it that may go to the Trash until something is done to them.
class CleanupValidationFixture : public testing::Test {
protected:
    explicit CleanupValidationFixture(const std::filesystem::path& parent = std::filesystem::temp_directory_path())
        : temporary(parent) {
        std::filesystem::create_directories(crashReports);
        std::filesystem::create_directory(downloads);
    }

    /// The time of the test, at which everything is scanned.
    static constexpr SystemTime now{std::chrono::nanoseconds(1'800'000'000'123'456'789)};

    /// Writes a file of an age that is enough for every category.
    static std::filesystem::path makeOld(const std::filesystem::path& file, std::string_view text = "an old file") {
        writeFile(file, text);
        setModified(file, now - std::chrono::days(365));
        return file;
    }

    /// A candidate as the scan makes it.
    static CleanupCandidate scanned(const std::filesystem::path& file, CleanupCategory category) {
        return CleanupCandidate::withFingerprint(file, file.filename(), category, "", allocatedBytes(file),
                                                 CleanupConfidence::suggested, readFileFingerprint(file), now);
    }

    [[nodiscard]] std::optional<std::string> failure(const CleanupCandidate& candidate) const {
        return CleanupScanner::validationFailure(candidate, places, clock);
    }

    TemporaryFolder temporary;
    std::filesystem::path root = std::filesystem::canonical(temporary.path());
    std::filesystem::path home = root / "home";
    std::filesystem::path logs = home / "Library/Logs";
    std::filesystem::path crashReports = home / "Library/Logs/DiagnosticReports";
    std::filesystem::path downloads = home / "Downloads";
    CleanupPlaces places{.home = home};
    SystemTime clock = now;
};

} // namespace vantry
