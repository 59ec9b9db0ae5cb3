// The timer tick driven with a pinned clock: the daily window, the interval
// countdown and its reload, the master switch, and the cpp samples and file.
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

// 2026-03-09 01:00:30 UTC, the same day as the fixture's clock.
constexpr int64_t kDaily010030 = kMonday140507 - (13 * 3600 + 4 * 60 + 37);
const char kFlashCsv[] = "/security/authmanage/dot1x/dot1x_statistic.csv";
const char kTmpCsv[] = "/security/authmanage/dot1x/dot1x_statistic.csv";
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

TEST_F(TimerTest, DailyWritesOncePerWindow) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    authmng_host_clock_set(kDaily010030);  // a fresh process writes at its first tick
    tick();
    EXPECT_EQ(count_lines(read_file(flash_path(kFlashCsv))), 3u);
    EXPECT_TRUE(exists(flash_path("/security/authmanage/dot1x/dot1x_abnormal.csv")));
    EXPECT_NE(take_syslog().find("[authmng_is_time_to_write line:"), std::string::npos);
    authmng_host_clock_set(kDaily010030 + 60);  // 01:01:30, same window
    tick();
    authmng_host_clock_set(kDaily010030 + 120);  // 01:02:30, window over
    tick();
    authmng_host_clock_set(kDaily010030 - 31);  // 00:59:59 the same day
    tick();
    EXPECT_EQ(count_lines(read_file(flash_path(kFlashCsv))), 3u);
    authmng_host_clock_set(kDaily010030 + 86400 - 30);  // 01:00:00 the next day
    tick();
    EXPECT_EQ(count_lines(read_file(flash_path(kFlashCsv))), 5u);
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 0u);
}

TEST_F(TimerTest, IntervalCountdownReloadAndMasterSwitch) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    tick(29);
    EXPECT_FALSE(exists(tmp_path(kTmpCsv)));
    tick();  // the 30th tick
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 3u);
    std::string log = take_syslog();
    EXPECT_NE(log.find("[authmng_timer_proc line:"), std::string::npos);
    EXPECT_NE(log.find("] dot1x is time to write tmp\n"), std::string::npos);

    tick(10);
    g_authmng_write_tmp_clock = 5;  // 20 ticks still to go
    tick(19);
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 3u);
    tick();
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 5u);

    g_authmng_statistic_enable = 0;
    uint32_t interval = g_authmng_interval, no_write = g_authmng_no_write_count;
    tick(10);
    EXPECT_EQ(g_authmng_interval, interval);
    EXPECT_EQ(g_authmng_no_write_count, no_write);
    g_authmng_statistic_enable = 1;
    tick(4);
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 5u);
    tick();
    EXPECT_EQ(count_lines(read_file(tmp_path(kTmpCsv))), 7u);
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
