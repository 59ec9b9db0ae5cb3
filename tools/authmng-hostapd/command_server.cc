#include "command_server.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>

#include "mono_clock.h"

namespace authmng_hostapd {

bool CommandServer::start(const std::string &path, CommandHandler handler) {
    handler_ = std::move(handler);
    int fd = authmng_unix_socket_init(path.c_str());
    if (fd < 0) return false;
    // Only the owner may connect at all; root gets through regardless, and
    // the credentials are checked on every connection as well.
    if (chmod(path.c_str(), 0600) != 0 || listen(fd, 16) != 0) {
        int saved = errno;
        close(fd);
        errno = saved;
        return false;
    }
    path_ = path;
    loop_.start(fd, 0, [this](int client) { answer(client); });
    return true;
}

void CommandServer::stop() {
    if (loop_.stop()) (void)unlink(path_.c_str());
}

void CommandServer::answer(int fd) {
    // The request is read first, also from a peer that is then refused:
    // closing on an unread request would reset the connection and lose the
    // answer before the peer reads it.
    pollfd pfd = {fd, POLLIN, 0};
    if (poll(&pfd, 1, kCommandTimeoutMs) <= 0) return;
    char packet[AUTHMNG_TLV_BUF_SIZE + 1];
    // Something is waiting (or the peer hung up), so the receive returns.
    int got = authmng_unix_receive(fd, packet, sizeof packet);
    if (got <= 0) return;
    ucred peer;
    socklen_t len = sizeof peer;
    if (getsockopt(fd, SOL_SOCKET, SO_PEERCRED, &peer, &len) != 0 ||
        !peer_allowed(peer.uid, geteuid())) {
        char text[160];
        snprintf(text, sizeof text,
                 "authmng-hostapd: permission denied: uid %ld may not run commands here "
                 "(only uid %ld, the daemon's owner, and root)\n",
                 static_cast<long>(len == sizeof peer ? peer.uid : -1),
                 static_cast<long>(geteuid()));
        authmng_cmd::send_reply(fd, authmng_cmd::kDenied, text, kCommandTimeoutMs);
        fprintf(stderr, "%s", text);
        return;
    }
    std::string line, output;
    if (!authmng_cmd::unpack(packet, static_cast<size_t>(got), &line)) {
        authmng_cmd::send_reply(fd, authmng_cmd::kRefused, "% malformed command message\n",
                                kCommandTimeoutMs);
        return;
    }
    authmng_cmd::Status status = handler_(line, &output);
    authmng_cmd::send_reply(fd, status, output, kCommandTimeoutMs);
}

}  // namespace authmng_hostapd
