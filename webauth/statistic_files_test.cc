#include <sys/stat.h>

#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const char kStatistic[] = "/security/authmanage/webauth/wba_statistic.csv";
const char kSubstatistic[] = "/security/authmanage/webauth/wba_substatistic.csv";
const std::string kStatisticHeader =
    "date,online_user,auth_count,auth_succ_count,rd_user,http_req_count,offline_count,"
    "average_online,abnormal_offline,rd[0-0.5),rd[0.5-1),rd[1-),aggreage_rd_time,auth[0-1),"
    "auth[1-3),auth[3-),aggregate_auth_time,auth_except_svr[0-1),auth_except_svr[1-3),"
    "auth_except_svr[3-),aggregate_auth_except_svr_time,move_count,move_fail_count\n";
const std::string kSubstatisticHeader =
    "date,aaa_reject,aaa_timeout,auth_dev_timeout,set_scc_fail,account_reject,"
    "account_status_timeout,find_user_fail,other_reason,aggregate_account,acc[0-1),acc[1-),"
    "aggregate_aaa,aaa[0-1),aaa[1-),aggregate_rds,rds[0-1),rds[1-),aggregate_rdsvr,rdsvr[0-1),"
    "rdsvr[1-),aggregate_aaa_acc,aaa_acc[0-1),aaa_acc[1-),aggregate_rds_acc,rds_acc[0-1),"
    "rds_acc[1-),aggregate_rdsvr_acc,rdsvr_acc[0-1),rdsvr_acc[1-),aggregate_scc,scc[0-1),"
    "scc[1-),aggregate_portal,portal[0-1),portal[1-)\n";

class WebauthIntervalFileTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    }
    authmng_webauth_stat_t &live = g_authmng_webauth;
    authmng_webauth_stat_t &base = g_authmng_webauth_tmp;
    // Column c: baseline c, live 101 * c (a field of the live record), so
    // its difference is 100 * c.
    void column(uint64_t c, uint64_t &in_live) {
        char *at = reinterpret_cast<char *>(&base) +
                   (reinterpret_cast<char *>(&in_live) - reinterpret_cast<char *>(&live));
        *reinterpret_cast<uint64_t *>(at) = c;
        in_live = 101 * c;
    }
};

// The first file at its size limit is appended to, the second past it is
// emptied first.
TEST_F(WebauthIntervalFileTest, EveryColumnComesFromItsField) {
    write_file_of_size(tmp_path(kStatistic), 50000);
    write_file_of_size(tmp_path(kSubstatistic), 50001);
    column(2, live.current_online_number), column(3, live.auth_total);
    column(4, live.auth_result[0]), column(5, live.rd_user), column(6, live.http_req_count);
    column(7, live.offline_total), base.average_online_time = 8, live.average_online_time = 808;
    column(4, live.offline_reason[6]), column(5, live.offline_reason[10]);  // 400 + 500
    live.offline_reason[11] = 77;
    for (int i = 0; i < 3; ++i) {
        column(10 + i, live.range[2].count[i]), column(14 + i, live.range[0].count[i]);
        column(18 + i, live.range[1].count[i]);
    }
    column(13, live.aggregate_time[2]), column(17, live.aggregate_time[0]);
    column(21, live.aggregate_time[1]), column(22, live.move_count);
    column(23, live.move_fail_count);
    for (int r = 1; r <= 7; ++r) column(r + 1, live.auth_result[r]);
    column(9, live.auth_result[13]);
    const int quantity_at[9] = {8, 4, 5, 6, 9, 10, 11, 7, 12};  // from column 10, three each
    for (int k = 0; k < 9; ++k) {
        column(10 + 3 * k, live.aggregate_time[quantity_at[k]]);
        column(11 + 3 * k, live.range[quantity_at[k]].count[0]);
        column(12 + 3 * k, live.range[quantity_at[k]].count[1]);
    }
    authmng_write_webauth_statistic_to_tmp();
    EXPECT_EQ(memcmp(&base, &live, sizeof live), 0);  // the next rows count from here
    EXPECT_EQ(read_file(tmp_path(kStatistic)).substr(50000),
              "3.9 14:5:7, 202, 300, 400, 505, 600, 700, 808min, 900, 1000, 1100, 1200, "
              "1300, 1400, 1500, 1600, 1700, 1800, 1900, 2000, 2100, 2200, 2300\n");
    EXPECT_EQ(read_file(tmp_path(kSubstatistic)),
              kSubstatisticHeader +
                  "3.9 14:5:7, 200, 300, 400, 500, 600, 700, 800, 900, 1000ms, 1100, 1200, "
                  "1300ms, 1400, 1500, 1600ms, 1700, 1800, 1900ms, 2000, 2100, 2200ms, 2300, "
                  "2400, 2500ms, 2600, 2700, 2800s, 2900, 3000 ,3100ms, 3200, 3300, 3400ms, "
                  "3500, 3600\n");
}

TEST_F(WebauthIntervalFileTest, ClockFailureAndUnopenableFile) {
    live.auth_total = 5;
    authmng_host_clock_fail(1);  // headers still written, rows left out, baseline moves
    authmng_write_webauth_statistic_to_tmp();
    EXPECT_EQ(read_file(tmp_path(kStatistic)) + read_file(tmp_path(kSubstatistic)),
              kStatisticHeader + kSubstatisticHeader);
    EXPECT_EQ(base.auth_total, 5u);

    authmng_host_clock_fail(0);
    remove(tmp_path(kSubstatistic).c_str());
    ASSERT_EQ(mkdir(tmp_path(kSubstatistic).c_str(), 0777), 0);
    live.auth_total = 9;
    authmng_write_webauth_statistic_to_tmp();  // second file fails: baseline stays
    EXPECT_EQ(read_file(tmp_path(kStatistic)).substr(kStatisticHeader.size(), 17),
              "3.9 14:5:7, 0, 4,");
    EXPECT_EQ(base.auth_total, 5u);
}

TEST_F(WebauthIntervalFileTest, TimerIssuesTheIntervalAndDailyWrites) {
    authmng_auth_info_t e = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 2);
    authmng_notify_auth_info(&e);
    for (int tick = 1; tick < 30; ++tick) authmng_timer_proc();
    EXPECT_FALSE(exists(tmp_path(kStatistic)));
    authmng_timer_proc();  // 30th tick
    EXPECT_EQ(count_lines(read_file(tmp_path(kSubstatistic))), 2u);
    authmng_host_clock_set(kMonday140507 - 50707 + 86400 + 3630);  // Tuesday 01:00:30
    authmng_timer_proc();
    EXPECT_EQ(count_lines(read_file(flash_path("/security/authmanage/webauth/wba_abnormal.csv"))),
              2u);
}

}  // namespace
