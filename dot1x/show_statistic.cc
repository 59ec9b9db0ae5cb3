// The 802.1X overview display: one method's statistics since the last clear,
// with the derived success figures, the failure and offline causes, the
// signal-strength averages, the time-range histograms, the time that slow
// authentications spent per component, and the long-time reason counters.
#include <cinttypes>
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/display_output.h"
#include "core/lock.h"
#include "dot1x/record.h"

using authmng::display_printf;

namespace {

constexpr const char *kMethodNames[AUTHMNG_D1X_METHOD_NUM] = {"DOT1X", "MAB"};

// Histogram names of descriptors 1 to 6 (descriptor 0 has lines of its own).
constexpr const char *kRangeNames[AUTHMNG_D1X_RANGE_NUM] = {"",    "AuthExSrv", "Sta",   "Self",
                                                            "Aaa", "Rds",       "RdsSrv"};
// Range names by position inside a descriptor.
constexpr const char *kRangePositionNames[AUTHMNG_RANGE_SLOTS] = {"1000", "3000", "other"};

// Long-time reason labels, each 20 characters.
constexpr const char *kReasonLabels[AUTHMNG_REASON_NUM] = {
    "sta timeout ........", "aaa timeout ........", "sta and aaa timeout ", "other..............."};

// The results left out of the success-rate base: 5 "aaa reject", 9 "user
// logoff", 23 "conflict account", 24 "valid ip mab".
constexpr uint32_t kOutsideRateBase[] = {5, 9, 23, 24};

// The first and last codes listed one by one.
constexpr uint32_t kFirstListedFailure = 3;
constexpr uint32_t kLastListedFailure = 24;
constexpr uint32_t kLastListedOffline = 42;

// "%u": the low 32 bits, unsigned. "%d": the low 32 bits, signed.
inline unsigned low_u32(uint64_t value) {
    return static_cast<uint32_t>(value);
}
inline int low_i32(uint64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

// Truncating quotient; 0 when the divisor is 0.
inline uint64_t ratio(uint64_t dividend, uint64_t divisor) {
    return divisor == 0 ? 0 : dividend / divisor;
}

uint64_t span_sum(const uint64_t *counters, authmng::CodeSpan span) {
    uint64_t sum = 0;
    for (uint32_t code = span.first; code <= span.last; ++code) sum += counters[code];
    return sum;
}

// The lines that close the offline and re-authentication lists: the sums of
// the station-management, RSNA and roaming codes, then the other-reason code.
constexpr authmng::CodeSpan kGroupSpans[] = {
    authmng::kStamgCodes,
    authmng::kRsnaCodes,
    authmng::kRoamCodes,
    {authmng::kOtherReasonCode, authmng::kOtherReasonCode}};
constexpr size_t kGroupLines = sizeof kGroupSpans / sizeof kGroupSpans[0];
constexpr const char *kOfflineGroupLabels[kGroupLines] = {
    "  offline by sta                           : ",
    "  offline by rsna                          : ",
    "  offline by roam                          : ",
    "  other reason                             : "};
constexpr const char *kReauthGroupLabels[kGroupLines] = {
    "    reauth fail by stamg                   : ",
    "    reauth fail by rsna                    : ",
    "    reauth fail by roam                    : ",
    "    other reason                           : "};

void print_groups(const uint64_t *counters, const char *const (&labels)[kGroupLines]) {
    for (size_t i = 0; i < kGroupLines; ++i) {
        display_printf("%s%" PRIu64 ".\n", labels[i], span_sum(counters, kGroupSpans[i]));
    }
}

// Average of a wrapping signed sum over a count taken as signed 32 bits,
// truncated toward zero; 0 for no count. The quotient is taken in 64 bits so
// that INT32_MIN / -1 is the wrapped value, not a trap.
int rssi_average(int32_t sum, uint64_t count) {
    int32_t n = static_cast<int32_t>(static_cast<uint32_t>(count));
    if (n == 0) return 0;
    return low_i32(static_cast<uint64_t>(static_cast<int64_t>(sum) / n));
}

// The five components of a slow-authentication block, in display order.
struct ComponentBlock {
    const char *name;
    uint64_t authmng_dot1x_stat_t::*over1s;
    uint64_t authmng_dot1x_stat_t::*over3s;
};
constexpr ComponentBlock kComponents[] = {
    {"Sta", &authmng_dot1x_stat_t::over1s_sta, &authmng_dot1x_stat_t::over3s_sta},
    {"Self", &authmng_dot1x_stat_t::over1s_self, &authmng_dot1x_stat_t::over3s_self},
    {"Aaa", &authmng_dot1x_stat_t::over1s_aaa, &authmng_dot1x_stat_t::over3s_aaa},
    {"Rds", &authmng_dot1x_stat_t::over1s_rds, &authmng_dot1x_stat_t::over3s_rds},
    {"RdsSrv", &authmng_dot1x_stat_t::over1s_rds_srv, &authmng_dot1x_stat_t::over3s_rds_srv},
};

void print_online(const authmng_dot1x_stat_t &s, const char *method) {
    display_printf("\nshow %s authentication information:\n", method);
    display_printf(" %s current online number:..................%" PRIu64 ".\n", method,
                   s.current_online_number);
    display_printf(" %s historical max online number:...........%" PRIu64 ".\n", method,
                   s.max_online_number);
    display_printf(" %s aggregate online number:................%" PRIu64 ".\n", method,
                   s.old_online_number + s.auth_result[0]);
}

void print_authentication(const authmng_dot1x_stat_t &s, const char *method) {
    const uint64_t *result = s.auth_result;
    uint64_t rate_base = s.auth_total;
    for (uint32_t code : kOutsideRateBase) rate_base -= result[code];
    const uint64_t stamg = span_sum(result, authmng::kStamgCodes);
    const uint64_t rsna = span_sum(result, authmng::kRsnaCodes);
    const uint64_t roam = span_sum(result, authmng::kRoamCodes);
    const uint64_t wireless = result[1] + result[2] + stamg + rsna + roam;

    display_printf("\n%s authentication statistic:\n", method);
    display_printf(" authentication number:........................%" PRIu64 ".\n", s.auth_total);
    display_printf(" authentication success:.......................%" PRIu64 ".\n", result[0]);
    display_printf(" authentication success rate:..................%u%%.\n",
                   low_u32(ratio(result[0] * 100, rate_base)));
    display_printf(" wireless foundation factor:....................%u%%.\n",
                   low_u32(ratio(wireless * 100, s.auth_total)));
    for (uint32_t code = 1; code <= 2; ++code) {
        display_printf("  %-41s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(code), result[code]);
    }
    display_printf("  auth fail by stamg                       : %" PRIu64 "\n", stamg);
    display_printf("  auth fail by rsna                        : %" PRIu64 "\n", rsna);
    display_printf("  auth fail by roam                        : %" PRIu64 "\n", roam);
    display_printf(" adjust authentication success rate:...........%u%%.\n",
                   low_u32(ratio(result[0] * 100, rate_base - wireless)));
    for (uint32_t code = kFirstListedFailure; code <= kLastListedFailure; ++code) {
        display_printf("  %-41s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(code), result[code]);
    }
    display_printf("  other                                    : %" PRIu64 "\n",
                   result[authmng::kOtherReasonCode]);
    display_printf(" authentication success rssi avgvalue:.........%ddBm.\n",
                   rssi_average(s.success_rssi_sum, result[0] + s.reauth_result[0]));
    display_printf(" authentication fail rssi avgvalue:............%ddBm.\n",
                   rssi_average(s.fail_rssi_sum,
                                result[1] + result[2] + s.reauth_result[1] + s.reauth_result[2]));
}

void print_offline(const authmng_dot1x_stat_t &s, const char *method) {
    const uint64_t *reason = s.offline_reason;
    const uint64_t *reauth = s.reauth_result;
    const uint64_t by_auth = s.reauth_total - reauth[0];
    const uint64_t shown_total = by_auth + s.offline_total;

    display_printf("\n%s offline statistic:\n", method);
    display_printf(" offline_total:................................%" PRIu64 ".\n", shown_total);
    for (uint32_t code = 0; code <= kLastListedOffline; ++code) {
        display_printf("  %-41s: %" PRIu64 "\n", authmng_dot1x_offline_reason_str(code),
                       reason[code]);
    }
    print_groups(reason, kOfflineGroupLabels);
    display_printf("  offline_by_auth:.............................%" PRIu64 ".\n", by_auth);
    for (uint32_t code = 1; code <= kLastListedFailure; ++code) {
        display_printf("    %-39s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(code),
                       reauth[code]);
    }
    print_groups(reauth, kReauthGroupLabels);
    display_printf(" reauth offline ratio:.........................%u%%.\n",
                   low_u32(ratio(by_auth * 100, shown_total)));
    display_printf("\n");
}

void print_times(const authmng_dot1x_stat_t &s) {
    const uint64_t *whole = s.range[AUTHMNG_RANGE_AUTH].count;
    display_printf("auth_range_1000:...............................%d.\n", low_i32(whole[0]));
    display_printf("auth_range_3000:...............................%d.\n", low_i32(whole[1]));
    display_printf("auth_range_other:..............................%d.\n", low_i32(whole[2]));
    display_printf("auth success less than 1 second ratio..........%u%%.\n",
                   low_u32(ratio(whole[0] * 100, s.auth_result[0])));
    display_printf("auth success consume average time:.............%ums.\n", s.auth_avg_time);

    const uint32_t over1s_count = static_cast<uint32_t>(whole[1]);
    display_printf("auth success 1 to 3 second total time..........%" PRIu64 "ms.\n",
                   s.over1s_total);
    for (const ComponentBlock &c : kComponents) {
        const uint64_t sum = s.*c.over1s;
        display_printf("  %-6s 1 to 3 second total time .............%" PRIu64 "ms(%" PRIu64
                       "%%)\n",
                       c.name, sum, ratio(sum * 100, s.over1s_total));
        display_printf("  %-6s consume average time .................%" PRIu64 "ms\n", c.name,
                       ratio(sum, over1s_count));
    }

    const uint32_t over3s_count = static_cast<uint32_t>(whole[2]);
    display_printf("auth success more than 3 second total time.....%" PRIu64 "ms.\n",
                   s.over3s_total);
    for (const ComponentBlock &c : kComponents) {
        const uint64_t sum = s.*c.over3s;
        display_printf("  %-6s more than 3 second total time ........%" PRIu64 "ms(%" PRIu64
                       "%%)\n",
                       c.name, sum, ratio(sum * 100, s.over3s_total));
        display_printf("  %-6s consume average time .................%" PRIu64 "ms\n", c.name,
                       ratio(sum, over3s_count));
    }
}

void print_histograms(const authmng_dot1x_stat_t &s) {
    for (uint32_t d = AUTHMNG_RANGE_AUTH_EX_SRV; d < AUTHMNG_D1X_RANGE_NUM; ++d) {
        const authmng_range_t &range = s.range[d];
        display_printf("\n");
        for (uint32_t j = 0; j < range.num && j < AUTHMNG_RANGE_SLOTS; ++j) {
            display_printf("%-9s range_%-5s:.........................%d\n", kRangeNames[d],
                           kRangePositionNames[j], low_i32(range.count[j]));
        }
    }
    display_printf("\n");
}

void print_reasons(const char *heading, const uint64_t *counters) {
    display_printf("%s", heading);
    for (uint32_t entry = 0; entry < AUTHMNG_REASON_NUM; ++entry) {
        display_printf("  %-20s.........................%" PRIu64 "\n", kReasonLabels[entry],
                       counters[entry]);
    }
}

}  // namespace

extern "C" void authmng_show_dot1x_statistic(uint32_t index) {
    if (index >= AUTHMNG_D1X_METHOD_NUM) return;
    const char *method = kMethodNames[index];
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    const authmng_dot1x_stat_t &s = g_amg_d1x[index];
    print_online(s, method);
    print_authentication(s, method);
    print_offline(s, method);
    print_times(s);
    print_histograms(s);
    print_reasons("auth_range_3000 reason:\n", g_authmng_sec_range_reason);
    print_reasons("\nauth_range_other reason:\n", g_authmng_thi_range_reason);
    display_printf("\n");
}
