#pragma once

#include "base/Time.h"
#include "cleanup/model/CleanupCandidate.h"
#include "cleanup/model/CleanupPlaces.h"
#include "platform/PinnedFile.h"

#include <expected>
#include <optional>
#include <string>

namespace vantry::CleanupScanner {

// Blocking; any thread. Changes nothing on the disk. Paths need not be UTF-8.

/// A file that passed every check, and the facts that the checks used.
struct ValidatedFile {
    PinnedFile file;
    PinnedFileFacts facts;
};

/// Checks that the candidate is still the item that the scan found, in a place from which it may be moved to the Trash.
/// Gives that file, held open, or the reason of the refusal: a lower-case phrase that follows the item's name. The
/// checks run in a fixed order; the first that fails decides, and nothing is read after it. Every check but the last is
/// about the file that is held; the last one checks that the name still leads to it.
[[nodiscard]] std::expected<ValidatedFile, std::string> validatedFile(const CleanupCandidate& candidate,
                                                                      const CleanupPlaces& places, SystemTime now);

/// The same without the file: absent if the candidate may be moved.
[[nodiscard]] std::optional<std::string> validationFailure(const CleanupCandidate& candidate,
                                                           const CleanupPlaces& places, SystemTime now);

} // namespace vantry::CleanupScanner
