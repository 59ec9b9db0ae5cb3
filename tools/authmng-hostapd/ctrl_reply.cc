#include "ctrl_reply.h"

#include <cstring>

#include "authmng.h"
#include "hostapd_event.h"

namespace authmng_hostapd {
namespace {

// Calls visit(key, key_len, value, value_len) for every "key=value" line.
template <typename Visit>
void for_each_pair(const char *text, size_t length, Visit visit) {
    size_t pos = 0;
    while (pos < length) {
        const char *line = text + pos;
        const char *nl = static_cast<const char *>(memchr(line, '\n', length - pos));
        size_t line_len = nl != nullptr ? static_cast<size_t>(nl - line) : length - pos;
        pos += line_len + 1;
        const char *eq = static_cast<const char *>(memchr(line, '=', line_len));
        if (eq == nullptr) continue;
        size_t key_len = static_cast<size_t>(eq - line);
        visit(line, key_len, eq + 1, line_len - key_len - 1);
    }
}

bool key_is(const char *key, size_t key_len, const char *name) {
    return strlen(name) == key_len && memcmp(key, name, key_len) == 0;
}

// Decimal value; saturates rather than wraps on absurd input.
uint64_t to_u64(const char *value, size_t length) {
    uint64_t out = 0;
    for (size_t i = 0; i < length && value[i] >= '0' && value[i] <= '9'; ++i) {
        uint64_t digit = static_cast<uint64_t>(value[i] - '0');
        if (out > (UINT64_MAX - digit) / 10) return UINT64_MAX;
        out = out * 10 + digit;
    }
    return out;
}

}  // namespace

bool parse_station_reply(const char *reply, size_t length, StationInfo *info) {
    uint8_t mac[6];
    const char *nl = static_cast<const char *>(memchr(reply, '\n', length));
    size_t first = nl != nullptr ? static_cast<size_t>(nl - reply) : length;
    if (!parse_mac(reply, first, mac)) return false;
    *info = StationInfo();
    for_each_pair(
        reply, length,
        [info](const char *key, size_t key_len, const char *value, size_t value_len) {
            if (key_is(key, key_len, "flags")) {
                info->authorized = value_len >= 12 && memmem(value, value_len, "[AUTHORIZED]", 12);
            } else if (key_is(key, key_len, "dot1xAuthSessionUserName")) {
                size_t keep =
                    value_len < AUTHMNG_USERNAME_LEN - 1 ? value_len : AUTHMNG_USERNAME_LEN - 1;
                info->user.assign(value, keep);
            } else if (key_is(key, key_len, "dot1xAuthBackendResponses")) {
                info->backend_responses = to_u64(value, value_len);
            } else if (key_is(key, key_len, "dot1xAuthAuthTimeoutsWhileAuthenticating")) {
                info->timeouts_authing = to_u64(value, value_len);
            } else if (key_is(key, key_len, "dot1xAuthEapolLogoffFramesRx")) {
                info->logoff_frames = to_u64(value, value_len);
            }
        });
    return true;
}

bool parse_mib_reply(const char *reply, size_t length, MibInfo *info) {
    bool seen_rtt = false, seen_timeouts = false;
    *info = MibInfo();
    for_each_pair(
        reply, length, [&](const char *key, size_t key_len, const char *value, size_t value_len) {
            // Several servers give several blocks: the first one is the one in use.
            if (!seen_rtt && key_is(key, key_len, "radiusAuthClientRoundTripTime")) {
                info->round_trip_centis = to_u64(value, value_len);
                seen_rtt = true;
            } else if (!seen_timeouts && key_is(key, key_len, "radiusAuthClientTimeouts")) {
                info->timeouts = to_u64(value, value_len);
                seen_timeouts = true;
            }
        });
    return seen_rtt || seen_timeouts;
}

}  // namespace authmng_hostapd
