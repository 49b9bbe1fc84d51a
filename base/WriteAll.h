#pragma once

#include <string_view>

namespace vantry {

/// Writes all of `bytes` to `fd`, in as many calls as it takes. Returns an errno, 0 on success. EINTR and EAGAIN are
/// retried a bounded number of times in a row. Any thread.
[[nodiscard]] int writeAll(int fd, std::string_view bytes);

} // namespace vantry
