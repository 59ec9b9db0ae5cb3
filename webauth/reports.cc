// The web-auth intakes of redirect and station-move reports.
#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/relaxed.h"
#include "webauth/intake.h"
#include "webauth/record.h"

using namespace authmng;

namespace {

constexpr uint32_t kRedirectRange = 2;
constexpr uint32_t kRedirectSucceeded = 0;

}  // namespace

extern "C" void authmng_notify_rd_info(const authmng_rd_info_t *rd_info) {
    if (rd_info == nullptr) {
        AUTHMNG_ERROR_DBG("rd_info NULL\n");
        return;
    }
    if (!load_relaxed(g_authmng_statistic_enable)) {
        AUTHMNG_ERROR_DBG("g_authmng_statistic_enable == false.\n");
        return;
    }
    if (rd_info->rd_result >= WBA_RESULT_RD_MAX) {
        AUTHMNG_ERROR_DBG("rd_info->rd_result >= WBA_RESULT_RD_MAX.\n");
        return;
    }

    LibraryLock lock;
    authmng_webauth_stat_t &record = g_authmng_webauth;
    if (near_limit(record.http_req_count) || near_limit(record.aggregate_time[kRedirectRange])) {
        authmng_webauth_statistic_reverse();
    }
    record.rd_user = rd_info->rd_user;
    ++record.http_req_count;
    if (rd_info->rd_result != kRedirectSucceeded) return;

    // Counted against the fixed redirect bounds, without the range step.
    const WebauthRangeShape &shape = kWebauthRangeShapes[kRedirectRange];
    uint32_t time = rd_info->rd_time;
    authmng_range_t &range = record.range[kRedirectRange];
    uint32_t slot = time >= shape.bound[2] ? 2 : time >= shape.bound[1] ? 1 : 0;
    ++range.count[slot];
    record.aggregate_time[kRedirectRange] += time;
    record.rd_avg_time = record.aggregate_time[kRedirectRange] / record.http_req_count;
    AUTHMNG_EVENT_DBG("recv webauth rd time: %dms.\n", static_cast<int>(time));
}

extern "C" void authmng_notify_stamove_info(const authmng_stamove_info_t *stamove_info) {
    if (stamove_info == nullptr) {
        AUTHMNG_ERROR_DBG("stamove_info NULL\n");
        return;
    }
    if (!load_relaxed(g_authmng_statistic_enable)) {
        AUTHMNG_ERROR_DBG("g_authmng_statistic_enable == false.\n");
        return;
    }

    LibraryLock lock;
    authmng_webauth_stat_t &record = g_authmng_webauth;
    if (near_limit(record.move_count)) authmng_webauth_statistic_reverse();
    ++record.move_count;
    if (stamove_info->move_fail != 0) {
        ++record.move_fail_count;
    } else if (stamove_info->move_type <= 1) {
        // Only the kind of move decides whether the line is written.
        AUTHMNG_EVENT_DBG("recv webauth station-move: %u, fail: %u.\n",
                          static_cast<uint32_t>(record.move_count),
                          static_cast<uint32_t>(record.move_fail_count));
    }
}
