// The 802.1X statistic displays: fresh records against the golden texts,
// the worked figures, the per-code lines and the summary.
#include <climits>
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
}

TEST_F(Dot1xShowTest, DerivedFiguresFollowTheWorkedExamples) {
    dot1x_.auth_total = 10, dot1x_.auth_result[0] = 6, dot1x_.auth_result[5] = 2;
    dot1x_.auth_result[2] = 1, dot1x_.auth_result[4] = 1;
    dot1x_.reauth_total = 7, dot1x_.reauth_result[0] = 4;  // 3 failed: one each of 1, 2 and 70
    dot1x_.reauth_result[1] = dot1x_.reauth_result[2] = dot1x_.reauth_result[70] = 1;
    // Group sums below both lists, each group its own figure.
    dot1x_.reauth_result[104] = 2, dot1x_.reauth_result[130] = 3, dot1x_.reauth_result[134] = 4;
    dot1x_.offline_reason[61] = 5, dot1x_.offline_reason[101] = 6;
    dot1x_.offline_reason[121] = 7, dot1x_.offline_reason[134] = 8;
    dot1x_.offline_total = 3, dot1x_.success_rssi_sum = -131, dot1x_.fail_rssi_sum = -250;
    dot1x_.over1s_total = 1500, dot1x_.over1s_sta = 300;
    dot1x_.over3s_aaa = 900;  // over3s_total 0, range[0].count[2] 0
    dot1x_.range[0].count[0] = 4, dot1x_.range[0].count[1] = 3;
    g_authmng_sec_range_reason[2] = 4, g_authmng_thi_range_reason[3] = 9;
    mab_.auth_total = 10, mab_.auth_result[3] = 7;  // and one of each wireless group
    mab_.auth_result[70] = mab_.auth_result[103] = mab_.auth_result[125] = 1;
    authmng_show_dot1x_statistic(0);
    std::string out = take_cli();
    expect_lines(out, {" authentication success rate:..................75%.",
                       " wireless foundation factor:....................10%.",
                       " adjust authentication success rate:...........85%.",
                       " authentication success rssi avgvalue:.........-13dBm.",
                       " authentication fail rssi avgvalue:............-83dBm.",
                       "    reauth fail by stamg                   : 1.",
                       "    reauth fail by rsna                    : 2.",
                       "    reauth fail by roam                    : 3.",
                       "    other reason                           : 4.",
                       "  offline by sta                           : 5.",
                       "  offline by rsna                          : 6.",
                       "  offline by roam                          : 7.",
                       "  other reason                             : 8.",
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
                              " wireless foundation factor:....................30%.",
                              "  aaa timeout                              : 7",
                              "  sta and aaa timeout .........................4"});

    // The most negative sum over a count of -1 wraps instead of trapping.
    dot1x_.auth_result[0] = 0xFFFFFFFFull - 4, dot1x_.success_rssi_sum = INT32_MIN;
    authmng_show_dot1x_statistic(0);
    EXPECT_TRUE(
        has_line(take_cli(), " authentication success rssi avgvalue:.........-2147483648dBm."));
}

// Each list reads its own counters, of the method asked for; the golden
// texts hold the lines of every code.
TEST_F(Dot1xShowTest, CodeListsReadTheirOwnCounters) {
    mab_.auth_result[25] = 9, mab_.reauth_result[134] = 2, mab_.offline_reason[127] = 3;
    authmng_show_dot1x_statistic_fail(1);
    expect_lines(take_cli(),
                 {std::string(4 + 30, ' ') + ": 9", "    other reason                  : 2",
                  "    stachk stamg                  : 3"});
    dot1x_.auth_result[125] = 5, dot1x_.reauth_result[106] = 4, dot1x_.offline_reason[61] = 6;
    authmng_show_dot1x_auth_detail(0);
    EXPECT_TRUE(has_line(take_cli(), " other                                   : 5."));
    authmng_show_dot1x_reauth_detail(0);
    expect_lines(take_cli(), {"Show dot1x reauth fail by stamg:", "Show dot1x reauth fail by roam:",
                              " online result                           : 4."});
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

}  // namespace
