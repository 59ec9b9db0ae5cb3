// The table of named checks and the failure text they share.
#include "checks.h"

#include <cstdarg>
#include <cstdio>

namespace port_check {
namespace {

constexpr Check kChecks[] = {
    {"wall-clock", "qx_time_get(2): epoch seconds, not failing, not going back", check_wall_clock},
    {"monotonic-clock", "qx_monotime and qx_timeval_to_sec: whole seconds that follow real time",
     check_monotonic_clock},
    {"flash-home", "fs_get_flash_home: an absolute path within the buffer", check_flash_home},
    {"memory", "authmng_port_zalloc: zero-filled row buffers", check_memory},
    {"syslog", "printk_syslog_ext: one line a call, with module, mnemonic and message",
     check_syslog},
    {"cli_printf", "cli_printf: the formatted text byte for byte", check_cli_printf},
    {"debug-registry", "sys_add_debug: a switch table is registered", check_debug_registry},
    {"health-monitor", "ham_client_reg/reset/unreg_thread_notify with 120, 5",
     check_health_monitor},
    {"cli-keyword", "keywords, hidden keywords and stored values of the six groups",
     check_cli_keyword},
    {"cli-number-bounds", "numbers within their bounds, both included", check_cli_number_bounds},
    {"cli-negation", "the \"no\" forms", check_cli_negation},
    {"cli-end-of-line", "handlers run only at the end of a complete line", check_cli_end_of_line},
    {"cli-saved-config", "c2p_action and c2p_printf: saved-configuration lines",
     check_cli_saved_config},
};

char g_reason[512];

}  // namespace

const Check *checks(size_t *count) {
    *count = sizeof kChecks / sizeof kChecks[0];
    return kChecks;
}

const char *fail(const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    vsnprintf(g_reason, sizeof g_reason, fmt, ap);
    va_end(ap);
    return g_reason;
}

}  // namespace port_check
