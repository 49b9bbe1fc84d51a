#include "platform/ItemFacts.h"

#include "base/Utf8.h"
#include "platform/apple/FoundationValues.h"

#include <Foundation/Foundation.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

constexpr std::int64_t bytesPerBlock = 512; // of st_blocks, whatever the file system's own block

} // namespace

std::optional<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    struct stat said = {};
    if (lstat(path.c_str(), &said) != 0)
        return std::nullopt;
    ItemFacts facts;
    facts.kind = S_ISREG(said.st_mode)   ? ItemFacts::Kind::regularFile
                 : S_ISDIR(said.st_mode) ? ItemFacts::Kind::folder
                 : S_ISLNK(said.st_mode) ? ItemFacts::Kind::symbolicLink
                                         : ItemFacts::Kind::other;
    facts.contentModificationDate = systemTimeFromUnix(said.st_mtimespec.tv_sec, said.st_mtimespec.tv_nsec);
    std::int64_t bytes = 0;
    if (!__builtin_mul_overflow(said.st_blocks, bytesPerBlock, &bytes))
        facts.allocatedBytes = bytes;
    return facts;
}

bool isFolder(const std::filesystem::path& path) {
    struct stat facts = {};
    return stat(path.c_str(), &facts) == 0 && S_ISDIR(facts.st_mode);
}

bool isReadableFolder(const std::filesystem::path& path) { return isFolder(path) && access(path.c_str(), R_OK) == 0; }

std::string displayName(const std::filesystem::path& path) {
    @autoreleasepool {
        NSString* name = foundationText(path.native());
        const auto shown = name ? textFromFoundation([NSFileManager.defaultManager displayNameAtPath:name]) : "";
        return !shown.empty() ? shown : withReplacementCharacters(path.filename().native());
    }
}

} // namespace vantry
