// Bad input at the library's entries: extreme times.
#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

constexpr uint64_t kClockTop = UINT32_MAX;  // 2106-02-07 06:28:15 UTC, a Sunday

using BadInputTest = AuthmngTest;

// Times of 0 and 2^32 - 1 ms in every step, and the clock at 0 and at
// 2^32 - 1 s: histograms and sums follow the 32-bit arithmetic, and every
// date comes out the same on 32-bit and 64-bit devices.
TEST_F(BadInputTest, Dot1xExtremeTimes) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    authmng_host_clock_set(0);
    authmng_auth_info_t top = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 0);
    top.auth_time = top.aaa_time = top.rds_time = top.rds_srv_time = UINT32_MAX;
    top.sta_time = top.self_time = UINT32_MAX;
    authmng_notify_auth_info(&top);
    authmng_host_clock_set(kClockTop);
    authmng_auth_info_t zero = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 7);
    authmng_notify_auth_info(&zero);  // failed: queued at the top of the clock
    zero.result = 0;
    authmng_notify_auth_info(&zero);
    const authmng_dot1x_stat_t &r = g_amg_d1x[0];
    // authExSrv, aaa and rds are 0; rdsSrv, sta and self the top.
    for (uint32_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        bool top_range = i == 0 || i == 2 || i == 3 || i == 6;
        EXPECT_EQ(r.range[i].count[0] + 2 * r.range[i].count[2], top_range ? 3u : 2u) << i;
    }
    EXPECT_EQ(r.over3s_total, 4294967293u);  // 3 * (2^32 - 1) in 32 bits
    EXPECT_EQ(r.over3s_sta + r.over3s_aaa, 4294967295u);
    EXPECT_EQ(r.auth_avg_time, 2147483647u);  // (2^32 - 1 + 0) / 2
    EXPECT_EQ(g_authmng_thi_range_reason[3], 1u);

    authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
    std::string table = take_cli();
    EXPECT_NE(table.find("\n01.01 00:00:00 0000.0000.0000 4294967295 "), std::string::npos);
    EXPECT_NE(table.find("\n02.07 06:28:15 0000.0000.0000 0          "), std::string::npos);
    authmng_write_dot1x_statistic_to_tmpfile();
    authmng_write_dot1x_statistic_to_flashfile();
    authmng_write_dot1x_abnormal_record_to_file();
    expect_lines(read_file(tmp_path("/security/authmanage/dot1x/dot1x_statistic.csv")),
                 {"02.07 06:28:15,dot1x,0, 3, 2, ip band width fall,0, 0, 0, , 1, 0, 1"});
    EXPECT_NE(read_file(flash_path("/security/authmanage/dot1x/dot1x_statistic.csv"))
                  .find("\n02.07 06:28:15,dot1x,3,2,0,0,0,1,0,1,2147483647,0,"),
              std::string::npos);
    std::string rows = read_file(flash_path("/security/authmanage/dot1x/dot1x_abnormal.csv"));
    EXPECT_NE(rows.find("\n01.01 00:00:00,,0000.0000.0000,0.0.0.0,4294967295,"), std::string::npos);
    EXPECT_NE(rows.find("\n02.07 06:28:15,,0000.0000.0000,0.0.0.0,0,"), std::string::npos);
}

TEST_F(BadInputTest, WebauthExtremeTimes) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    authmng_host_clock_set(0);
    authmng_auth_info_t top = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 0);
    top.ack_time = top.aaa_time = top.acct_rds_time = UINT32_MAX;
    authmng_notify_auth_info(&top);
    authmng_host_clock_set(kClockTop);
    authmng_auth_info_t failed = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 13);
    authmng_notify_auth_info(&failed);
    const authmng_webauth_stat_t &w = g_authmng_webauth;
    EXPECT_EQ(w.range[0].count[2] + w.range[1].count[2] + w.range[4].count[1], 3u);
    EXPECT_EQ(w.range[10].count[1] + w.range[9].count[0], 2u);  // 2^32 - 1 and 0 - (2^32 - 1)
    EXPECT_EQ(w.aggregate_time[9], 1u);
    EXPECT_EQ(w.auth_avg_time, UINT32_MAX);

    authmng_show_webauth_statistic_abnormal();
    std::string shown = take_cli();
    EXPECT_NE(shown.find("\nThu Jan  1 00:00:00 1970\nusername(),"), std::string::npos);
    EXPECT_NE(shown.find("\nSun Feb  7 06:28:15 2106\nusername(),"), std::string::npos);
    authmng_save_abnormal_log("auth: 1 2\n");
    EXPECT_EQ(read_file(tmp_path("/security/authmanage/log.txt")),
              "Sun Feb  7 06:28:15 2106\nauth: 1 2\n");
    authmng_write_webauth_abnormal_record_to_file();
    authmng_write_webauth_statistic_to_tmp();
    std::string rows = read_file(flash_path("/security/authmanage/webauth/wba_abnormal.csv"));
    EXPECT_NE(rows.find("\n1.1 0:0:0,,0000.0000.0000,0.0.0.0,4294967295,"), std::string::npos);
    EXPECT_NE(rows.find("\n2.7 6:28:15,,0000.0000.0000,0.0.0.0,0,"), std::string::npos);
    EXPECT_NE(read_file(tmp_path("/security/authmanage/webauth/wba_statistic.csv"))
                  .find("\n2.7 6:28:15, 0, 2, 1, "),
              std::string::npos);
}

}  // namespace
