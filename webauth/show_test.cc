// The web-auth displays: fresh record against the golden texts, the worked
// percentages and the summary.
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
                       "  number of more than three second(exclude server):......6(100.000%).",
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

}  // namespace
