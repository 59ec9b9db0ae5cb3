// A command-line session whose output goes into a pipe that nobody reads
// (a pager waiting for a key, XOFF, a hung session): the display's thread
// stalls in its print, and the daemon's event threads go on.
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <thread>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

std::atomic<bool> g_printing{false}, g_returned{false};

// The terminal: marks that the display prints, then waits in the full pipe.
ssize_t stalled_write(void *pipe_end, const char *text, size_t size) {
    g_printing = true;
    return write(*static_cast<int *>(pipe_end), text, size);
}

bool wait_for(const std::atomic<bool> &flag, std::chrono::seconds limit) {
    auto until = std::chrono::steady_clock::now() + limit;
    while (!flag && std::chrono::steady_clock::now() < until) {
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return flag;
}

TEST_F(AuthmngTest, AnIntakeReturnsWhileADisplayCannotPrint) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    int fds[2];
    ASSERT_EQ(pipe2(fds, O_NONBLOCK), 0);
    while (write(fds[1], "x", 1) == 1) {
    }
    ASSERT_EQ(fcntl(fds[1], F_SETFL, 0), 0);
    FILE *terminal = fopencookie(&fds[1], "w", {nullptr, stalled_write, nullptr, nullptr});
    setvbuf(terminal, nullptr, _IONBF, 0);
    authmng_host_cli_output(terminal);

    std::thread display([] { authmng_show_dot1x_statistic(AUTHMNG_METHOD_DOT1X); });
    ASSERT_TRUE(wait_for(g_printing, std::chrono::seconds(20)));
    std::thread intake([] {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH);
        authmng_notify_auth_info(&info);
        g_returned = true;
    });
    EXPECT_TRUE(wait_for(g_returned, std::chrono::seconds(2)));

    // The session ends: the display's writes fail and it returns, then the
    // intake if it waited.
    signal(SIGPIPE, SIG_IGN);
    close(fds[0]);
    display.join(), intake.join();
    authmng_host_cli_output(nullptr);
    fclose(terminal);
    close(fds[1]);
}

}  // namespace
