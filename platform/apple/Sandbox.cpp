#include "platform/Sandbox.h"

#include <cerrno>
#include <sys/resource.h>

namespace vantry {

Result<void> giveUpChangingFiles() {
    return std::unexpected(
        Error{ErrorKind::unsupported, "macOS offers programs no supported way to give up changing files."});
}

Result<void> limitMemory(std::size_t /*bytes*/) {
    const rlimit none{0, 0};
    if (setrlimit(RLIMIT_CORE, &none) != 0)
        return std::unexpected(errorFromErrno(errno, "RLIMIT_CORE"));
    return std::unexpected(Error{ErrorKind::unsupported, "macOS does not enforce memory limits on programs."});
}

} // namespace vantry
