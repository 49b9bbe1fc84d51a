#include "platform/ItemKind.h"

#include "platform/linux/PromptLookup.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>

namespace vantry {

ItemKind quickItemKind(const std::filesystem::path& path) {
    const auto fd = openPromptly(path, FinalLink::isOpened);
    if (fd) {
        struct statx facts = {};
        if (statx(fd->get(), "", AT_EMPTY_PATH | AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, STATX_TYPE, &facts) != 0)
            return ItemKind::none;
        return S_ISREG(facts.stx_mode)   ? ItemKind::regularFile
               : S_ISDIR(facts.stx_mode) ? ItemKind::folder
                                         : ItemKind::other;
    }
    switch (fd.error()) {
    case EAGAIN:
    case EMFILE:
    case ENFILE:
    case ENOMEM: return ItemKind::unknown;
    default: return ItemKind::none;
    }
}

} // namespace vantry
