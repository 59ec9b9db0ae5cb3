// A client of one hostapd control interface: a datagram socket bound to a
// path of its own and connected to hostapd's. The bridge keeps two per
// interface, one ATTACHed for events and one for STA/MIB/PING requests, so
// that a reply never interleaves with an event.
#ifndef AUTHMNG_HOSTAPD_HOSTAPD_CTRL_H
#define AUTHMNG_HOSTAPD_HOSTAPD_CTRL_H

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>

namespace authmng_hostapd {

// How long a request waits for hostapd's reply.
constexpr int kRequestTimeoutMs = 500;
// Largest reply or event read.
constexpr size_t kCtrlBufferSize = 8192;

// How a request went.
enum class Answer {
    Given,    // the reply is hostapd's answer to this request
    Late,     // no answer in time: hostapd is busy (its queue full) or hung
    Refused,  // the socket failed: nobody serves the control interface
};

class CtrlSocket {
public:
    CtrlSocket() = default;
    ~CtrlSocket() { close(); }
    CtrlSocket(const CtrlSocket &) = delete;
    CtrlSocket &operator=(const CtrlSocket &) = delete;

    // Binds to local_path and connects to server_path. false (errno set) on
    // failure; the socket is closed then.
    bool open(const std::string &server_path, const std::string &local_path);
    void close();
    bool is_open() const { return fd_ >= 0; }
    int fd() const { return fd_; }

    // Sends command and waits up to timeout_ms in all for the reply, also
    // while hostapd's queue is too full to take the command. A request left
    // without answer takes the socket with it: the next one goes out on a
    // fresh socket bound to a new path, so a late answer is never taken for
    // the next request's.
    Answer request(const char *command, std::string *reply, int timeout_ms = kRequestTimeoutMs);

    // Ask the kernel to stamp every datagram on arrival.
    void stamp_arrivals();

    // One waiting datagram without blocking: its length, 0 when none is
    // waiting, -1 when the socket failed (hostapd went away). *arrival_us
    // is the kernel's arrival stamp on the monotonic clock (see
    // stamp_arrivals), or the time of this call when there is none: the
    // stamp stays right while the caller was busy polling hostapd.
    ssize_t receive(char *buffer, size_t size, int64_t *arrival_us);

private:
    bool bind_and_connect();

    int fd_ = -1;
    bool stale_ = false;  // a request went unanswered on this socket
    unsigned renewals_ = 0;
    std::string server_path_;
    std::string local_base_;
    std::string local_path_;
};

// Identity of the socket file at path (device and inode), 0 when missing:
// a restarted hostapd makes a new file and forgets its monitors.
unsigned long long socket_identity(const std::string &path);

}  // namespace authmng_hostapd

#endif
