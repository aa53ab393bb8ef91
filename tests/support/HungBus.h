#pragma once

#include <stdexcept>
#include <string>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include "base/NonCopyable.h"
#include "tests/support/TemporaryFolder.h"

namespace quorvane {

/// A message bus that accepts connections and never answers.
class HungBus : NonCopyable {
public:
    HungBus() {
        sockaddr_un name{};
        name.sun_family = AF_UNIX;
        path().copy(&name.sun_path[0], sizeof name.sun_path - 1);
        // NOLINTNEXTLINE(cppcoreguidelines-pro-type-reinterpret-cast): how sockets are named.
        if (bind(m_socket, reinterpret_cast<const sockaddr*>(&name), sizeof name) != 0 ||
            listen(m_socket, 8) != 0)
            throw std::runtime_error("no socket");
    }

    ~HungBus() { close(m_socket); }

    [[nodiscard]] std::string address() const { return "unix:path=" + path(); }

private:
    [[nodiscard]] std::string path() const { return (m_folder.path() / "bus").string(); }

    TemporaryFolder m_folder;
    int m_socket = socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
};

} // namespace quorvane
