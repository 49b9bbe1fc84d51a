#include "platform/ItemFacts.h"

#include <sys/stat.h>

namespace vantry {

ItemKind quickItemKind(const std::filesystem::path& path) {
    struct stat facts = {};
    if (lstat(path.c_str(), &facts) != 0)
        return ItemKind::none;
    return S_ISREG(facts.st_mode) ? ItemKind::regularFile : S_ISDIR(facts.st_mode) ? ItemKind::folder : ItemKind::other;
}

} // namespace vantry
