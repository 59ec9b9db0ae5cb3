// The 802.1X abnormal file on flash: drains the abnormal list, oldest
// first, one row per queued event with its raw times, flags, codes and
// texts. The list is only emptied when the file could be opened.
#include <arpa/inet.h>
#include <netinet/in.h>

#include <cstdio>
#include <cstring>

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

// The file is emptied and restarted with its header once it has grown past
// this many bytes.
constexpr long kAbnormalFileLimit = 600000;

constexpr char kAbnormalHeader[] =
    "date,username,mac,ip,auth_time,aaa timeout,requestid_timeout,request_timeout,rsna_notify,"
    "start_notify,Type,Reason,Rssi,StaT,SelfT,AaaT,RdsT,RdsST,Acode,Rcode,DisMatchId,LogOff\n";

constexpr size_t kMacTextSize = 15;

// "001a.2b3c.4d5e"
void mac_text(const uint8_t *mac, char *text) {
    snprintf(text, kMacTextSize, "%02x%02x.%02x%02x.%02x%02x", mac[0], mac[1], mac[2], mac[3],
             mac[4], mac[5]);
}

// Dotted-decimal text of an address in network byte order.
void ip_text(uint32_t ip, char *text, size_t size) {
    struct in_addr address;
    address.s_addr = ip;
    if (inet_ntop(AF_INET, &address, text, static_cast<socklen_t>(size)) == nullptr) text[0] = '\0';
}

// Offline events are explained by their offline reason, all others by
// their result.
const char *reason_text(const authmng_auth_info_t &info) {
    return info.event == D1X_OFFLINE ? authmng_dot1x_offline_reason_str(info.offline_reason)
                                     : authmng_dot1x_auth_reason_str(info.result);
}

void format_row(const authmng_abnormal_node_t &node, char *row) {
    const authmng_auth_info_t &info = node.info;
    struct tm t = local_time(node.time);
    char mac[kMacTextSize];
    mac_text(info.mac, mac);
    char ip[INET_ADDRSTRLEN];
    ip_text(info.ip, ip, sizeof ip);
    snprintf(row, kRowBufferSize,
             "%02d.%02d %02d:%02d:%02d,%s,%s,%s,%u,%u,%u,%u,%u,%u,%s,%s,%d,%u,%u,%u,%u,%u,%d,%d,"
             "%u,%u\n",
             t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec,
             printable_name(info.username, NameSink::kCsv), mac, ip, info.auth_time,
             static_cast<unsigned>(info.aaa_timeout), static_cast<unsigned>(info.requestid_timeout),
             static_cast<unsigned>(info.request_timeout), static_cast<unsigned>(info.rsna_notify),
             static_cast<unsigned>(info.start_notify), authmng_dot1x_event_str(info.event),
             reason_text(info), info.rssi, info.sta_time, info.self_time, info.aaa_time,
             info.rds_time, info.rds_srv_time, info.aaa_code, info.rds_code,
             static_cast<unsigned>(info.dismatch_id), static_cast<unsigned>(info.logoff));
}

}  // namespace

extern "C" void authmng_write_dot1x_abnormal_record_to_file(void) {
    AUTHMNG_EVENT_DBG("write dot1x abnormal record to file.\n");
    Owned<char> line = alloc_text(kRowBufferSize);
    if (!line) return;

    // Held for the whole write: nodes are freed as they are written, and no
    // event may be queued in the middle of the drain.
    LibraryLock lock;
    char path[kPathBufferSize];
    memset(path, 0, sizeof path);
    if (authmng_make_flashpath(kDot1xAbnormalCsv, path, kPathLimit) != 0) path[0] = '\0';
    AppendedFile file(path, kAbnormalFileLimit, kAbnormalHeader);
    if (!file) return;  // the records stay queued for the next attempt
    abnormal_list_drain([&](const authmng_abnormal_node_t &node) {
        format_row(node, line.get());
        file.write(line.get());
    });
}
