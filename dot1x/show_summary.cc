// The 802.1X summary that remote collectors parse from the command line
// (a brace-enclosed list of quoted keys and values), and the table of the
// abnormal list.
#include <cinttypes>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <ctime>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/abnormal_list.h"
#include "core/display_output.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/user_name.h"
#include "dot1x/record.h"

using authmng::display_printf;

namespace {

// The results left out of the success-rate base.
constexpr uint32_t kOutsideRateBase[] = {5, 9, 23, 24};

// Offline reasons that the summary does not count as offlines: the
// ordinary ones (0 to 2, 4 to 6, 11 to 27) and the method changes 31 "mab
// to 1x", 32 "mab to guest vlan" and 39 "s mab change".
constexpr authmng::CodeSpan kUncountedOfflines[] = {{0, 2}, {4, 6}, {11, 27}, {31, 32}, {39, 39}};

inline int low_i32(uint64_t value) {
    return static_cast<int32_t>(static_cast<uint32_t>(value));
}

constexpr const char kAbnormalHeader[] =
    "Time           Mac            AuthTime   ATout IdTout ReqTout RNty SNty Type        Reason  "
    "           Rssi   StaT  SelfT AaaT  RdsT  RdsST Acode Rcode DisId LgOff User      \n";
constexpr const char kAbnormalRule[] =
    "-------------- -------------- ---------- ----- ------ ------- ---- ---- ----------- -------"
    "----------- ------ ----- ----- ----- ----- ----- ----- ----- ----- ----- ----------\n";

// "001a.2b3c.4d5e": 14 characters and the terminator.
constexpr std::size_t kMacTextSize = 15;

void print_abnormal_row(const authmng_abnormal_node_t &node) {
    const authmng_auth_info_t &info = node.info;
    const struct tm when = authmng::local_time(node.time);
    char mac[kMacTextSize] = {};
    snprintf(mac, sizeof mac, "%02x%02x.%02x%02x.%02x%02x", info.mac[0], info.mac[1], info.mac[2],
             info.mac[3], info.mac[4], info.mac[5]);
    const char *reason = info.event == D1X_OFFLINE
                             ? authmng_dot1x_offline_reason_str(info.offline_reason)
                             : authmng_dot1x_auth_reason_str(info.result);
    display_printf(
        "%02d.%02d %02d:%02d:%02d %-14s %-10u %-5u %-6u %-7u %-4u %-4u %-11s %-18s %-3ddBm %-5d "
        "%-5d %-5d %-5d %-5d %-5d %-5d %-5d %-5d %-10s\n",
        when.tm_mon + 1, when.tm_mday, when.tm_hour, when.tm_min, when.tm_sec, mac, info.auth_time,
        unsigned{info.aaa_timeout}, unsigned{info.requestid_timeout},
        unsigned{info.request_timeout}, unsigned{info.rsna_notify}, unsigned{info.start_notify},
        authmng_dot1x_event_str(info.event), reason, info.rssi, static_cast<int32_t>(info.sta_time),
        static_cast<int32_t>(info.self_time), static_cast<int32_t>(info.aaa_time),
        static_cast<int32_t>(info.rds_time), static_cast<int32_t>(info.rds_srv_time), info.aaa_code,
        info.rds_code, int{info.dismatch_id}, int{info.logoff},
        authmng::printable_name(info.username, authmng::NameSink::kTerminal));
}

}  // namespace

extern "C" void authmng_show_dot1x_statistic_telnet(uint32_t index) {
    if (index >= AUTHMNG_D1X_METHOD_NUM) return;
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    const authmng_dot1x_stat_t &s = g_amg_d1x[index];

    uint64_t rate_base = s.auth_total;
    for (uint32_t code : kOutsideRateBase) rate_base -= s.auth_result[code];
    const uint64_t by_auth = s.reauth_total - s.reauth_result[0];
    uint64_t offline_total = by_auth + s.offline_total;
    for (const authmng::CodeSpan &span : kUncountedOfflines) {
        for (uint32_t code = span.first; code <= span.last; ++code) {
            offline_total -= s.offline_reason[code];
        }
    }
    const uint64_t *whole = s.range[AUTHMNG_RANGE_AUTH].count;

    display_printf("{\n");
    display_printf("    \"auth_success_count\": %" PRIu64 ",\n", s.auth_result[0]);
    display_printf("    \"auth_total\": %" PRIu64 ",\n", rate_base);
    display_printf("    \"aggregate_online_number\": %" PRIu64 ",\n",
                   s.old_online_number + s.auth_result[0]);
    display_printf("    \"current_online_number\": %" PRIu64 ",\n", s.current_online_number);
    display_printf("    \"offline_total\": %" PRIu64 ",\n", offline_total);
    display_printf("    \"offline_by_auth\": %" PRIu64 ",\n", by_auth);
    display_printf("    \"auth_range_1000\": %d,\n", low_i32(whole[0]));
    display_printf("    \"auth_range_3000\": %d,\n", low_i32(whole[1]));
    display_printf("    \"auth_range_other\": %d\n", low_i32(whole[2]));
    display_printf("}\n");
    display_printf("\n");
}

extern "C" void authmng_show_dot1x_statistic_abnormal(uint32_t filter) {
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    display_printf("%s", kAbnormalHeader);
    display_printf("%s", kAbnormalRule);
    authmng::abnormal_list_for_each([filter](const authmng_abnormal_node_t &node) {
        if (filter == AUTHMNG_ABNORMAL_FILTER_ALL || node.info.event == filter) {
            print_abnormal_row(node);
        }
    });
}
