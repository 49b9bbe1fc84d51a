#include "cleanup/model/CleanupRemovalDisposition.h"

namespace vantry {

std::string_view title(CleanupRemovalDisposition disposition) {
    switch (disposition) {
    case CleanupRemovalDisposition::directTrash: return "Low Risk";
    case CleanupRemovalDisposition::reviewOnly: return "Review in Finder";
    case CleanupRemovalDisposition::protectedFromRemoval: return "Protected";
    }
    return {};
}

} // namespace vantry
