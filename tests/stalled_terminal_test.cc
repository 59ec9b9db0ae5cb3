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

// Each display in turn prints into a full pipe; an intake on another thread
// must return meanwhile. The session then ends and the display returns.
void expect_intakes_go_on(int32_t client, uint32_t event,
                          std::initializer_list<void (*)()> displays) {
    signal(SIGPIPE, SIG_IGN);
    int shown = 0;
    for (void (*show)() : displays) {
        ++shown;
        g_printing = g_returned = false;
        int fds[2];
        ASSERT_EQ(pipe2(fds, O_NONBLOCK), 0);
        while (write(fds[1], "x", 1) == 1) {
        }
        ASSERT_EQ(fcntl(fds[1], F_SETFL, 0), 0);
        FILE *terminal = fopencookie(&fds[1], "w", {nullptr, stalled_write, nullptr, nullptr});
        setvbuf(terminal, nullptr, _IONBF, 0);
        authmng_host_cli_output(terminal);

        std::thread display(show);
        EXPECT_TRUE(wait_for(g_printing, std::chrono::seconds(20))) << "display " << shown;
        std::thread intake([client, event] {
            authmng_auth_info_t info = event_record(client, event);
            authmng_notify_auth_info(&info);
            g_returned = true;
        });
        EXPECT_TRUE(wait_for(g_returned, std::chrono::seconds(2))) << "display " << shown;

        close(fds[0]);
        display.join();
        intake.join();
        authmng_host_cli_output(nullptr);
        fclose(terminal);
        close(fds[1]);
    }
}

TEST_F(AuthmngTest, IntakesGoOnWhileA8021XDisplayCannotPrint) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    expect_intakes_go_on(AUTHMNG_CLIENT_DOT1X, D1X_AUTH,
                         {[] { authmng_show_dot1x_statistic(AUTHMNG_METHOD_DOT1X); },
                          [] { authmng_show_dot1x_statistic_fail(AUTHMNG_METHOD_DOT1X); },
                          [] { authmng_show_dot1x_offline_detail(AUTHMNG_METHOD_DOT1X); },
                          [] { authmng_show_dot1x_statistic_telnet(AUTHMNG_METHOD_DOT1X); },
                          [] { authmng_show_dot1x_statistic_abnormal(0); }});
}

TEST_F(AuthmngTest, IntakesGoOnWhileAWebauthDisplayCannotPrint) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    expect_intakes_go_on(
        AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH,
        {[] { authmng_show_webauth_statistic(); },
         [] { authmng_show_webauth_statistic_abnormal(); },
         [] { authmng_show_webauth_statistic_telnet(); }, [] { authmng_show_check_info(); },
         [] { authmng_debug_webauth_check_info(); }});
}

}  // namespace
