#include "station_mapper.h"

#include <cstring>

namespace authmng_hostapd {
namespace {

// Stations tracked at once; events of further new stations are dropped
// (hostapd itself serves far fewer per interface).
constexpr size_t kMaxStations = 65536;

uint32_t elapsed_ms(int64_t from_us, int64_t to_us) {
    if (to_us <= from_us) return 0;
    int64_t ms = (to_us - from_us + 500) / 1000;
    return ms > INT32_MAX ? INT32_MAX : static_cast<uint32_t>(ms);
}

}  // namespace

void StationMapper::emit(authmng_auth_info_t *record, const uint8_t mac[6], const Station &st,
                         uint32_t event) {
    record->client_type = AUTHMNG_CLIENT_DOT1X;
    record->event = event;
    record->online_num = online_;
    record->reauth_num = reauth_started_;
    size_t keep =
        st.user.size() < AUTHMNG_USERNAME_LEN - 1 ? st.user.size() : AUTHMNG_USERNAME_LEN - 1;
    memcpy(record->username, st.user.data(), keep);
    record->username[keep] = '\0';
    memcpy(record->mac, mac, AUTHMNG_MAC_LEN);
    ++records_;
    sink_(*record);
}

void StationMapper::start(int iface, const uint8_t mac[6], Station *st, int64_t now_us) {
    StationInfo info;
    st->timeouts_at_start = 0;
    if (source_->station(iface, mac, &info)) {
        st->timeouts_at_start = info.timeouts_authing;
        if (!info.user.empty()) st->user = info.user;
    }
    st->in_progress = true;
    st->reauth = st->online;
    st->start_us = now_us;
    if (st->reauth) ++reauth_started_;
    authmng_auth_info_t record;
    memset(&record, 0, sizeof record);
    emit(&record, mac, *st, st->reauth ? D1X_REAUTH_START : D1X_AUTH_START);
}

void StationMapper::finish(int iface, const uint8_t mac[6], Station *st, uint32_t result,
                           int64_t now_us) {
    authmng_auth_info_t record;
    memset(&record, 0, sizeof record);
    record.result = result;
    record.auth_time = st->in_progress ? elapsed_ms(st->start_us, now_us) : 0;
    StationInfo info;
    bool polled = source_->station(iface, mac, &info);
    if (polled && !info.user.empty()) st->user = info.user;
    MibInfo mib;
    if (result != kResultAaaTimeout && source_->mib(iface, &mib)) {
        // The server's last round trip: the only RADIUS time hostapd gives.
        uint64_t rtt = mib.round_trip_centis * 10;
        record.rds_time = rtt > record.auth_time ? record.auth_time : static_cast<uint32_t>(rtt);
        record.aaa_time = record.rds_time;
    }
    record.aaa_timeout = result == kResultAaaTimeout;
    record.requestid_timeout = result == kResultRequestIdTimeout;
    record.request_timeout = result == kResultRequestTimeout;
    bool reauth = st->in_progress ? st->reauth : st->online;
    st->in_progress = false;
    st->last_failed_by_server = result == kResultAaaReject || result == kResultAaaTimeout;
    if (result == kResultSuccess && !st->online) {
        st->online = true;
        ++online_;
    }
    if (result == kResultSuccess) st->logoff_at_online = polled ? info.logoff_frames : 0;
    emit(&record, mac, *st, reauth ? D1X_REAUTH : D1X_AUTH);
    // A failed re-authentication leaves the port unauthorized: the user is
    // offline from here on. A server time-out keeps it while hostapd retries.
    if (reauth && result != kResultSuccess && result != kResultAaaTimeout && st->online) {
        go_offline(mac, st, result == kResultAaaReject ? kOfflineServerKickout : kOfflineOther);
    }
}

void StationMapper::go_offline(const uint8_t mac[6], Station *st, uint32_t reason) {
    authmng_auth_info_t record;
    memset(&record, 0, sizeof record);
    record.offline_reason = reason;
    record.logoff = reason == kOfflineUserLogoff;
    emit(&record, mac, *st, D1X_OFFLINE);  // online_num still counts the station
    st->online = false;
    --online_;
}

void StationMapper::on_event(int iface, const HostapdEvent &event, int64_t now_us) {
    switch (event.kind) {
        case EventKind::EapStarted:
        case EventKind::EapSuccess:
        case EventKind::EapFailure:
        case EventKind::EapTimeoutNoId:
        case EventKind::EapTimeoutMethod:
        case EventKind::StaDisconnected:
            break;
        case EventKind::Terminating:
            on_iface_lost(iface);
            return;
        default:
            return;
    }
    Key key(iface, mac_key(event.mac));
    auto found = stations_.find(key);
    if (found == stations_.end()) {
        if (event.kind == EventKind::StaDisconnected || stations_.size() >= kMaxStations) return;
        found = stations_.emplace(key, Station()).first;
    }
    Station *st = &found->second;
    switch (event.kind) {
        case EventKind::EapStarted:
            if (st->in_progress) {
                // hostapd restarts an authentication whose RADIUS server did
                // not answer; the station's time-out counter says so.
                StationInfo info;
                if (source_->station(iface, event.mac, &info) &&
                    info.timeouts_authing > st->timeouts_at_start) {
                    finish(iface, event.mac, st, kResultAaaTimeout, now_us);
                }
            }
            start(iface, event.mac, st, now_us);
            break;
        case EventKind::EapSuccess:
            finish(iface, event.mac, st, kResultSuccess, now_us);
            break;
        case EventKind::EapFailure:
            finish(iface, event.mac, st, kResultAaaReject, now_us);
            break;
        case EventKind::EapTimeoutNoId:
            finish(iface, event.mac, st, kResultRequestIdTimeout, now_us);
            break;
        case EventKind::EapTimeoutMethod:
            finish(iface, event.mac, st, kResultRequestTimeout, now_us);
            break;
        case EventKind::StaDisconnected:
            st->in_progress = false;
            if (st->online) {
                StationInfo info;
                bool logoff = source_->station(iface, event.mac, &info) &&
                              info.logoff_frames > st->logoff_at_online;
                go_offline(event.mac, st, logoff ? kOfflineUserLogoff : kOfflineOther);
            }
            break;
        default:
            break;
    }
    if (!st->online && !st->in_progress) stations_.erase(found);
}

void StationMapper::on_link_down(int iface, int64_t now_us) {
    for (auto it = stations_.lower_bound(Key(iface, 0));
         it != stations_.end() && it->first.first == iface;) {
        uint8_t mac[6];
        mac_from_key(it->first.second, mac);
        Station *st = &it->second;
        if (st->in_progress) {
            authmng_auth_info_t record;
            memset(&record, 0, sizeof record);
            record.result = kResultPortDown;
            record.auth_time = elapsed_ms(st->start_us, now_us);
            st->in_progress = false;
            emit(&record, mac, *st, st->reauth ? D1X_REAUTH : D1X_AUTH);
        }
        if (st->online) go_offline(mac, st, kOfflinePortDown);
        it = stations_.erase(it);
    }
}

void StationMapper::on_iface_lost(int iface) {
    for (auto it = stations_.lower_bound(Key(iface, 0));
         it != stations_.end() && it->first.first == iface;) {
        uint8_t mac[6];
        mac_from_key(it->first.second, mac);
        if (it->second.online) go_offline(mac, &it->second, kOfflineNoPortControl);
        it = stations_.erase(it);
    }
}

}  // namespace authmng_hostapd
