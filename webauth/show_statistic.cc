// The full web-auth display: online numbers, redirects, authentications by
// result, offline events by reason, station moves, and the time of every
// measured step of successful authentications.
#include <cinttypes>
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/display_output.h"
#include "core/lock.h"
#include "webauth/code_text.h"

using authmng::display_printf;

namespace {

// Histograms of the whole authentication, of it without the servers' own
// time, and of successful redirects.
constexpr uint32_t kAuthRange = 0;
constexpr uint32_t kAuthExServerRange = 1;
constexpr uint32_t kRedirectRange = 2;

// The success histograms' lines, by slot: under 1 s, 1 to 3 s, over 3 s.
constexpr const char *kWholeRangeLabels[AUTHMNG_RANGE_SLOTS] = {
    "  number of less than one second:........................",
    "  number of between one and three second:................",
    "  number of more than three second:......................"};
constexpr const char *kExServerRangeLabels[AUTHMNG_RANGE_SLOTS] = {
    "  number of less than one second(exclude server):........",
    "  number of between one and three second(exclude server):",
    "  number of more than three second(exclude server):......"};

using authmng::kWebauthLinkChange;
using authmng::kWebauthPortalTimeout;
using authmng::kWebauthSetFail;

constexpr uint32_t kWrongPassword = 1;
constexpr uint32_t kFirstListedResult = 2;
constexpr uint32_t kOtherResult = AUTHMNG_WBA_RESULT_NUM - 1;

// Measured quantities 3 to 12 and their headings; the first follows its
// section heading directly.
constexpr uint32_t kFirstStep = 3;
constexpr const char *kStepHeadings[AUTHMNG_WBA_RANGE_NUM] = {
    "",
    "",
    "",
    "Auth:\n",
    "\nAAA authentication:\n",
    "\nRadius authentication:\n",
    "\nRadius server authentication:\n",
    "\nSCC:\n",
    "\nAccounting:\n",
    "\nAAA accounting:\n",
    "\nRadius accounting:\n",
    "\nRadius server accounting:\n",
    "\nPortal:\n",
};

// n as a percentage of total in single precision; 0 when total is 0.
double percent(uint64_t n, uint64_t total) {
    if (total == 0) return 0.0;
    return static_cast<double>(static_cast<float>(n) * 100.0f / static_cast<float>(total));
}

inline uint64_t ratio(uint64_t dividend, uint64_t divisor) {
    return divisor == 0 ? 0 : dividend / divisor;
}

void print_online(const authmng_webauth_stat_t &s) {
    display_printf("\nShow web authentication information:\n");
    display_printf(" current online number:..................................%" PRIu64 ".\n",
                   s.current_online_number);
    display_printf(" historical max online number:...........................%" PRIu64 ".\n",
                   s.max_online_number);
    display_printf(" aggregate online number:................................%" PRIu64 ".\n",
                   s.old_online_number + s.auth_result[0]);
}

void print_redirects(const authmng_webauth_stat_t &s) {
    const uint64_t *rd = s.range[kRedirectRange].count;
    const uint64_t timed = rd[0] + rd[1] + rd[2];
    display_printf("\nWeb authentication redirect statistic:\n");
    display_printf(" HTTP packet processing:\n");
    display_printf("  number of users:.......................................%" PRIu64 "\n",
                   s.rd_user);
    display_printf("  number of HTTP packets received:.......................%" PRIu64 "\n",
                   s.http_req_count);
    display_printf(" redirection time consumption for successful users:\n");
    display_printf("  average time consumption:..............................%" PRIu64 "ms.\n",
                   s.rd_avg_time);
    display_printf("  aggregate time consumption:............................%" PRIu64 "ms.\n",
                   s.aggregate_time[kRedirectRange]);
    display_printf("  number of less than half one second:...................%" PRIu64
                   "(%.3f%%).\n",
                   rd[0], percent(rd[0], timed));
    display_printf("  number of between half and one second:.................%" PRIu64
                   "(%.3f%%).\n",
                   rd[1], percent(rd[1], timed));
    display_printf("  number of more than one second:........................%" PRIu64 ".\n",
                   rd[2]);
}

void print_authentications(const authmng_webauth_stat_t &s) {
    const uint64_t *result = s.auth_result;
    const uint64_t failures = s.auth_total - result[0] - result[kWrongPassword];
    display_printf("\nWeb authentication statistic:\n");
    display_printf(" authentication processing:\n");
    display_printf("  number of authentication requests received:............%" PRIu64 ".\n",
                   s.auth_total);
    display_printf("  number of reauthentication requests received:..........%" PRIu64 ".\n",
                   s.reauth_number);
    display_printf("  number of error password:..............................%" PRIu64 ".\n",
                   result[kWrongPassword]);
    display_printf("  number of authentication failures:.....................%" PRIu64
                   "(%.3f%%).\n",
                   failures, percent(failures, s.auth_total));
    for (uint32_t code = kFirstListedResult; code < kOtherResult; ++code) {
        display_printf("   %s%" PRIu64 "(%.3f%%).\n", authmng::webauth_result_label(code),
                       result[code], percent(result[code], failures));
    }
    display_printf("   %s%" PRIu64 ".\n", authmng::webauth_result_label(kOtherResult),
                   result[kOtherResult]);

    const uint64_t *whole = s.range[kAuthRange].count;
    const uint64_t *ex_server = s.range[kAuthExServerRange].count;
    const uint64_t successes = result[0];
    display_printf(" authentication time consumption for successful users:\n");
    display_printf("  average time consumption:..............................%ums.\n",
                   s.auth_avg_time);
    display_printf("  aggregate time consumption:............................%" PRIu64 "ms.\n",
                   s.aggregate_time[kAuthRange]);
    for (uint32_t slot = 0; slot < AUTHMNG_RANGE_SLOTS; ++slot) {
        display_printf("%s%" PRIu64 "(%.3f%%).\n", kWholeRangeLabels[slot], whole[slot],
                       percent(whole[slot], successes));
    }
    for (uint32_t slot = 0; slot < AUTHMNG_RANGE_SLOTS; ++slot) {
        display_printf("%s%" PRIu64 "(%.3f%%).\n", kExServerRangeLabels[slot], ex_server[slot],
                       percent(ex_server[slot], successes));
    }
}

void print_offlines(const authmng_webauth_stat_t &s) {
    const uint64_t *reason = s.offline_reason;
    const uint64_t abnormal =
        reason[kWebauthPortalTimeout] + reason[kWebauthSetFail] + reason[kWebauthLinkChange];
    display_printf("\nWeb authentication offline information:\n");
    display_printf(" number of offline count:................................%" PRIu64 ".\n",
                   s.offline_total);
    display_printf("  number of abnormal offline(rate):......................%" PRIu64
                   "(%.3f%%).\n",
                   abnormal, percent(abnormal, s.old_online_number + s.auth_result[0]));
    display_printf("   number of portal timeout:.............................%" PRIu64
                   "(%.3f%%).\n",
                   reason[kWebauthPortalTimeout], percent(reason[kWebauthPortalTimeout], abnormal));
    display_printf("   number of set fail:...................................%" PRIu64
                   "(%.3f%%).\n",
                   reason[kWebauthSetFail], percent(reason[kWebauthSetFail], abnormal));
    display_printf("   number of link change:................................%" PRIu64 ".\n",
                   reason[kWebauthLinkChange]);
    for (uint32_t code = 0; code < AUTHMNG_WBA_OFFLINE_NUM; ++code) {
        if (code == kWebauthPortalTimeout || code == kWebauthSetFail || code == kWebauthLinkChange)
            continue;
        display_printf("  %-55s%" PRIu64 ".\n", authmng::webauth_offline_label(code), reason[code]);
    }
    display_printf(" aggregate online time:..................................%" PRIu64 "min\n",
                   s.online_time_total / 60);
    display_printf(" average online time of user:............................%umin\n",
                   s.average_online_time);
}

void print_moves(const authmng_webauth_stat_t &s) {
    display_printf("\nStation-move:\n");
    display_printf(" move count:.............................................%" PRIu64 ".\n",
                   s.move_count);
    display_printf(" move fail:..............................................%" PRIu64 ".\n",
                   s.move_fail_count);
}

void print_steps(const authmng_webauth_stat_t &s) {
    display_printf("\nOther important process statistics:\n");
    for (uint32_t step = kFirstStep; step < AUTHMNG_WBA_RANGE_NUM; ++step) {
        const uint64_t *count = s.range[step].count;
        const uint64_t sum = s.aggregate_time[step];
        display_printf("%s", kStepHeadings[step]);
        display_printf(" average time consumption:...............................%" PRIu64 "ms.\n",
                       ratio(sum, s.auth_result[0]));
        display_printf(" aggregate time consumption:.............................%" PRIu64 "ms.\n",
                       sum);
        display_printf(" number of less than one second:.........................%" PRIu64
                       "(%.3f%%).\n",
                       count[0], percent(count[0], count[0] + count[1]));
        display_printf(" number of more than one second:.........................%" PRIu64 ".\n",
                       count[1]);
    }
}

}  // namespace

extern "C" void authmng_show_webauth_statistic(void) {
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    const authmng_webauth_stat_t &s = g_authmng_webauth;
    print_online(s);
    print_redirects(s);
    print_authentications(s);
    print_offlines(s);
    print_moves(s);
    print_steps(s);
}
