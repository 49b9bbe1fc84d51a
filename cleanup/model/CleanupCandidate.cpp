#include "cleanup/model/CleanupCandidate.h"

#include "base/CaseTable.h"
#include "base/HashOf.h"
#include "base/StandardizedPath.h"
#include "base/Uuid.h"
#include "platform/FoundItem.h"

#include <chrono>
#include <utility>

namespace vantry {

static_assert(rowsStandInOrder(allCleanupConfidences));

std::string_view rawValue(CleanupConfidence confidence) { return rowOf(allCleanupConfidences, confidence).rawValue; }
std::optional<CleanupConfidence> cleanupConfidenceFromRawValue(std::string_view rawValue) {
    return caseOf(allCleanupConfidences, rawValue);
}

// The parameters have other names than the fields, which they would hide.
CleanupCandidate::CleanupCandidate(const std::filesystem::path& itsUrl, std::string itsTitle, Category itsCategory,
                                   std::string itsReason, std::int64_t itsSize, Confidence itsConfidence,
                                   FileFingerprint fingerprint, SystemTime itsTime)
    : uiID(randomUuid()),
      url(itsUrl),
      title(std::move(itsTitle)),
      category(itsCategory),
      reason(std::move(itsReason)),
      size(itsSize),
      confidence(itsConfidence),
      scannedModificationDate(fingerprint.contentModificationDate),
      scannedResourceIdentifier(std::move(fingerprint.resourceIdentifier)),
      scannedVolumeIdentifier(std::move(fingerprint.volumeIdentifier)),
      scannedAt(itsTime) {}

CleanupCandidate::CleanupCandidate(const std::filesystem::path& itsUrl, std::string itsTitle, Category itsCategory,
                                   std::string itsReason, std::int64_t itsSize, Confidence itsConfidence)
    : CleanupCandidate(itsUrl, std::move(itsTitle), itsCategory, std::move(itsReason), itsSize, itsConfidence,
                       readFileFingerprint(itsUrl), std::chrono::system_clock::now()) {}

CleanupCandidate CleanupCandidate::withFingerprint(const std::filesystem::path& url, std::string title,
                                                   Category category, std::string reason, std::int64_t size,
                                                   Confidence confidence, FileFingerprint fingerprint,
                                                   SystemTime scannedAt) {
    return {url, std::move(title), category, std::move(reason), size, confidence, std::move(fingerprint), scannedAt};
}

std::string CleanupCandidate::id() const { return standardizedPath(url).native(); }

CleanupCandidate::RemovalDisposition CleanupCandidate::removalDisposition() const {
    return vantry::removalDisposition(category);
}

bool CleanupCandidate::canMoveToTrash() const { return removalDisposition() == RemovalDisposition::directTrash; }

} // namespace vantry

std::size_t std::hash<vantry::CleanupCandidate>::operator()(const vantry::CleanupCandidate& candidate) const {
    const auto nanoseconds = [](vantry::SystemTime time) { return time.time_since_epoch().count(); };
    return vantry::hashOf(candidate.uiID, hash_value(candidate.url), candidate.title, candidate.category,
                          candidate.reason, candidate.size, candidate.confidence,
                          candidate.scannedModificationDate.transform(nanoseconds), candidate.scannedResourceIdentifier,
                          candidate.scannedVolumeIdentifier, nanoseconds(candidate.scannedAt));
}
