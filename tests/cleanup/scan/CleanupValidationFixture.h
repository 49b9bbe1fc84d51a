#pragma once

#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/scan/CleanupValidation.h"
#include "platform/FoundItem.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdint>
#include <fcntl.h>
#include <filesystem>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/stat.h>

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

    static void setModified(const std::filesystem::path& file, SystemTime time) {
        const auto seconds = std::chrono::floor<std::chrono::seconds>(time);
        const timespec times[2] = {
            {0, UTIME_OMIT},
            {static_cast<time_t>(seconds.time_since_epoch().count()), static_cast<long>((time - seconds).count())}};
        if (utimensat(AT_FDCWD, file.c_str(), times, AT_SYMLINK_NOFOLLOW) != 0)
            throw std::runtime_error("cannot set the date of " + file.native());
    }

    static std::int64_t allocatedBytes(const std::filesystem::path& file) {
        struct stat facts = {};
        if (lstat(file.c_str(), &facts) != 0)
            throw std::runtime_error("cannot look at " + file.native());
        return std::int64_t{facts.st_blocks} * 512;
    }

    /// Writes a file of an age that is enough for every category.
    static std::filesystem::path makeOld(const std::filesystem::path& file, std::string_view text = "an old file") {
        writeFile(file, text);
        setModified(file, now - std::chrono::days(365));
        return file;
    }

    /// As the scan makes it.
    static CleanupCandidate scanned(const std::filesystem::path& file, CleanupCategory category) {
        return CleanupCandidate::withFingerprint(file, file.filename(), category, "", allocatedBytes(file),
                                                 CleanupConfidence::suggested, readFileFingerprint(file), now);
    }

    [[nodiscard]] std::optional<std::string> failure(const CleanupCandidate& candidate) const {
        return CleanupScanner::validationFailure(candidate, environment);
    }

    TemporaryFolder temporary;
    std::filesystem::path root = std::filesystem::canonical(temporary.path());
    std::filesystem::path home = root / "home";
    std::filesystem::path logs = home / "Library/Logs";
    std::filesystem::path crashReports = home / "Library/Logs/DiagnosticReports";
    std::filesystem::path downloads = home / "Downloads";
    ScanEnvironment environment{.home = home, .now = [] { return now; }};
};

} // namespace vantry
