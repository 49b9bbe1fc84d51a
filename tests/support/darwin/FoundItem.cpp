// What Foundation tells about items on a Mac, told by lstat: platform/apple/ItemFacts.mm needs Objective-C.

#include "platform/FoundItem.h"

#include "platform/apple/PromptLookup.h"

#include <cerrno>
#include <string>
#include <sys/stat.h>

namespace vantry {

namespace {

ItemFacts::Kind kindOf(mode_t mode) {
    return S_ISREG(mode)   ? ItemFacts::Kind::regularFile
           : S_ISDIR(mode) ? ItemFacts::Kind::folder
           : S_ISLNK(mode) ? ItemFacts::Kind::symbolicLink
                           : ItemFacts::Kind::other;
}

} // namespace

Result<FoundItem> readFoundItem(const std::filesystem::path& path,
                                const std::function<bool(const ItemFacts&)>& isWanted) {
    const auto place = promptPath(path, FinalLink::isKept);
    struct stat said = {};
    if (!place || lstat(place->c_str(), &said) != 0)
        return std::unexpected(errorFromErrno(place ? errno : place.error()));
    FoundItem item;
    item.facts.kind = kindOf(said.st_mode);
    item.facts.contentModificationDate = systemTimeFromUnix(said.st_mtim.tv_sec, said.st_mtim.tv_nsec);
    if (S_ISREG(said.st_mode))
        item.facts.allocatedBytes = said.st_blocks * 512;
    if (isWanted(item.facts))
        item.fingerprint = {.contentModificationDate = item.facts.contentModificationDate,
                            .resourceIdentifier = std::to_string(said.st_ino),
                            .volumeIdentifier = std::to_string(said.st_dev)};
    return item;
}

Result<ItemFacts> readItemFacts(const std::filesystem::path& path) {
    const auto item = readFoundItem(path, [](const auto&) { return false; });
    return item ? Result<ItemFacts>(item->facts) : std::unexpected(item.error());
}

} // namespace vantry
