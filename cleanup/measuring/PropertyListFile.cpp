#include "cleanup/measuring/PropertyListFile.h"

#include "base/UniqueFd.h"
#include "platform/PropertyList.h"

#include <cerrno>
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

// Reads at most one byte more than a list may have: a file may grow while it is read, and some do not report their
// size.
std::optional<std::string> contentsOf(int fd, std::size_t expected) {
    std::string contents(expected + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        const ssize_t got = read(fd, contents.data() + length, contents.size() - length);
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return std::nullopt;
        length += static_cast<std::size_t>(got);
        if (got == 0 || length == contents.size())
            break;
    }
    if (length > expected)
        return std::nullopt;
    contents.resize(length);
    return contents;
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
    return contentsOf(fd.get(), static_cast<std::size_t>(facts.st_size));
}

PropertyListPayload textsOfPropertyListFile(const std::filesystem::path& file, std::span<const std::string> keys) {
    const auto contents = contentsOfPropertyListFile(file);
    if (!contents)
        return {};
    auto texts = propertyListTexts(*contents, keys);
    return texts ? PropertyListPayload{std::move(*texts)} : PropertyListPayload();
}

} // namespace vantry::CleanupScanner
