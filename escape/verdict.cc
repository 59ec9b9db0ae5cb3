// The web-auth daemon's report: increases of its running totals since the
// previous report, the three checks in order, and the verdict.
#include <cstring>

#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/relaxed.h"
#include "escape/check.h"

using namespace authmng;

namespace {

// Increases of the five totals since the previous report.
struct Increases {
    uint32_t redirect_count;
    uint32_t redirect_time;
    uint32_t auth_count;
    uint32_t auth_time;
    uint32_t timeout_count;
};

// The increase of one total; the new total becomes the previous one. A
// total that went down (the daemon restarted its totals, or a 32-bit total
// passed its top) sets the wrapped flag and counts only its new value: the
// period since a restart, or an understated period after a wrap, never a
// wrap-around difference that a restart would turn into billions.
uint32_t take_increase(uint32_t now, uint32_t &previous, uint8_t &wrapped) {
    uint32_t before = previous;
    previous = now;
    if (now >= before) return now - before;
    wrapped = 1;
    return now;
}

// Moves the previous totals to this report's. true when the report only
// sets the baseline: nothing went down so far and every previous total
// was 0 (the first report, or the first after user escape was switched
// off).
bool take_increases(const authmng_check_input_t &now, Increases &inc) {
    authmng_info_record_t &prev = g_authmng_info_record;
    bool no_history = prev.total_redirect_count == 0 && prev.total_redirect_time == 0 &&
                      prev.total_auth_count == 0 && prev.total_auth_time == 0 &&
                      prev.total_auth_timeout_count == 0;
    inc.redirect_count =
        take_increase(now.total_redirect_count, prev.total_redirect_count, prev.wrapped);
    inc.redirect_time =
        take_increase(now.total_redirect_time, prev.total_redirect_time, prev.wrapped);
    inc.auth_count = take_increase(now.total_auth_count, prev.total_auth_count, prev.wrapped);
    inc.auth_time = take_increase(now.total_auth_time, prev.total_auth_time, prev.wrapped);
    inc.timeout_count =
        take_increase(now.total_auth_timeout_count, prev.total_auth_timeout_count, prev.wrapped);
    return prev.wrapped == 0 && no_history;
}

// Redirect, auth, authtimeout.
void run_checks(const Increases &inc, authmng_check_result_t &verdict) {
    const uint32_t values[kCheckTypes] = {inc.redirect_time, inc.auth_time, inc.timeout_count};
    const uint32_t counts[kCheckTypes] = {
        inc.redirect_count, inc.auth_count,
        static_cast<uint32_t>(inc.auth_count + inc.timeout_count)};
    escape_run_checks(values, counts, verdict);
}

}  // namespace

extern "C" void authmng_get_check_result(const authmng_check_input_t *totals,
                                         authmng_check_result_t *result) {
    authmng_check_result_t verdict;
    std::memset(&verdict, 0, sizeof verdict);
    // Without both records the report decides nothing and changes nothing.
    if (totals != nullptr && result != nullptr) {
        LibraryLock lock;
        g_authmng_max_online_user = totals->max_online_user;
        if (load_relaxed(g_authmng_check_open) != 0) {
            AUTHMNG_EVENT_DBG(
                "redirect:time(%u), count(%u)\nauthentication:time(%u), count(%u)\nauth "
                "timeout:count(%u)\n",
                totals->total_redirect_time, totals->total_redirect_count, totals->total_auth_time,
                totals->total_auth_count, totals->total_auth_timeout_count);
            Increases inc;
            if (!take_increases(*totals, inc)) run_checks(inc, verdict);
        }
    }
    if (result != nullptr) *result = verdict;
    AUTHMNG_EVENT_DBG("result reboot enable(%s), escape_time(%u), escape_ratio(%u).\n",
                      verdict.reboot_enable != 0 ? "ture" : "false", verdict.escape_time,
                      verdict.escape_ratio);
}
