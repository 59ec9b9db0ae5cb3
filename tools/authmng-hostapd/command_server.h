// The daemon's command socket: a thread that accepts authmng-cli's
// connections on a local sequenced-packet socket, lets in only the daemon's
// owner and root (the peer's credentials), and runs one command line per
// connection (command_protocol.h). The process ignores SIGPIPE: a client
// that goes away mid-answer must not end the daemon.
#ifndef AUTHMNG_HOSTAPD_COMMAND_SERVER_H
#define AUTHMNG_HOSTAPD_COMMAND_SERVER_H

#include <sys/types.h>

#include <functional>
#include <string>

#include "accept_loop.h"
#include "command_protocol.h"

namespace authmng_hostapd {

// How long a connection may take to send its command and read the answer.
constexpr int kCommandTimeoutMs = 3000;

// Runs one command line; its output into *output; kRun or kRefused.
using CommandHandler = std::function<authmng_cmd::Status(const std::string &, std::string *)>;

// Whether a peer with this uid may run commands in a daemon run by owner.
inline bool peer_allowed(uid_t peer, uid_t owner) {
    return peer == 0 || peer == owner;
}

class CommandServer {
public:
    ~CommandServer() { stop(); }
    // Binds path (mode 0600) and starts the thread. false, with errno, when
    // the socket cannot be made.
    bool start(const std::string &path, CommandHandler handler);
    void stop();

private:
    void answer(int fd);

    std::string path_;
    CommandHandler handler_;
    AcceptLoop loop_;
};

}  // namespace authmng_hostapd

#endif
