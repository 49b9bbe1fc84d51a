#include "base/AtomicFile.h"

#include "base/UniqueFd.h"
#include "base/WriteAll.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace vantry {

namespace {

std::unexpected<Error> failed(const std::filesystem::path& path) {
    return std::unexpected(errorFromErrno(errno, path.native()));
}

} // namespace

std::filesystem::path draftOf(const std::filesystem::path& file) {
    return file.parent_path() / ("." + file.filename().native() + ".new");
}

Result<void> writeFileAtomically(const std::filesystem::path& file, std::string_view contents, mode_t mode) {
    const auto draft = draftOf(file);
    const auto created = [&draft] {
        return open(draft.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    };
    UniqueFd fd(created());
    if (!fd && errno == EEXIST && unlink(draft.c_str()) == 0)
        fd.reset(created());
    if (!fd)
        return failed(file);
    if (const int error = writeAll(fd.get(), contents);
        error != 0 || fchmod(fd.get(), mode) != 0 || fsync(fd.get()) != 0 || rename(draft.c_str(), file.c_str()) != 0) {
        const auto failure = errorFromErrno(error != 0 ? error : errno, file.native());
        unlink(draft.c_str());
        return std::unexpected(failure);
    }
    // The file is complete and in its place, even if its folder cannot be synced.
    const UniqueFd folder(open(file.parent_path().c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder)
        fsync(folder.get());
    return {};
}

Result<std::string> readSmallFile(const std::filesystem::path& file, std::size_t limit) {
    // O_NONBLOCK: a FIFO in place of the file must not block the caller.
    const UniqueFd fd(open(file.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat facts = {};
    if (!fd || fstat(fd.get(), &facts) != 0)
        return failed(file);
    if (!S_ISREG(facts.st_mode))
        return std::unexpected(Error{ErrorKind::invalid, file.native() + ": not a file"});
    return readToEnd(fd.get(), limit, file);
}

Result<std::string> readToEnd(int fd, std::size_t limit, const std::filesystem::path& file) {
    std::string contents;
    std::string piece(65536, '\0');
    for (;;) {
        const ssize_t length = read(fd, piece.data(), piece.size());
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return failed(file);
        if (length == 0)
            return contents;
        contents.append(piece, 0, static_cast<std::size_t>(length));
        if (contents.size() > limit)
            return std::unexpected(Error{ErrorKind::invalid, file.native() + ": too large"});
    }
}

} // namespace vantry
