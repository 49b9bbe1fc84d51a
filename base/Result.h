#pragma once

#include <expected>
#include <string>
#include <string_view>

namespace vantry {

/// What a caller may want to branch on; `system` is everything else.
enum class ErrorKind { notFound, permissionDenied, noSpace, timedOut, unsupported, invalid, system };

/// A failure as a value: branch on `kind`, show `message`.
struct Error {
    ErrorKind kind = ErrorKind::system;
    std::string message;

    bool operator==(const Error&) const = default;
};

template <class T>
using Result = std::expected<T, Error>;

/// The one place where an `errno` value becomes an `Error`. The message is `what`, ": " and the system's text; without
/// `what` it is the system's text alone. Any thread.
[[nodiscard]] Error errorFromErrno(int errorNumber, std::string_view what = {});

} // namespace vantry
