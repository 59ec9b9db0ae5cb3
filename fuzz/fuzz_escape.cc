// Sequences of the web-auth daemon's escape-check reports, with the user
// escape switched on and off and any thresholds, escape time and life in
// between. Every verdict is one the check can give, the per-check state
// keeps its bounds, the first report after switching on only sets the
// baseline, the escape log stays near its size limit, and the debug dump
// prints exactly the samples the rings hold.
#include <algorithm>

#include "core/lock.h"
#include "fuzz_support.h"

using namespace authmng_fuzz;

namespace {

constexpr uint32_t kRing = AUTHMNG_CHECK_RING_SIZE;
// The log is emptied once past 1000 bytes; an entry is a ctime line (25)
// and a check line of at most 29 characters.
constexpr long kLogBound = 1000 + 25 + 29;
// Steps per input: an abnormal report appends to the escape log.
constexpr int kMaxReports = 24;

bool no_history() {
    const authmng_info_record_t &p = g_authmng_info_record;
    return p.total_redirect_count == 0 && p.total_redirect_time == 0 && p.total_auth_count == 0 &&
           p.total_auth_time == 0 && p.total_auth_timeout_count == 0 && p.wrapped == 0;
}

size_t samples_held() {
    size_t n = 0;
    for (const authmng_check_t &check : g_authmng_check) {
        for (uint32_t i = 0; i < kRing; ++i)
            n += (check.abnormal_value[i] != 0) + (check.recent_value[i] != 0);
    }
    return n;
}

void check_log_bound() {
    FUZZ_CHECK(file_size(sandbox() + "/tmp/security/authmanage/log.txt") <= kLogBound);
}

void report(Input &in) {
    authmng_check_input_t totals;
    if (in.take<uint8_t>() & 1) {  // the running totals grow by small steps
        totals.total_redirect_count = g_authmng_info_record.total_redirect_count + in.below(50);
        totals.total_redirect_time =
            g_authmng_info_record.total_redirect_time + in.take<uint16_t>();
        totals.total_auth_count = g_authmng_info_record.total_auth_count + in.below(50);
        totals.total_auth_time = g_authmng_info_record.total_auth_time + in.take<uint16_t>();
        totals.total_auth_timeout_count =
            g_authmng_info_record.total_auth_timeout_count + in.below(20);
        totals.max_online_user = in.take<uint32_t>();
    } else {
        in.bytes(&totals, sizeof totals);
    }
    const bool open = g_authmng_check_open != 0, baseline_only = open && no_history();
    // The whole state (rings included) only where it must stay as it is.
    static authmng_check_t before[AUTHMNG_CHECK_TYPE_NUM];
    const bool evaluated = open && !baseline_only;
    if (evaluated) {
        for (uint32_t type = 0; type < AUTHMNG_CHECK_TYPE_NUM; ++type) {
            const authmng_check_t &c = g_authmng_check[type];
            before[type].total_count = c.total_count, before[type].escape_count = c.escape_count;
            before[type].abnormal_count = c.abnormal_count;
        }
    } else {
        memcpy(before, g_authmng_check, sizeof before);
    }
    const authmng_info_record_t previous = g_authmng_info_record;

    authmng_check_result_t verdict;
    memset(&verdict, 0xee, sizeof verdict);
    authmng_get_check_result(&totals, &verdict);

    FUZZ_CHECK(g_authmng_max_online_user == totals.max_online_user);
    FUZZ_CHECK(verdict.escape_ratio == 0 || verdict.escape_ratio == 100);
    FUZZ_CHECK(verdict.escape_time == 0 || verdict.escape_time == g_authmng_escape_time);
    FUZZ_CHECK(verdict.reboot_enable <= 1);
    if (!evaluated) {  // nothing evaluated, nothing decided
        FUZZ_CHECK(verdict.escape_ratio == 0 && verdict.escape_time == 0 &&
                   verdict.reboot_enable == 0);
        FUZZ_CHECK(memcmp(before, g_authmng_check, sizeof before) == 0);
    }
    if (!open) FUZZ_CHECK(memcmp(&previous, &g_authmng_info_record, sizeof previous) == 0);
    if (open) FUZZ_CHECK(g_authmng_info_record.total_auth_count == totals.total_auth_count);
    // A restart of the redirect side is the redirect check's abnormal sample.
    FUZZ_CHECK(verdict.reboot_enable ==
               g_authmng_check[0].abnormal_count - before[0].abnormal_count);
    for (uint32_t type = 0; type < AUTHMNG_CHECK_TYPE_NUM; ++type) {
        const authmng_check_t &c = g_authmng_check[type];
        FUZZ_CHECK(c.total_count - before[type].total_count <= 1);
        FUZZ_CHECK(c.abnormal_count <= c.total_count && c.zero_count <= c.total_count);
        FUZZ_CHECK(c.recent_pos <= kRing && c.abnormal_pos <= kRing);
        FUZZ_CHECK(c.pre_escape_ratio == 0 || c.pre_escape_ratio == 100);
        FUZZ_CHECK(c.min_value <= c.max_value);
        // An escape is held for fewer reports than its life.
        FUZZ_CHECK(c.escape_count < (g_authmng_escape_life > 0 ? g_authmng_escape_life : 1) ||
                   c.escape_count == before[type].escape_count);
    }
    bool logged = false;  // an abnormal sample adds an entry to the escape log
    for (uint32_t type = 0; type < AUTHMNG_CHECK_TYPE_NUM; ++type) {
        logged = logged || g_authmng_check[type].abnormal_count != before[type].abnormal_count;
    }
    if (logged) check_log_bound();
}

void configure(Input &in) {
    const uint8_t how = in.take<uint8_t>();
    if (how & 1) {  // by command, as an operator types it
        authmng_host_cli_exec(how & 2 ? "no authmanage user-escape enable"
                                      : "authmanage user-escape enable");
    } else {
        g_authmng_check_open = how & 2;
    }
    if (how & 4) {  // any values at all, as a daemon might store them
        g_authmng_check_redirect_threshold = in.take<uint32_t>();
        g_authmng_check_auth_threshold = in.take<uint32_t>();
        g_authmng_check_ratio = in.take<uint32_t>();
        g_authmng_escape_time = in.take<uint32_t>(), g_authmng_escape_life = in.take<uint32_t>();
    } else {
        g_authmng_check_redirect_threshold = 1000 + in.below(9001);
        g_authmng_check_auth_threshold = 1000 + in.below(9001);
        g_authmng_check_ratio = 1 + in.below(100);
        g_authmng_escape_time = 10 + in.below(231), g_authmng_escape_life = 10 + in.below(231);
    }
    g_authmng_lib_event_dbg = (how & 8) != 0;
    authmng_host_clock_fail((how & 0x30) == 0x30);
}

// The rings as after a long run: each position near or at its end, so the
// next samples wrap.
void wear(Input &in) {
    for (authmng_check_t &check : g_authmng_check) {
        check.recent_pos = static_cast<uint16_t>(kRing - in.below(3));
        check.abnormal_pos = static_cast<uint16_t>(kRing - in.below(3));
    }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    start_client(AUTHMNG_CLIENT_WBA);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    authmng::LibraryLock lock;
    memset(g_authmng_check, 0, sizeof g_authmng_check);
    memset(&g_authmng_info_record, 0, sizeof g_authmng_info_record);
    g_authmng_check_open = 1;
    authmng_host_clock_fail(0), authmng_host_clock_set(kFuzzClock);
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 0;
    Input in(data, size);
    for (Steps steps(in, kMaxReports); steps.next();) {
        const uint32_t op = in.below(16);  // the dump reads every ring: rarely
        if (op <= 1) {
            configure(in);
        } else if (op == 2) {
            wear(in);
        } else if (op == 3 && steps.heavy()) {  // the dump prints every sample the rings hold
            const std::string &dump = capture_cli(authmng_debug_webauth_check_info);
            size_t values = 0;  // "%u " each, on lines of digits and blanks only
            for (size_t at = 0, end; at < dump.size(); at = end + 1) {
                end = dump.find('\n', at);
                const size_t length = (end == std::string::npos ? dump.size() : end) - at;
                if (length > 0 && dump.find_first_not_of("0123456789 ", at) >= at + length) {
                    values += std::count(dump.begin() + at, dump.begin() + at + length, ' ');
                }
                if (end == std::string::npos) break;
            }
            FUZZ_CHECK(values == samples_held());
            FUZZ_CHECK(count_of(capture_cli(authmng_show_check_info), '\n') == 10);
        } else if (op > 3) {
            report(in);
        }
    }
    check_log_bound();
    return 0;
}
