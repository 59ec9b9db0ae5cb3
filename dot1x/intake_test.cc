// The 802.1X intake and the event entry that routes to it: counting by
// method and kind, the time analysis and its boundaries, the abnormal
// decision, dropped records, and the debug lines.
#include <array>
#include <cstring>
#include <string>
#include <vector>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

using Lines = std::vector<std::string>;
using Counts = std::array<uint64_t, 3>;

// The messages of the debug lines of one function, in order.
Lines lines_of(const std::string &log, const std::string &function, const char *kind = "EVENT") {
    Lines found;
    const std::string lead = std::string("AUTHMNG_LIB_") + kind + "_DBG: [" + function + " line:";
    for (size_t at = log.find(lead); at != std::string::npos; at = log.find(lead, at + 1)) {
        const size_t text = log.find("] ", at) + 2;
        found.push_back(log.substr(text, log.find('\n', at) - text));
    }
    return found;
}

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
    static void debug(uint8_t on) { g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = on; }
    static const authmng_dot1x_stat_t &d1x(uint32_t method = 0) { return g_amg_d1x[method]; }
    static Counts hist(uint32_t index) {
        const uint64_t *c = g_amg_d1x[0].range[index].count;
        return {c[0], c[1], c[2]};
    }
};

TEST_F(Dot1xIntakeTest, TimeBoundariesBlocksAndAverage) {
    send(auth(1000));  // [1-3) and "other", but not above the 1000 ms threshold
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Counts{0, 1, 0}));
    EXPECT_EQ(g_authmng_sec_range_reason[3], 1u);
    EXPECT_EQ(d1x().over1s_total + g_authmng_abnormal_record_num, 0u);

    authmng_auth_info_t slow = auth(3000, 0, 1);  // top range, yet the over-1-second block
    slow.sta_time = 100, slow.self_time = 200, slow.aaa_time = 1500, slow.rds_time = 1000;
    slow.rds_srv_time = 600;  // components 100 + 200 + 500 + 400 + 600
    send(slow);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Counts{0, 1, 1}));
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH_EX_SRV), (Counts{0, 2, 0}));
    EXPECT_EQ(g_authmng_thi_range_reason[1], 1u);  // aaa timeout
    EXPECT_EQ(d1x().over1s_total, 1800u);
    EXPECT_EQ(d1x().over1s_aaa + d1x().over1s_rds + d1x().over1s_rds_srv, 1500u);
    EXPECT_EQ(d1x().over3s_total, 0u);
    EXPECT_EQ(d1x().auth_avg_time, 2000u);
    EXPECT_EQ(g_authmng_abnormal_record_num, 1u);

    slow.auth_time = 3001, slow.aaa_timeout = 0, slow.request_timeout = 1;
    send(slow);
    send(auth(2000, 0, 1, 1));
    EXPECT_EQ(g_authmng_thi_range_reason[0], 1u);  // station timeout
    EXPECT_EQ(g_authmng_sec_range_reason[2], 1u);  // both
    EXPECT_EQ(d1x().over3s_total, 1800u);
    g_amg_d1x[0].over3s_total = UINT64_MAX - 5;  // the block restarts from zero
    send(slow);
    EXPECT_EQ(d1x().over3s_total, 1800u);
    EXPECT_EQ(d1x().over3s_sta, 100u);

    authmng_dot1x_init(&g_amg_d1x[0]);
    authmng_auth_info_t wrap = auth(800);  // authExSrv and aaa wrap below zero
    wrap.rds_srv_time = 900, wrap.rds_time = 900, wrap.aaa_time = 100;
    send(wrap);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH_EX_SRV), (Counts{0, 0, 1}));
    EXPECT_EQ(hist(AUTHMNG_RANGE_AAA), (Counts{0, 0, 1}));
}

TEST_F(Dot1xIntakeTest, FailuresMethodsReauthAndOffline) {
    authmng_auth_info_t info = auth(10, 5);
    info.rssi = -40;
    send(info);  // fast but failed: abnormal, no signal sum, no histogram
    EXPECT_EQ(d1x().auth_result[5] + d1x().auth_total, 2u);
    EXPECT_EQ(d1x().success_rssi_sum + d1x().fail_rssi_sum, 0);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Counts{0, 0, 0}));
    EXPECT_EQ(g_authmng_abnormal_record_num, 1u);
    info.result = 1;
    send(info);
    EXPECT_EQ(d1x().fail_rssi_sum, -40);
    send(auth(10, 0, 0, 0, AUTHMNG_CLIENT_MAB));
    send(auth(10, 0, 0, 0, 7));
    EXPECT_EQ(d1x(AUTHMNG_METHOD_MAB).auth_total, 2u);
    EXPECT_EQ(d1x().auth_total, 2u);

    info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_REAUTH, 0);
    info.auth_time = 1500;  // slow: abnormal, but no time analysis
    send(info);
    info.result = 3, info.auth_time = 10;
    send(info);
    EXPECT_EQ(d1x().reauth_success_rate, 50u);
    EXPECT_EQ(hist(AUTHMNG_RANGE_AUTH), (Counts{0, 0, 0}));
    EXPECT_EQ(g_authmng_abnormal_record_num, 4u);

    info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_OFFLINE, 9);
    info.online_num = 5, info.auth_time = 9999;
    for (uint32_t reason : {0u, 101u, 1u}) {
        info.offline_reason = reason;
        send(info);
    }
    EXPECT_EQ(d1x().offline_total, 3u);
    EXPECT_EQ(d1x().current_online_number, 4u);
    EXPECT_EQ(g_authmng_abnormal_record_num, 5u);  // reason 1 only
    info.online_num = 0;
    send(info);
    EXPECT_EQ(d1x().current_online_number, 0u);  // held at zero
}

// Percentages of counts beyond 32 bits, the 32-bit average, and totals
// that pass 2^64 - 1 with no overflow guard: they read 0, and nothing
// divides by that zero.
TEST_F(Dot1xIntakeTest, RatesAndAverageAtTheEdgesOfTheirCounters) {
    authmng_dot1x_stat_t &r = g_amg_d1x[0];
    r.auth_result[0] = 49999999, r.auth_total = 59999999, r.auth_avg_time = 700;
    r.reauth_result[0] = r.reauth_total = 99999999;
    send(auth(400));  // 5e9 / 6e7 is 83; (700 * 49999999 + 400) mod 2^32 = 640261332, / 5e7
    EXPECT_EQ(d1x().auth_success_rate, 83u);
    EXPECT_EQ(d1x().auth_avg_time, 12u);
    send(event_record(AUTHMNG_CLIENT_DOT1X, D1X_REAUTH));
    EXPECT_EQ(d1x().reauth_success_rate, 100u);
    r.auth_result[0] = uint64_t{1} << 32;  // n - 1 is 0 in 32 bits; sum / n is 0
    send(auth(900));
    EXPECT_EQ(d1x().auth_avg_time, 0u);

    r.auth_total = r.auth_result[0] = r.reauth_total = UINT64_MAX, r.auth_avg_time = 700;
    send(auth(500));
    EXPECT_EQ(d1x().auth_total + d1x().auth_result[0] + d1x().auth_success_rate, 0u);
    EXPECT_EQ(d1x().auth_avg_time, 700u);
    send(auth(100));  // one success since the wrap: 100 / 1
    EXPECT_EQ(d1x().auth_avg_time, 100u);
    EXPECT_EQ(d1x().auth_success_rate, 100u);
    send(event_record(AUTHMNG_CLIENT_DOT1X, D1X_REAUTH));
    EXPECT_EQ(d1x().reauth_total + d1x().reauth_success_rate, 0u);
}

TEST_F(Dot1xIntakeTest, StartEventsMoveOnlyTheOnlineNumbers) {
    authmng_dot1x_stat_t expected = d1x();
    authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH_START);
    send(info);  // online 0 leaves the old number open
    info.event = D1X_REAUTH_START, info.online_num = 9;
    send(info);
    expected.old_online_number = expected.current_online_number = expected.max_online_number = 9;
    EXPECT_EQ(memcmp(&d1x(), &expected, sizeof expected), 0);
    info.online_num = 4;
    send(info);
    EXPECT_EQ(d1x().old_online_number + d1x().max_online_number + d1x().current_online_number, 22u);
    authmng_dot1x_init(&g_amg_d1x[0]);
    send(auth(10));  // online 0, but an authentication is now counted
    info = auth(10);
    info.online_num = 6;
    send(info);
    EXPECT_EQ(d1x().old_online_number, 0u);
}

TEST_F(Dot1xIntakeTest, DebugLinesOfEachStep) {
    debug(1);
    authmng_auth_info_t info = auth(1500);
    info.online_num = 3, info.rssi = -42;
    strcpy(info.username, "alice");
    send(info);
    std::string log = take_syslog();
    EXPECT_EQ(
        lines_of(log, "authmng_notify_dot1x_get_online_num"),
        (Lines{"Get 1x old online user number: 3.", "Get 1x current online user number: 3."}));
    EXPECT_EQ(lines_of(log, "authmng_notify_dot1x_info"), Lines{"D1X_AUTH_FIRST"});
    EXPECT_EQ(lines_of(log, "authmng_notify_dot1x_info_auth"),
              (Lines{"Recv 1x auth info, result: 0.", "Recv auth result: success, rssi: -42.",
                     "total auth count: 1\xEF\xBF\xBD\xEF\xBF\xBDsuccess: 1.",
                     "auth success rate: 100%.", "user(alice)1x auth time: 1500.",
                     "auth_time: 1500ms, su_total: 1500ms, su_result: 1",
                     "dot1x auth abnormal and add to list."}));
    EXPECT_EQ(lines_of(log, "authmng_dot1x_statistic_range"),
              (Lines{"range[1]++", "range[1]++", "range[0]++", "range[0]++", "range[0]++",
                     "range[0]++", "range[0]++"}));

    info.event = D1X_REAUTH, info.result = 2;
    send(info);
    info.event = D1X_OFFLINE, info.offline_reason = 1;
    send(info);
    log = take_syslog();
    EXPECT_EQ(
        lines_of(log, "authmng_notify_dot1x_info_reauth"),
        (Lines{"Recv 1x reauth info, result: 2.",
               "Recv reauth result: failure, reason: 2, rssi: -42.",
               "reauth info: total: 1, success: 0.", "dot1x reauth abnormal and add to list."}));
    EXPECT_EQ(lines_of(log, "authmng_notify_dot1x_info_offline"),
              (Lines{"Recv 1x offline info, reason: 1, rssi: -42.",
                     "dot1x auth abnormal and add to list."}));
    debug(0);
    send(info);
    EXPECT_EQ(take_syslog(), "");
}

// Both entries: the records each drops with an error line, and the event
// entry routing 802.1X and MAB events to the intake.
TEST_F(Dot1xIntakeTest, EntriesRouteByKindAndReportWhatTheyDrop) {
    debug(1);
    authmng_notify_auth_info(nullptr), authmng_notify_dot1x_info(nullptr);
    for (int32_t kind : {1, 0, 4, 2, 3}) {
        authmng_auth_info_t info = auth(10, 0, 0, 0, kind);
        authmng_notify_auth_info(&info);
    }
    g_authmng_statistic_enable = 0;
    authmng_auth_info_t info = auth(10);
    authmng_notify_auth_info(&info), authmng_notify_dot1x_info(&info);
    g_authmng_statistic_enable = 1;
    std::string log = take_syslog();
    EXPECT_EQ(lines_of(log, "authmng_notify_auth_info", "ERROR"),
              (Lines{"auth_info == NULL.", "client(1) error", "client(0) error", "client(4) error",
                     "g_authmng_statistic_enable == false."}));
    EXPECT_EQ(lines_of(log, "authmng_notify_auth_info"),
              Lines(2, "client == AUTHMNG_CLIENT_DOT1X"));
    EXPECT_EQ(lines_of(log, "authmng_notify_dot1x_info", "ERROR"),
              (Lines{"auth_info NULL", "g_authmng_statistic_enable: false"}));
    EXPECT_EQ(d1x(AUTHMNG_METHOD_DOT1X).auth_total + d1x(AUTHMNG_METHOD_MAB).auth_total, 2u);
}

// The classification as the daemons call it, with the record reached
// through its rssi field: third range for AAA alone, second for the
// station alone; a method or histogram out of range counts nothing.
TEST_F(Dot1xIntakeTest, LongTimeReasonThroughTheRssiField) {
    authmng_auth_info_t info = auth(0, 0, 1);
    authmng_dot1x_statistic_loogtime_reason(0, AUTHMNG_RANGE_AUTH, 3000, &info.rssi);
    info.aaa_timeout = 0, info.request_timeout = 1;
    authmng_dot1x_statistic_loogtime_reason(1, AUTHMNG_RANGE_AUTH, 2999, &info.rssi);
    authmng_dot1x_statistic_loogtime_reason(2, AUTHMNG_RANGE_AUTH, 2999, &info.rssi);
    authmng_dot1x_statistic_loogtime_reason(0, AUTHMNG_D1X_RANGE_NUM, 2999, &info.rssi);
    EXPECT_EQ(g_authmng_thi_range_reason[1] + g_authmng_sec_range_reason[0], 2u);
    uint64_t all = 0;
    for (int i = 0; i < AUTHMNG_REASON_NUM; ++i) {
        all += g_authmng_sec_range_reason[i] + g_authmng_thi_range_reason[i];
    }
    EXPECT_EQ(all, 2u);
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
