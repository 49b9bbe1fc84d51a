#include "base/Result.h"

#include <cerrno>
#include <system_error>

namespace vantry {

namespace {

ErrorKind kindOfErrno(int errorNumber) {
    switch (errorNumber) {
    case ENOENT:
    case ENOTDIR: return ErrorKind::notFound;
    case EACCES:
    case EPERM:
    case EROFS: return ErrorKind::permissionDenied;
    case ENOSPC:
    case EDQUOT: return ErrorKind::noSpace;
    case ETIMEDOUT: return ErrorKind::timedOut;
    case ENOSYS:
    case ENOTSUP: return ErrorKind::unsupported;
    case EINVAL:
    case ENAMETOOLONG: return ErrorKind::invalid;
    default: return ErrorKind::system;
    }
}

} // namespace

Error errorFromErrno(int errorNumber, std::string_view what) {
    std::string text = std::generic_category().message(errorNumber);
    if (!what.empty())
        text = std::string(what) + ": " + text;
    return Error{kindOfErrno(errorNumber), std::move(text)};
}

} // namespace vantry
