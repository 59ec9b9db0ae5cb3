// The 802.1X displays: fresh records against the golden texts, the worked
// figures, the per-code lines, the summary and the abnormal table.
#include <climits>
#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

class Dot1xShowTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    }
    authmng_dot1x_stat_t &dot1x_ = g_amg_d1x[AUTHMNG_METHOD_DOT1X];
    authmng_dot1x_stat_t &mab_ = g_amg_d1x[AUTHMNG_METHOD_MAB];
};

TEST_F(Dot1xShowTest, FreshRecordsPrintTheGoldenTexts) {
    authmng_show_dot1x_statistic(0);
    EXPECT_EQ(take_cli(), golden("dot1x_statistic_fresh.txt"));
    authmng_show_dot1x_statistic_fail(0);
    EXPECT_EQ(take_cli(), golden("dot1x_statistic_fail_fresh.txt"));
    authmng_show_dot1x_auth_detail(0);
    EXPECT_EQ(take_cli(), golden("dot1x_auth_detail_fresh.txt"));
    authmng_show_dot1x_statistic_telnet(0);
    EXPECT_EQ(take_cli(), golden("dot1x_telnet_fresh.txt"));
    authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
    EXPECT_EQ(take_cli(), golden("dot1x_abnormal_empty.txt"));
}

TEST_F(Dot1xShowTest, DerivedFiguresFollowTheWorkedExamples) {
    dot1x_.auth_total = 10, dot1x_.auth_result[0] = 6, dot1x_.auth_result[5] = 2;
    dot1x_.auth_result[1] = 1, dot1x_.auth_result[3] = 1;
    dot1x_.reauth_total = 7, dot1x_.reauth_result[0] = 4;  // 3 failed: 1 of code 1, 2 and 70
    dot1x_.reauth_result[1] = dot1x_.reauth_result[2] = dot1x_.reauth_result[70] = 1;
    dot1x_.offline_total = 3, dot1x_.success_rssi_sum = -131, dot1x_.fail_rssi_sum = -250;
    dot1x_.over1s_total = 1500, dot1x_.over1s_sta = 300;
    dot1x_.over3s_aaa = 900;  // over3s_total 0, range[0].count[2] 0
    dot1x_.range[0].count[0] = 4, dot1x_.range[0].count[1] = 3;
    g_authmng_sec_range_reason[2] = 4, g_authmng_thi_range_reason[3] = 9;
    mab_.auth_result[3] = 7;
    authmng_show_dot1x_statistic(0);
    std::string out = take_cli();
    expect_lines(out, {" authentication success rate:..................75%.",
                       " wireless foundation factor:....................10%.",
                       " adjust authentication success rate:...........85%.",
                       "  aaa timeout                              : 1",
                       " authentication success rssi avgvalue:.........-13dBm.",
                       " authentication fail rssi avgvalue:............-83dBm.",
                       " offline_total:................................6.",
                       "  offline_by_auth:.............................3.",
                       "    reauth fail by stamg                   : 1.",
                       " reauth offline ratio:.........................50%.",
                       "auth success less than 1 second ratio..........66%.",
                       "  Sta    1 to 3 second total time .............300ms(20%)",
                       "  Sta    consume average time .................100ms",
                       "  Aaa    more than 3 second total time ........900ms(0%)",
                       "  sta and aaa timeout .........................4",
                       "  other........................................9"});
    EXPECT_EQ(out.find("hb entry invld"), std::string::npos) << "group codes only in sums";
    authmng_show_dot1x_statistic(1);  // its own record, the shared long-time reasons
    expect_lines(take_cli(), {" MAB current online number:..................0.",
                              "  aaa timeout                              : 7",
                              "  sta and aaa timeout .........................4"});

    // Failures of both kinds and both rounds share the fail average: 300 / 6.
    dot1x_.auth_result[2] = 3, dot1x_.fail_rssi_sum = -300;
    authmng_show_dot1x_statistic(0);
    EXPECT_TRUE(has_line(take_cli(), " authentication fail rssi avgvalue:............-50dBm."));
    // The most negative sum over a count of -1 wraps instead of trapping.
    dot1x_.auth_result[0] = 0xFFFFFFFFull - 4, dot1x_.success_rssi_sum = INT32_MIN;
    authmng_show_dot1x_statistic(0);
    EXPECT_TRUE(
        has_line(take_cli(), " authentication success rssi avgvalue:.........-2147483648dBm."));
}

TEST_F(Dot1xShowTest, CodeListsPrintEveryCodeOfTheirSpans) {
    mab_.auth_result[25] = 9, mab_.reauth_result[134] = 2, mab_.offline_reason[127] = 3;
    authmng_show_dot1x_statistic_fail(1);
    std::string out = take_cli();
    EXPECT_EQ(count_lines(out), 2u + 2 + 134 + 2 + 134 + 2 + 135 + 1);
    expect_lines(out, {std::string(4 + 30, ' ') + ": 9", "    other reason                  : 2",
                       "    stachk stamg                  : 3"});
    dot1x_.auth_result[125] = 5;
    authmng_show_dot1x_auth_detail(0);
    EXPECT_TRUE(has_line(take_cli(), " other                                   : 5."));
    dot1x_.reauth_result[106] = 4, dot1x_.offline_reason[61] = 6;
    authmng_show_dot1x_reauth_detail(0);
    out = take_cli();
    EXPECT_EQ(out.rfind("\nShow dot1x reauth fail by stamg:\n", 0), 0u);
    expect_lines(
        out, {"Show dot1x reauth fail by roam:", " online result                           : 4."});
    authmng_show_dot1x_offline_detail(0);
    expect_lines(take_cli(),
                 {"Show dot1x offline by rsna:", " unassoc                                 : 6.",
                  " online auth                             : 0."});
}

TEST_F(Dot1xShowTest, SummaryLeavesOrdinaryOfflinesOut) {
    dot1x_.auth_total = 10, dot1x_.auth_result[0] = 6, dot1x_.auth_result[24] = 1;
    dot1x_.old_online_number = 5, dot1x_.reauth_total = 3, dot1x_.reauth_result[2] = 3;
    dot1x_.offline_total = 12, dot1x_.offline_reason[0] = 6, dot1x_.offline_reason[31] = 1;
    dot1x_.offline_reason[6] = 2, dot1x_.offline_reason[7] = 3;
    dot1x_.range[0].count[2] = 0xFFFFFFFFull;
    authmng_show_dot1x_statistic_telnet(0);
    EXPECT_EQ(take_cli(),
              "{\n    \"auth_success_count\": 6,\n    \"auth_total\": 9,\n"
              "    \"aggregate_online_number\": 11,\n    \"current_online_number\": 0,\n"
              "    \"offline_total\": 6,\n    \"offline_by_auth\": 3,\n"
              "    \"auth_range_1000\": 0,\n    \"auth_range_3000\": 0,\n"
              "    \"auth_range_other\": -1\n}\n\n");
}

TEST_F(Dot1xShowTest, AbnormalTableFiltersByEventKind) {
    authmng_auth_info_t auth = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 3);
    const uint8_t mac[] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    memcpy(auth.mac, mac, sizeof mac);
    auth.auth_time = 1500, auth.aaa_timeout = 1, auth.requestid_timeout = 2;
    auth.request_timeout = 3, auth.rsna_notify = 4, auth.start_notify = 5, auth.rssi = -70;
    auth.sta_time = 11, auth.self_time = 12, auth.aaa_time = 13, auth.rds_time = 14;
    auth.rds_srv_time = 15, auth.aaa_code = -16, auth.rds_code = 17, auth.dismatch_id = 18;
    auth.logoff = 19;
    strcpy(auth.username, "alice");
    authmng_auth_info_t offline = event_record(AUTHMNG_CLIENT_MAB, D1X_OFFLINE, 3);
    for (const authmng_auth_info_t &info : {auth, offline}) authmng_record_abnormal_auth(&info);
    const std::string header = golden("dot1x_abnormal_empty.txt");
    const std::string offline_row =
        "03.09 14:05:07 0000.0000.0000 0          0     0      0       0    0    D1X_OFFLINE "
        "user logoff        0  dBm 0     0     0     0     0     0     0     0     0     "
        "          \n";
    const std::string auth_row =
        "03.09 14:05:07 001a.2b3c.4d5e 1500       1     2      3       4    5    D1X_AUTH    "
        "aaa timeout        -70dBm 11    12    13    14    15    -16   17    18    19    alice"
        "     \n";
    authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
    EXPECT_EQ(take_cli(), header + auth_row + offline_row);
    authmng_show_dot1x_statistic_abnormal(D1X_OFFLINE);
    EXPECT_EQ(take_cli(), header + offline_row);
}

}  // namespace
