#include "platform/WriteProtection.h"

namespace vantry {

Result<void> giveUpChangingFiles() {
    return std::unexpected(
        Error{ErrorKind::unsupported, "macOS offers programs no supported way to give up changing files."});
}

} // namespace vantry
