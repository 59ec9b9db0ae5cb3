// The per-code displays of an 802.1X method: the failure statistic (every
// result, re-authentication result and offline-reason code) and the three
// group details (the "stamg", "rsna" and "roam" codes of one counter array).
// Every display is a list of sections, each a heading followed by one line
// per code of a span; the displays differ only in their section tables.
#include <cinttypes>
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/display_output.h"
#include "core/lock.h"
#include "dot1x/record.h"

using authmng::display_printf;

namespace {

using CounterArray = uint64_t (authmng_dot1x_stat_t::*)[AUTHMNG_D1X_CODE_NUM];
using CodeTextFn = const char *(*)(uint32_t);

// The code lines of one display: indent, label width and what follows the
// counter. The failure statistic prints "    %-30s: %lu\n", the group
// details " %-40s: %lu.\n".
struct LineStyle {
    int indent;
    int width;
    const char *end;
};
constexpr LineStyle kFailureLine = {4, 30, ""};
constexpr LineStyle kDetailLine = {1, 40, "."};

void print_code_lines(const uint64_t *counters, CodeTextFn text, authmng::CodeSpan codes,
                      const LineStyle &style) {
    for (uint32_t code = codes.first; code <= codes.last; ++code) {
        display_printf("%*s%-*s: %" PRIu64 "%s\n", style.indent, "", style.width, text(code),
                       counters[code], style.end);
    }
}

// Failure statistic: all codes but the successes of the two result arrays.
struct FailureSection {
    const char *heading;
    CounterArray counters;
    CodeTextFn text;
    authmng::CodeSpan codes;
};
constexpr FailureSection kFailureSections[] = {
    {"\nShow dot1x authentication sub_information:\n\n Dot1x auth failure statistic:\n",
     &authmng_dot1x_stat_t::auth_result,
     authmng_dot1x_auth_reason_str,
     {1, authmng::kDot1xMaxCode}},
    {"\n  Dot1x reauth failure statistic:\n",
     &authmng_dot1x_stat_t::reauth_result,
     authmng_dot1x_auth_reason_str,
     {1, authmng::kDot1xMaxCode}},
    {"\n  Dot1x offline statistic:\n",
     &authmng_dot1x_stat_t::offline_reason,
     authmng_dot1x_offline_reason_str,
     {0, authmng::kDot1xMaxCode}},
};

// Group details: one counter array by the three wireless groups.
constexpr authmng::CodeSpan kGroupCodes[] = {authmng::kStamgCodes, authmng::kRsnaCodes,
                                             authmng::kRoamCodes};
constexpr uint32_t kGroupCount = sizeof kGroupCodes / sizeof kGroupCodes[0];

struct GroupDetail {
    const char *headings[kGroupCount];
    CounterArray counters;
    CodeTextFn text;
};
constexpr GroupDetail kAuthDetail = {
    {"\nShow dot1x auth fail by stamg:\n", "\nShow dot1x auth fail by rsna:\n",
     "\nShow dot1x auth fail by roam:\n"},
    &authmng_dot1x_stat_t::auth_result,
    authmng_dot1x_auth_reason_str};
constexpr GroupDetail kReauthDetail = {
    {"\nShow dot1x reauth fail by stamg:\n", "\nShow dot1x reauth fail by rsna:\n",
     "\nShow dot1x reauth fail by roam:\n"},
    &authmng_dot1x_stat_t::reauth_result,
    authmng_dot1x_auth_reason_str};
constexpr GroupDetail kOfflineDetail = {
    {"\nShow dot1x offline by stamg:\n", "\nShow dot1x offline by rsna:\n",
     "\nShow dot1x offline by roam:\n"},
    &authmng_dot1x_stat_t::offline_reason,
    authmng_dot1x_offline_reason_str};

void show_group_detail(uint32_t index, const GroupDetail &detail) {
    if (index >= AUTHMNG_D1X_METHOD_NUM) return;
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    const uint64_t *counters = g_amg_d1x[index].*detail.counters;
    for (uint32_t group = 0; group < kGroupCount; ++group) {
        display_printf("%s", detail.headings[group]);
        print_code_lines(counters, detail.text, kGroupCodes[group], kDetailLine);
    }
    display_printf("\n");
}

}  // namespace

extern "C" void authmng_show_dot1x_statistic_fail(uint32_t index) {
    if (index >= AUTHMNG_D1X_METHOD_NUM) return;
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    for (const FailureSection &section : kFailureSections) {
        display_printf("%s", section.heading);
        print_code_lines(g_amg_d1x[index].*section.counters, section.text, section.codes,
                         kFailureLine);
    }
    display_printf("\n");
}

extern "C" void authmng_show_dot1x_auth_detail(uint32_t index) {
    show_group_detail(index, kAuthDetail);
}

extern "C" void authmng_show_dot1x_reauth_detail(uint32_t index) {
    show_group_detail(index, kReauthDetail);
}

extern "C" void authmng_show_dot1x_offline_detail(uint32_t index) {
    show_group_detail(index, kOfflineDetail);
}
