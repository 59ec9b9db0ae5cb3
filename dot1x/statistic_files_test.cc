// The 802.1X interval and daily statistic files: headers, row formats,
// interval differences and their baseline, the most frequent reasons, the
// 50000-byte rule, and value appending.
#include "support/fixture.h"

using namespace authmng_test;

namespace {

const char kIntervalHeader[] =
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n";
const char kDailyHeader[] =
    "date,type,auth total number,auth success,reauth number,reauth success,offline,auth[0-1),"
    "auth[1-3),auth[3-),auth average,OverOneSec total,OverOneSec sta,sta average,OverOneSec self,"
    "self average,OverOneSec aaa,aaa average,OverOneSec rds,rds average,OverOneSec rdsSrv,"
    "rdsSrv average,OverThiSec total,OverThiSec sta,sta average,OverThiSec self,self average,"
    "OverThiSec aaa,aaa average,OverThiSec rds,rds average,OverThiSec rdsSrv,rdsSrv average,"
    "authExSrv[0-1),authExSrv[1-3),authExSrv[3-),sta[0-1),sta[1-3),sta[3-),self[0-1),self[1-3),"
    "self[3-),aaa[0-1),aaa[1-3),aaa[3-),rds[0-1),rds[1-3),rds[3-),rdsSrv[0-1),rdsSrv[1-3),"
    "rdsSrv[3-),[1-3)sta timeout,[1-3)aaa timeout,[1-3)all timeout,[1-3)other,[3-)sta timeout,"
    "[3-)aaa timeout,[3-)all timeout,[3-)other\n";
const std::string kQuietMab = "03.09 14:05:07,mab,0, 0, 0, ,0, 0, 0, , 0, 0, 0\n";
const char kCsv[] = "/security/authmanage/dot1x/dot1x_statistic.csv";

class StatisticFilesTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    }
    static void send(uint32_t event, uint32_t code, uint32_t ms = 10, uint32_t times = 1) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, event, 0);
        (event == D1X_OFFLINE ? info.offline_reason : info.result) = code;
        info.online_num = 7, info.auth_time = ms;
        while (times-- > 0) authmng_notify_dot1x_info(&info);
    }
};

TEST_F(StatisticFilesTest, IntervalRowsAreDifferencesSinceTheLastWrite) {
    std::string rows = kIntervalHeader;  // each write adds a dot1x row and a quiet mab row
    auto expect_written = [&](const std::string &dot1x) {
        authmng_write_dot1x_statistic_to_tmpfile();
        rows += "03.09 14:05:07,dot1x," + dot1x + "\n" + kQuietMab;
        EXPECT_EQ(read_file(tmp_path(kCsv)), rows);
    };
    send(D1X_AUTH, 0, 500), send(D1X_AUTH, 0, 1500), send(D1X_AUTH, 12), send(D1X_AUTH, 5);
    send(D1X_REAUTH, 0), send(D1X_REAUTH, 3, 10, 2), send(D1X_OFFLINE, 0, 10, 2);
    expect_written("6, 4, 2, aaa reject,3, 2, 2, user logoff, 1, 1, 0");
    // Code 25 has no text; 12 beats 5; the offline tie goes to code 1.
    send(D1X_AUTH, 12, 10, 2), send(D1X_AUTH, 5), send(D1X_AUTH, 25, 10, 3);
    send(D1X_OFFLINE, 101), send(D1X_OFFLINE, 1);
    expect_written("6, 6, 0, port user limit,0, 0, 2, server kickout user, 0, 0, 0");
    send(D1X_AUTH, 0);
    authmng_host_clock_fail(1);
    authmng_write_dot1x_statistic_to_tmpfile();  // no rows, yet the baseline advances
    authmng_host_clock_fail(0);
    expect_written("7, 0, 0, ,0, 0, 0, , 0, 0, 0");
}

TEST_F(StatisticFilesTest, DailyRowsCarryTheTotalsAndTheirAverages) {
    authmng_dot1x_stat_t &r = g_amg_d1x[AUTHMNG_METHOD_DOT1X];
    r.auth_total = 10, r.auth_result[0] = 8, r.reauth_total = 3, r.reauth_result[0] = 2;
    r.offline_total = 4, r.auth_avg_time = 1234;
    r.over1s_total = 3000, r.over1s_sta = 1000, r.over1s_self = 800, r.over1s_aaa = 600;
    r.over1s_rds = 400, r.over1s_rds_srv = 250;  // averages over 10, over 100 below
    r.over3s_total = UINT64_MAX, r.over3s_sta = 3000, r.over3s_self = 2000, r.over3s_aaa = 1000;
    r.over3s_rds = 650, r.over3s_rds_srv = 400;
    for (uint64_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        for (uint64_t j = 0, tens = 1; j < 3; ++j, tens *= 10) r.range[i].count[j] = (i + 1) * tens;
    }
    for (uint64_t i = 0; i < 4; ++i)
        g_authmng_sec_range_reason[i] = i + 1, g_authmng_thi_range_reason[i] = i + 5;
    authmng_write_dot1x_statistic_to_flashfile();
    std::string mab = "03.09 14:05:07,mab";
    for (int i = 0; i < 49; ++i) mab += ",0";
    EXPECT_EQ(read_file(flash_path(kCsv)),
              kDailyHeader +
                  std::string("03.09 14:05:07,dot1x,10,8,3,2,4,1,10,100,1234,3000,1000,100,800,80,"
                              "600,60,400,40,250,25,18446744073709551615,3000,30,2000,20,1000,10,"
                              "650,6,400,4,2,20,200,3,30,300,4,40,400,5,50,500,6,60,600,7,70,700,"
                              "1,2,3,4,5,6,7,8\n") +
                  mab + ",1,2,3,4,5,6,7,8\n");
}

// Both files pass the one limit to the appended-file helper.
TEST_F(StatisticFilesTest, FilesRestartOnlyPastFiftyThousandBytes) {
    write_file_of_size(tmp_path(kCsv), 50000);  // 625 lines of 80 bytes
    write_file_of_size(flash_path(kCsv), 50001);
    authmng_write_dot1x_statistic_to_tmpfile();
    authmng_write_dot1x_statistic_to_flashfile();
    EXPECT_EQ(count_lines(read_file(tmp_path(kCsv))), 625u + 2);  // kept, no header
    EXPECT_EQ(read_file(flash_path(kCsv)).rfind(kDailyHeader, 0), 0u);
    EXPECT_EQ(count_lines(read_file(flash_path(kCsv))), 3u);
}

TEST(ComposeTest, AppendsWithinItsBuffer) {
    char buf[8] = "abc";
    authmng_compose_inter_str(buf, 0, 1);  // no room at all
    authmng_compose_inter_str(buf, sizeof buf, 123456);
    authmng_compose_inter_str(buf, sizeof buf, 9);  // full: nothing more
    EXPECT_STREQ(buf, "abc,123");
}

}  // namespace
