// The 802.1X intake: counts one event of the 802.1X daemon (802.1X or MAB)
// into the live record of its method, analyses the time of successful first
// authentications, and queues abnormal events on the abnormal list.
//
// With debugging off an event costs the lock and the counter updates: no
// allocation, no system call and no formatting (queueing an abnormal event
// allocates its node, as the list requires).
//
// Two cases the daemon contract leaves open are settled here:
//  - A record that start-up never set up (descriptor num 0: the process was
//    started for another client) counts nothing. Such a process never
//    writes or shows the 802.1X records, and its abnormal list belongs to
//    its own client, so the event is dropped whole rather than half counted.
//  - An offline event that reports 0 users online leaves
//    current_online_number at 0 instead of wrapping it to 2^64 - 1: the
//    daemon has just said nobody is online, and the shows and the interval
//    file print the figure as it stands.
#include <cinttypes>
#include <cstdint>
#include <cstring>

#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/relaxed.h"
#include "core/user_name.h"
#include "dot1x/ranges.h"
#include "dot1x/record.h"

using namespace authmng;

namespace {

constexpr uint32_t kResultSuccess = 0;
constexpr uint32_t kResultRequestIdTimeout = 1;
constexpr uint32_t kResultRequestTimeout = 2;
constexpr uint32_t kOfflineUserLogoff = 0;
constexpr uint32_t kOfflineNormal = 101;
// Successful authentications longer than this go to the over-3-second
// block; the abnormal threshold is the lower limit of the over-1-second one.
constexpr uint32_t kOverThreeSecondsMs = 3000;

// The seven measured quantities of one authentication, by descriptor, in
// unsigned 32-bit arithmetic (a negative difference wraps).
struct MeasuredTimes {
    uint32_t value[AUTHMNG_D1X_RANGE_NUM];

    explicit MeasuredTimes(const authmng_auth_info_t &info) {
        value[AUTHMNG_RANGE_AUTH] = info.auth_time;
        value[AUTHMNG_RANGE_AUTH_EX_SRV] = info.auth_time - info.rds_srv_time;
        value[AUTHMNG_RANGE_STA] = info.sta_time;
        value[AUTHMNG_RANGE_SELF] = info.self_time;
        value[AUTHMNG_RANGE_AAA] = info.aaa_time - info.rds_time;
        value[AUTHMNG_RANGE_RDS] = info.rds_time - info.rds_srv_time;
        value[AUTHMNG_RANGE_RDS_SRV] = info.rds_srv_time;
    }

    uint32_t component_total() const {
        return value[AUTHMNG_RANGE_STA] + value[AUTHMNG_RANGE_SELF] + value[AUTHMNG_RANGE_AAA] +
               value[AUTHMNG_RANGE_RDS] + value[AUTHMNG_RANGE_RDS_SRV];
    }
};

// One over-threshold block: the total and the five component sums.
struct Block {
    uint64_t &total;
    uint64_t &sta;
    uint64_t &self;
    uint64_t &aaa;
    uint64_t &rds;
    uint64_t &rds_srv;

    // Restarts the whole block from zero when the total would carry past
    // 2^64 - 1.
    void add(const MeasuredTimes &times) {
        uint64_t sum = times.component_total();
        if (sum > UINT64_MAX - total) total = sta = self = aaa = rds = rds_srv = 0;
        total += sum;
        sta += times.value[AUTHMNG_RANGE_STA];
        self += times.value[AUTHMNG_RANGE_SELF];
        aaa += times.value[AUTHMNG_RANGE_AAA];
        rds += times.value[AUTHMNG_RANGE_RDS];
        rds_srv += times.value[AUTHMNG_RANGE_RDS_SRV];
    }
};

// Signal-strength sums wrap modulo 2^32.
void add_rssi(int32_t &sum, int32_t rssi) {
    sum = static_cast<int32_t>(static_cast<uint32_t>(sum) + static_cast<uint32_t>(rssi));
}

// part * 100 / whole, truncated. When both fit in 32 bits the quotient is
// taken in 32 bits: the same value, and much cheaper than a 64-bit
// division (a library call on a 32-bit CPU). Counters carry no overflow
// guard: a total that passed 2^64 - 1 reads 0, and its rate is then 0
// rather than a division by zero.
uint32_t percent(uint64_t part, uint64_t whole) {
    if (whole == 0) return 0;
    uint64_t scaled = part * 100;
    if ((scaled | whole) <= UINT32_MAX) {
        return static_cast<uint32_t>(scaled) / static_cast<uint32_t>(whole);
    }
    return static_cast<uint32_t>(scaled / whole);
}

// A 32-bit sum over a 64-bit count of at least 1: a count beyond 32 bits
// exceeds any such sum, so the quotient is then 0.
uint32_t average(uint32_t sum, uint64_t count) {
    return count > UINT32_MAX ? 0 : sum / static_cast<uint32_t>(count);
}

void authmng_notify_dot1x_get_online_num(authmng_dot1x_stat_t &record, uint64_t online_num) {
    if (record.old_online_number == 0 && record.auth_total == 0) {
        record.old_online_number = online_num;
        AUTHMNG_EVENT_DBG("Get 1x old online user number: %" PRIu64 ".\n", online_num);
    }
    record.current_online_number = online_num;
    if (online_num > record.max_online_number) record.max_online_number = online_num;
    AUTHMNG_EVENT_DBG("Get 1x current online user number: %" PRIu64 ".\n", online_num);
}

// Time analysis of a successful first authentication.
void analyse_success_time(uint32_t method, authmng_dot1x_stat_t &record,
                          const authmng_auth_info_t &info, uint32_t threshold) {
    MeasuredTimes times(info);
    // Unrolled: each histogram's address becomes a constant offset.
#pragma GCC unroll 7
    for (uint32_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        authmng_dot1x_statistic_range(method, i, times.value[i]);
    }
    uint32_t t = info.auth_time;
    // The classification of authmng_dot1x_statistic_loogtime_reason, on the
    // record at hand.
    dot1x_count_long_time(record.range[AUTHMNG_RANGE_AUTH], t, info);

    if (t > kOverThreeSecondsMs) {
        Block{record.over3s_total, record.over3s_sta, record.over3s_self,
              record.over3s_aaa,   record.over3s_rds, record.over3s_rds_srv}
            .add(times);
    } else if (t > threshold) {
        Block{record.over1s_total, record.over1s_sta, record.over1s_self,
              record.over1s_aaa,   record.over1s_rds, record.over1s_rds_srv}
            .add(times);
    }
}

void authmng_notify_dot1x_info_auth(uint32_t method, authmng_dot1x_stat_t &record,
                                    authmng_auth_info_t *info, uint32_t threshold) {
    uint32_t result = info->result;
    AUTHMNG_EVENT_DBG("Recv 1x auth info, result: %u.\n", result);
    if (result == kResultSuccess) {
        add_rssi(record.success_rssi_sum, info->rssi);
        AUTHMNG_EVENT_DBG("Recv auth result: success, rssi: %d.\n", info->rssi);
    } else if (result == kResultRequestIdTimeout || result == kResultRequestTimeout) {
        add_rssi(record.fail_rssi_sum, info->rssi);
        AUTHMNG_EVENT_DBG("Recv auth result: failure, reason: %u, rssi: %d.\n", result, info->rssi);
    }

    ++record.auth_result[result];
    ++record.auth_total;
    AUTHMNG_EVENT_DBG("total auth count: %" PRIu64
                      "\xEF\xBF\xBD"
                      "\xEF\xBF\xBD"
                      "success: %" PRIu64 ".\n",
                      record.auth_total, record.auth_result[kResultSuccess]);
    record.auth_success_rate = percent(record.auth_result[kResultSuccess], record.auth_total);
    AUTHMNG_EVENT_DBG("auth success rate: %d%%.\n", static_cast<int>(record.auth_success_rate));

    if (result == kResultSuccess) {
        analyse_success_time(method, record, *info, threshold);
        // Running average of the successes, in 32-bit arithmetic. A success
        // count that has just passed 2^64 - 1 reads 0: the average stays.
        uint64_t n = record.auth_result[kResultSuccess];
        uint32_t t = info->auth_time;
        uint32_t sum = record.auth_avg_time * static_cast<uint32_t>(n - 1) + t;
        if (n != 0) record.auth_avg_time = average(sum, n);
        AUTHMNG_EVENT_DBG("user(%s)1x auth time: %u.\n",
                          printable_name(info->username, NameSink::kTerminal), t);
        AUTHMNG_EVENT_DBG("auth_time: %ums, su_total: %ums, su_result: %" PRIu64 "\n", t, sum, n);
    }

    if (info->auth_time > threshold || result != kResultSuccess) {
        AUTHMNG_EVENT_DBG("dot1x auth abnormal and add to list.\n");
        authmng_record_abnormal_auth(info);
    }
}

void authmng_notify_dot1x_info_reauth(authmng_dot1x_stat_t &record, authmng_auth_info_t *info,
                                      uint32_t threshold) {
    uint32_t result = info->result;
    AUTHMNG_EVENT_DBG("Recv 1x reauth info, result: %u.\n", result);
    if (result == kResultSuccess) {
        add_rssi(record.success_rssi_sum, info->rssi);
        AUTHMNG_EVENT_DBG("Recv reauth result: success, rssi: %d.\n", info->rssi);
    } else if (result == kResultRequestIdTimeout || result == kResultRequestTimeout) {
        add_rssi(record.fail_rssi_sum, info->rssi);
        AUTHMNG_EVENT_DBG("Recv reauth result: failure, reason: %u, rssi: %d.\n", result,
                          info->rssi);
    }

    ++record.reauth_total;
    ++record.reauth_result[result];
    record.reauth_success_rate = percent(record.reauth_result[kResultSuccess], record.reauth_total);
    AUTHMNG_EVENT_DBG("reauth info: total: %" PRIu64 ", success: %" PRIu64 ".\n",
                      record.reauth_total, record.reauth_result[kResultSuccess]);

    if (info->auth_time > threshold || result != kResultSuccess) {
        AUTHMNG_EVENT_DBG("dot1x reauth abnormal and add to list.\n");
        authmng_record_abnormal_auth(info);
    }
}

void authmng_notify_dot1x_info_offline(authmng_dot1x_stat_t &record, authmng_auth_info_t *info) {
    uint32_t reason = info->offline_reason;
    ++record.offline_total;
    add_rssi(record.offline_rssi_sum, info->rssi);
    AUTHMNG_EVENT_DBG("Recv 1x offline info, reason: %u, rssi: %d.\n", reason, info->rssi);

    if (record.current_online_number != 0) --record.current_online_number;
    ++record.offline_reason[reason];

    if (reason != kOfflineUserLogoff && reason != kOfflineNormal) {
        AUTHMNG_EVENT_DBG("dot1x auth abnormal and add to list.\n");
        authmng_record_abnormal_auth(info);
    }
}

}  // namespace

extern "C" void authmng_notify_dot1x_info(authmng_auth_info_t *auth_info) {
    if (auth_info == nullptr) {
        AUTHMNG_ERROR_DBG("auth_info NULL\n");
        return;
    }
    if (auth_info->event > kDot1xMaxEvent || auth_info->result > kDot1xMaxCode ||
        auth_info->offline_reason > kDot1xMaxCode) {
        return;
    }
    if (!load_relaxed(g_authmng_statistic_enable)) {
        AUTHMNG_ERROR_DBG("g_authmng_statistic_enable: false\n");
        return;
    }
    uint32_t threshold = load_relaxed(g_authmng_authtime_abnormal_value);

    LibraryLock lock;
    uint32_t method = dot1x_method_of(auth_info->client_type);
    authmng_dot1x_stat_t &record = g_amg_d1x[method];
    if (record.range[AUTHMNG_RANGE_AUTH].num == 0) return;

    authmng_notify_dot1x_get_online_num(record, auth_info->online_num);
    switch (auth_info->event) {
        case D1X_AUTH:
            AUTHMNG_EVENT_DBG("D1X_AUTH_FIRST\n");
            authmng_notify_dot1x_info_auth(method, record, auth_info, threshold);
            break;
        case D1X_REAUTH:
            AUTHMNG_EVENT_DBG("D1X_REAUTH\n");
            authmng_notify_dot1x_info_reauth(record, auth_info, threshold);
            break;
        case D1X_OFFLINE:
            AUTHMNG_EVENT_DBG("D1X_OFFLINE\n");
            authmng_notify_dot1x_info_offline(record, auth_info);
            break;
        default:  // the two start events only move the online numbers
            break;
    }
}
