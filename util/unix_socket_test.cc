// The socket helpers on real local sockets in a test's own directory.
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>
#include <thread>

#include "support/fixture.h"

namespace {
// Most bytes one send() takes while nonzero.
size_t g_send_cap = 0;
}  // namespace

// Every send() of this program: the system's, cut to g_send_cap bytes.
extern "C" ssize_t send(int sock, const void *buffer, size_t length, int flags) {
    if (g_send_cap > 0 && length > g_send_cap) length = g_send_cap;
    return sendto(sock, buffer, length, flags, nullptr, 0);
}

namespace {

class UnixSocketTest : public authmng_test::AuthmngTest {
protected:
    // A path in the test's directory of exactly total characters.
    std::string path_of_length(size_t total) const {
        return root_dir() + "/" + std::string(total - root_dir().size() - 1, 'p');
    }
};

TEST_F(UnixSocketTest, BindsOverOldFileAndHonoursThe107CharacterLimit) {
    int probe = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    close(probe);
    EXPECT_EQ(authmng_unix_socket_init((root_dir() + "/missing/sock").c_str()), -1);
    EXPECT_EQ(socket(AF_UNIX, SOCK_SEQPACKET, 0), probe);  // the failed socket was closed

    std::string path107 = path_of_length(107), path108 = path_of_length(108);
    int listener = authmng_unix_socket_init(path107.c_str());
    ASSERT_EQ(listen(listener, 4), 0);
    EXPECT_EQ(authmng_unix_connect(socket(AF_UNIX, SOCK_SEQPACKET, 0), path107.c_str()), 0);
    // A listener at all 108 characters (the system takes them unterminated):
    // the helper still refuses the path.
    int full = socket(AF_UNIX, SOCK_SEQPACKET, 0);
    sockaddr_un addr = {};
    addr.sun_family = AF_UNIX;
    memcpy(addr.sun_path, path108.data(), 108);
    ASSERT_EQ(bind(full, reinterpret_cast<sockaddr *>(&addr), sizeof(addr)), 0);
    ASSERT_EQ(listen(full, 4), 0);
    EXPECT_EQ(authmng_unix_connect(socket(AF_UNIX, SOCK_SEQPACKET, 0), path108.c_str()), -1);

    // The 108-character path binds under its first 107 characters and
    // removes the file of that name first, so a restarted daemon binds
    // again; the file of all 108 characters is another socket's and stays.
    EXPECT_GE(authmng_unix_socket_init(path108.c_str()), 0);
    EXPECT_GE(authmng_unix_socket_init(path108.c_str()), 0);
    struct stat st[2];
    EXPECT_TRUE(stat(path107.c_str(), &st[0]) + stat(path108.c_str(), &st[1]) == 0 &&
                S_ISSOCK(st[0].st_mode) && S_ISSOCK(st[1].st_mode));
    // An empty path would bind to a random abstract address.
    EXPECT_EQ(authmng_unix_socket_init(""), -1);
}

TEST_F(UnixSocketTest, MessagesKeepTheirBoundariesAndEndWithZeroAfterClose) {
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, pair), 0);
    int client = pair[0], server = pair[1];
    EXPECT_EQ(authmng_unix_send(client, "hello", 5), 5);
    EXPECT_EQ(authmng_unix_send(client, "x", 1), 1);
    EXPECT_EQ(authmng_unix_send(client, "", 0), 0);
    char buf[64] = {};
    EXPECT_EQ(authmng_unix_receive(server, buf, sizeof(buf)), 5);
    EXPECT_EQ(authmng_unix_receive(server, buf + 5, sizeof(buf) - 5), 1);
    EXPECT_EQ(authmng_unix_receive(server, buf, sizeof(buf)), 0);  // the empty message
    EXPECT_STREQ(buf, "hellox");
    EXPECT_EQ(authmng_unix_send(client, nullptr, 4) + authmng_unix_send(client, nullptr, 0), -2);
    EXPECT_EQ(authmng_unix_receive(server, buf, -1), -1);
    EXPECT_EQ(authmng_unix_receive(-1, buf, sizeof(buf)), -1);  // an error ends the wait

    // The receive waits out an empty queue until the message arrives.
    std::thread late([client] {
        std::this_thread::sleep_for(std::chrono::milliseconds(50));
        authmng_unix_send(client, "late", 4);
        close(client);
    });
    EXPECT_EQ(authmng_unix_receive(server, buf, sizeof(buf)), 4);
    late.join();
    EXPECT_EQ(authmng_unix_receive(server, buf, sizeof(buf)), 0);
}

TEST_F(UnixSocketTest, SendOnFullSocketFailsAtOnce) {
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, pair), 0);
    int client = pair[0];
    char chunk[1024] = {};
    int accepted = 0, result = 0;
    while ((result = authmng_unix_send(client, chunk, sizeof(chunk))) == 1024) {
        ASSERT_LT(++accepted, 100000);
    }
    EXPECT_EQ(errno, EAGAIN);
    EXPECT_EQ(result, -1);
    EXPECT_GT(accepted, 0);
}

// A stream socket with little room takes a message a few bytes at a time;
// the rest follows in order.
TEST_F(UnixSocketTest, ShortSendsOnAStreamDeliverTheWholeMessageInOrder) {
    int pair[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_STREAM, 0, pair), 0);
    g_send_cap = 3;
    EXPECT_EQ(authmng_unix_send(pair[0], "authmng!", 8), 8);
    g_send_cap = 0;
    char buf[9] = {};
    EXPECT_EQ(recv(pair[1], buf, 8, MSG_WAITALL), 8);
    EXPECT_STREQ(buf, "authmng!");
}

}  // namespace
