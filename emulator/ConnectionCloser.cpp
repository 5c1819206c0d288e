#include "emulator/ConnectionCloser.h"

#include <arpa/inet.h>
#include <httplib.h>
#include <netinet/in.h>
#include <openssl/ssl.h>
#include <sys/socket.h>
#include <sys/stat.h>

#include <charconv>
#include <filesystem>

namespace ovix::emulator {

namespace {

int portOf(const sockaddr_storage& address) {
    if (address.ss_family == AF_INET) {
        return ntohs(reinterpret_cast<const sockaddr_in&>(address).sin_port);
    }
    if (address.ss_family == AF_INET6) {
        return ntohs(reinterpret_cast<const sockaddr_in6&>(address).sin6_port);
    }
    return -1;
}

bool matches(int fd, int localPort, int remotePort) {
    struct stat info {};
    if (fstat(fd, &info) != 0 || !S_ISSOCK(info.st_mode)) {
        return false;
    }
    sockaddr_storage local{};
    sockaddr_storage peer{};
    socklen_t localSize = sizeof local;
    socklen_t peerSize = sizeof peer;
    if (getsockname(fd, reinterpret_cast<sockaddr*>(&local), &localSize) != 0 ||
        getpeername(fd, reinterpret_cast<sockaddr*>(&peer), &peerSize) != 0) {
        return false;
    }
    return portOf(local) == localPort && portOf(peer) == remotePort;
}

}  // namespace

int ConnectionCloser::socketOf(const httplib::Request& request) {
    int found = -1;
    if (request.ssl != nullptr) {
        found = SSL_get_fd(request.ssl);
    } else {
        std::error_code error;
        for (const auto& entry : std::filesystem::directory_iterator("/proc/self/fd", error)) {
            const auto name = entry.path().filename().string();
            int fd = -1;
            if (std::from_chars(name.data(), name.data() + name.size(), fd).ec == std::errc{} &&
                matches(fd, request.local_port, request.remote_port)) {
                found = fd;
                break;
            }
        }
    }
    return found;
}

bool ConnectionCloser::shutDown(int socket) {
    return ::shutdown(socket, SHUT_RDWR) == 0;
}

}  // namespace ovix::emulator
