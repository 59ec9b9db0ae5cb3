// Histogram update and long-time reason classification of the 802.1X
// record. Both run inside the intake, with g_authmng_mtx held.
#include "dot1x/ranges.h"

#include <cstddef>

#include "authmng.h"
#include "core/log.h"

// The long-time classification reads the three time-out flags through the
// event record that encloses the rssi field it is given.
static_assert(offsetof(authmng_auth_info_t, aaa_timeout) ==
                  offsetof(authmng_auth_info_t, rssi) + sizeof(int32_t),
              "aaa_timeout directly follows rssi");
static_assert(offsetof(authmng_auth_info_t, requestid_timeout) ==
                  offsetof(authmng_auth_info_t, aaa_timeout) + 1,
              "requestid_timeout follows aaa_timeout");
static_assert(offsetof(authmng_auth_info_t, request_timeout) ==
                  offsetof(authmng_auth_info_t, requestid_timeout) + 1,
              "request_timeout follows requestid_timeout");

namespace {

// Indexes of the long-time reason counters.
constexpr uint32_t kReasonStationSlow = 0;
constexpr uint32_t kReasonAaaSlow = 1;
constexpr uint32_t kReasonBothSlow = 2;
constexpr uint32_t kReasonOther = 3;

bool valid_descriptor(uint32_t method, uint32_t index) {
    return method < AUTHMNG_D1X_METHOD_NUM && index < AUTHMNG_D1X_RANGE_NUM;
}

}  // namespace

void authmng_dot1x_statistic_range(uint32_t method, uint32_t index, uint32_t value) {
    if (!valid_descriptor(method, index)) return;
    authmng_range_t &range = g_amg_d1x[method].range[index];
    uint32_t used = range.num < AUTHMNG_RANGE_SLOTS ? range.num : AUTHMNG_RANGE_SLOTS;
    if (used == 0) return;
    uint32_t last = used - 1;
    for (uint32_t i = 0; i < last; ++i) {
        if (value < range.bound[i + 1]) {
            ++range.count[i];
            AUTHMNG_EVENT_DBG("range[%d]++\n", static_cast<int>(i));
            return;
        }
    }
    ++range.count[last];
}

extern "C" void authmng_dot1x_statistic_loogtime_reason(uint32_t method, uint32_t index,
                                                        uint32_t time, const int32_t *rssi_field) {
    if (!valid_descriptor(method, index) || rssi_field == nullptr) return;
    const authmng_range_t &range = g_amg_d1x[method].range[index];
    if (time < range.bound[1]) return;
    uint64_t *counters =
        time < range.bound[2] ? g_authmng_sec_range_reason : g_authmng_thi_range_reason;

    const auto *info = reinterpret_cast<const authmng_auth_info_t *>(
        reinterpret_cast<const unsigned char *>(rssi_field) - offsetof(authmng_auth_info_t, rssi));
    bool station_slow = info->requestid_timeout != 0 || info->request_timeout != 0;
    bool aaa_slow = info->aaa_timeout != 0;
    if (station_slow && aaa_slow) {
        ++counters[kReasonBothSlow];
    } else if (station_slow) {
        ++counters[kReasonStationSlow];
    } else if (aaa_slow) {
        ++counters[kReasonAaaSlow];
    } else {
        ++counters[kReasonOther];
    }
}
