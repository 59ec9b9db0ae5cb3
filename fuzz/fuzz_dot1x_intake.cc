// Event records of the 802.1X daemon into the intake (through the event
// entry or directly), with the interval, daily and abnormal writers, the
// displays, tuning, a failing clock and failing allocations in between.
// After every step the records keep their invariants and agree with a
// model of what the event counts and queues; the writers and displays
// print exactly the rows the list holds.
#include "core/lock.h"
#include "fuzz_support.h"
#include "support/invariants.h"

using namespace authmng_fuzz;
using namespace authmng_test;

namespace {

const std::string kAbnormal = "/security/authmanage/dot1x/dot1x_abnormal.csv";
const std::string kDaily = "/security/authmanage/dot1x/dot1x_statistic.csv";
constexpr long kAbnormalLimit = 600000;
bool g_clock_failing = false;

void send_event(Input &in) {
    const uint8_t shape = in.take<uint8_t>();
    authmng_auth_info_t info = read_event(in, shape, {5, 135, 135});
    const bool direct = shape & 0x08, starve = (shape & 0x30) == 0x30;

    const uint32_t m = info.client_type == AUTHMNG_CLIENT_DOT1X ? 0 : 1;
    const bool routed = direct || info.client_type == AUTHMNG_CLIENT_DOT1X ||
                        info.client_type == AUTHMNG_CLIENT_MAB;
    const bool counted = routed && g_authmng_statistic_enable && info.event <= 4 &&
                         info.result <= 134 && info.offline_reason <= 134;
    const uint32_t reason = info.offline_reason;
    const bool abnormal =
        counted && ((info.event <= D1X_REAUTH &&
                     (info.auth_time > g_authmng_authtime_abnormal_value || info.result != 0)) ||
                    (info.event == D1X_OFFLINE && reason != 0 && reason != 101));
    const bool queued = abnormal && !starve && !g_clock_failing;
    const authmng_dot1x_stat_t before = g_amg_d1x[m], other = g_amg_d1x[1 - m];
    const uint32_t num = g_authmng_abnormal_record_num;

    if (starve) authmng_host_alloc_fail_after(0);
    if (direct) {
        authmng_notify_dot1x_info(&info);
    } else {
        authmng_notify_auth_info(&info);
    }
    authmng_host_alloc_fail_after(-1);

    const authmng_dot1x_stat_t &now = g_amg_d1x[m];
    FUZZ_CHECK(memcmp(&other, &g_amg_d1x[1 - m], sizeof other) == 0);
    FUZZ_CHECK(now.auth_total == before.auth_total + (counted && info.event == D1X_AUTH));
    FUZZ_CHECK(now.reauth_total == before.reauth_total + (counted && info.event == D1X_REAUTH));
    FUZZ_CHECK(now.offline_total == before.offline_total + (counted && info.event == D1X_OFFLINE));
    if (!counted) FUZZ_CHECK(memcmp(&before, &now, sizeof now) == 0);
    if (counted) {
        FUZZ_CHECK(dot1x_consistent(now));
        // An offline takes one user off the reported number, down to 0.
        uint64_t online = info.online_num;
        if (info.event == D1X_OFFLINE && online > 0) --online;
        FUZZ_CHECK(now.current_online_number == online);
    }
    FUZZ_CHECK(now.max_online_number >= now.current_online_number);
    uint32_t expected = !queued                                           ? num
                        : num >= g_authmng_abnormal_record_max && num > 0 ? num
                                                                          : num + 1;
    FUZZ_CHECK(g_authmng_abnormal_record_num == expected);
    if (queued) {  // the newest node is a copy of the record
        const authmng_list_head_t &head = g_authmng_auth_abnormal_record_list;
        FUZZ_CHECK(memcmp(&authmng::as_node(head.prev)->info, &info, sizeof info) == 0);
    }
}

// The abnormal writer drains the list into one row per node; the daily
// writer adds two rows of 59 columns.
void write_files() {
    const std::string abnormal = sandbox() + "/flash" + kAbnormal;
    const long before = file_size(abnormal);
    const uint32_t queued = g_authmng_abnormal_record_num;
    authmng_write_dot1x_abnormal_record_to_file();
    FUZZ_CHECK(g_authmng_abnormal_record_num == 0 && abnormal_list_length() == 0);
    // Appended to, or emptied and restarted with the header.
    const bool restarted = before > kAbnormalLimit || before == 0;
    std::string rows = read_file(abnormal, restarted ? 0 : before);
    if (restarted) rows.erase(0, rows.find('\n') + 1);
    FUZZ_CHECK(count_of(rows, '\n') == queued && count_of(rows, ',') == 21 * queued);

    authmng_write_dot1x_statistic_to_flashfile();
    const std::string path = sandbox() + "/flash" + kDaily;
    std::string daily = read_file(path, file_size(path) - 4096);
    size_t last = daily.rfind('\n', daily.size() - 2);
    size_t mab = daily.rfind('\n', last - 1);
    FUZZ_CHECK(count_of(daily.substr(mab + 1), ',') == 2 * 58);
}

// One display per step: a page of a method's figures (nothing for a method
// index past MAB), or the abnormal list under a filter.
void show(Input &in) {
    static void (*const kPages[])(uint32_t) = {
        authmng_show_dot1x_statistic,      authmng_show_dot1x_statistic_fail,
        authmng_show_dot1x_auth_detail,    authmng_show_dot1x_reauth_detail,
        authmng_show_dot1x_offline_detail, authmng_show_dot1x_statistic_telnet};
    const uint32_t page = in.below(7), index = in.below(4), filter = in.below(8);
    if (page < 6) {
        const std::string &text = capture_cli([&] { kPages[page](index); });
        FUZZ_CHECK(index < 2 ? count_of(text, '\n') > 10 : text.empty());
    } else {
        const std::string &list =
            capture_cli([&] { authmng_show_dot1x_statistic_abnormal(filter); });
        FUZZ_CHECK(count_of(list, '\n') == 2 + abnormal_list_length(filter));
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    authmng::LibraryLock lock;  // one input at a time, whatever else runs
    for (authmng_dot1x_stat_t *r : {g_amg_d1x, g_amg_d1x + 1, g_amg_d1x_tmp, g_amg_d1x_tmp + 1}) {
        authmng_dot1x_init(r);
    }
    g_authmng_statistic_enable = 1, g_clock_failing = false;
    authmng_host_clock_fail(0), authmng_host_clock_set(kFuzzClock);
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 0;
    g_authmng_authtime_abnormal_value = 1000, g_authmng_abnormal_record_max = 1000;

    Input in(data, size);
    for (Steps steps(in); steps.next();) {
        switch (in.below(8)) {
            case 0:
                if (!steps.heavy()) break;
                authmng_write_dot1x_statistic_to_tmpfile();  // the baseline is the live record
                FUZZ_CHECK(memcmp(g_amg_d1x_tmp, g_amg_d1x, sizeof g_amg_d1x) == 0);
                break;
            case 1:
                if (steps.heavy()) write_files();
                break;
            case 2:
                if (steps.heavy()) show(in);
                break;
            case 3:
                g_clock_failing = tune(in);
                break;
            default:
                send_event(in);
                break;
        }
        FUZZ_CHECK(abnormal_list_length() == g_authmng_abnormal_record_num);
    }
    // Only an event changes a record (checked as it is counted); nothing else
    // may have broken one.
    FUZZ_CHECK(dot1x_consistent(g_amg_d1x[0]) && dot1x_consistent(g_amg_d1x[1]));
    // Every node freed before the input ends: an input that frees what it
    // allocated is one libFuzzer never runs again to look for a leak.
    authmng::abnormal_list_drain([](const authmng_abnormal_node_t &) {});
    return 0;
}
