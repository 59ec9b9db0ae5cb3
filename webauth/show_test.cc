// The web-auth displays: fresh record against the golden texts, the worked
// percentages, the summary and the abnormal list.
#include <arpa/inet.h>

#include <cstring>
#include <string>

#include "support/fixture.h"

namespace {

using authmng_test::expect_lines;
using authmng_test::golden;

class WebauthShowTest : public authmng_test::AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    }
    authmng_webauth_stat_t &s_ = g_authmng_webauth;
};

TEST_F(WebauthShowTest, FreshRecordPrintsTheGoldenTexts) {
    authmng_show_webauth_statistic();
    EXPECT_EQ(take_cli(), golden("webauth_statistic_fresh.txt"));
    authmng_show_webauth_statistic_telnet();
    EXPECT_EQ(take_cli(), golden("webauth_telnet_fresh.txt"));
    authmng_show_webauth_statistic_abnormal();
    EXPECT_EQ(take_cli(), golden("webauth_abnormal_empty.txt"));
    authmng_show_webauth_tmp_file();
    EXPECT_EQ(take_cli(), "write webauth info to tmp.\n");
}

TEST_F(WebauthShowTest, PercentagesAndBucketsAreOfTheirOwnTotals) {
    s_.auth_total = 10, s_.auth_result[0] = 6, s_.auth_result[1] = 2, s_.auth_result[2] = 2;
    s_.old_online_number = 2, s_.offline_total = 4, s_.offline_reason[11] = 4;
    s_.aggregate_time[4] = 3000, s_.range[4].count[0] = 3, s_.range[4].count[1] = 1;
    s_.online_time_total = 3660;
    for (uint32_t i = 0; i < 9; ++i) s_.range[i / 3].count[i % 3] = i + 1;
    authmng_show_webauth_statistic();
    std::string out = take_cli();
    expect_lines(out, {"  number of authentication failures:.....................2(20.000%).",
                       "   AAA timeout:..........................................2(100.000%).",
                       "  number of less than half one second:...................7(29.167%).",
                       "  number of between half and one second:.................8(33.333%).",
                       "  number of more than one second:........................9.",
                       "  number of less than one second:........................1(16.667%).",
                       "  number of between one and three second:................2(33.333%).",
                       "  number of more than three second:......................3(50.000%).",
                       "  number of less than one second(exclude server):........4(66.667%).",
                       "  number of abnormal offline(rate):......................4(50.000%).",
                       "   number of portal timeout:.............................0(0.000%).",
                       "   number of set fail:...................................0(0.000%).",
                       "   number of link change:................................4.",
                       " aggregate online time:..................................61min"});
    // The AAA authentication block: average over the successes, share of
    // its own two ranges.
    EXPECT_NE(out.find("\nAAA authentication:\n"
                       " average time consumption:...............................500ms.\n"
                       " aggregate time consumption:.............................3000ms.\n"
                       " number of less than one second:.........................3(75.000%).\n"
                       " number of more than one second:.........................1.\n"),
              std::string::npos);
    authmng_show_webauth_statistic_telnet();
    expect_lines(take_cli(), {"    \"offline_total\": 4,", "    \"aggregate_online_number\": 8,",
                              "    \"auth_range_1000\": 1,", "    \"auth_range_3000\": 2,",
                              "    \"auth_range_other\": 3,", "    \"auth_range_1000_ex\": 4,",
                              "    \"auth_range_3000_ex\": 5,", "    \"auth_range_other_ex\": 6,",
                              "    \"redirect_range_500\": 7,", "    \"redirect_range_1000\": 8,",
                              "    \"redirect_range_other\": 9,"});
}

TEST_F(WebauthShowTest, AbnormalListShowsEveryFieldOfEveryRecord) {
    authmng_auth_info_t info = authmng_test::event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 12);
    const uint8_t mac[] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    memcpy(info.mac, mac, sizeof mac);
    info.ip = htonl(0xC0A8010A);
    info.ack_time = 1, info.auth_time = 2, info.scc_time = 3, info.acct_time = 4;
    info.portal_time = 5, info.aaa_time = 6, info.rds_time = 7, info.rds_srv_time = 8;
    info.acct_aaa_time = 9, info.acct_rds_time = 10, info.acct_rds_svr_time = 11;
    info.wba_state = 13, info.wba_event = 14, info.aaa_code = -15, info.rds_code = 16;
    info.aaa_acct_code = -17, info.rds_acct_code = 18;
    strcpy(info.username, "bob");
    authmng_record_abnormal_auth(&info);
    strcpy(info.username, "eve");
    authmng_record_abnormal_auth(&info);
    const std::string fields =
        "),mac(001a.2b3c.4d5e),ip(192.168.1.10),ack_time(1),auth_time(2),scc_time(3),acct_time(4),"
        "portal_time(5),auth_aaa_time(6),auth_rds_time(7),auth_rds_svr_time(8),acct_aaa_time(9),"
        "acct_rds_time(10),acct_rds_svr_time(11),wba_code(12),wba_state(13),wba_event(14),"
        "aaa_auth_code(-15),rds_auth_code(16),aaa_acct_code(-17),rds_acct_code(18).\n";
    authmng_show_webauth_statistic_abnormal();
    EXPECT_EQ(take_cli(),
              "\nrecord num:2, value:3000, max-num:1000, clock:1\n"
              "\nMon Mar  9 14:05:07 2026\nusername(bob" +
                  fields + "\nMon Mar  9 14:05:07 2026\nusername(eve" + fields);
}

}  // namespace
