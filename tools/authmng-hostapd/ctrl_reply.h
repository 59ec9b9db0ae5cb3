// Replies of hostapd's control interface to "STA <mac>" and "MIB": lines of
// key=value (a STA reply starts with the station's MAC), reduced to the
// figures the bridge uses.
#ifndef AUTHMNG_HOSTAPD_CTRL_REPLY_H
#define AUTHMNG_HOSTAPD_CTRL_REPLY_H

#include <cstddef>
#include <cstdint>
#include <string>

namespace authmng_hostapd {

// What one "STA <mac>" poll tells about a station.
struct StationInfo {
    bool authorized = false;         // flags=[AUTHORIZED]
    std::string user;                // dot1xAuthSessionUserName, at most 255 bytes
    uint64_t backend_responses = 0;  // dot1xAuthBackendResponses: RADIUS rounds
    uint64_t timeouts_authing = 0;   // dot1xAuthAuthTimeoutsWhileAuthenticating
    uint64_t logoff_frames = 0;      // dot1xAuthEapolLogoffFramesRx
};

// What one "MIB" poll tells about the (first) RADIUS authentication server.
struct MibInfo {
    uint64_t round_trip_centis = 0;  // radiusAuthClientRoundTripTime: last round, 1/100 s
    uint64_t timeouts = 0;           // radiusAuthClientTimeouts
};

// false when the reply is not a station's ("FAIL", empty, or not starting
// with a MAC line).
bool parse_station_reply(const char *reply, size_t length, StationInfo *info);

// false when the reply holds no RADIUS client counters.
bool parse_mib_reply(const char *reply, size_t length, MibInfo *info);

}  // namespace authmng_hostapd

#endif
