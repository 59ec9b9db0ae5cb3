// The timer tick driven with a pinned clock: the interval countdown and its
// reload, the master switch, and the cpp samples and file. (The daily window
// is the simulator's: its days pass through this same tick.)
#include <string>
#include <vector>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

// The interval file of the 802.1X client.
const char kCsv[] = "/security/authmanage/dot1x/dot1x_statistic.csv";
const char kCppCsv[] = "/security/authmanage/cpp/cpp.csv";

void tick(int times = 1) {
    while (times-- > 0) authmng_timer_proc();
}

uint32_t cpp_sample(int argument) {
    static const uint32_t kSamples[] = {3, 9, 4};
    static int next = 0;
    EXPECT_EQ(argument, 0);
    return kSamples[next++ % 3];
}

using TimerTest = AuthmngTest;

TEST_F(TimerTest, IntervalCountdownReloadAndMasterSwitch) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    auto lines_after = [this](int ticks) {
        tick(ticks);
        return count_lines(read_file(tmp_path(kCsv)));
    };
    EXPECT_EQ(lines_after(29), 0u);
    EXPECT_EQ(lines_after(1), 3u);  // the 30th tick
    EXPECT_NE(take_syslog().find("[authmng_timer_proc line:"), std::string::npos);
    tick(10);
    g_authmng_write_tmp_clock = 5;  // 20 ticks still to go, then 5 each
    EXPECT_EQ(std::vector<size_t>({lines_after(19), lines_after(1), lines_after(4)}),
              std::vector<size_t>({3, 5, 5}));
    g_authmng_statistic_enable = 0;
    uint32_t interval = g_authmng_interval, no_write = g_authmng_no_write_count;
    tick(10);
    EXPECT_EQ(g_authmng_interval * 1000 + g_authmng_no_write_count, interval * 1000 + no_write);
    g_authmng_statistic_enable = 1;
    EXPECT_EQ(lines_after(1), 7u);
}

TEST_F(TimerTest, CppSamplesAndFile) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    tick(40);  // no callback: no file, no countdown
    EXPECT_FALSE(exists(tmp_path(kCppCsv)));
    EXPECT_EQ(g_authmng_interval, 30u);

    authmng_reg_cpp_callback(cpp_sample);
    g_authmng_interval = g_authmng_write_tmp_clock = 3;
    tick(3);  // samples 3 and 9 before the row; the 4 goes to the next one
    EXPECT_EQ(read_file(tmp_path(kCppCsv)), "time,cpp\n3.9 14:5:7,9\n");
    EXPECT_EQ(g_authmng_max_cpp, 4u);

    g_authmng_max_cpp = 42;
    write_file_of_size(tmp_path(kCppCsv), 1000);
    authmng_write_cpp_to_file();
    EXPECT_EQ(read_file(tmp_path(kCppCsv)).substr(1000), "3.9 14:5:7,42\n");
    write_file_of_size(tmp_path(kCppCsv), 1001);
    authmng_write_cpp_to_file();
    EXPECT_EQ(read_file(tmp_path(kCppCsv)), "time,cpp\n3.9 14:5:7,42\n");
}

}  // namespace
