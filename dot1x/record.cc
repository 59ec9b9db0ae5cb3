// The 802.1X statistics records (802.1X and MAB halves, live and interval
// baseline), the long-time reason counters, and the clear operation.
#include <cstring>

#include "authmng.h"
#include "core/log.h"
#include "dot1x/record.h"

extern "C" {
authmng_dot1x_stat_t g_amg_d1x[AUTHMNG_D1X_METHOD_NUM];
authmng_dot1x_stat_t g_amg_d1x_tmp[AUTHMNG_D1X_METHOD_NUM];
uint64_t g_authmng_sec_range_reason[AUTHMNG_REASON_NUM];
uint64_t g_authmng_thi_range_reason[AUTHMNG_REASON_NUM];
}

extern "C" void authmng_dot1x_init(void *record) {
    if (record == nullptr) {
        AUTHMNG_ERROR_DBG("dot1x NULL\n");
        return;
    }
    auto *stat = static_cast<authmng_dot1x_stat_t *>(record);
    memset(stat, 0, sizeof *stat);
    for (uint32_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        authmng_range_t &range = stat->range[i];
        range.id = i;
        range.num = authmng::kDot1xRangeSlots;
        for (uint32_t j = 0; j < authmng::kDot1xRangeSlots; ++j) {
            range.bound[j] = authmng::kDot1xRangeBounds[j];
        }
    }
}
