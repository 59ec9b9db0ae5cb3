#include "hostapd_ctrl.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <cstdlib>
#include <cstring>
#include <string>
#include <thread>

namespace authmng_hostapd {
namespace {

// hostapd's side of a control interface: a datagram socket bound to a path
// that answers whoever sent to it.
class FakeHostapd {
public:
    FakeHostapd() {
        char dir[] = "/tmp/authmng-ctrl-XXXXXX";
        if (mkdtemp(dir) != nullptr) dir_ = dir;
        path = dir_ + "/veth-a";
        address.sun_family = AF_UNIX;
        strncpy(address.sun_path, path.c_str(), sizeof address.sun_path - 1);
        bound = bind(fd_, reinterpret_cast<sockaddr *>(&address), sizeof address) == 0;
    }
    ~FakeHostapd() {
        shut();
        unlink(path.c_str());
        rmdir(dir_.c_str());
    }
    // The next request, its sender in *from ("" after 5 s without one).
    std::string take(sockaddr_un *from) {
        pollfd pfd = {fd_, POLLIN, 0};
        char buffer[256];
        socklen_t len = sizeof *from;
        ssize_t got = poll(&pfd, 1, 5000) <= 0 ? -1
                                               : recvfrom(fd_, buffer, sizeof buffer, 0,
                                                          reinterpret_cast<sockaddr *>(from), &len);
        return got < 0 ? "" : std::string(buffer, static_cast<size_t>(got));
    }
    void answer(const sockaddr_un &to, const char *text) {
        (void)sendto(fd_, text, strlen(text), MSG_DONTWAIT, reinterpret_cast<const sockaddr *>(&to),
                     sizeof to);
    }
    void shut() {
        if (fd_ >= 0) close(fd_);
        fd_ = -1;
    }

    std::string path;
    sockaddr_un address = {};
    bool bound = false;

private:
    std::string dir_;
    int fd_ = socket(AF_UNIX, SOCK_DGRAM, 0);
};

TEST(CtrlSocket, LateAnswerGoesNowhereAndTheNextRequestGetsItsOwn) {
    FakeHostapd hostapd;
    ASSERT_TRUE(hostapd.bound);
    CtrlSocket client;
    ASSERT_TRUE(client.open(hostapd.path, hostapd.path + "-client"));
    std::string reply;
    EXPECT_EQ(client.request("STA 02:00:00:00:00:01", &reply, 20), Answer::Late);
    // hostapd reads both requests, then answers the first one late.
    std::thread server([&] {
        sockaddr_un first, second;
        EXPECT_EQ(hostapd.take(&first), "STA 02:00:00:00:00:01");
        EXPECT_EQ(hostapd.take(&second), "PING");
        hostapd.answer(first, "02:00:00:00:00:01\nflags=[AUTHORIZED]\n");
        hostapd.answer(second, "PONG\n");
    });
    EXPECT_EQ(client.request("PING", &reply, 5000), Answer::Given);
    server.join();
    EXPECT_EQ(reply, "PONG\n");
}

TEST(CtrlSocket, FullQueueDelaysTheRequestAndAClosedOneRefusesIt) {
    FakeHostapd hostapd;
    ASSERT_TRUE(hostapd.bound);
    // Another client's commands fill hostapd's queue.
    int other = socket(AF_UNIX, SOCK_DGRAM | SOCK_NONBLOCK, 0);
    int queued = 0;
    while (queued < 10000 &&
           sendto(other, "EAPOL_REAUTH", 12, 0, reinterpret_cast<sockaddr *>(&hostapd.address),
                  sizeof hostapd.address) > 0) {
        ++queued;
    }
    close(other);
    CtrlSocket client;
    ASSERT_TRUE(client.open(hostapd.path, hostapd.path + "-client"));
    std::thread server([&] {
        sockaddr_un from;
        for (int i = 0; i <= queued; ++i) {
            if (hostapd.take(&from) == "PING") hostapd.answer(from, "PONG\n");
        }
    });
    std::string reply;
    EXPECT_EQ(client.request("PING", &reply, 5000), Answer::Given);
    server.join();
    EXPECT_EQ(reply, "PONG\n");

    hostapd.shut();
    EXPECT_EQ(client.request("PING", &reply, 100), Answer::Refused);
}

}  // namespace
}  // namespace authmng_hostapd
