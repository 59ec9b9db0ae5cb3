// The interval file: every write interval one "dot1x" and one "mab" row of
// the activity since the previous write, taken from a snapshot of the live
// records against the baseline g_amg_d1x_tmp, which then advances.
//
// The reauth_fail_count column carries the interval's failed
// re-authentications (reauth_total - reauth_result[0] over the interval):
// that is what its name promises, and the successes can be read off
// reauth_count and the daily file.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/memory.h"
#include "core/paths.h"
#include "dot1x/statistic_files.h"

using namespace authmng;

namespace {

constexpr char kIntervalHeader[] =
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n";

constexpr uint32_t kFirstFailureCode = 1;
constexpr uint32_t kFirstOfflineCode = 0;

// Text of the code (from first on, among the codes that have a text) with
// the largest interval difference; ties go to the lowest code, and "" when
// nothing happened.
const char *most_frequent(const uint64_t *baseline, const uint64_t *current, uint32_t first,
                          const char *(*text_of)(uint32_t)) {
    uint64_t best = 0;
    const char *text = "";
    for (uint32_t code = first; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        const char *candidate = text_of(code);
        if (candidate[0] == '\0') continue;
        uint64_t delta = current[code] - baseline[code];
        if (delta > best) {
            best = delta;
            text = candidate;
        }
    }
    return text;
}

// Whether a clear ran between the snapshot and now: the clear resets the
// baseline and the live totals, which otherwise only this writer and the
// intake move (the baseline only forward, the totals only up).
bool cleared_since(const authmng_dot1x_stat_t &baseline_then, const authmng_dot1x_stat_t &snapshot,
                   uint32_t method) {
    const authmng_dot1x_stat_t &live = g_amg_d1x[method];
    return memcmp(&g_amg_d1x_tmp[method], &baseline_then, sizeof baseline_then) != 0 ||
           live.auth_total < snapshot.auth_total || live.reauth_total < snapshot.reauth_total ||
           live.offline_total < snapshot.offline_total;
}

}  // namespace

void authmng_dot1x_tmp_row(uint32_t method, char *buf, const authmng_dot1x_stat_t *baseline,
                           const authmng_dot1x_stat_t *current) {
    if (buf == nullptr) return;
    buf[0] = '\0';
    if (baseline == nullptr || current == nullptr) return;
    uint64_t now = qx_time_get(QX_TIME_WALL_SECONDS);
    if (now == QX_TIME_FAILED) return;
    struct tm t = local_time(now);

    const authmng_dot1x_stat_t &b = *baseline;
    const authmng_dot1x_stat_t &s = *current;
    const char *failure = most_frequent(b.auth_result, s.auth_result, kFirstFailureCode,
                                        authmng_dot1x_auth_reason_str);
    const char *offline = most_frequent(b.offline_reason, s.offline_reason, kFirstOfflineCode,
                                        authmng_dot1x_offline_reason_str);
    uint64_t reauth_count = s.reauth_total - b.reauth_total;
    uint64_t reauth_success = s.reauth_result[0] - b.reauth_result[0];
    const authmng_range_t &now_auth = s.range[AUTHMNG_RANGE_AUTH];
    const authmng_range_t &then_auth = b.range[AUTHMNG_RANGE_AUTH];

    snprintf(buf, kRowBufferSize,
             "%02d.%02d %02d:%02d:%02d,%s,%" PRIu64 ", %" PRIu64 ", %" PRIu64 ", %s,%" PRIu64
             ", %" PRIu64 ", %" PRIu64 ", %s, %" PRIu64 ", %" PRIu64 ", %" PRIu64 "\n",
             t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, dot1x_method_label(method),
             s.current_online_number, s.auth_total - b.auth_total,
             s.auth_result[0] - b.auth_result[0], failure, reauth_count,
             reauth_count - reauth_success, s.offline_total - b.offline_total, offline,
             now_auth.count[0] - then_auth.count[0], now_auth.count[1] - then_auth.count[1],
             now_auth.count[2] - then_auth.count[2]);
}

extern "C" void authmng_write_dot1x_statistic_to_tmpfile(void) {
    Owned<char> line = alloc_text(kRowBufferSize);
    if (!line) return;
    char path[kPathBufferSize];
    memset(path, 0, sizeof path);
    if (authmng_make_vpupath(kDot1xStatisticCsv, path, kPathLimit) != 0) path[0] = '\0';

    // Rows come from this snapshot: events that arrive during the file work
    // count in the next interval.
    authmng_dot1x_stat_t snapshot[AUTHMNG_D1X_METHOD_NUM];
    authmng_dot1x_stat_t baseline[AUTHMNG_D1X_METHOD_NUM];
    {
        LibraryLock lock;
        memcpy(snapshot, g_amg_d1x, sizeof snapshot);
        memcpy(baseline, g_amg_d1x_tmp, sizeof baseline);
    }

    {
        AppendedFile file(path, kDot1xStatisticFileLimit, kIntervalHeader);
        // Unopenable: the baseline stays, so the next write covers both
        // intervals.
        if (!file) return;
        for (uint32_t method = 0; method < AUTHMNG_D1X_METHOD_NUM; ++method) {
            memset(line.get(), 0, kRowBufferSize);
            authmng_dot1x_tmp_row(method, line.get(), &baseline[method], &snapshot[method]);
            file.write(line.get());
        }
    }

    LibraryLock lock;
    for (uint32_t method = 0; method < AUTHMNG_D1X_METHOD_NUM; ++method) {
        // A clear in the meantime has set its own baseline; copying the
        // older snapshot over it would make the next differences wrap.
        if (cleared_since(baseline[method], snapshot[method], method)) continue;
        g_amg_d1x_tmp[method] = snapshot[method];
    }
}
