#pragma once

#include "base/UniqueFd.h"

#include <filesystem>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>

namespace vantry {

/// Makes a socket with a name in the file system. The name stays when the socket is closed.
inline void makeSocket(const std::filesystem::path& path) {
    const UniqueFd socket(::socket(AF_UNIX, SOCK_STREAM, 0));
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.native().size() >= sizeof address.sun_path)
        throw std::runtime_error("too long for a socket: " + path.native());
    path.native().copy(address.sun_path, path.native().size());
    if (bind(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        throw std::runtime_error("cannot make a socket at " + path.native());
}

} // namespace vantry
