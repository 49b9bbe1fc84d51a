#include "cleanup/measuring/PropertyListFile.h"

#include "base/AtomicFile.h"
#include "base/UniqueFd.h"
#include "platform/PropertyList.h"

#include <cstdint>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace vantry::CleanupScanner {

namespace {

bool isSuitable(const struct stat& facts) {
    return S_ISREG(facts.st_mode) && facts.st_size >= 0 &&
           static_cast<std::uint64_t>(facts.st_size) <= largestPropertyList;
}

} // namespace

std::optional<std::string> contentsOfPropertyListFile(const std::filesystem::path& file) {
    // Opening a fifo wakes its writers, and opening a device may do anything.
    struct stat facts = {};
    if (lstat(file.c_str(), &facts) != 0 || !isSuitable(facts))
        return std::nullopt;
    const UniqueFd fd(open(file.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!fd || fstat(fd.get(), &facts) != 0 || !isSuitable(facts))
        return std::nullopt;
    auto contents = readToEnd(fd.get(), static_cast<std::size_t>(facts.st_size), file); // it may grow meanwhile
    return contents ? std::optional(std::move(*contents)) : std::nullopt;
}

PropertyListPayload textsOfPropertyListFile(const std::filesystem::path& file, std::span<const std::string> keys) {
    const auto contents = contentsOfPropertyListFile(file);
    if (!contents)
        return {};
    auto texts = propertyListTexts(*contents, keys);
    return texts ? PropertyListPayload{std::move(*texts)} : PropertyListPayload();
}

} // namespace vantry::CleanupScanner
