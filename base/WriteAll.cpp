#include "base/WriteAll.h"

#include <cerrno>
#include <unistd.h>

namespace vantry {

int writeAll(int fd, std::string_view bytes) {
    constexpr int attempts = 16; // that fail in a row
    int left = attempts;
    while (!bytes.empty()) {
        const ssize_t written = write(fd, bytes.data(), bytes.size());
        if (written > 0) {
            bytes.remove_prefix(static_cast<std::size_t>(written));
            left = attempts;
        } else if (written == 0 || (errno != EINTR && errno != EAGAIN) || --left == 0) {
            return written == 0 ? EIO : errno;
        }
    }
    return 0;
}

} // namespace vantry
