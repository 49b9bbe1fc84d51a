#include "app/SingleInstance.h"

#include "base/Format.h"

#include <array>
#include <cerrno>
#include <chrono>
#include <cstdint>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>

namespace vantry {

namespace {

constexpr std::string_view popoverWord = "popover";
constexpr std::string_view cleanupWord = "cleanup";
constexpr std::chrono::milliseconds patience{2000};
constexpr std::chrono::milliseconds pause{20};

std::filesystem::path lockPath(const std::filesystem::path& folder, const std::string& name) {
    return folder / (name + ".lock");
}

std::filesystem::path socketPath(const std::filesystem::path& folder, const std::string& name) {
    return folder / (name + ".socket");
}

Result<sockaddr_un> addressOf(const std::filesystem::path& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path)
        return std::unexpected(errorFromErrno(ENAMETOOLONG, path.native()));
    std::memcpy(address.sun_path, path.c_str(), path.native().size());
    return address;
}

Result<UniqueFd> datagramSocket() {
    UniqueFd socket(::socket(AF_UNIX, SOCK_DGRAM, 0));
    if (!socket || fcntl(socket.get(), F_SETFD, FD_CLOEXEC) != 0 || fcntl(socket.get(), F_SETFL, O_NONBLOCK) != 0)
        return std::unexpected(errorFromErrno(errno, "socket"));
    return socket;
}

const sockaddr* generic(const sockaddr_un& address) { return reinterpret_cast<const sockaddr*>(&address); }

} // namespace

Result<std::unique_ptr<SingleInstance>> SingleInstance::claim(const std::filesystem::path& folder,
                                                              const std::string& name) {
    const auto lockFile = lockPath(folder, name);
    UniqueFd lock(open(lockFile.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!lock)
        return std::unexpected(errorFromErrno(errno, lockFile.native()));
    if (flock(lock.get(), LOCK_EX | LOCK_NB) != 0) {
        if (errno == EWOULDBLOCK)
            return nullptr;
        return std::unexpected(errorFromErrno(errno, lockFile.native()));
    }
    // The holder of the lock owns the socket's name and removes a socket that a crashed instance left behind.
    auto path = socketPath(folder, name);
    const auto address = addressOf(path);
    if (!address)
        return std::unexpected(address.error());
    auto socket = datagramSocket();
    if (!socket)
        return std::unexpected(socket.error());
    unlink(path.c_str());
    if (bind(socket->get(), generic(*address), sizeof *address) != 0 || chmod(path.c_str(), 0600) != 0)
        return std::unexpected(errorFromErrno(errno, path.native()));
    return std::unique_ptr<SingleInstance>(new SingleInstance(std::move(lock), std::move(*socket), std::move(path)));
}

Result<void> SingleInstance::ask(const std::filesystem::path& folder, const std::string& name,
                                 InstanceRequest request) {
    const auto path = socketPath(folder, name);
    const auto address = addressOf(path);
    if (!address)
        return std::unexpected(address.error());
    const auto socket = datagramSocket();
    if (!socket)
        return std::unexpected(socket.error());
    const auto word = request == InstanceRequest::showPopover ? popoverWord : cleanupWord;
    for (const auto giveUp = std::chrono::steady_clock::now() + patience;;) {
        if (sendto(socket->get(), word.data(), word.size(), 0, generic(*address), sizeof *address) >= 0)
            return {};
        // The other instance may hold the lock without listening yet.
        const bool mayStillCome = errno == ENOENT || errno == ECONNREFUSED || errno == EAGAIN || errno == EINTR;
        if (!mayStillCome || std::chrono::steady_clock::now() >= giveUp)
            return std::unexpected(errorFromErrno(errno, path.native()));
        std::this_thread::sleep_for(pause);
    }
}

SingleInstance::SingleInstance(UniqueFd lock, UniqueFd socket, std::filesystem::path socketPath)
    : lock_(std::move(lock)),
      socket_(std::move(socket)),
      socketPath_(std::move(socketPath)) {}

SingleInstance::~SingleInstance() { unlink(socketPath_.c_str()); }

std::optional<InstanceRequest> SingleInstance::receive() {
    std::array<char, 64> buffer{};
    for (;;) {
        const ssize_t length = recv(socket_.get(), buffer.data(), buffer.size(), 0);
        if (length < 0 && errno == EINTR)
            continue;
        if (length < 0)
            return std::nullopt;
        const std::string_view word(buffer.data(), static_cast<std::size_t>(length));
        if (word == popoverWord)
            return InstanceRequest::showPopover;
        if (word == cleanupWord)
            return InstanceRequest::showCleanup;
    }
}

void SingleInstance::touch() const {
    futimens(lock_.get(), nullptr);
    utimensat(AT_FDCWD, socketPath_.c_str(), nullptr, AT_SYMLINK_NOFOLLOW);
}

std::string instanceName(const std::filesystem::path& home, const std::string& session) {
    // FNV-1a with 64 bits, for a short and stable file name.
    std::uint64_t hash = 14695981039346656037U;
    const auto folder = (home / "").lexically_normal(); // always with a slash at the end
    for (const char byte : folder.native() + '\0' + session) {
        hash ^= static_cast<unsigned char>(byte);
        hash *= 1099511628211U;
    }
    return formatted("ombrel-{:016x}", hash);
}

} // namespace vantry
