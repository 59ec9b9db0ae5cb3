// The escape displays: the configuration with the current average delays,
// and the debug dump of the previous totals and the three checks.
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/display_output.h"
#include "core/lock.h"
#include "core/relaxed.h"
#include "escape/check.h"

using namespace authmng;

namespace {

// Averages are kept in hundredths of a millisecond.
constexpr uint32_t kAvgScale = 100;
constexpr uint32_t kValuesPerLine = 10;

const char *enabled(uint8_t on) {
    return on != 0 ? "enable" : "disable";
}

// Non-zero slots from the one after the position round to the position,
// ten values a line.
void dump_ring(const uint32_t *ring, uint16_t pos) {
    uint32_t start = pos % kRingSize;
    uint32_t printed = 0;
    for (uint32_t step = 1; step <= kRingSize; ++step) {
        uint32_t value = ring[(start + step) % kRingSize];
        if (value == 0) continue;
        display_printf("%u ", value);
        if (++printed % kValuesPerLine == 0) display_printf("\n");
    }
}

void dump_check(const authmng_check_t &check, const char *name) {
    display_printf("type: %s.\n", name != nullptr ? name : "");
    display_printf("minvalue: %u, avgvalue: %u,  maxvalue: %u.\n", check.min_value, check.avg_value,
                   check.max_value);
    display_printf("pre_escape: ratio(%d), escape count: %d.\n",
                   static_cast<int>(check.pre_escape_ratio), static_cast<int>(check.escape_count));
    display_printf("total count: %u, zero count: %u.\n", check.total_count, check.zero_count);
    display_printf("abnormal count: %u.\n", check.abnormal_count);
    display_printf("abnormal value:\n");
    dump_ring(check.abnormal_value, check.abnormal_pos);
    display_printf("\n");
    display_printf("recent value:\n");
    dump_ring(check.recent_value, check.recent_pos);
    display_printf("\n");
}

}  // namespace

extern "C" void authmng_show_check_info(void) {
    uint32_t redirect_avg;
    uint32_t auth_avg;
    {
        LibraryLock lock;
        redirect_avg = g_authmng_check[kCheckRedirect].avg_value;
        auth_avg = g_authmng_check[kCheckAuth].avg_value;
    }
    display_printf("authmanage basic information:\n");
    display_printf("  user escape .......................%s\n",
                   enabled(load_relaxed(g_authmng_check_open)));
    display_printf("  timeout ratio .....................%u %%\n",
                   load_relaxed(g_authmng_check_ratio));
    display_printf("  escape time .......................%u min\n",
                   load_relaxed(g_authmng_escape_time));
    display_printf("  escape life .......................%u min\n",
                   load_relaxed(g_authmng_escape_life));
    display_printf("  redirect threshold value ......... %u msec\n",
                   load_relaxed(g_authmng_check_redirect_threshold));
    display_printf("  authentication threshold value ....%u msec\n",
                   load_relaxed(g_authmng_check_auth_threshold));
    display_printf("  redirect average value ............%u msec\n", redirect_avg / kAvgScale);
    display_printf("  authentication average value ......%u msec\n", auth_avg / kAvgScale);
    display_printf("  authentication statistic ..........%s\n",
                   enabled(load_relaxed(g_authmng_statistic_enable)));
}

extern "C" void authmng_debug_webauth_check_info(void) {
    DeferredDisplay display;  // printed after the unlock
    LibraryLock lock;
    const authmng_info_record_t &prev = g_authmng_info_record;
    display_printf("total redirect time: %u.\n", prev.total_redirect_time);
    display_printf("total redirect count: %u.\n", prev.total_redirect_count);
    display_printf("total authentication time: %u.\n", prev.total_auth_time);
    display_printf("total authentication count: %u.\n", prev.total_auth_count);
    display_printf("total authentication timeout count: %u.\n", prev.total_auth_timeout_count);
    for (uint32_t type = 0; type < kCheckTypes; ++type) {
        dump_check(g_authmng_check[type], g_authmng_type_str[type]);
    }
}
