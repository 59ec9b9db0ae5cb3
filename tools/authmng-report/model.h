// What the report shows, built from the parsed files of one or more
// devices: per client the interval series, the abnormal records, the
// escape log with its episodes, and the list of what went wrong when.
#ifndef AUTHMNG_REPORT_MODEL_H
#define AUTHMNG_REPORT_MODEL_H

#include <cstdint>
#include <string>
#include <vector>

#include "rows.h"

namespace authmng_report {

// One interval row of one client ("dot1x", "mab" or "webauth").
struct Interval {
    int64_t start = 0;  // the previous row of the client, or the end less 30 minutes
    int64_t end = 0;    // when the row was written
    double auths = 0;
    double successes = 0;
    double online = 0;
    // Failures by cause: for 802.1X and MAB all of them under the interval's
    // most frequent cause (the only cause the file names); for web-auth the
    // cause columns of the substatistic row.
    std::vector<std::pair<std::string, double>> causes;
    // Average time per authentication by step, ms (web-auth intervals: all
    // successful authentications; 802.1X and MAB days: the slow ones).
    std::vector<std::pair<std::string, double>> steps;
    double rate() const { return auths > 0 ? 100.0 * successes / auths : 100.0; }
};

struct ClientSeries {
    std::string client;
    std::vector<Interval> intervals;
    // 802.1X and MAB, from the daily file: per day the authentications of
    // one second and more (auths) and their average step times.
    std::vector<Interval> slow_days;
};

// The time steps of an 802.1X authentication record.
constexpr int kStepCount = 5;
extern const char *const kStepNames[kStepCount];  // station .. RADIUS server

struct AbnormalRecord {
    int64_t time = 0;
    std::string client;  // "802.1X/MAB" or "web-auth"
    std::string user, mac, ip, event, cause;
    double auth_time = 0;           // ms
    double steps[kStepCount] = {};  // ms, by kStepNames
};

struct EscapeEntry {
    int64_t time = 0;
    std::string check;  // redirect, auth, authtimeout
    double average = 0, sample = 0;
};

// A run of escape-log entries: escapes (auth, authtimeout) or redirect-side
// restart verdicts (redirect).
struct EscapeEpisode {
    int64_t start = 0, end = 0;
    bool restart = false;
    int entries = 0;
};

struct Device {
    std::string label;
    std::vector<ClientSeries> clients;
    std::vector<AbnormalRecord> abnormal;
    std::vector<EscapeEntry> escape_log;
    std::vector<EscapeEpisode> escapes;
    std::vector<std::pair<int64_t, double>> cpp;
    std::vector<std::string> sources;  // the files read: path, kind, rows
    std::vector<std::string> notes;    // restarted files, cut rows, missing files, ...
};

// An entry of "what went wrong when".
struct Episode {
    std::string device, client, what, cause;
    int64_t start = 0, end = 0;
    double auths = 0, failures = 0, worst_rate = 100;
    int log_entries = 0;  // escape-log entries of an escape or restart episode
};

struct Settings {
    double threshold = 85;  // success rate in percent below which an interval is bad
    double min_auths = 50;  // intervals with fewer authentications are never bad
    int escape_life = 30;   // minutes an escape lasts after its last trigger
};

struct Model {
    Settings settings;
    std::vector<Device> devices;
    std::vector<Episode> episodes;  // by start time
};

// Builds one device from its parsed files (any subset).
Device build_device(const std::string &label, const std::vector<ParsedFile> &files,
                    const Settings &settings);

// The intervals whose success rate fell below the threshold, merged into
// episodes, and the escape episodes of every device, by start time.
std::vector<Episode> find_episodes(const std::vector<Device> &devices, const Settings &settings);

}  // namespace authmng_report

#endif
