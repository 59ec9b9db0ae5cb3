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

// What the five totals of a report did against the previous ones: whether
// any previous total was non-zero, any went down, and any non-zero one did
// not go down.
struct Trend {
    bool history = false;
    bool down = false;
    bool kept = false;
    void add(uint32_t before, uint32_t now) {
        history |= before != 0;
        down |= now < before;
        kept |= before != 0 && now >= before;
    }
};

// The increase of one total; the new total becomes the previous one.
uint32_t take_increase(uint32_t now, uint32_t &previous, bool restarted) {
    uint32_t increase = restarted ? now : now - previous;
    previous = now;
    return increase;
}

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
    Trend trend;
    trend.add(prev.total_redirect_count, now.total_redirect_count);
    trend.add(prev.total_redirect_time, now.total_redirect_time);
    trend.add(prev.total_auth_count, now.total_auth_count);
    trend.add(prev.total_auth_time, now.total_auth_time);
    trend.add(prev.total_auth_timeout_count, now.total_auth_timeout_count);
    const bool restarted = trend.down && !trend.kept;
    inc.redirect_count =
        take_increase(now.total_redirect_count, prev.total_redirect_count, restarted);
    inc.redirect_time = take_increase(now.total_redirect_time, prev.total_redirect_time, restarted);
    inc.auth_count = take_increase(now.total_auth_count, prev.total_auth_count, restarted);
    inc.auth_time = take_increase(now.total_auth_time, prev.total_auth_time, restarted);
    inc.timeout_count =
        take_increase(now.total_auth_timeout_count, prev.total_auth_timeout_count, restarted);
    if (trend.down) prev.wrapped = 1;
    return prev.wrapped == 0 && !trend.history;
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
