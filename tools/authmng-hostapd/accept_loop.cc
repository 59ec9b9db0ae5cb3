#include "accept_loop.h"

#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace authmng_hostapd {

// How often the thread looks whether it is to stop while nobody connects.
constexpr int kStopPollMs = 200;

void AcceptLoop::start(int listen_fd, int accept_flags, std::function<void(int)> serve_one) {
    fd_ = listen_fd;
    accept_flags_ = accept_flags | SOCK_CLOEXEC;
    serve_one_ = std::move(serve_one);
    stopping_ = false;
    thread_ = std::thread([this] { run(); });
}

bool AcceptLoop::stop() {
    if (fd_ < 0) return false;
    stopping_ = true;
    shutdown(fd_, SHUT_RDWR);
    if (thread_.joinable()) thread_.join();
    close(fd_);
    fd_ = -1;
    return true;
}

void AcceptLoop::run() {
    while (!stopping_) {
        pollfd pfd = {fd_, POLLIN, 0};
        if (poll(&pfd, 1, kStopPollMs) <= 0) continue;
        int client = accept4(fd_, nullptr, nullptr, accept_flags_);
        if (client < 0) continue;
        serve_one_(client);
        close(client);
    }
}

}  // namespace authmng_hostapd
