#include <cstring>
#include <string>
#include <vector>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

using V = std::vector<uint64_t>;
using I = authmng_auth_info_t;
constexpr uint64_t kNearWrap = UINT64_MAX - 10000;  // 2^64 - 10001
constexpr size_t npos = std::string::npos;
const std::string kEvent = "7 UNKNOW_MODULE DEBUG 2: AUTHMNG_LIB_EVENT_DBG: [authmng_notify_";
const std::string kError = "7 UNKNOW_MODULE DEBUG 2: AUTHMNG_LIB_ERROR_DBG: [authmng_notify_";

I auth_event(uint32_t ack, uint32_t result = 0) {
    I e = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, result);
    e.ack_time = ack;
    return e;
}
void event(I e) {
    authmng_notify_auth_info(&e);
}
void auth(uint32_t ack, uint32_t result = 0) {
    event(auth_event(ack, result));
}
void offline(uint32_t reason, uint32_t seconds) {
    I e = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_OFFLINE);
    e.offline_reason = reason, e.online_time = seconds;
    event(e);
}
void redirect(uint32_t ms, uint32_t result = 0, uint64_t users = 0) {
    authmng_rd_info_t rd = {users, 0, ms, result};
    authmng_notify_rd_info(&rd);
}
void move(uint32_t type, uint8_t fail) {
    authmng_stamove_info_t m = {type, fail};
    authmng_notify_stamove_info(&m);
}

class WebauthIntakeTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
        g_authmng_lib_event_dbg = 1;
    }
    // Debug lines so far, their line numbers replaced by N.
    std::string log() {
        std::string text = take_syslog();
        for (size_t at = text.find(" line:"); at != npos; at = text.find(" line:", at + 1))
            text.replace(at + 6, text.find(']', at) - at - 6, "N");
        return text;
    }
    bool logged(const std::string &lines) { return log().find(lines) != npos; }
    authmng_webauth_stat_t &live = g_authmng_webauth;
};

TEST_F(WebauthIntakeTest, SuccessFeedsSumsAndRanges) {
    I e = auth_event(2500);
    e.online_num = 1ull << 33, e.reauth_num = 4, e.auth_time = 5000, e.scc_time = 1500;
    e.acct_time = 20, e.portal_time = 1000, e.aaa_time = 1200, e.rds_time = 700;
    e.rds_srv_time = 300, e.acct_aaa_time = 990, e.acct_rds_time = 680, e.acct_rds_svr_time = 250;
    event(e);
    std::string buckets;  // each histogram's lower two counts
    for (const authmng_range_t &r : live.range)
        buckets += std::to_string(r.count[0]) + std::to_string(r.count[1]) + " ";
    EXPECT_EQ(buckets, "01 01 00 01 10 10 10 01 10 10 10 10 01 ");
    EXPECT_EQ(V(live.aggregate_time, live.aggregate_time + 13),
              V({2500, 1950, 0, 5000, 500, 400, 300, 1500, 20, 310, 430, 250, 1000}));
    EXPECT_TRUE(logged(kEvent + "webauth_info line:N] Recv webauth online: 8589934592.\n" + kEvent +
                       "webauth_info_auth line:N] Recv webauth result: 0.\n"));

    e = auth_event(3000), e.online_num = 3;  // the threshold itself: not abnormal, top range
    event(e);
    auth(2999), auth(3001);
    e = auth_event(100), e.rds_srv_time = 300;  // the difference wraps modulo 2^32
    event(e);
    e = auth_event(0), e.acct_rds_time = 1000;  // the accounting RADIUS histogram's bound
    event(e);
    EXPECT_EQ(V({live.range[0].count[1], live.range[0].count[2], live.range[10].count[1],
                 g_authmng_abnormal_record_num, live.auth_avg_time}),
              V({2, 2, 1, 1, 1933}));  // (2500 + 3000 + 2999 + 3001 + 100 + 0) / 6
    EXPECT_EQ(live.aggregate_time[1], 4294967096ull + 1950 + 3000 + 2999 + 3001);
    EXPECT_EQ(V({live.old_online_number, live.current_online_number, live.max_online_number,
                 live.reauth_number}),
              V({1ull << 33, 0, 1ull << 33, 0}));

    // A long-running daemon's sum past 32 bits: 5e9 ms over 1e6 successes.
    live.aggregate_time[0] = 4999999000, live.auth_result[0] = 999999;
    auth(1000);
    EXPECT_EQ(live.auth_avg_time, 5000u);
}

TEST_F(WebauthIntakeTest, OnlyFiveStepTimesAndFailuresAreAbnormal) {
    uint32_t I::*fields[] = {&I::ack_time,      &I::aaa_time,    &I::rds_time, &I::acct_aaa_time,
                             &I::acct_rds_time, &I::auth_time,   &I::scc_time, &I::acct_time,
                             &I::portal_time,   &I::rds_srv_time};
    for (uint32_t i = 0; i < 10; ++i) {
        for (uint32_t ms : {3000, 3001}) {  // the threshold itself is not abnormal
            I e = auth_event(0);
            e.*fields[i] = ms;
            event(e);
        }
        EXPECT_EQ(g_authmng_abnormal_record_num, i < 5 ? i + 1 : 5) << i;
    }
    authmng_webauth_stat_t before = live;
    auth(10, 4);  // a failure: queued and counted, but adds no time
    EXPECT_EQ(V({g_authmng_abnormal_record_num, live.auth_total, live.auth_result[4]}),
              V({6, 21, 1}));
    EXPECT_EQ(memcmp(live.aggregate_time, before.aggregate_time, sizeof live.aggregate_time), 0);
}

TEST_F(WebauthIntakeTest, OfflineAndRedirectAveragesAndStationMoves) {
    offline(0, 3600), offline(11, 9999);
    EXPECT_TRUE(
        logged(kEvent + "webauth_info_offline line:N] Recv webauth offline, reason: 11.\n"));
    EXPECT_EQ(V({live.offline_total, live.offline_reason[11], live.online_time_total,
                 live.average_online_time}),
              V({2, 1, 3600, 60}));
    offline(3, 1200);
    EXPECT_EQ(live.average_online_time, 40u);  // 4800 s over two normal ends

    for (uint32_t ms : {499, 500, 999, 1000}) redirect(ms, 0, 3);
    redirect(5000, 1, 9);  // counted, adds no time, average not recomputed
    EXPECT_EQ(V({live.range[2].count[0], live.range[2].count[1], live.range[2].count[2],
                 live.http_req_count, live.rd_user, live.aggregate_time[2], live.rd_avg_time}),
              V({1, 2, 1, 5, 9, 2998, 749}));
    log();
    redirect(2);
    EXPECT_EQ(live.rd_avg_time, 500u);
    move(0, 0), move(1, 1), move(2, 0), move(1, 0);
    EXPECT_EQ(V({live.move_count, live.move_fail_count}), V({4, 1}));
    const std::string moved = kEvent + "stamove_info line:N] recv webauth station-move: ";
    EXPECT_EQ(log(), kEvent + "rd_info line:N] recv webauth rd time: 2ms.\n" + moved +
                         "1, fail: 0.\n" + moved + "4, fail: 1.\n");  // no line for 2, 3

    authmng_webauth_init();
    offline(6, 100), offline(10, 100);
    EXPECT_EQ(V({live.offline_total, live.average_online_time, g_authmng_abnormal_record_num}),
              V({2, 0, 0}));
}

TEST_F(WebauthIntakeTest, BadInputChangesNothing) {
    g_authmng_lib_error_dbg = 1;
    authmng_webauth_stat_t before = live;
    I e = auth_event(10);
    e.online_num = 5, e.event = 2;
    authmng_notify_webauth_info(&e);
    e.event = 0, e.result = 14;
    authmng_notify_webauth_info(&e);
    e.result = 0, e.offline_reason = 20;
    authmng_notify_webauth_info(&e);
    EXPECT_EQ(take_syslog(), "");
    authmng_notify_webauth_info(nullptr);
    authmng_notify_rd_info(nullptr);
    authmng_notify_stamove_info(nullptr);
    redirect(10, 3);
    g_authmng_statistic_enable = 0;
    redirect(10);
    move(0, 0);
    EXPECT_EQ(memcmp(&before, &live, sizeof live), 0);
    EXPECT_EQ(log(), kError + "webauth_info line:N] auth_info NULL\n" + kError +
                         "rd_info line:N] rd_info NULL\n" + kError +
                         "stamove_info line:N] stamove_info NULL\n" + kError +
                         "rd_info line:N] rd_info->rd_result >= WBA_RESULT_RD_MAX.\n" + kError +
                         "rd_info line:N] g_authmng_statistic_enable == false.\n" + kError +
                         "stamove_info line:N] g_authmng_statistic_enable == false.\n");
}

TEST_F(WebauthIntakeTest, RestartWritesClearsAndCountsTheNewEvent) {
    live.auth_total = kNearWrap - 1, live.http_req_count = 6, g_authmng_webauth_tmp.auth_total = 5;
    auth(1);  // not yet near the limit
    I e = auth_event(1200);
    e.online_num = 7;
    event(e);
    EXPECT_NE(read_file(tmp_path("/security/authmanage/webauth/wba_statistic.csv"))
                  .find("\n3.9 14:5:7, 7, 18446744073709541610, 1, 0, 6, 0, 0min, 0, 0, "),
              npos);
    EXPECT_EQ(V({g_authmng_statistic_reverse, g_authmng_webauth_tmp.auth_total, live.auth_total,
                 live.auth_result[0], live.http_req_count, live.aggregate_time[0],
                 live.range[0].count[1], live.old_online_number, live.max_online_number}),
              V({1, 0, 1, 1, 0, 1200, 1, 7, 7}));

    // Each intake near the limit on the last counter it looks at.
    uint64_t *last[] = {&live.aggregate_time[12], &live.online_time_total, &live.aggregate_time[2],
                        &live.move_count};
    void (*send[])() = {[] { auth(1); }, [] { offline(0, 1); }, [] { redirect(1); },
                        [] { move(0, 1); }};
    for (int i = 0; i < 4; ++i) {
        authmng_webauth_init();
        *last[i] = kNearWrap, g_authmng_statistic_reverse = 0;
        send[i]();
        EXPECT_EQ(g_authmng_statistic_reverse, 1u) << i;
    }
}

}  // namespace
