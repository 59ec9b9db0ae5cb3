#include "replay.h"

#include <cerrno>
#include <cinttypes>
#include <cstdlib>
#include <cstring>
#include <map>
#include <vector>

#include "event_log.h"
#include "hostapd_event.h"
#include "mono_clock.h"
#include "station_mapper.h"

namespace authmng_hostapd {
namespace {

// Answers the mapper's polls with what the live bridge got at that point.
class ReplaySource : public StationSource {
public:
    bool station(int iface, const uint8_t mac[6], StationInfo *info) override {
        auto it = stations_.find(key(iface, mac));
        if (it == stations_.end()) return false;
        *info = it->second;
        return true;
    }
    bool mib(int iface, MibInfo *info) override {
        auto it = mibs_.find(iface);
        if (it == mibs_.end()) return false;
        *info = it->second;
        return true;
    }
    void apply(const LoggedLine &line) {
        if (line.what == 'S') stations_[key(line.iface, line.mac)] = line.station;
        if (line.what == 'M') mibs_[line.iface] = line.mib;
    }

private:
    static std::pair<int, uint64_t> key(int iface, const uint8_t mac[6]) {
        return {iface, mac_key(mac)};
    }
    std::map<std::pair<int, uint64_t>, StationInfo> stations_;
    std::map<int, MibInfo> mibs_;
};

}  // namespace

bool replay_file(const std::string &path, int rounds, ReplayResult *result, std::string *error) {
    FILE *file = fopen(path.c_str(), "r");
    if (file == nullptr) {
        *error = "cannot read " + path + ": " + strerror(errno);
        return false;
    }
    std::vector<LoggedLine> lines;
    char *text = nullptr;
    size_t cap = 0;
    ssize_t got;
    while ((got = getline(&text, &cap, file)) >= 0) {
        ++result->lines;
        std::string line(text, static_cast<size_t>(got));
        while (!line.empty() && line.back() == '\n') line.pop_back();
        LoggedLine parsed;
        if (parse_logged_line(line, &parsed)) {
            lines.push_back(std::move(parsed));
        } else {
            ++result->bad_lines;
        }
    }
    free(text);
    fclose(file);
    int64_t span = lines.empty() ? 0 : lines.back().us - lines.front().us + 1000000;

    ReplaySource source;
    StationMapper mapper(&source, [result](const authmng_auth_info_t &record) {
        authmng_notify_auth_info(&record);
        ++result->records;
    });
    int64_t begin = monotonic_us();
    for (int round = 0; round < rounds; ++round) {
        int64_t shift = span * round;
        for (size_t i = 0; i < lines.size(); ++i) {
            const LoggedLine &line = lines[i];
            if (line.what == 'E') {
                // The polls an event caused were recorded right after it.
                for (size_t j = i + 1;
                     j < lines.size() && (lines[j].what == 'S' || lines[j].what == 'M'); ++j) {
                    source.apply(lines[j]);
                }
                ++result->events;
                HostapdEvent event;
                if (!parse_event(line.text.data(), line.text.size(), &event)) {
                    ++result->malformed;
                    continue;
                }
                mapper.on_event(line.iface, event, line.us + shift);
            } else if (line.what == 'L') {
                mapper.on_link_down(line.iface, line.us + shift);
            } else if (line.what == 'X') {
                mapper.on_iface_lost(line.iface);
            }
        }
    }
    result->seconds = static_cast<double>(monotonic_us() - begin) / 1e6;
    return true;
}

void print_replay(FILE *out, const ReplayResult &r) {
    fprintf(out,
            "replay: %" PRIu64 " lines (%" PRIu64 " not recorded entries), %" PRIu64
            " events delivered (%" PRIu64 " malformed), %" PRIu64 " records to the library\n",
            r.lines, r.bad_lines, r.events, r.malformed, r.records);
    fprintf(out, "replay: %.3f s, %.0f events/s\n", r.seconds,
            r.seconds > 0 ? static_cast<double>(r.events) / r.seconds : 0.0);
}

}  // namespace authmng_hostapd
