// Recorded event streams: the live bridge writes every event line it
// receives and every STA / MIB answer it gets; the replay feeds such a file
// through the same mapper. One line each, times in monotonic microseconds:
//   <us> <iface> E <event line as received>
//   <us> <iface> S <mac> <authorized> <backend responses> <time-outs> <logoffs> <user>
//   <us> <iface> M <round trip, 1/100 s> <time-outs>
//   <us> <iface> L              the port lost its link
//   <us> <iface> X              the control interface went away
#ifndef AUTHMNG_HOSTAPD_EVENT_LOG_H
#define AUTHMNG_HOSTAPD_EVENT_LOG_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "ctrl_reply.h"

namespace authmng_hostapd {

class EventLogWriter {
public:
    ~EventLogWriter();
    bool open(const std::string &path);
    void event(int64_t us, int iface, const char *line, size_t length);
    void station(int64_t us, int iface, const uint8_t mac[6], const StationInfo &info);
    void mib(int64_t us, int iface, const MibInfo &info);
    void mark(int64_t us, int iface, char what);

private:
    FILE *file_ = nullptr;
};

// One parsed line of a recorded stream.
struct LoggedLine {
    int64_t us = 0;
    int iface = 0;
    char what = 0;        // 'E', 'S', 'M', 'L' or 'X'
    std::string text;     // E: the event line
    uint8_t mac[6] = {};  // S
    StationInfo station;  // S
    MibInfo mib;          // M
};

// false for a line that is none of the above (blank lines included).
bool parse_logged_line(const std::string &line, LoggedLine *out);

}  // namespace authmng_hostapd

#endif
