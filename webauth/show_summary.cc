// The web-auth summary that scripts parse (a brace-enclosed list of quoted
// keys and values), the abnormal list, and the immediate interval write.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <cinttypes>
#include <cstdint>
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/abnormal_list.h"
#include "core/display_output.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/relaxed.h"
#include "core/user_name.h"
#include "webauth/code_text.h"

using authmng::display_printf;

namespace {

// Histograms of the whole authentication, of it without the servers' own
// time, and of successful redirects.
constexpr uint32_t kAuthRange = 0;
constexpr uint32_t kAuthExServerRange = 1;
constexpr uint32_t kRedirectRange = 2;

// ctime text: "Www Mmm dd hh:mm:ss yyyy\n" and the terminator, with room.
constexpr std::size_t kCtimeTextSize = 32;

void print_abnormal_record(const authmng_abnormal_node_t &node) {
    const authmng_auth_info_t &info = node.info;
    char when[kCtimeTextSize];
    authmng::ctime_text(node.time, when, sizeof when);
    char ip[INET_ADDRSTRLEN] = {};
    struct in_addr address;
    address.s_addr = info.ip;
    inet_ntop(AF_INET, &address, ip, sizeof ip);
    display_printf(
        "\n%susername(%s),mac(%02x%02x.%02x%02x.%02x%02x),ip(%s),ack_time(%u),auth_time(%u),"
        "scc_time(%u),acct_time(%u),portal_time(%u),auth_aaa_time(%u),auth_rds_time(%u),"
        "auth_rds_svr_time(%u),acct_aaa_time(%u),acct_rds_time(%u),acct_rds_svr_time(%u),"
        "wba_code(%u),wba_state(%u),wba_event(%u),aaa_auth_code(%d),rds_auth_code(%d),"
        "aaa_acct_code(%d),rds_acct_code(%d).\n",
        when, authmng::printable_name(info.username, authmng::NameSink::kTerminal), info.mac[0],
        info.mac[1], info.mac[2], info.mac[3], info.mac[4], info.mac[5], ip, info.ack_time,
        info.auth_time, info.scc_time, info.acct_time, info.portal_time, info.aaa_time,
        info.rds_time, info.rds_srv_time, info.acct_aaa_time, info.acct_rds_time,
        info.acct_rds_svr_time, info.result, info.wba_state, info.wba_event, info.aaa_code,
        info.rds_code, info.aaa_acct_code, info.rds_acct_code);
}

inline int as_signed(uint32_t value) {
    return static_cast<int32_t>(value);
}

}  // namespace

extern "C" void authmng_show_webauth_statistic_abnormal(void) {
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    display_printf("\nrecord num:%d, value:%d, max-num:%d, clock:%d\n",
                   as_signed(g_authmng_abnormal_record_num),
                   as_signed(authmng::load_relaxed(g_authmng_authtime_abnormal_value)),
                   as_signed(authmng::load_relaxed(g_authmng_abnormal_record_max)),
                   as_signed(authmng::load_relaxed(g_authmng_write_file_clock)));
    authmng::abnormal_list_for_each(print_abnormal_record);
}

extern "C" void authmng_show_webauth_statistic_telnet(void) {
    authmng::DeferredDisplay display;  // printed after the unlock
    authmng::LibraryLock lock;
    const authmng_webauth_stat_t &s = g_authmng_webauth;
    const uint64_t *rd = s.range[kRedirectRange].count;
    const uint64_t *whole = s.range[kAuthRange].count;
    const uint64_t *ex_server = s.range[kAuthExServerRange].count;
    // The web-auth daemon has no re-authentication that ends a session.
    const uint64_t offline_by_auth = 0;
    display_printf("{\n");
    display_printf("    \"current_online_number\": %" PRIu64 ",\n", s.current_online_number);
    display_printf("    \"aggregate_online_number\": %" PRIu64 ",\n",
                   s.old_online_number + s.auth_result[0]);
    display_printf("    \"redirect_range_500\": %" PRIu64 ",\n", rd[0]);
    display_printf("    \"redirect_range_1000\": %" PRIu64 ",\n", rd[1]);
    display_printf("    \"redirect_range_other\": %" PRIu64 ",\n", rd[2]);
    display_printf("    \"auth_total\": %" PRIu64 ",\n", s.auth_total);
    display_printf("    \"auth_success_count\": %" PRIu64 ",\n", s.auth_result[0]);
    display_printf("    \"auth_range_1000\": %" PRIu64 ",\n", whole[0]);
    display_printf("    \"auth_range_3000\": %" PRIu64 ",\n", whole[1]);
    display_printf("    \"auth_range_other\": %" PRIu64 ",\n", whole[2]);
    display_printf("    \"auth_range_1000_ex\": %" PRIu64 ",\n", ex_server[0]);
    display_printf("    \"auth_range_3000_ex\": %" PRIu64 ",\n", ex_server[1]);
    display_printf("    \"auth_range_other_ex\": %" PRIu64 ",\n", ex_server[2]);
    // The summary's offline total counts the abnormal offlines only.
    display_printf("    \"offline_total\": %" PRIu64 ",\n",
                   s.offline_reason[authmng::kWebauthPortalTimeout] +
                       s.offline_reason[authmng::kWebauthSetFail] +
                       s.offline_reason[authmng::kWebauthLinkChange]);
    display_printf("    \"offline_by_auth\": %" PRIu64 ",\n", offline_by_auth);
    display_printf("    \"average_online_time\": %u\n", s.average_online_time);
    display_printf("}\n");
    display_printf("\n");
}

extern "C" void authmng_show_webauth_tmp_file(void) {
    // The writer takes the library lock itself.
    display_printf("write webauth info to tmp.\n");
    authmng_write_webauth_statistic_to_tmp();
}
