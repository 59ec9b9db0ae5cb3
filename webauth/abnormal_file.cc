// The web-auth abnormal writer: one row per queued abnormal authentication
// on the flash file, emptying the abnormal list.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdio>
#include <cstring>
#include <ctime>

#include "authmng.h"
#include "core/abnormal_list.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/memory.h"
#include "core/paths.h"
#include "core/user_name.h"

using namespace authmng;

namespace {

// Size in bytes past which the abnormal file starts again with its header.
constexpr long kAbnormalFileLimit = 600000;

constexpr char kAbnormalHeader[] =
    "date,username,mac,ip,ack_time,auth_time,scc_time,acct_time,portal_time,auth_aaa_time,"
    "auth_rds_time,auth_rds_svr_time,acct_aaa_time,acct_rds_time,acct_rds_svr_time,wba_code,"
    "wba_state,wba_event,aaa_auth_code,rds_auth_code,aaa_acct_code,rds_acct_code\n";

// "001a.2b3c.4d5e" and its terminator.
constexpr size_t kMacTextSize = 15;

void format_abnormal_row(const authmng_abnormal_node_t &node, char *row) {
    const authmng_auth_info_t &info = node.info;
    struct tm t = local_time(node.time);
    char mac[kMacTextSize];
    snprintf(mac, sizeof mac, "%02x%02x.%02x%02x.%02x%02x", info.mac[0], info.mac[1], info.mac[2],
             info.mac[3], info.mac[4], info.mac[5]);
    // The dotted quad of inet_ntoa, without its shared buffer.
    struct in_addr address;
    memcpy(&address, &info.ip, sizeof address);
    char ip[INET_ADDRSTRLEN] = {};
    if (inet_ntop(AF_INET, &address, ip, sizeof ip) == nullptr) ip[0] = '\0';
    // The name may fill its field without a terminator.
    snprintf(row, kRowBufferSize,
             "%d.%d %d:%d:%d,%s,%s,%s,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%u,%d,%d,%d,%d\n",
             t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec,
             printable_name(info.username, NameSink::kCsv), mac, ip, info.ack_time, info.auth_time,
             info.scc_time, info.acct_time, info.portal_time, info.aaa_time, info.rds_time,
             info.rds_srv_time, info.acct_aaa_time, info.acct_rds_time, info.acct_rds_svr_time,
             info.result, info.wba_state, info.wba_event, info.aaa_code, info.rds_code,
             info.aaa_acct_code, info.rds_acct_code);
}

}  // namespace

extern "C" void authmng_write_webauth_abnormal_record_to_file(void) {
    Owned<char> row = alloc_text(kRowBufferSize);
    if (!row) return;
    AUTHMNG_EVENT_DBG("write webauth abnormal to file.\n");

    // Held for the whole write: the drain frees the list's nodes.
    LibraryLock lock;
    char path[kPathBufferSize] = {};
    if (authmng_make_flashpath(kWebauthAbnormalCsv, path, kPathLimit) != 0) return;
    AppendedFile file(path, kAbnormalFileLimit, kAbnormalHeader);
    if (!file) return;
    abnormal_list_drain([&file, &row](const authmng_abnormal_node_t &node) {
        format_abnormal_row(node, row.get());
        file.write(row.get());
    });
}
