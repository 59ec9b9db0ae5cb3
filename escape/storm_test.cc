// The escape check under login storms (value * 100 past 32 bits) and with
// totals that wrap or restart.
#include <algorithm>
#include <cstring>
#include <random>

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
    // "escape_ratio/reboot_enable" of a report of these totals.
    static std::string report(const authmng_check_input_t &totals) {
        authmng_check_result_t r;
        authmng_get_check_result(&totals, &r);
        return std::to_string(r.escape_ratio) + "/" + std::to_string(r.reboot_enable);
    }
};

// From a baseline (1000 of each total unless given), one period of traffic.
TEST_F(StormTest, StormsAndWrapsDecideOnTheTrueAverage) {
    const struct {
        authmng_check_input_t before, after;
        const char *verdict;
    } cases[] = {
        // 10,000 logins at 2,148 ms; 5,000 at 9,000 ms; the same as redirects.
        {{1000, 1000, 1000, 1000, 1000, 0}, {1000, 1000, 11000, 21481000, 1000, 0}, "0/0"},
        {{1000, 1000, 1000, 1000, 1000, 0}, {1000, 1000, 6000, 45001000, 1000, 0}, "100/0"},
        {{1000, 1000, 1000, 1000, 1000, 0}, {11000, 21481000, 1000, 1000, 1000, 0}, "0/0"},
        {{1000, 1000, 1000, 1000, 1000, 0}, {6000, 45001000, 1000, 1000, 1000, 0}, "0/1"},
        // 10 redirects at 2,000 ms across the top of the count, not 4.
        {{4294967290u, 1000, 1000, 1000, 1000, 0}, {4, 21000, 1000, 1000, 1000, 0}, "0/0"},
        // 4 logins at 6,000 ms across the top of the time total.
        {{1000, 1000, 1000, 4294967000u, 1000, 0}, {1000, 1000, 1004, 23704, 1000, 0}, "100/0"},
        // Every total went down: a restart, counted from 0.
        {{1000, 100000, 1000, 100000, 1000, 0}, {10, 35000, 5, 5000, 0, 0}, "0/1"},
    };
    for (const auto &c : cases) {
        authmng::escape_clear_previous_totals();
        memset(g_authmng_check, 0, sizeof g_authmng_check);
        report(c.before);
        EXPECT_EQ(report(c.after), c.verdict) << &c - cases;
    }
}

// Random totals, each report with at most one total passing its top: no
// check ever takes a sample above the true average of the period.
TEST_F(StormTest, NoSampleAboveTheTrueOne) {
    std::mt19937_64 random(14);
    auto below = [&random](uint64_t n) { return uint32_t(random() % n); };
    uint32_t totals[5] = {1, 1, 1, 1, 1};
    for (int n = 0; n < 5000; ++n) {
        // Times of up to 40 s per event: a period's time fits in 32 bits.
        uint32_t rd = below(100000), au = below(100000);
        const uint32_t inc[5] = {rd, uint32_t(uint64_t{rd} * below(40001)), au,
                                 uint32_t(uint64_t{au} * below(40001)), below(1000)};
        uint32_t wraps = below(6);  // 5: none
        if (wraps < 5 && inc[wraps] > 0) totals[wraps] = 0u - 1 - below(inc[wraps]);
        g_authmng_info_record = {totals[0], totals[1], totals[2], totals[3], totals[4], 1};
        const uint64_t values[3] = {inc[1], inc[3], inc[4]};
        const uint64_t counts[3] = {inc[0], inc[2], uint64_t{inc[2]} + inc[4]};
        uint32_t samples[3];
        for (int t = 0; t < 3; ++t)
            samples[t] = g_authmng_check[t].total_count - g_authmng_check[t].zero_count;
        for (int t = 0; t < 5; ++t) totals[t] += inc[t];
        authmng_check_input_t input = {totals[0], totals[1], totals[2], totals[3], totals[4], 0};
        report(input);
        for (int t = 0; t < 3; ++t) {
            const authmng_check_t &c = g_authmng_check[t];
            if (c.total_count - c.zero_count == samples[t]) continue;  // no sample taken
            uint64_t truth = std::min<uint64_t>(values[t] * 100 / counts[t], UINT32_MAX);
            EXPECT_LE(c.recent_value[c.recent_pos - 1], truth) << n << " " << t;
        }
    }
}

}  // namespace
