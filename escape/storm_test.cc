// The escape check under login storms (value * 100 past 32 bits) and with
// totals that wrap or restart.
#include <cstring>
#include <random>
#include <string>

#include "escape/check.h"
#include "support/fixture.h"

using namespace authmng_test;

namespace {

class StormTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
        g_authmng_check_open = 1;
    }
    // Reports these totals: "escape_time/escape_ratio/reboot_enable".
    static std::string report(const authmng_check_input_t &totals) {
        authmng_check_result_t r;
        authmng_get_check_result(&totals, &r);
        return std::to_string(r.escape_time) + "/" + std::to_string(r.escape_ratio) + "/" +
               std::to_string(r.reboot_enable);
    }
};

// From a baseline of 1000 of everything, one period of traffic.
TEST_F(StormTest, StormsAndWrapsDecideOnTheTrueAverage) {
    struct Case {
        const char *what;
        authmng_check_input_t before, after;
        const char *verdict;
    } cases[] = {
        {"10,000 logins at 2,148 ms",
         {1000, 1000, 1000, 1000, 1000, 0},
         {1000, 1000, 11000, 1000 + 21480000, 1000, 0},
         "0/0/0"},
        {"5,000 logins at 9,000 ms",
         {1000, 1000, 1000, 1000, 1000, 0},
         {1000, 1000, 6000, 1000 + 45000000, 1000, 0},
         "30/100/0"},
        {"10,000 redirects at 2,148 ms",
         {1000, 1000, 1000, 1000, 1000, 0},
         {11000, 1000 + 21480000, 1000, 1000, 1000, 0},
         "0/0/0"},
        {"5,000 redirects at 9,000 ms",
         {1000, 1000, 1000, 1000, 1000, 0},
         {6000, 1000 + 45000000, 1000, 1000, 1000, 0},
         "0/0/1"},
        // 10 redirects at 2,000 ms across the top of the count: not 4.
        {"redirect count wraps",
         {4294967290u, 1000, 1000, 1000, 1000, 0},
         {4, 21000, 1000, 1000, 1000, 0},
         "0/0/0"},
        // 4 logins at 6,000 ms across the top of the time total.
        {"auth time wraps",
         {1000, 1000, 1000, 4294967000u, 1000, 0},
         {1000, 1000, 1004, 23704, 1000, 0},
         "30/100/0"},
        // Every total went down: a restart, counted from 0.
        {"restart", {1000, 100000, 1000, 100000, 1000, 0}, {10, 35000, 5, 5000, 0, 0}, "0/0/1"},
    };
    for (const Case &c : cases) {
        authmng::escape_clear_previous_totals();
        memset(g_authmng_check, 0, sizeof g_authmng_check);
        report(c.before);
        EXPECT_EQ(report(c.after), c.verdict) << c.what;
    }
}

// Random totals, each report with at most one total passing its top: no
// check ever decides on a sample above the true average of the period.
TEST_F(StormTest, NoSampleAboveTheTrueOne) {
    std::mt19937 random(14);
    auto below = [&](uint64_t n) {
        return uint32_t(std::uniform_int_distribution<uint64_t>(0, n - 1)(random));
    };
    authmng_check_input_t totals = {1, 1, 1, 1, 1, 0};
    report(totals);
    for (int n = 0; n < 5000; ++n) {
        uint32_t rd = below(100000), au = below(100000), to = below(1000);
        // Average times up to 40 s: a period's time stays below 2^32.
        uint32_t inc[5] = {rd, uint32_t(uint64_t{rd} * below(40001)), au,
                           uint32_t(uint64_t{au} * below(40001)), to};
        uint32_t *field[5] = {&totals.total_redirect_count, &totals.total_redirect_time,
                              &totals.total_auth_count, &totals.total_auth_time,
                              &totals.total_auth_timeout_count};
        uint32_t wraps = below(6);  // 5: none
        if (wraps < 5 && inc[wraps] > 0) {
            *field[wraps] = uint32_t(0u - 1 - below(inc[wraps]));  // passes the top
            g_authmng_info_record = {totals.total_redirect_count,     totals.total_redirect_time,
                                     totals.total_auth_count,         totals.total_auth_time,
                                     totals.total_auth_timeout_count, 1};
        }
        uint32_t runs[3], truth[3];
        const uint64_t values[3] = {inc[1], inc[3], inc[4]},
                       counts[3] = {inc[0], inc[2], uint64_t(inc[2]) + inc[4]};
        for (int t = 0; t < 3; ++t) {
            runs[t] = g_authmng_check[t].total_count - g_authmng_check[t].zero_count;
            uint64_t s = counts[t] == 0 ? 0 : values[t] * 100 / counts[t];
            truth[t] = s > UINT32_MAX ? UINT32_MAX : uint32_t(s);
        }
        for (int t = 0; t < 5; ++t) *field[t] += inc[t];
        report(totals);
        for (int t = 0; t < 3; ++t) {
            const authmng_check_t &c = g_authmng_check[t];
            if (c.total_count - c.zero_count == runs[t]) continue;  // no sample
            EXPECT_LE(c.recent_value[c.recent_pos - 1], truth[t])
                << "report " << n << " check " << t;
        }
    }
}

}  // namespace
