// One line that hostapd's control interface sends to an attached monitor,
// "<level>NAME [args]", parsed into the event kinds the bridge acts on.
#ifndef AUTHMNG_HOSTAPD_HOSTAPD_EVENT_H
#define AUTHMNG_HOSTAPD_HOSTAPD_EVENT_H

#include <cstddef>
#include <cstdint>

namespace authmng_hostapd {

// Longest event line accepted; hostapd's own lines are far shorter.
constexpr size_t kEventLineMax = 4096;

enum class EventKind {
    EapStarted,        // CTRL-EVENT-EAP-STARTED <mac>
    EapSuccess,        // CTRL-EVENT-EAP-SUCCESS / -SUCCESS2 <mac>
    EapFailure,        // CTRL-EVENT-EAP-FAILURE / -FAILURE2 <mac>
    EapTimeoutNoId,    // CTRL-EVENT-EAP-TIMEOUT-FAILURE <mac>: no identity yet
    EapTimeoutMethod,  // CTRL-EVENT-EAP-TIMEOUT-FAILURE2 <mac>: mid-method
    StaConnected,      // AP-STA-CONNECTED <mac>
    StaDisconnected,   // AP-STA-DISCONNECTED <mac>
    Terminating,       // CTRL-EVENT-TERMINATING: hostapd is stopping
    Ignored,           // a known event the bridge does not map
    Unknown,           // a well-formed line of an event it does not know
};

struct HostapdEvent {
    int level = 0;
    EventKind kind = EventKind::Unknown;
    uint8_t mac[6] = {};
};

// Parses one received datagram (without or with a trailing newline).
// false for a malformed line: no "<digits>" level, a name that is missing or
// not printable, a station event without a valid MAC, or an over-long line.
bool parse_event(const char *line, size_t length, HostapdEvent *event);

// "aa:bb:cc:dd:ee:ff" (either case) at the start of text, followed by the
// end or a blank. false otherwise.
bool parse_mac(const char *text, size_t length, uint8_t mac[6]);

// A MAC as one number (map keys) and back.
uint64_t mac_key(const uint8_t mac[6]);
void mac_from_key(uint64_t key, uint8_t mac[6]);

// The event name's text of a kind, for logs and metrics labels.
const char *event_kind_name(EventKind kind);

}  // namespace authmng_hostapd

#endif
