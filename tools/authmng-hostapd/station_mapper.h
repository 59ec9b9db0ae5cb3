// hostapd's events -> the library's 802.1X event records, with the state of
// every station the bridge has seen: whether it is online (authorized),
// the authentication in progress and its start time, and the per-station
// counters taken when it started.
//
// Single-threaded: the bridge's event loop (or the replay) calls it.
#ifndef AUTHMNG_HOSTAPD_STATION_MAPPER_H
#define AUTHMNG_HOSTAPD_STATION_MAPPER_H

#include <cstdint>
#include <functional>
#include <map>
#include <string>

#include "authmng.h"
#include "ctrl_reply.h"
#include "hostapd_event.h"

namespace authmng_hostapd {

// Result and offline codes of the library's 802.1X tables that the bridge
// reports.
enum ResultCode : uint32_t {
    kResultSuccess = 0,
    kResultRequestIdTimeout = 1,
    kResultRequestTimeout = 2,
    kResultAaaTimeout = 3,
    kResultAaaReject = 5,
    kResultPortDown = 21,
};
enum OfflineCode : uint32_t {
    kOfflineUserLogoff = 0,
    kOfflineServerKickout = 1,
    kOfflineNoPortControl = 11,
    kOfflinePortDown = 29,
    kOfflineOther = 134,
};

// Where the mapper asks hostapd about a station or the RADIUS client; the
// live bridge sends "STA <mac>" / "MIB", the replay answers from the file.
class StationSource {
public:
    virtual ~StationSource() = default;
    virtual bool station(int iface, const uint8_t mac[6], StationInfo *info) = 0;
    virtual bool mib(int iface, MibInfo *info) = 0;
};

class StationMapper {
public:
    using Sink = std::function<void(const authmng_auth_info_t &)>;

    StationMapper(StationSource *source, Sink sink) : source_(source), sink_(std::move(sink)) {}

    // One event of interface iface, received at now_us (monotonic, us).
    void on_event(int iface, const HostapdEvent &event, int64_t now_us);

    // The port of iface lost its link: its online stations go offline with
    // "port down", authentications in progress end with "port down".
    void on_link_down(int iface, int64_t now_us);

    // hostapd of iface stopped or its control interface went away: its
    // online stations go offline ("mng no port control"), authentications
    // in progress are dropped.
    void on_iface_lost(int iface);

    uint64_t online() const { return online_; }
    uint64_t records() const { return records_; }

private:
    struct Station {
        bool online = false;
        bool in_progress = false;
        bool reauth = false;
        int64_t start_us = 0;
        uint64_t timeouts_at_start = 0;
        uint64_t logoff_at_online = 0;
        bool last_failed_by_server = false;
        std::string user;
    };
    using Key = std::pair<int, uint64_t>;

    void start(int iface, const uint8_t mac[6], Station *st, int64_t now_us);
    void finish(int iface, const uint8_t mac[6], Station *st, uint32_t result, int64_t now_us);
    void go_offline(const uint8_t mac[6], Station *st, uint32_t reason);
    void emit(authmng_auth_info_t *record, const uint8_t mac[6], const Station &st, uint32_t event);

    StationSource *source_;
    Sink sink_;
    std::map<Key, Station> stations_;
    uint64_t online_ = 0;
    uint64_t reauth_started_ = 0;
    uint64_t records_ = 0;
};

}  // namespace authmng_hostapd

#endif
