// A listening socket served on a thread of its own: every connection it
// accepts goes to one function, one connection at a time, and is closed
// when that function returns. Both of the daemon's servers (the command
// socket and the metrics endpoint) run on one of these.
#ifndef AUTHMNG_HOSTAPD_ACCEPT_LOOP_H
#define AUTHMNG_HOSTAPD_ACCEPT_LOOP_H

#include <atomic>
#include <functional>
#include <thread>

namespace authmng_hostapd {

class AcceptLoop {
public:
    ~AcceptLoop() { stop(); }
    // Takes listen_fd (already listening) and starts the thread; accepted
    // sockets get accept_flags (SOCK_CLOEXEC is always added).
    void start(int listen_fd, int accept_flags, std::function<void(int)> serve_one);
    // Ends the thread and closes the listening socket; false when there
    // was nothing to stop.
    bool stop();

private:
    void run();

    int fd_ = -1;
    int accept_flags_ = 0;
    std::function<void(int)> serve_one_;
    std::atomic<bool> stopping_{false};
    std::thread thread_;
};

}  // namespace authmng_hostapd

#endif
