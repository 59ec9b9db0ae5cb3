#include "hostapd_event.h"

#include <cstring>

namespace authmng_hostapd {
namespace {

struct NamedKind {
    const char *name;
    EventKind kind;
    bool needs_mac;
};

// Every event name the bridge knows. Names are matched whole, so
// "CTRL-EVENT-EAP-SUCCESS2" never matches the entry of "...-SUCCESS".
constexpr NamedKind kKinds[] = {
    {"CTRL-EVENT-EAP-STARTED", EventKind::EapStarted, true},
    {"CTRL-EVENT-EAP-SUCCESS", EventKind::EapSuccess, true},
    {"CTRL-EVENT-EAP-SUCCESS2", EventKind::EapSuccess, true},
    {"CTRL-EVENT-EAP-FAILURE", EventKind::EapFailure, true},
    {"CTRL-EVENT-EAP-FAILURE2", EventKind::EapFailure, true},
    {"CTRL-EVENT-EAP-TIMEOUT-FAILURE", EventKind::EapTimeoutNoId, true},
    {"CTRL-EVENT-EAP-TIMEOUT-FAILURE2", EventKind::EapTimeoutMethod, true},
    {"AP-STA-CONNECTED", EventKind::StaConnected, true},
    {"AP-STA-DISCONNECTED", EventKind::StaDisconnected, true},
    {"CTRL-EVENT-TERMINATING", EventKind::Terminating, false},
    {"CTRL-EVENT-EAP-PROPOSED-METHOD", EventKind::Ignored, false},
    {"CTRL-EVENT-EAP-RETRANSMIT", EventKind::Ignored, false},
    {"CTRL-EVENT-EAP-RETRANSMIT2", EventKind::Ignored, false},
    {"CTRL-EVENT-EAP-PEER-CERT", EventKind::Ignored, false},
    {"AP-ENABLED", EventKind::Ignored, false},
    {"AP-DISABLED", EventKind::Ignored, false},
};

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

}  // namespace

bool parse_mac(const char *text, size_t length, uint8_t mac[6]) {
    constexpr size_t kMacText = 17;
    if (length < kMacText || (length > kMacText && text[kMacText] != ' ')) return false;
    for (size_t i = 0; i < 6; ++i) {
        int high = hex_digit(text[i * 3]);
        int low = hex_digit(text[i * 3 + 1]);
        if (high < 0 || low < 0 || (i < 5 && text[i * 3 + 2] != ':')) return false;
        mac[i] = static_cast<uint8_t>(high * 16 + low);
    }
    return true;
}

uint64_t mac_key(const uint8_t mac[6]) {
    uint64_t key = 0;
    for (int i = 0; i < 6; ++i) key = key << 8 | mac[i];
    return key;
}

void mac_from_key(uint64_t key, uint8_t mac[6]) {
    for (int i = 0; i < 6; ++i) mac[i] = static_cast<uint8_t>(key >> (40 - 8 * i));
}

bool parse_event(const char *line, size_t length, HostapdEvent *event) {
    if (length > kEventLineMax) return false;
    while (length > 0 && (line[length - 1] == '\n' || line[length - 1] == '\0')) --length;
    if (length < 3 || line[0] != '<') return false;
    size_t pos = 1;
    int level = 0;
    while (pos < length && line[pos] >= '0' && line[pos] <= '9' && pos < 4) {
        level = level * 10 + (line[pos] - '0');
        ++pos;
    }
    if (pos == 1 || pos >= length || line[pos] != '>') return false;
    ++pos;
    size_t name_start = pos;
    while (pos < length && line[pos] != ' ') {
        unsigned char c = static_cast<unsigned char>(line[pos]);
        if (c < 0x21 || c > 0x7e) return false;
        ++pos;
    }
    size_t name_len = pos - name_start;
    if (name_len == 0) return false;
    const char *args = line + pos + (pos < length ? 1 : 0);
    size_t args_len = length - pos - (pos < length ? 1 : 0);

    *event = HostapdEvent();
    event->level = level;
    for (const NamedKind &known : kKinds) {
        if (strlen(known.name) != name_len || memcmp(known.name, line + name_start, name_len) != 0)
            continue;
        if (known.needs_mac && !parse_mac(args, args_len, event->mac)) return false;
        event->kind = known.kind;
        return true;
    }
    event->kind = EventKind::Unknown;
    return true;
}

const char *event_kind_name(EventKind kind) {
    switch (kind) {
        case EventKind::EapStarted:
            return "eap-started";
        case EventKind::EapSuccess:
            return "eap-success";
        case EventKind::EapFailure:
            return "eap-failure";
        case EventKind::EapTimeoutNoId:
            return "eap-timeout-no-identity";
        case EventKind::EapTimeoutMethod:
            return "eap-timeout-method";
        case EventKind::StaConnected:
            return "sta-connected";
        case EventKind::StaDisconnected:
            return "sta-disconnected";
        case EventKind::Terminating:
            return "terminating";
        case EventKind::Ignored:
            return "ignored";
        case EventKind::Unknown:
            break;
    }
    return "unknown";
}

}  // namespace authmng_hostapd
