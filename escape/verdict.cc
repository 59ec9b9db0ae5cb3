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

// The five totals in the order of the report.
enum Total { kRedirectCount, kRedirectTime, kAuthCount, kAuthTime, kTimeoutCount, kTotals };

// Increases of the five totals since the previous report.
using Increases = uint32_t[kTotals];

// Moves the previous totals to this report's and takes the increases.
// A report in which every non-zero previous total went down comes from a
// restarted daemon: the increases are the new totals. A total that went
// down while another did not passed its 32-bit top: its increase is the
// difference modulo 2^32, the true one when it wrapped once. Either sets
// the wrapped flag. A total that wrapped alone thus counts its true
// increase and a restart the whole period since it. Only a restart whose
// totals outgrew the old ones within one period, or every non-zero total
// wrapping in the same period (taken for a restart), can still skew a
// sample, either way.
//
// true when the report only sets the baseline: nothing went down so far
// and every previous total was 0 (the first report, or the first after
// user escape was switched off).
bool take_increases(const authmng_check_input_t &now, Increases &inc) {
    authmng_info_record_t &prev = g_authmng_info_record;
    uint32_t *previous[kTotals] = {&prev.total_redirect_count, &prev.total_redirect_time,
                                   &prev.total_auth_count, &prev.total_auth_time,
                                   &prev.total_auth_timeout_count};
    const uint32_t current[kTotals] = {now.total_redirect_count, now.total_redirect_time,
                                       now.total_auth_count, now.total_auth_time,
                                       now.total_auth_timeout_count};
    bool no_history = true, any_down = false, every_down = true;
    for (int t = 0; t < kTotals; ++t) {
        uint32_t before = *previous[t];
        no_history = no_history && before == 0;
        if (current[t] < before) {
            any_down = true;
        } else if (before != 0) {
            every_down = false;
        }
    }
    bool restarted = any_down && every_down;
    for (int t = 0; t < kTotals; ++t) {
        inc[t] = restarted ? current[t] : current[t] - *previous[t];
        *previous[t] = current[t];
    }
    if (any_down) prev.wrapped = 1;
    return prev.wrapped == 0 && no_history;
}

// Redirect, auth, authtimeout.
void run_checks(const Increases &inc, authmng_check_result_t &verdict) {
    const uint32_t values[kCheckTypes] = {inc[kRedirectTime], inc[kAuthTime], inc[kTimeoutCount]};
    const uint32_t counts[kCheckTypes] = {
        inc[kRedirectCount], inc[kAuthCount],
        static_cast<uint32_t>(inc[kAuthCount] + inc[kTimeoutCount])};
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
