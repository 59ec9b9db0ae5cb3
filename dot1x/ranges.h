// Time analysis of successful 802.1X first authentications: the seven
// histograms of a method's live record and the process-wide long-time
// reason counters.
//
// Both steps run for every successful authentication, seven histogram
// counts and one classification per event, so they are inline and choose
// their counter without branching on the measured values: the intake's
// cost then stays close to that of the increments themselves.
#ifndef AUTHMNG_DOT1X_RANGES_H
#define AUTHMNG_DOT1X_RANGES_H

#include <cstdint>

#include "authmng.h"
#include "core/log.h"
#include "core/relaxed.h"

// Counts value into histogram index (0..6) of the live record of method:
// into the first range whose upper bound lies above the value, else into
// the last range in use. Call with g_authmng_mtx held. A descriptor that
// was never set up (num 0) counts nothing.
inline void authmng_dot1x_statistic_range(uint32_t method, uint32_t index, uint32_t value) {
    if (method >= AUTHMNG_D1X_METHOD_NUM || index >= AUTHMNG_D1X_RANGE_NUM) return;
    authmng_range_t &range = g_amg_d1x[method].range[index];
    uint32_t used = range.num < AUTHMNG_RANGE_SLOTS ? range.num : AUTHMNG_RANGE_SLOTS;
    if (used == 0) return;
    uint32_t last = used - 1;
    uint32_t slot = last;
    if (last >= 2 && value < range.bound[2]) slot = 1;
    if (last >= 1 && value < range.bound[1]) slot = 0;
    ++range.count[slot];
    // The switch first: with debugging off nothing branches on the value.
    if (authmng::load_relaxed(g_authmng_lib_event_dbg) && slot < last) {
        AUTHMNG_EVENT_DBG("range[%d]++\n", static_cast<int>(slot));
    }
}

namespace authmng {

// The long-time classification of authmng_dot1x_statistic_loogtime_reason
// for an event record: nothing below bound[1] of range, the second-range
// counters below bound[2], the third-range counters from there on; counter
// 0 when only the station was slow, 1 only AAA, 2 both, 3 neither. Call
// with g_authmng_mtx held.
inline void dot1x_count_long_time(const authmng_range_t &range, uint32_t time,
                                  const authmng_auth_info_t &info) {
    if (time < range.bound[1]) return;
    uint64_t *counters =
        time < range.bound[2] ? g_authmng_sec_range_reason : g_authmng_thi_range_reason;
    // By [station slow][AAA slow].
    static constexpr uint8_t kReason[2][2] = {{3, 1}, {0, 2}};
    bool station_slow = (info.requestid_timeout | info.request_timeout) != 0;
    bool aaa_slow = info.aaa_timeout != 0;
    ++counters[kReason[station_slow][aaa_slow]];
}

}  // namespace authmng

#endif
