// The client debug commands: run-time tuning of the abnormal threshold,
// the abnormal-list cap, the daily write hour and the interval length, the
// clearing of the statistics, and the settings summary.
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/lock.h"
#include "core/relaxed.h"

using authmng::load_relaxed;
using authmng::store_relaxed;

namespace {

// Defaults shown by the summary next to the current values.
constexpr int kWriteTmpDefault = 30;     // minutes
constexpr int kWriteClockDefault = 1;    // hour of the day
constexpr int kRecordMaxDefault = 1000;  // abnormal records

// Writes the queued abnormal records out through the writer of this
// process's client; the cpp client keeps no list.
void write_abnormal_records() {
    switch (load_relaxed(g_authmng_client_type)) {
        case AUTHMNG_CLIENT_DOT1X:
            authmng_write_dot1x_abnormal_record_to_file();
            break;
        case AUTHMNG_CLIENT_WBA:
            authmng_write_webauth_abnormal_record_to_file();
            break;
        default:
            break;
    }
}

void clear_statistics() {
    switch (load_relaxed(g_authmng_client_type)) {
        case AUTHMNG_CLIENT_DOT1X: {
            authmng::LibraryLock lock;
            authmng_dot1x_init(&g_amg_d1x[AUTHMNG_METHOD_DOT1X]);
            authmng_dot1x_init(&g_amg_d1x[AUTHMNG_METHOD_MAB]);
            authmng_dot1x_init(&g_amg_d1x_tmp[AUTHMNG_METHOD_DOT1X]);
            authmng_dot1x_init(&g_amg_d1x_tmp[AUTHMNG_METHOD_MAB]);
            break;
        }
        case AUTHMNG_CLIENT_WBA:
            authmng_webauth_init();
            break;
        default:
            break;
    }
}

}  // namespace

extern "C" void authmng_proc_debug_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    // Every number of these commands is at most 10000 (the tree's bounds).
    uint32_t number = static_cast<uint32_t>(cli_slot_value(ps, CLI_SLOT_NUMBER));
    int shown = static_cast<int>(number);
    switch (cli_slot_value(ps, CLI_SLOT_CODE)) {
        case AUTHMNG_CMD_DEBUG_ABNORMAL_VALUE:
            cli_printf("set abnormal value: %d.\n", shown);
            store_relaxed(g_authmng_authtime_abnormal_value, number);
            break;
        case AUTHMNG_CMD_DEBUG_RECORD_NUM:
            cli_printf("set abnormal record max: %d, and write abnormal to flash\n", shown);
            // The records already queued go out before the new cap applies.
            write_abnormal_records();
            store_relaxed(g_authmng_abnormal_record_max, number);
            break;
        case AUTHMNG_CMD_DEBUG_WRITE_CLOCK:
            cli_printf("set time(%d h) to write file.\n", shown);
            store_relaxed(g_authmng_write_file_clock, number);
            break;
        case AUTHMNG_CMD_DEBUG_CLEAR_STATISTIC:
            clear_statistics();
            break;
        case AUTHMNG_CMD_DEBUG_WRITE_TMP:
            cli_printf(" set interval time(%d min) to write tmp.\n", shown);
            store_relaxed(g_authmng_write_tmp_clock, number);
            break;
        case AUTHMNG_CMD_DEBUG_SUMMARY:
            authmng_debug_summary();
            break;
        default:
            break;
    }
}

extern "C" void authmng_debug_summary(void) {
    cli_printf("\nState of statistical: %s.\n",
               load_relaxed(g_authmng_statistic_enable) ? "true" : "false");
    cli_printf("the interval of write to tmp:\n");
    cli_printf(" range: [1, 1440], unit: minutes.\n");
    cli_printf(" default interval is %d\n", kWriteTmpDefault);
    cli_printf(" current interval is %d\n",
               static_cast<int>(load_relaxed(g_authmng_write_tmp_clock)));
    cli_printf("the time of write to flash:\n");
    cli_printf(" range: [0, 23]\n");
    cli_printf(" default time is %d\n", kWriteClockDefault);
    cli_printf(" current time is %d\n", static_cast<int>(load_relaxed(g_authmng_write_file_clock)));
    cli_printf("the number of abnormal write to record:\n");
    cli_printf(" range: [1, 10000]\n");
    cli_printf(" default number is %d\n", kRecordMaxDefault);
    cli_printf(" current number is %d\n",
               static_cast<int>(load_relaxed(g_authmng_abnormal_record_max)));
    cli_printf(" timeout is %d\n",
               static_cast<int>(load_relaxed(g_authmng_authtime_abnormal_value)));
    cli_printf("number of reverser: %u.\n",
               static_cast<unsigned>(load_relaxed(g_authmng_statistic_reverse)));
}
