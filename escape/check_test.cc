#include "escape/check.h"

#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {
bool has(const std::string &text, const char *part) {
    return text.find(part) != std::string::npos;
}

// A web-auth process with user escape on; totals_ are the daemon's running totals.
class EscapeTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
        g_authmng_check_open = 1;
    }
    // Reports the totals grown by the increases (32-bit, so they may pass
    // the top): "escape_time/escape_ratio/reboot_enable".
    std::string report(uint32_t rd = 0, uint32_t rd_ms = 0, uint32_t au = 0, uint32_t au_ms = 0,
                       uint32_t to = 0) {
        authmng_check_input_t &t = totals_;
        t.total_redirect_count += rd, t.total_redirect_time += rd_ms, t.total_auth_count += au;
        t.total_auth_time += au_ms, t.total_auth_timeout_count += to;
        authmng_check_result_t r;
        memset(&r, 0xA5, sizeof r);
        authmng_get_check_result(&t, &r);
        return std::to_string(r.escape_time) + "/" + std::to_string(r.escape_ratio) + "/" +
               std::to_string(r.reboot_enable);
    }
    authmng_check_input_t totals_ = {100, 200000, 100, 300000, 1, 64};  // non-zero: a baseline
};
}  // namespace

TEST_F(EscapeTest, WorkedExamplesOfTheThreeChecks) {
    g_authmng_check_open = 0;  // off: empty verdict, totals untouched, only the verdict line
    g_authmng_lib_event_dbg = 1;
    EXPECT_EQ(report(), "0/0/0");
    std::string log = take_syslog();
    EXPECT_EQ(count_lines(log), 1u);
    EXPECT_TRUE(has(log, "EVENT_DBG: [authmng_get_check_result line:"));
    EXPECT_TRUE(has(log, "] result reboot enable(false), escape_time(0), escape_ratio(0).\n"));
    EXPECT_EQ(g_authmng_info_record.total_redirect_time, 0u);
    g_authmng_check_open = 1;
    EXPECT_EQ(report(), "0/0/0");                        // the first report sets the baseline only
    EXPECT_EQ(report(10, 35000, 4, 24000, 0), "0/0/1");  // 350000 > 300000; auth not run
    log = take_syslog();
    EXPECT_TRUE(has(log,
                    "] redirect:time(235000), count(110)\nauthentication:time(324000), "
                    "count(104)\nauth timeout:count(1)\n"));
    EXPECT_TRUE(has(log, "] result reboot enable(ture), escape_time(0), escape_ratio(0).\n"));
    EXPECT_EQ(report(10, 30000, 0, 0, 0), "0/0/0");  // 300000 is not above
    EXPECT_EQ(report(10, 10000, 0, 0, 0), "0/0/0");
    EXPECT_EQ(g_authmng_check[0].avg_value, 212500u);  // 350000, (.+300000)/2, (.+100000)/2
    EXPECT_EQ(report(0, 0, 9, 9000, 1), "0/0/0");      // 1 in 10: 10, not above 10
    EXPECT_EQ(report(0, 0, 19, 19000, 1), "0/0/0");    // 1 in 20: 5, the new average
    EXPECT_EQ(report(0, 0, 9, 9000, 2), "30/100/0");   // 2 in 11: 18
    EXPECT_EQ(report(0, 0, 0, 0, 3), "30/100/0");      // 3 in 3: 100
    EXPECT_EQ(report(0, 0, 4, 24000, 0), "30/100/0");  // 600000 > 500000; authtimeout not run
    const std::string stamp = "Mon Mar  9 14:05:07 2026\n";
    EXPECT_EQ(read_file(tmp_path("/security/authmanage/log.txt")),
              stamp + "redirect: 350000 350000\n" + stamp + "authtimeout: 5 18\n" + stamp +
                  "authtimeout: 5 100\n" + stamp + "auth: 100000 600000\n");
}

// Login storms: value * 100 past 32 bits, and totals passing their top.
TEST_F(EscapeTest, StormsAndWrapsDecideOnTheTrueAverage) {
    const struct {
        authmng_check_input_t before;
        uint32_t rd, rd_ms, au, au_ms;
        const char *verdict;
    } cases[] = {
        {{1000, 1000, 1000, 1000, 1000, 0}, 0, 0, 10000, 21480000, "0/0/0"},    // 2,148 ms
        {{1000, 1000, 1000, 1000, 1000, 0}, 0, 0, 5000, 45000000, "30/100/0"},  // 9,000 ms
        {{1000, 1000, 1000, 1000, 1000, 0}, 10000, 21480000, 0, 0, "0/0/0"},
        {{1000, 1000, 1000, 1000, 1000, 0}, 5000, 45000000, 0, 0, "0/0/1"},
        {{4294967290u, 1000, 1000, 1000, 1000, 0}, 10, 20000, 0, 0, "0/0/0"},  // 10, not 4
        {{1000, 1000, 1000, 4294967000u, 1000, 0}, 0, 0, 4, 24000, "30/100/0"},
    };
    for (const auto &c : cases) {
        authmng::escape_clear_previous_totals();
        memset(g_authmng_check, 0, sizeof g_authmng_check);
        totals_ = c.before;
        report();
        EXPECT_EQ(report(c.rd, c.rd_ms, c.au, c.au_ms), c.verdict) << &c - cases;
    }
}

TEST_F(EscapeTest, SamplesAre64BitAndRingsHold1500) {
    authmng_check_result_t result{};
    EXPECT_EQ(authmng_get_current_result(0, 30000000, 10, &result), -1);          // 300000000
    EXPECT_EQ(authmng_get_current_result(1, 30000000, 0x80000000u, &result), 0);  // 1
    EXPECT_EQ(authmng_get_current_result(1, 30000000, 0, &result), 0);            // no sample
    EXPECT_EQ(g_authmng_check[1].zero_count, 1u);
    authmng_check_t &rd = g_authmng_check[0];
    EXPECT_EQ(rd.recent_value[0], 300000000u);
    for (uint32_t i = 2; i <= 1500; ++i) authmng_add_check_record(&rd, i);
    EXPECT_EQ(rd.recent_pos, 1500);
    authmng_add_check_record(&rd, 7);
    EXPECT_EQ(rd.recent_value[0] * 10 + rd.recent_value[1], 72u);
    EXPECT_EQ(rd.recent_pos, 1);
}

// Per report: 0 baseline; 1-3 normal; 4-5 2 time-outs in 11; 6-9 normal; 10 and 12 auth
// 6000 ms; 13 redirect 3500 ms; others normal, 30 without traffic. authtimeout escapes
// at 4 and continues at 6-9, 11 and from 14: its 30th continuation is 38. auth escapes
// at 10, continues at 11, is triggered again at 12 (count kept), ends at 42 and starts
// afresh at 50. At 13 the redirect decides; both escapes are still reported.
TEST_F(EscapeTest, SixtyReportsThroughASlowPeriodAndBack) {
    g_authmng_lib_event_dbg = 1;
    for (int i = 0; i < 60; ++i) {
        std::string got = i == 0 || i == 30               ? report()
                          : i == 4 || i == 5              ? report(10, 10000, 9, 18000, 2)
                          : i == 10 || i == 12 || i == 50 ? report(10, 10000, 10, 60000, 0)
                          : i == 13                       ? report(10, 35000, 10, 20000, 0)
                                                          : report(10, 10000, 10, 20000, 0);
        const char *want = i == 13                          ? "30/100/1"
                           : (i >= 4 && i <= 41) || i >= 50 ? "30/100/0"
                           : i == 42                        ? "30/0/0"
                                                            : "0/0/0";
        EXPECT_EQ(got, want) << "report " << i;
    }
    const authmng_check_t *c = g_authmng_check;
    EXPECT_EQ(c[0].total_count + c[1].total_count + c[2].total_count, 59u + 58 + 55);
    std::string log = take_syslog();
    EXPECT_TRUE(has(log, "[authmng_compare_with_pre_result line:"));
    EXPECT_TRUE(has(log, "] restore escape from(100) to(0).\n"));
}

// The daemon restarted: totals that went down count their new values.
TEST_F(EscapeTest, RestartedTotalsCountFromZeroUntilSwitchedOff) {
    totals_ = {1000, 4000000000u, 1000, 900000, 5, 64};
    report();
    totals_ = {0, 0, 0, 0, 0, 64};
    EXPECT_EQ(report(10, 20000, 10, 20000, 0), "0/0/0");
    EXPECT_EQ(g_authmng_info_record.wrapped, 1);
    EXPECT_EQ(g_authmng_check[0].recent_value[0] + g_authmng_check[1].recent_value[0], 400000u);
    totals_ = {0, 0, 0, 0, 0, 64};
    report();                                        // previous totals all 0 now, but wrapped:
    EXPECT_EQ(report(10, 35000, 0, 0, 0), "0/0/1");  // not a baseline
    authmng::escape_clear_previous_totals();
    EXPECT_EQ(g_authmng_info_record.wrapped + g_authmng_info_record.total_auth_count, 0u);
    EXPECT_EQ(report(10, 90000, 0, 0, 0), "0/0/0");  // a new baseline
}
