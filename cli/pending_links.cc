// TEMPORARY stand-ins, so the command handlers link before the pieces they
// call are built: the escape check's previous totals and their clear, and
// the 802.1X, web-auth and escape displays. Each does nothing (the clear
// empties the record). Delete this whole file when the escape check and the
// displays are merged, and drop it from cli/CMakeLists.txt; the handlers
// then take escape_clear_previous_totals from escape/check.h on their own.
#include <cstring>

#include "authmng.h"
#include "core/lock.h"

extern "C" {
authmng_info_record_t g_authmng_info_record;

void authmng_show_dot1x_statistic(uint32_t) {}
void authmng_show_dot1x_statistic_fail(uint32_t) {}
void authmng_show_dot1x_auth_detail(uint32_t) {}
void authmng_show_dot1x_reauth_detail(uint32_t) {}
void authmng_show_dot1x_offline_detail(uint32_t) {}
void authmng_show_dot1x_statistic_telnet(uint32_t) {}
void authmng_show_dot1x_statistic_abnormal(uint32_t) {}

void authmng_show_webauth_statistic(void) {}
void authmng_show_webauth_statistic_abnormal(void) {}
void authmng_show_webauth_statistic_telnet(void) {}
void authmng_show_webauth_tmp_file(void) {}

void authmng_show_check_info(void) {}
void authmng_debug_webauth_check_info(void) {}
}

namespace authmng {
void escape_clear_previous_totals() {
    LibraryLock lock;
    memset(&g_authmng_info_record, 0, sizeof g_authmng_info_record);
}
}  // namespace authmng
