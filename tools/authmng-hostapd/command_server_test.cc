#include "command_server.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <string>

#include "authmng.h"

namespace authmng_hostapd {
namespace {

// Runs line against the server at path as authmng-cli does: the status
// byte, then the output.
std::string run_line(const std::string &path, const std::string &line) {
    int fd = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    if (fd < 0 || authmng_unix_connect(fd, path.c_str()) != 0) return "no connection";
    authmng_tlv_buf_t request;
    std::string said;
    if (authmng_cmd::pack(line.data(), line.size(), &request)) {
        authmng_unix_send(fd, request.data, request.used);
    } else {
        // Not one well-formed element: raw bytes.
        authmng_unix_send(fd, line.data(), static_cast<int>(line.size() > 150 ? 150 : line.size()));
    }
    for (;;) {
        pollfd pfd = {fd, POLLIN, 0};
        if (poll(&pfd, 1, 5000) <= 0) break;
        char packet[AUTHMNG_TLV_BUF_SIZE + 1];
        int got = authmng_unix_receive(fd, packet, sizeof packet);
        std::string value;
        if (got <= 0 || !authmng_cmd::unpack(packet, static_cast<size_t>(got), &value)) break;
        said += value;
    }
    close(fd);
    return said;
}

class CommandServerTest : public ::testing::Test {
protected:
    void SetUp() override {
        signal(SIGPIPE, SIG_IGN);  // as the daemon has it
        char dir[] = "/tmp/authmng-cmd-XXXXXX";
        ASSERT_NE(mkdtemp(dir), nullptr);
        dir_ = dir;
        path_ = dir_ + "/cmd.sock";
        ASSERT_TRUE(server_.start(path_, [](const std::string &line, std::string *out) {
            *out = line == "long" ? std::string(1000, 'x') + "end\n" : "ran [" + line + "]\n";
            return line == "bad" ? authmng_cmd::kRefused : authmng_cmd::kRun;
        }));
    }
    void TearDown() override {
        server_.stop();
        rmdir(dir_.c_str());
    }
    std::string dir_, path_;
    CommandServer server_;
};

TEST_F(CommandServerTest, StatusThenOutputInPackets) {
    EXPECT_EQ(run_line(path_, "show dot1x authmng statistic"),
              "0ran [show dot1x authmng statistic]\n");
    EXPECT_EQ(run_line(path_, "bad"), "1ran [bad]\n");
    EXPECT_EQ(run_line(path_, "long"), "0" + std::string(1000, 'x') + "end\n");
    // A packet that is not one element is refused without running anything.
    EXPECT_EQ(run_line(path_, std::string(150, 'z')), "1% malformed command message\n");
}

TEST_F(CommandServerTest, OthersThanOwnerAndRootAreRefused) {
    EXPECT_TRUE(peer_allowed(0, 1000));
    EXPECT_TRUE(peer_allowed(1000, 1000));
    EXPECT_FALSE(peer_allowed(1001, 1000));
    if (geteuid() != 0) GTEST_SKIP() << "needs root to connect as another user";
    chmod(path_.c_str(), 0666);
    chmod(dir_.c_str(), 0755);
    pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        if (setuid(65534) != 0) _exit(3);
        std::string said = run_line(path_, "show dot1x authmng statistic");
        _exit(said.compare(0, 36, "2authmng-hostapd: permission denied:") == 0 ? 0 : 1);
    }
    int status = 0;
    waitpid(child, &status, 0);
    EXPECT_TRUE(WIFEXITED(status) && WEXITSTATUS(status) == 0) << status;
}

}  // namespace
}  // namespace authmng_hostapd
