#include "event_log.h"

#include <cinttypes>
#include <cstdlib>
#include <cstring>

#include "hostapd_event.h"

namespace authmng_hostapd {

EventLogWriter::~EventLogWriter() {
    if (file_ != nullptr) fclose(file_);
}

bool EventLogWriter::open(const std::string &path) {
    file_ = fopen(path.c_str(), "w");
    return file_ != nullptr;
}

void EventLogWriter::event(int64_t us, int iface, const char *line, size_t length) {
    if (file_ == nullptr) return;
    while (length > 0 && (line[length - 1] == '\n' || line[length - 1] == '\0')) --length;
    // One line per event: a line break inside would split the record.
    std::string text(line, length);
    for (char &c : text) {
        if (c == '\n' || c == '\r' || c == '\0') c = ' ';
    }
    fprintf(file_, "%" PRId64 " %d E %s\n", us, iface, text.c_str());
    fflush(file_);
}

void EventLogWriter::station(int64_t us, int iface, const uint8_t m[6], const StationInfo &info) {
    if (file_ == nullptr) return;
    std::string user = info.user;
    for (char &c : user) {
        if (c == '\n' || c == '\r' || c == '\0') c = ' ';
    }
    fprintf(file_,
            "%" PRId64 " %d S %02x:%02x:%02x:%02x:%02x:%02x %d %" PRIu64 " %" PRIu64 " %" PRIu64
            " %s\n",
            us, iface, m[0], m[1], m[2], m[3], m[4], m[5], info.authorized ? 1 : 0,
            info.backend_responses, info.timeouts_authing, info.logoff_frames, user.c_str());
    fflush(file_);
}

void EventLogWriter::mib(int64_t us, int iface, const MibInfo &info) {
    if (file_ == nullptr) return;
    fprintf(file_, "%" PRId64 " %d M %" PRIu64 " %" PRIu64 "\n", us, iface, info.round_trip_centis,
            info.timeouts);
    fflush(file_);
}

void EventLogWriter::mark(int64_t us, int iface, char what) {
    if (file_ == nullptr) return;
    fprintf(file_, "%" PRId64 " %d %c\n", us, iface, what);
    fflush(file_);
}

bool parse_logged_line(const std::string &line, LoggedLine *out) {
    *out = LoggedLine();
    const char *text = line.c_str();
    char *end = nullptr;
    out->us = strtoll(text, &end, 10);
    if (end == text || *end != ' ') return false;
    text = end + 1;
    long iface = strtol(text, &end, 10);
    if (end == text || *end != ' ' || iface < 0 || iface > 1023) return false;
    out->iface = static_cast<int>(iface);
    text = end + 1;
    out->what = text[0];
    if (out->what == '\0' || (text[1] != ' ' && text[1] != '\0')) return false;
    const char *rest = text[1] == ' ' ? text + 2 : text + 1;
    switch (out->what) {
        case 'E':
            out->text = rest;
            return true;
        case 'L':
        case 'X':
            return true;
        case 'S': {
            if (!parse_mac(rest, strlen(rest), out->mac) || strlen(rest) < 18) return false;
            unsigned authorized = 0;
            int used = 0;
            if (sscanf(rest + 18, "%u %" SCNu64 " %" SCNu64 " %" SCNu64 "%n", &authorized,
                       &out->station.backend_responses, &out->station.timeouts_authing,
                       &out->station.logoff_frames, &used) != 4) {
                return false;
            }
            out->station.authorized = authorized != 0;
            const char *user = rest + 18 + used;
            if (*user == ' ') ++user;
            out->station.user.assign(user, strnlen(user, 255));
            return true;
        }
        case 'M':
            return sscanf(rest, "%" SCNu64 " %" SCNu64, &out->mib.round_trip_centis,
                          &out->mib.timeouts) == 2;
        default:
            return false;
    }
}

}  // namespace authmng_hostapd
