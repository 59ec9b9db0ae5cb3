// Local sequenced-packet sockets for the daemons: bind, connect, and a
// whole-message send and receive that never block in the kernel.
//
// The helpers keep no state and log nothing; errors come back as -1 with
// errno as the system left it. A null path or buffer, or a negative
// length, is refused with -1 before any system call; so is an empty path
// to bind to.
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>

#include "authmng.h"

namespace authmng {
namespace {

// Longest path an address holds: the path field less its terminator.
constexpr size_t kUnixPathMax = sizeof(sockaddr_un::sun_path) - 1;
static_assert(kUnixPathMax == 107, "a local address holds 107 path characters");

// Fills addr with the first path_len characters of path; returns the
// address length the system is given: the family word and the path,
// without the terminator.
socklen_t make_address(const char *path, size_t path_len, sockaddr_un *addr) {
    memset(addr, 0, sizeof(*addr));
    addr->sun_family = AF_UNIX;
    memcpy(addr->sun_path, path, path_len);
    return static_cast<socklen_t>(sizeof(addr->sun_family) + path_len);
}

}  // namespace
}  // namespace authmng

using namespace authmng;

int authmng_unix_socket_init(const char *path) {
    // An empty path would bind to an address the system picks at random.
    if (path == nullptr || path[0] == '\0') {
        errno = EINVAL;
        return -1;
    }
    int sock = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    if (sock < 0) return -1;
    sockaddr_un addr;
    socklen_t addr_len = make_address(path, strnlen(path, kUnixPathMax), &addr);
    // A file left by an earlier run would make the bind fail. The name
    // removed is the one bound: a longer path is bound under its first 107
    // characters.
    (void)unlink(addr.sun_path);
    if (bind(sock, reinterpret_cast<const sockaddr *>(&addr), addr_len) != 0) {
        int saved = errno;
        close(sock);
        errno = saved;
        return -1;
    }
    return sock;
}

int authmng_unix_connect(int sock, const char *path) {
    if (path == nullptr) return -1;
    size_t path_len = strnlen(path, kUnixPathMax + 1);
    if (path_len > kUnixPathMax) return -1;
    sockaddr_un addr;
    socklen_t addr_len = make_address(path, path_len, &addr);
    return connect(sock, reinterpret_cast<const sockaddr *>(&addr), addr_len);
}

int authmng_unix_send(int sock, const void *buffer, int length) {
    if (buffer == nullptr || length < 0) return -1;
    const char *next = static_cast<const char *>(buffer);
    size_t remaining = static_cast<size_t>(length);
    for (;;) {
        ssize_t sent = send(sock, next, remaining, MSG_DONTWAIT);
        if (sent < 0) return -1;  // also a full socket: the caller decides
        if (sent == 0) return 0;
        remaining -= static_cast<size_t>(sent);
        if (remaining == 0) return length;
        next += sent;
    }
}

int authmng_unix_receive(int sock, void *buffer, int length) {
    if (buffer == nullptr || length < 0) return -1;
    for (;;) {
        ssize_t received = recv(sock, buffer, static_cast<size_t>(length), MSG_DONTWAIT);
        if (received >= 0) return static_cast<int>(received);
        if (errno != EINTR && errno != EAGAIN && errno != EINPROGRESS) return -1;
    }
}
