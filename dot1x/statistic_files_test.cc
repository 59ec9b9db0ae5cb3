// The 802.1X interval and daily statistic files: headers, row formats,
// interval differences and their baseline, the most frequent reasons, the
// 50000-byte rule, and value appending.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const char kIntervalHeader[] =
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n";
const char kDailyHeader[] =
    "date,type,auth total number,auth success,reauth number,reauth "
    "success,offline,auth[0-1),auth[1-3),auth[3-),auth average,OverOneSec total,OverOneSec sta,sta "
    "average,OverOneSec self,self average,OverOneSec aaa,aaa average,OverOneSec rds,rds "
    "average,OverOneSec rdsSrv,rdsSrv average,OverThiSec total,OverThiSec sta,sta "
    "average,OverThiSec self,self average,OverThiSec aaa,aaa average,OverThiSec rds,rds "
    "average,OverThiSec rdsSrv,rdsSrv "
    "average,authExSrv[0-1),authExSrv[1-3),authExSrv[3-),sta[0-1),sta[1-3),sta[3-),self[0-1),self["
    "1-3),self[3-),aaa[0-1),aaa[1-3),aaa[3-),rds[0-1),rds[1-3),rds[3-),rdsSrv[0-1),rdsSrv[1-3),"
    "rdsSrv[3-),[1-3)sta timeout,[1-3)aaa timeout,[1-3)all timeout,[1-3)other,[3-)sta "
    "timeout,[3-)aaa timeout,[3-)all timeout,[3-)other\n";
const char kQuietMab[] = "03.09 14:05:07,mab,0, 0, 0, ,0, 0, 0, , 0, 0, 0\n";
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
    std::string interval_file() { return read_file(tmp_path(kCsv)); }
};

TEST_F(StatisticFilesTest, IntervalRowsAreDifferencesSinceTheLastWrite) {
    send(D1X_AUTH, 0, 500), send(D1X_AUTH, 0, 1500), send(D1X_AUTH, 12), send(D1X_AUTH, 5);
    send(D1X_REAUTH, 0), send(D1X_REAUTH, 3, 10, 2), send(D1X_OFFLINE, 0, 10, 2);
    authmng_write_dot1x_statistic_to_tmpfile();
    std::string first = std::string(kIntervalHeader) +
                        "03.09 14:05:07,dot1x,6, 4, 2, aaa reject,3, 2, 2, user logoff, 1, 1, 0\n" +
                        kQuietMab;
    EXPECT_EQ(interval_file(), first);

    authmng_write_dot1x_statistic_to_tmpfile();  // a quiet interval
    std::string second = first + "03.09 14:05:07,dot1x,6, 0, 0, ,0, 0, 0, , 0, 0, 0\n" + kQuietMab;
    EXPECT_EQ(interval_file(), second);

    // Code 25 has no text; 12 beats 5; the offline tie goes to code 1.
    send(D1X_AUTH, 12, 10, 2), send(D1X_AUTH, 5), send(D1X_AUTH, 25, 10, 3);
    send(D1X_OFFLINE, 101), send(D1X_OFFLINE, 1);
    authmng_write_dot1x_statistic_to_tmpfile();
    EXPECT_EQ(interval_file(),
              second +
                  "03.09 14:05:07,dot1x,6, 6, 0, port user limit,0, 0, 2, server kickout user, 0, "
                  "0, 0\n" +
                  kQuietMab);
}

TEST_F(StatisticFilesTest, BaselineKeptWhenUnopenableAdvancedOnClockFailure) {
    std::string path = tmp_path(kCsv);
    ASSERT_EQ(mkdir(path.c_str(), 0777), 0);  // a directory cannot be opened for appending
    send(D1X_AUTH, 0);
    authmng_write_dot1x_statistic_to_tmpfile();
    ASSERT_EQ(rmdir(path.c_str()), 0);
    send(D1X_AUTH, 0);
    authmng_write_dot1x_statistic_to_tmpfile();
    std::string both = std::string(kIntervalHeader) +
                       "03.09 14:05:07,dot1x,7, 2, 2, ,0, 0, 0, , 2, 0, 0\n" + kQuietMab;
    EXPECT_EQ(interval_file(), both);

    send(D1X_AUTH, 0);
    authmng_host_clock_fail(1);
    authmng_write_dot1x_statistic_to_tmpfile();
    authmng_host_clock_fail(0);
    EXPECT_EQ(interval_file(), both);
    authmng_write_dot1x_statistic_to_tmpfile();
    EXPECT_EQ(interval_file(),
              both + "03.09 14:05:07,dot1x,7, 0, 0, ,0, 0, 0, , 0, 0, 0\n" + kQuietMab);
}

TEST_F(StatisticFilesTest, DailyRowsCarryFiftyNineColumns) {
    authmng_dot1x_stat_t &r = g_amg_d1x[AUTHMNG_METHOD_DOT1X];
    r.auth_total = 10, r.auth_result[0] = 8, r.reauth_total = 3, r.reauth_result[0] = 2;
    r.offline_total = 4, r.auth_avg_time = 1234;
    r.range[0].count[0] = 5, r.range[0].count[1] = 2, r.range[0].count[2] = 1;
    r.over1s_total = 3000, r.over1s_sta = 1000, r.over1s_self = 800, r.over1s_aaa = 600;
    r.over1s_rds = 400, r.over1s_rds_srv = 200;
    r.over3s_total = 7000, r.over3s_sta = 3000, r.over3s_self = 2000, r.over3s_aaa = 1000;
    r.over3s_rds = 600, r.over3s_rds_srv = 400;
    for (uint64_t i = 1; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        for (uint64_t j = 0; j < 3; ++j) r.range[i].count[j] = i * (j == 0 ? 1 : j == 1 ? 10 : 100);
    }
    for (uint64_t i = 0; i < 4; ++i) {
        g_authmng_sec_range_reason[i] = i + 1;
        g_authmng_thi_range_reason[i] = i + 5;
    }
    authmng_write_dot1x_statistic_to_flashfile();
    std::string mab = "03.09 14:05:07,mab";
    for (int i = 0; i < 49; ++i) mab += ",0";
    mab += ",1,2,3,4,5,6,7,8\n";
    std::string dot1x =
        "03.09 14:05:07,dot1x,10,8,3,2,4,5,2,1,1234,3000,1000,500,800,400,600,300,400,200,200,100,"
        "7000,3000,3000,2000,2000,1000,1000,600,600,400,400,1,10,100,2,20,200,3,30,300,4,40,400,5,"
        "50,500,6,60,600,1,2,3,4,5,6,7,8\n";
    EXPECT_EQ(read_file(flash_path(kCsv)), kDailyHeader + dot1x + mab);
    for (const std::string &line : {std::string(kDailyHeader), dot1x, mab}) {
        EXPECT_EQ(std::count(line.begin(), line.end(), ','), 58) << line;
    }
}

TEST_F(StatisticFilesTest, FiftyThousandByteRuleOnBothFiles) {
    struct Case {
        void (*write)();
        std::string path;
        const char *header;
    };
    for (const Case &c :
         {Case{authmng_write_dot1x_statistic_to_tmpfile, tmp_path(kCsv), kIntervalHeader},
          Case{authmng_write_dot1x_statistic_to_flashfile, flash_path(kCsv), kDailyHeader}}) {
        write_file_of_size(c.path, 50000);
        c.write();
        std::string kept = read_file(c.path);
        EXPECT_EQ(kept.substr(0, 3), "xxx");
        EXPECT_EQ(count_lines(kept.substr(50000)), 2u);
        write_file_of_size(c.path, 50001);
        c.write();
        std::string restarted = read_file(c.path);
        EXPECT_EQ(restarted.substr(0, strlen(c.header)), c.header);
        EXPECT_EQ(count_lines(restarted), 3u);
    }
}

TEST_F(StatisticFilesTest, ComposeNeverPassesItsBuffer) {
    char buf[8] = "abc";
    authmng_compose_inter_str(buf, sizeof buf, 123456);
    EXPECT_STREQ(buf, "abc,123");
    authmng_compose_inter_str(buf, sizeof buf, 9);
    EXPECT_STREQ(buf, "abc,123");
    char wide[64] = "";
    authmng_compose_inter_str(wide, sizeof wide, UINT64_MAX);
    EXPECT_STREQ(wide, ",18446744073709551615");
    wide[0] = '\0';
    for (uint64_t v : {uint64_t{0}, uint64_t{4294967295u}, uint64_t{4294967296u}}) {
        authmng_compose_inter_str(wide, sizeof wide, v);
    }
    EXPECT_STREQ(wide, ",0,4294967295,4294967296");
}

}  // namespace
