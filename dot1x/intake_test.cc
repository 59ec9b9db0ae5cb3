// The 802.1X intake and the event entry that routes to it: counting by
// method and kind, the time analysis and its boundaries, the abnormal
// decision, dropped records, and the debug lines.
#include <cstring>
#include <string>
#include <vector>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

using Lines = std::vector<std::string>;
using Nums = std::vector<uint64_t>;

class Dot1xIntakeTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    }
    static authmng_auth_info_t auth(uint32_t ms, uint32_t result = 0, uint8_t aaa_slow = 0,
                                    uint8_t sta_slow = 0, int32_t kind = AUTHMNG_CLIENT_DOT1X) {
        authmng_auth_info_t info = event_record(kind, D1X_AUTH, result);
        info.auth_time = ms, info.aaa_timeout = aaa_slow, info.requestid_timeout = sta_slow;
        return info;
    }
    static void send(authmng_auth_info_t info) { authmng_notify_dot1x_info(&info); }
    static uint64_t abnormal() { return g_authmng_abnormal_record_num; }
    // The long-time reason counters: the [1-3) four, then the [3-) four.
    static Nums reasons() {
        const uint64_t *sec = g_authmng_sec_range_reason, *thi = g_authmng_thi_range_reason;
        return {sec[0], sec[1], sec[2], sec[3], thi[0], thi[1], thi[2], thi[3]};
    }
    static const authmng_dot1x_stat_t &d1x(uint32_t method = 0) { return g_amg_d1x[method]; }
    static Nums hist(uint32_t index) {
        const uint64_t *c = g_amg_d1x[0].range[index].count;
        return {c[0], c[1], c[2]};
    }
};

TEST_F(Dot1xIntakeTest, TimeBoundariesBlocksAndAverage) {
    send(auth(1000));  // [1-3) and "other", but not above the 1000 ms threshold
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Nums{0, 1, 0}));
    EXPECT_EQ(reasons(), (Nums{0, 0, 0, 1, 0, 0, 0, 0}));
    EXPECT_EQ(d1x().over1s_total + abnormal(), 0u);

    authmng_auth_info_t slow = auth(3000, 0, 1);  // top range, yet the over-1-second block
    slow.sta_time = 100, slow.self_time = 200, slow.aaa_time = 1500, slow.rds_time = 1000;
    slow.rds_srv_time = 600;  // components 100 + 200 + 500 + 400 + 600
    send(slow);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Nums{0, 1, 1}));
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH_EX_SRV), (Nums{0, 2, 0}));
    EXPECT_EQ(reasons(), (Nums{0, 0, 0, 1, 0, 1, 0, 0}));  // aaa timeout
    EXPECT_EQ((Nums{d1x().over1s_total, d1x().over1s_aaa + d1x().over1s_rds + d1x().over1s_rds_srv,
                    d1x().over3s_total, d1x().auth_avg_time, abnormal()}),
              (Nums{1800, 1500, 0, 2000, 1}));  // the average of 1000 and 3000

    slow.auth_time = 3001, slow.aaa_timeout = 0, slow.request_timeout = 1;
    send(slow);
    send(auth(2000, 0, 1, 1));
    EXPECT_EQ(reasons(), (Nums{0, 0, 1, 1, 1, 1, 0, 0}));  // the station alone, both
    EXPECT_EQ(d1x().over3s_total, 1800u);
    g_amg_d1x[0].over3s_total = UINT64_MAX - 5;  // the block restarts from zero
    send(slow);
    EXPECT_EQ((Nums{d1x().over3s_total, d1x().over3s_sta}), (Nums{1800, 100}));

    authmng_dot1x_init(&g_amg_d1x[0]);
    authmng_auth_info_t wrap = auth(800);  // authExSrv and aaa wrap below zero
    wrap.rds_srv_time = 900, wrap.rds_time = 900, wrap.aaa_time = 100;
    send(wrap);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH_EX_SRV)[2] + hist(AUTHMNG_RANGE_AAA)[2], 2u);
}

TEST_F(Dot1xIntakeTest, FailuresMethodsReauthAndOffline) {
    authmng_auth_info_t info = auth(10, 5);
    info.rssi = -40;
    send(info);  // fast but failed: abnormal, no signal sum, no histogram
    info.result = 1;
    send(info);  // the station did not answer: the fail signal sum
    EXPECT_EQ((Nums{d1x().auth_result[5], d1x().auth_total, abnormal()}), (Nums{1, 2, 2}));
    EXPECT_EQ(d1x().success_rssi_sum, 0);
    EXPECT_EQ(d1x().fail_rssi_sum, -40);

    info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_REAUTH, 0);
    info.auth_time = 1500;  // slow: abnormal, but no time analysis
    send(info);
    info.result = 3, info.auth_time = 10;
    send(info);
    EXPECT_EQ((Nums{d1x().reauth_success_rate, abnormal()}), (Nums{50, 4}));
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Nums{0, 0, 0}));

    info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_OFFLINE, 9);
    info.online_num = 5, info.auth_time = 9999;
    for (uint32_t reason : {0u, 101u, 1u}) {
        info.offline_reason = reason;
        send(info);
    }
    EXPECT_EQ((Nums{d1x().current_online_number, abnormal()}), (Nums{4, 5}));  // reason 1 alone
    info.online_num = 0;
    send(info);
    EXPECT_EQ(d1x().current_online_number, 0u);  // held at zero
}

// Percentages of counts beyond 32 bits and the 32-bit running average.
TEST_F(Dot1xIntakeTest, RatesAndAverageOfALongRunningDaemon) {
    authmng_dot1x_stat_t &r = g_amg_d1x[0];
    r.auth_result[0] = 49999999, r.auth_total = 59999999, r.auth_avg_time = 700;
    r.reauth_result[0] = r.reauth_total = 99999999;
    send(auth(400));  // 5e9 / 6e7 is 83; (700 * 49999999 + 400) mod 2^32 = 640261332, / 5e7
    send(event_record(AUTHMNG_CLIENT_DOT1X, D1X_REAUTH));
    EXPECT_EQ((Nums{r.auth_success_rate, r.auth_avg_time, r.reauth_success_rate}),
              (Nums{83, 12, 100}));
    r.auth_result[0] = uint64_t{1} << 32;  // n - 1 is 0 in 32 bits; sum / n is 0
    send(auth(900));
    EXPECT_EQ(r.auth_avg_time, 0u);
}

TEST_F(Dot1xIntakeTest, StartEventsMoveOnlyTheOnlineNumbers) {
    authmng_dot1x_stat_t expected = d1x();
    authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH_START);
    send(info);  // online 0 leaves the old number open
    info.event = D1X_REAUTH_START, info.online_num = 9;
    send(info);
    info.online_num = 4;
    send(info);
    expected.old_online_number = expected.max_online_number = 9, expected.current_online_number = 4;
    EXPECT_EQ(memcmp(&d1x(), &expected, sizeof expected), 0);
}

// The debug lines of every step, the error lines of both entries for the
// records they drop, and the event entry routing a MAB event.
TEST_F(Dot1xIntakeTest, DebugLinesOfEachStepAndEntry) {
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 1;
    authmng_notify_dot1x_info(nullptr);
    authmng_auth_info_t info = auth(1500, 0, 0, 0, AUTHMNG_CLIENT_MAB);
    g_authmng_statistic_enable = 0;
    authmng_notify_auth_info(&info);
    authmng_notify_dot1x_info(&info);
    g_authmng_statistic_enable = 1;
    info.online_num = 3, info.rssi = -42;
    strcpy(info.username, "alice");
    authmng_notify_auth_info(&info);
    info.event = D1X_REAUTH, info.result = 2;
    send(info);
    info.event = D1X_OFFLINE, info.offline_reason = 1;
    send(info);
    const std::string log = take_syslog();
    // The messages of the debug lines of one function, in order.
    auto of = [&log](const std::string &function, const char *kind = "EVENT") {
        Lines found;
        const std::string lead =
            std::string("AUTHMNG_LIB_") + kind + "_DBG: [authmng_" + function + " line:";
        for (size_t at = log.find(lead); at != std::string::npos; at = log.find(lead, at + 1)) {
            const size_t text = log.find("] ", at) + 2;
            found.push_back(log.substr(text, log.find('\n', at) - text));
        }
        return found;
    };
    EXPECT_EQ(of("notify_auth_info", "ERROR"), Lines{"g_authmng_statistic_enable == false."});
    EXPECT_EQ(of("notify_dot1x_info", "ERROR"),
              (Lines{"auth_info NULL", "g_authmng_statistic_enable: false"}));
    EXPECT_EQ(of("notify_auth_info"), Lines{"client == AUTHMNG_CLIENT_DOT1X"});
    EXPECT_EQ(of("notify_dot1x_info"), (Lines{"D1X_AUTH_FIRST", "D1X_REAUTH", "D1X_OFFLINE"}));
    EXPECT_EQ(
        of("notify_dot1x_get_online_num"),
        (Lines{"Get 1x old online user number: 3.", "Get 1x current online user number: 3.",
               "Get 1x current online user number: 3.", "Get 1x current online user number: 3."}));
    EXPECT_EQ(of("notify_dot1x_info_auth"),
              (Lines{"Recv 1x auth info, result: 0.", "Recv auth result: success, rssi: -42.",
                     "total auth count: 1\xEF\xBF\xBD\xEF\xBF\xBDsuccess: 1.",
                     "auth success rate: 100%.", "user(alice)1x auth time: 1500.",
                     "auth_time: 1500ms, su_total: 1500ms, su_result: 1",
                     "dot1x auth abnormal and add to list."}));
    EXPECT_EQ(of("dot1x_statistic_range"),
              (Lines{"range[1]++", "range[1]++", "range[0]++", "range[0]++", "range[0]++",
                     "range[0]++", "range[0]++"}));
    EXPECT_EQ(
        of("notify_dot1x_info_reauth"),
        (Lines{"Recv 1x reauth info, result: 2.",
               "Recv reauth result: failure, reason: 2, rssi: -42.",
               "reauth info: total: 1, success: 0.", "dot1x reauth abnormal and add to list."}));
    EXPECT_EQ(of("notify_dot1x_info_offline"), (Lines{"Recv 1x offline info, reason: 1, rssi: -42.",
                                                      "dot1x auth abnormal and add to list."}));
    EXPECT_EQ((Nums{d1x(AUTHMNG_METHOD_MAB).auth_total, d1x().auth_total}), (Nums{1, 0}));
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 0;
    send(info);
    EXPECT_EQ(take_syslog(), "");
}

TEST_F(Dot1xIntakeTest, LongTimeReasonThroughTheRssiField) {
    authmng_auth_info_t info = auth(0, 0, 1);
    authmng_dot1x_statistic_loogtime_reason(0, AUTHMNG_RANGE_AUTH, 3000, &info.rssi);
    info.aaa_timeout = 0, info.request_timeout = 1;
    authmng_dot1x_statistic_loogtime_reason(1, AUTHMNG_RANGE_AUTH, 2999, &info.rssi);
    authmng_dot1x_statistic_loogtime_reason(2, AUTHMNG_RANGE_AUTH, 2999, &info.rssi);
    authmng_dot1x_statistic_loogtime_reason(0, AUTHMNG_D1X_RANGE_NUM, 2999, &info.rssi);
    EXPECT_EQ(reasons(), (Nums{1, 0, 0, 0, 0, 1, 0, 0}));
}

// In a process of another client the 802.1X records were never set up: an
// 802.1X event reaches the intake and is dropped there.
using CppProcessTest = AuthmngTest;

TEST_F(CppProcessTest, Dot1xEventCountsNothing) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
    authmng_notify_auth_info(&info);
    EXPECT_EQ(g_amg_d1x[0].auth_total + g_amg_d1x[0].range[0].count[2], 0u);
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
}

}  // namespace
