// The web-auth intake of authentication results and offline events.
#include <cinttypes>

#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/relaxed.h"
#include "webauth/intake.h"
#include "webauth/record.h"

namespace authmng {
namespace {

// Offline reasons of sessions that did not end normally: portal timeout,
// set failure, link change. Left out of the online-time figures.
constexpr uint32_t kOfflinePortalTimeout = 6;
constexpr uint32_t kOfflineSetFail = 10;
constexpr uint32_t kOfflineLinkChange = 11;

constexpr uint32_t kSecondsPerMinute = 60;

// sum / count truncated to 32 bits, 0 for no count. In 32-bit arithmetic
// when both fit: the same quotient, and far cheaper than a 64-bit division
// (a library call on a 32-bit CPU).
uint32_t average(uint64_t sum, uint64_t count) {
    if (count == 0) return 0;
    if ((sum | count) <= UINT32_MAX) {
        return static_cast<uint32_t>(sum) / static_cast<uint32_t>(count);
    }
    return static_cast<uint32_t>(sum / count);
}

bool ended_abnormally(uint32_t reason) {
    return reason == kOfflinePortalTimeout || reason == kOfflineSetFail ||
           reason == kOfflineLinkChange;
}

// The figures every event copies from the daemon. The first event after a
// clear also gives the clear's starting online count.
void take_online_figures(authmng_webauth_stat_t &record, const authmng_auth_info_t &info) {
    record.current_online_number = info.online_num;
    if (record.auth_total == 0 && record.offline_total == 0) {
        record.old_online_number = record.current_online_number;
    }
    record.reauth_number = info.reauth_num;
}

// The restart rule triggered: the interval rows go out with the figures up
// to and including this event's online count, then the cleared record
// starts from this event, which is the first after the clear.
void restart_before_counting(authmng_webauth_stat_t &record, const authmng_auth_info_t &info) {
    authmng_webauth_statistic_reverse();
    take_online_figures(record, info);
}

// Adds one measured quantity of a successful authentication to its sum
// and its histogram.
void count_quantity(authmng_webauth_stat_t &record, uint32_t index, uint32_t value) {
    record.aggregate_time[index] += value;
    authmng_webauth_statistic_range(index, value);
}

// Whether a successful authentication was slow in one of the steps that
// the abnormal test looks at.
bool slow_steps(const authmng_auth_info_t &info, uint32_t threshold) {
    return info.ack_time > threshold || info.aaa_time > threshold || info.rds_time > threshold ||
           info.acct_aaa_time > threshold || info.acct_rds_time > threshold;
}

void authmng_notify_webauth_info_auth(const authmng_auth_info_t &info) {
    authmng_webauth_stat_t &record = g_authmng_webauth;
    // One restart when any of the fourteen counters is near its limit: the
    // largest of them decides, found without a branch per counter.
    uint64_t largest = record.auth_total;
    for (uint64_t sum : record.aggregate_time) largest = sum > largest ? sum : largest;
    if (near_limit(largest)) restart_before_counting(record, info);

    ++record.auth_total;
    ++record.auth_result[info.result];
    AUTHMNG_EVENT_DBG("Recv webauth result: %d.\n", static_cast<int>(info.result));
    if (record.current_online_number > record.max_online_number) {
        record.max_online_number = record.current_online_number;
    }

    if (info.result == 0) {
        // Differences wrap modulo 2^32 when a part exceeds its whole.
        count_quantity(record, 0, info.ack_time);
        count_quantity(record, 1, info.ack_time - info.rds_srv_time - info.acct_rds_svr_time);
        count_quantity(record, 3, info.auth_time);
        count_quantity(record, 7, info.scc_time);
        count_quantity(record, 8, info.acct_time);
        count_quantity(record, 12, info.portal_time);
        count_quantity(record, 4, info.aaa_time - info.rds_time);
        count_quantity(record, 5, info.rds_time - info.rds_srv_time);
        count_quantity(record, 6, info.rds_srv_time);
        count_quantity(record, 9, info.acct_aaa_time - info.acct_rds_time);
        count_quantity(record, 10, info.acct_rds_time - info.acct_rds_svr_time);
        count_quantity(record, 11, info.acct_rds_svr_time);
    }
    record.auth_avg_time = average(record.aggregate_time[0], record.auth_result[0]);

    if (info.result != 0 || slow_steps(info, load_relaxed(g_authmng_authtime_abnormal_value))) {
        authmng_record_abnormal_auth(&info);
    }
}

void authmng_notify_webauth_info_offline(const authmng_auth_info_t &info) {
    authmng_webauth_stat_t &record = g_authmng_webauth;
    if (near_limit(record.offline_total) || near_limit(record.online_time_total)) {
        restart_before_counting(record, info);
    }

    ++record.offline_total;
    ++record.offline_reason[info.offline_reason];
    if (!ended_abnormally(info.offline_reason)) record.online_time_total += info.online_time;

    uint64_t normal = record.offline_total - record.offline_reason[kOfflinePortalTimeout] -
                      record.offline_reason[kOfflineSetFail] -
                      record.offline_reason[kOfflineLinkChange];
    record.average_online_time =
        normal == 0 ? 0
                    : static_cast<uint32_t>(record.online_time_total / normal) / kSecondsPerMinute;
    AUTHMNG_EVENT_DBG("Recv webauth offline, reason: %d.\n", static_cast<int>(info.offline_reason));
}

}  // namespace
}  // namespace authmng

using namespace authmng;

extern "C" void authmng_notify_webauth_info(const authmng_auth_info_t *auth_info) {
    if (auth_info == nullptr) {
        AUTHMNG_ERROR_DBG("auth_info NULL\n");
        return;
    }
    if (auth_info->event > kWebauthMaxEvent || auth_info->result > kWebauthMaxResult ||
        auth_info->offline_reason > kWebauthMaxOffline) {
        return;
    }

    LibraryLock lock;
    authmng_webauth_stat_t &record = g_authmng_webauth;
    take_online_figures(record, *auth_info);
    AUTHMNG_EVENT_DBG("Recv webauth online: %" PRIu64 ".\n", record.current_online_number);

    if (auth_info->event == WBA_EVENT_AUTH) {
        authmng_notify_webauth_info_auth(*auth_info);
    } else {
        authmng_notify_webauth_info_offline(*auth_info);
    }
}
