#include "hostapd_ctrl.h"

#include <poll.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <ctime>

#include "mono_clock.h"

namespace authmng_hostapd {
namespace {

bool fill_address(const std::string &path, sockaddr_un *addr) {
    memset(addr, 0, sizeof *addr);
    addr->sun_family = AF_UNIX;
    if (path.size() >= sizeof addr->sun_path) {
        errno = ENAMETOOLONG;
        return false;
    }
    memcpy(addr->sun_path, path.c_str(), path.size() + 1);
    return true;
}

// The call failed for now only: nothing waiting, no room, or a signal.
bool only_for_now() {
    return errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR;
}

}  // namespace

bool CtrlSocket::open(const std::string &server_path, const std::string &local_path) {
    close();
    server_path_ = server_path;
    local_base_ = local_path;
    renewals_ = 0;
    return bind_and_connect();
}

bool CtrlSocket::bind_and_connect() {
    std::string local = local_base_;
    if (renewals_ > 0) local += "." + std::to_string(renewals_);
    sockaddr_un here, server;
    if (!fill_address(local, &here) || !fill_address(server_path_, &server)) return false;
    fd_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0);
    if (fd_ < 0) return false;
    (void)unlink(local.c_str());
    local_path_ = local;
    if (bind(fd_, reinterpret_cast<sockaddr *>(&here), sizeof here) != 0 ||
        connect(fd_, reinterpret_cast<sockaddr *>(&server), sizeof server) != 0) {
        int saved = errno;
        close();
        errno = saved;
        return false;
    }
    return true;
}

void CtrlSocket::close() {
    if (fd_ >= 0) ::close(fd_);
    fd_ = -1;
    stale_ = false;
    if (!local_path_.empty()) (void)unlink(local_path_.c_str());
    local_path_.clear();
}

Answer CtrlSocket::request(const char *command, std::string *reply, int timeout_ms) {
    if (stale_) {
        close();
        ++renewals_;
        if (!bind_and_connect()) return Answer::Refused;
    }
    if (fd_ < 0) return Answer::Refused;
    int64_t deadline = monotonic_us() + timeout_ms * 1000LL;
    auto wait_for = [this, deadline](short what) {
        int64_t left = deadline - monotonic_us();
        pollfd pfd = {fd_, what, 0};
        return left > 0 && poll(&pfd, 1, static_cast<int>((left + 999) / 1000)) > 0;
    };
    // A full queue on hostapd's side refuses the datagram for now; it is
    // taken as soon as hostapd reads.
    while (send(fd_, command, strlen(command), 0) < 0) {
        if (!only_for_now()) return Answer::Refused;
        if (errno != EINTR && !wait_for(POLLOUT)) return Answer::Late;
    }
    stale_ = true;
    char buffer[kCtrlBufferSize];
    while (wait_for(POLLIN)) {
        ssize_t got = recv(fd_, buffer, sizeof buffer, 0);
        if (got >= 0) {
            stale_ = false;
            reply->assign(buffer, static_cast<size_t>(got));
            return Answer::Given;
        }
        if (!only_for_now()) return Answer::Refused;
    }
    return Answer::Late;
}

void CtrlSocket::stamp_arrivals() {
    int on = 1;
    if (fd_ >= 0) setsockopt(fd_, SOL_SOCKET, SO_TIMESTAMPNS, &on, sizeof on);
}

ssize_t CtrlSocket::receive(char *buffer, size_t size, int64_t *arrival_us) {
    if (fd_ < 0) return -1;
    iovec iov = {buffer, size};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(timespec))];
    msghdr msg;
    memset(&msg, 0, sizeof msg);
    msg.msg_iov = &iov;
    msg.msg_iovlen = 1;
    msg.msg_control = control;
    msg.msg_controllen = sizeof control;
    ssize_t got = recvmsg(fd_, &msg, 0);
    if (got < 0) return only_for_now() ? 0 : -1;
    int64_t now = monotonic_us();
    *arrival_us = now;
    for (cmsghdr *c = CMSG_FIRSTHDR(&msg); c != nullptr; c = CMSG_NXTHDR(&msg, c)) {
        if (c->cmsg_level != SOL_SOCKET || c->cmsg_type != SCM_TIMESTAMPNS) continue;
        timespec wall, arrival;
        memcpy(&arrival, CMSG_DATA(c), sizeof arrival);
        clock_gettime(CLOCK_REALTIME, &wall);
        // The arrival on the wall clock, moved onto the monotonic one.
        int64_t age = (static_cast<int64_t>(wall.tv_sec) - arrival.tv_sec) * 1000000 +
                      (wall.tv_nsec - arrival.tv_nsec) / 1000;
        if (age >= 0 && age < 10000000) *arrival_us = now - age;
    }
    return got;
}

unsigned long long socket_identity(const std::string &path) {
    struct stat st;
    if (stat(path.c_str(), &st) != 0) return 0;
    return (static_cast<unsigned long long>(st.st_dev) << 32) ^ st.st_ino;
}

}  // namespace authmng_hostapd
