// The exported long-time reason classification of the 802.1X record; the
// steps themselves are inline in dot1x/ranges.h.
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

extern "C" void authmng_dot1x_statistic_loogtime_reason(uint32_t method, uint32_t index,
                                                        uint32_t time, const int32_t *rssi_field) {
    if (method >= AUTHMNG_D1X_METHOD_NUM || index >= AUTHMNG_D1X_RANGE_NUM ||
        rssi_field == nullptr) {
        return;
    }
    const auto *info = reinterpret_cast<const authmng_auth_info_t *>(
        reinterpret_cast<const unsigned char *>(rssi_field) - offsetof(authmng_auth_info_t, rssi));
    authmng::dot1x_count_long_time(g_amg_d1x[method].range[index], time, *info);
}
