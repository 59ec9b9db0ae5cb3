// Event records, redirect and station-move reports of the web-auth daemon
// into its intakes, with counters pushed to the edge of the restart rule,
// the interval and abnormal writers, the displays, tuning, a failing clock
// and failing allocations in between. After every step the record keeps
// its invariants and agrees with a model of what the report counts,
// restarts and queues; the writers and displays print exactly the list.
#include <vector>

#include "core/lock.h"
#include "fuzz_support.h"
#include "support/invariants.h"

using namespace authmng_fuzz;
using namespace authmng_test;

namespace {

const std::string kAbnormal = "/security/authmanage/webauth/wba_abnormal.csv";
constexpr long kAbnormalLimit = 600000;
constexpr uint32_t kRedirectRange = 2;
bool g_clock_failing = false;

// The restart rule: a counter above 2^64 - 10002 restarts the record first.
constexpr uint64_t kRestartAbove = UINT64_MAX - 10001;
bool near_limit(uint64_t counter) {
    return counter > kRestartAbove;
}
size_t g_statistic_lines = 0, g_summary_lines = 0;

authmng_webauth_stat_t &live = g_authmng_webauth;

// Checks the list after a report that may have queued one record.
void check_queue(uint32_t num, bool queued) {
    uint32_t expected = !queued                                           ? num
                        : num >= g_authmng_abnormal_record_max && num > 0 ? num
                                                                          : num + 1;
    FUZZ_CHECK(g_authmng_abnormal_record_num == expected);
}

void send_event(Input &in) {
    const uint8_t shape = in.take<uint8_t>();
    authmng_auth_info_t info = read_event(in, shape, {2, 14, 20});
    const bool direct = shape & 0x08, starve = (shape & 0x30) == 0x30;

    const bool routed =
        direct || (info.client_type == AUTHMNG_CLIENT_WBA && g_authmng_statistic_enable);
    const bool counted =
        routed && info.event <= 1 && info.result <= 13 && info.offline_reason <= 19;
    const bool auth = info.event == WBA_EVENT_AUTH;
    bool restart = false;
    if (counted && auth) {
        restart = near_limit(live.auth_total);
        for (uint64_t sum : live.aggregate_time) restart = restart || near_limit(sum);
    } else if (counted) {
        restart = near_limit(live.offline_total) || near_limit(live.online_time_total);
    }
    const uint32_t t = g_authmng_authtime_abnormal_value;
    const bool abnormal = counted && auth &&
                          (info.result != 0 || info.ack_time > t || info.aaa_time > t ||
                           info.rds_time > t || info.acct_aaa_time > t || info.acct_rds_time > t);
    authmng_webauth_stat_t base = live;
    if (restart) base.auth_total = base.offline_total = 0, base.auth_result[info.result] = 0;
    const uint32_t num = g_authmng_abnormal_record_num, restarts = g_authmng_statistic_reverse;

    if (starve) authmng_host_alloc_fail_after(0);
    if (direct) {
        authmng_notify_webauth_info(&info);
    } else {
        authmng_notify_auth_info(&info);
    }
    authmng_host_alloc_fail_after(-1);

    FUZZ_CHECK(g_amg_d1x[0].auth_total + g_amg_d1x[1].auth_total == 0);  // never set up here
    FUZZ_CHECK(g_authmng_statistic_reverse == restarts + restart);
    if (!counted) {
        FUZZ_CHECK(memcmp(&base, &live, sizeof live) == 0);
    } else if (auth) {
        FUZZ_CHECK(live.auth_total == base.auth_total + 1);
        FUZZ_CHECK(live.auth_result[info.result] == base.auth_result[info.result] + 1);
        FUZZ_CHECK(live.auth_avg_time ==
                   (live.auth_result[0] == 0
                        ? 0
                        : static_cast<uint32_t>(live.aggregate_time[0] / live.auth_result[0])));
    } else {
        FUZZ_CHECK(live.offline_total == base.offline_total + 1);
    }
    if (counted) FUZZ_CHECK(live.current_online_number == info.online_num);
    check_queue(num, abnormal && !starve && !g_clock_failing);
}

void send_report(Input &in) {
    const bool enabled = g_authmng_statistic_enable;
    const uint32_t restarts = g_authmng_statistic_reverse, num = g_authmng_abnormal_record_num;
    const authmng_webauth_stat_t before = live;
    bool restart;
    if (in.take<uint8_t>() & 1) {
        const uint8_t shape = in.take<uint8_t>();
        authmng_rd_info_t rd = {in.take<uint16_t>(), 0, 0, 0};
        rd.rd_time = (shape & 0x04) ? in.take<uint32_t>() : in.take<uint8_t>() * 9u;
        rd.rd_result = (shape & 0x01) ? in.take<uint32_t>() : in.below(WBA_RESULT_RD_MAX + 1);
        const bool counted = enabled && rd.rd_result < WBA_RESULT_RD_MAX;
        restart = counted && (near_limit(live.http_req_count) ||
                              near_limit(live.aggregate_time[kRedirectRange]));
        authmng_notify_rd_info(&rd);
        const uint64_t *c = live.range[kRedirectRange].count;
        const uint64_t *was = before.range[kRedirectRange].count;
        uint64_t timed = c[0] + c[1] + c[2], timed_before = restart ? 0 : was[0] + was[1] + was[2];
        FUZZ_CHECK(live.http_req_count == (restart ? 0 : before.http_req_count) + counted);
        FUZZ_CHECK(timed == timed_before + (counted && rd.rd_result == 0));
        if (counted && rd.rd_result == 0) {
            FUZZ_CHECK(live.rd_avg_time ==
                       live.aggregate_time[kRedirectRange] / live.http_req_count);
        }
    } else {
        const uint8_t kind = in.take<uint8_t>();
        authmng_stamove_info_t move = {kind & 0x03u, static_cast<uint8_t>(kind >> 2 & 1)};
        restart = enabled && near_limit(live.move_count);
        authmng_notify_stamove_info(&move);
        uint64_t moves = restart ? 0 : before.move_count;
        uint64_t failed = restart ? 0 : before.move_fail_count;
        FUZZ_CHECK(live.move_count == moves + enabled);
        FUZZ_CHECK(live.move_fail_count == failed + (enabled && move.move_fail != 0));
    }
    FUZZ_CHECK(g_authmng_statistic_reverse == restarts + restart);
    if (!enabled) FUZZ_CHECK(memcmp(&before, &live, sizeof live) == 0);
    check_queue(num, false);
}

// Takes a counter guarded by the restart rule to the edge of its limit,
// keeping the totals equal to their sums.
void push_to_limit(Input &in) {
    const uint64_t value = kRestartAbove - 2 + in.below(5);
    const uint32_t which = in.below(AUTHMNG_WBA_RANGE_NUM + 5);
    if (which < AUTHMNG_WBA_RANGE_NUM) {
        live.aggregate_time[which] = value;
    } else if (which == AUTHMNG_WBA_RANGE_NUM) {
        live.auth_result[13] += value - live.auth_total, live.auth_total = value;
    } else if (which == AUTHMNG_WBA_RANGE_NUM + 1) {
        live.offline_reason[19] += value - live.offline_total, live.offline_total = value;
    } else if (which == AUTHMNG_WBA_RANGE_NUM + 2) {
        live.online_time_total = value;
    } else if (which == AUTHMNG_WBA_RANGE_NUM + 3) {
        live.http_req_count = value;
    } else {
        live.move_count = value;
    }
}

void write_files() {
    authmng_write_webauth_statistic_to_tmp();  // the baseline is the live record
    FUZZ_CHECK(memcmp(&g_authmng_webauth_tmp, &live, sizeof live) == 0);
    const std::string abnormal = sandbox() + "/flash" + kAbnormal;
    const long before = file_size(abnormal);
    const uint32_t queued = g_authmng_abnormal_record_num;
    authmng_write_webauth_abnormal_record_to_file();
    FUZZ_CHECK(g_authmng_abnormal_record_num == 0 && abnormal_list_length() == 0);
    // Appended to, or emptied and restarted with the header.
    const bool restarted = before > kAbnormalLimit || before == 0;
    std::string rows = read_file(abnormal, restarted ? 0 : before);
    if (restarted) rows.erase(0, rows.find('\n') + 1);
    FUZZ_CHECK(count_of(rows, '\n') == queued && count_of(rows, ',') == 21 * queued);
}

void show() {
    FUZZ_CHECK(count_of(capture_cli(authmng_show_webauth_statistic), '\n') == g_statistic_lines);
    FUZZ_CHECK(count_of(capture_cli(authmng_show_webauth_statistic_telnet), '\n') ==
               g_summary_lines);
    // A heading line, then per record its ctime line and its fields.
    const std::string &text = capture_cli(authmng_show_webauth_statistic_abnormal);
    FUZZ_CHECK(count_of(text, '\n') == 2 + 3 * size_t{g_authmng_abnormal_record_num});
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    start_client(AUTHMNG_CLIENT_WBA);
    g_statistic_lines = count_of(capture_cli(authmng_show_webauth_statistic), '\n');
    g_summary_lines = count_of(capture_cli(authmng_show_webauth_statistic_telnet), '\n');
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    authmng::LibraryLock lock;  // one input at a time, whatever else runs
    authmng_webauth_init();
    g_authmng_statistic_enable = 1, g_authmng_statistic_reverse = 0, g_clock_failing = false;
    authmng_host_clock_fail(0), authmng_host_clock_set(kFuzzClock);
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 0;
    g_authmng_authtime_abnormal_value = 3000, g_authmng_abnormal_record_max = 1000;

    Input in(data, size);
    for (Steps steps(in); steps.next();) {
        switch (in.below(8)) {
            case 0:
                if (steps.heavy()) write_files();
                break;
            case 1:
                if (steps.heavy()) show();
                break;
            case 2:
                g_clock_failing = tune(in);
                break;
            case 3:
                push_to_limit(in);
                break;
            case 4:
                send_report(in);
                break;
            default:
                send_event(in);
                break;
        }
        FUZZ_CHECK(webauth_consistent(live) && webauth_consistent(g_authmng_webauth_tmp));
        FUZZ_CHECK(abnormal_list_length() == g_authmng_abnormal_record_num);
    }
    // Every node freed before the input ends: an input that frees what it
    // allocated is one libFuzzer never runs again to look for a leak.
    authmng::abnormal_list_drain([](const authmng_abnormal_node_t &) {});
    return 0;
}
