#include "model.h"

#include <algorithm>
#include <cstdlib>
#include <map>

#include "webauth/code_text.h"

namespace authmng_report {

const char *const kStepNames[kStepCount] = {"station", "device", "AAA", "RADIUS client",
                                            "RADIUS server"};

namespace {

constexpr int64_t kDefaultInterval = 30 * 60;
constexpr int64_t kSubRowSlack = 5;  // seconds between the two web-auth rows of one write

// Fields of a row by column name.
class Columns {
public:
    explicit Columns(const ParsedFile &file) : file_(file) {}
    const std::string &text(const Row &row, const char *name) const {
        static const std::string kEmpty;
        for (size_t i = 0; i < file_.columns.size(); ++i) {
            if (file_.columns[i] == name) return row.fields[i];
        }
        return kEmpty;
    }
    double number(const Row &row, const char *name) const { return number_of(text(row, name)); }

private:
    const ParsedFile &file_;
};

ClientSeries *series_of(Device *device, const std::string &client) {
    for (ClientSeries &s : device->clients) {
        if (s.client == client) return &s;
    }
    device->clients.emplace_back();
    device->clients.back().client = client;
    return &device->clients.back();
}

void add_dot1x_intervals(const ParsedFile &file, Device *device) {
    Columns c(file);
    for (const Row &row : file.rows) {
        std::string type = c.text(row, "type");
        if (type != "dot1x" && type != "mab") continue;
        Interval in;
        in.end = row.time;
        in.auths = c.number(row, "auth_count");
        in.successes = c.number(row, "auth_succ_count");
        in.online = c.number(row, "current_online_user");
        double failures = in.auths > in.successes ? in.auths - in.successes : 0;
        std::string cause = c.text(row, "authfail_reason_most");
        if (failures > 0) in.causes.emplace_back(cause.empty() ? "unknown" : cause, failures);
        series_of(device, type)->intervals.push_back(in);
    }
}

void add_webauth_intervals(const ParsedFile &file, Device *device) {
    Columns c(file);
    ClientSeries *series = series_of(device, "webauth");
    for (const Row &row : file.rows) {
        Interval in;
        in.end = row.time;
        in.auths = c.number(row, "auth_count");
        in.successes = c.number(row, "auth_succ_count");
        in.online = c.number(row, "online_user");
        series->intervals.push_back(in);
    }
}

// The text of a web-auth result code: "AAA timeout:......" -> "AAA timeout".
std::string webauth_result_text(uint32_t code) {
    if (code == 0) return "success";
    if (code == 1) return "wrong password";
    std::string label = authmng::webauth_result_label(code);
    while (!label.empty() && (label.back() == '.' || label.back() == ':')) label.pop_back();
    return label.empty() ? "code " + std::to_string(code) : label;
}

// The cause columns of the substatistic file and their result codes.
struct CauseColumn {
    const char *column;
    uint32_t code;
};
constexpr CauseColumn kWebauthCauses[] = {
    {"aaa_reject", 1},     {"aaa_timeout", 2},    {"auth_dev_timeout", 3},
    {"set_scc_fail", 4},   {"account_reject", 5}, {"account_status_timeout", 6},
    {"find_user_fail", 7}, {"other_reason", 13},
};

// The cause columns (named with the result texts) and the step times of the
// substatistic rows, joined to the interval row of the same write.
void add_webauth_causes(const ParsedFile &file, Device *device) {
    static const char *const kSteps[][2] = {{"portal", "aggregate_portal"},
                                            {"SCC", "aggregate_scc"},
                                            {"AAA", "aggregate_aaa"},
                                            {"RADIUS client", "aggregate_rds"},
                                            {"RADIUS server", "aggregate_rdsvr"}};
    Columns c(file);
    ClientSeries *series = series_of(device, "webauth");
    for (const Row &row : file.rows) {
        for (Interval &in : series->intervals) {
            if (llabs(in.end - row.time) > kSubRowSlack || !in.steps.empty()) continue;
            for (const CauseColumn &cause : kWebauthCauses) {
                double n = c.number(row, cause.column);
                if (n > 0) in.causes.emplace_back(webauth_result_text(cause.code), n);
            }
            for (const auto &step : kSteps) {
                double sum = c.number(row, step[1]);
                in.steps.emplace_back(step[0], in.successes > 0 ? sum / in.successes : 0);
            }
            break;
        }
    }
}

// Per day and method, the slow authentications of the daily file and their
// average step times: differences of the running totals, or the totals
// themselves when they went back (a restart or a clear).
void add_dot1x_days(const ParsedFile &file, Device *device) {
    static const char *const kSteps[] = {"sta", "self", "aaa", "rds", "rdsSrv"};
    Columns c(file);
    std::map<std::string, std::pair<int64_t, std::vector<double>>> last;
    for (const Row &row : file.rows) {
        std::string type = c.text(row, "type");
        if (type != "dot1x" && type != "mab") continue;
        std::vector<double> v = {c.number(row, "auth[1-3)") + c.number(row, "auth[3-)")};
        for (const char *step : kSteps) {
            v.push_back(c.number(row, (std::string("OverOneSec ") + step).c_str()) +
                        c.number(row, (std::string("OverThiSec ") + step).c_str()));
        }
        Interval day;
        day.end = row.time;
        day.start = row.time - 86400;
        std::vector<double> d = v;
        auto it = last.find(type);
        if (it != last.end()) {
            day.start = it->second.first;
            bool back = false;
            for (size_t i = 0; i < v.size(); ++i) back = back || v[i] < it->second.second[i];
            for (size_t i = 0; i < v.size() && !back; ++i) d[i] = v[i] - it->second.second[i];
        }
        last[type] = {row.time, v};
        day.auths = d[0];
        for (int i = 0; i < kStepCount; ++i) {
            day.steps.emplace_back(kStepNames[i], d[0] > 0 ? d[i + 1] / d[0] : 0);
        }
        series_of(device, type)->slow_days.push_back(day);
    }
}

double minus(double a, double b) {
    return a > b ? a - b : 0;
}

// The columns both abnormal files share, and the step times (the AAA time
// holds the RADIUS time, which holds the server's).
AbnormalRecord abnormal_record(const Columns &c, const Row &row, const char *client, double station,
                               double device, double aaa, double rds, double server) {
    AbnormalRecord r;
    r.time = row.time;
    r.client = client;
    r.user = c.text(row, "username");
    r.mac = c.text(row, "mac");
    r.ip = c.text(row, "ip");
    double steps[kStepCount] = {station, device, minus(aaa, rds), minus(rds, server), server};
    std::copy(steps, steps + kStepCount, r.steps);
    return r;
}

void add_dot1x_abnormal(const ParsedFile &file, Device *device) {
    Columns c(file);
    for (const Row &row : file.rows) {
        AbnormalRecord r =
            abnormal_record(c, row, "802.1X/MAB", c.number(row, "StaT"), c.number(row, "SelfT"),
                            c.number(row, "AaaT"), c.number(row, "RdsT"), c.number(row, "RdsST"));
        r.event = c.text(row, "Type");
        r.cause = c.text(row, "Reason");
        r.auth_time = c.number(row, "auth_time");
        device->abnormal.push_back(r);
    }
}

void add_webauth_abnormal(const ParsedFile &file, Device *device) {
    Columns c(file);
    for (const Row &row : file.rows) {
        // A portal user has no station step: the portal and SCC times stand
        // for the device's own work.
        AbnormalRecord r = abnormal_record(
            c, row, "web-auth", 0, c.number(row, "portal_time") + c.number(row, "scc_time"),
            c.number(row, "auth_aaa_time"), c.number(row, "auth_rds_time"),
            c.number(row, "auth_rds_svr_time"));
        r.event = "auth";
        const std::string &code = c.text(row, "wba_code");
        r.cause =
            is_number(code) && code[0] != '-' && code.size() < 10
                ? webauth_result_text(static_cast<uint32_t>(strtoul(code.c_str(), nullptr, 10)))
                : "code " + code;
        r.auth_time = c.number(row, "ack_time");
        device->abnormal.push_back(r);
    }
}

void add_escape_log(const ParsedFile &file, Device *device) {
    for (const Row &row : file.rows) {
        device->escape_log.push_back(EscapeEntry{row.time, row.fields[0], number_of(row.fields[1]),
                                                 number_of(row.fields[2])});
    }
}

void add_cpp(const ParsedFile &file, Device *device) {
    for (const Row &row : file.rows) device->cpp.emplace_back(row.time, number_of(row.fields[0]));
}

// What each kind of file adds to a device.
struct Reader {
    FileKind kind;
    void (*read)(const ParsedFile &file, Device *device);
};
constexpr Reader kReaders[] = {
    {FileKind::kDot1xInterval, add_dot1x_intervals},
    {FileKind::kDot1xDaily, add_dot1x_days},
    {FileKind::kDot1xAbnormal, add_dot1x_abnormal},
    {FileKind::kWebauthInterval, add_webauth_intervals},
    {FileKind::kWebauthSub, add_webauth_causes},
    {FileKind::kWebauthAbnormal, add_webauth_abnormal},
    {FileKind::kEscapeLog, add_escape_log},
    {FileKind::kCpp, add_cpp},
};

// Runs of escape triggers (or of restart verdicts): a new run begins when
// the previous entry of its sort is more than the escape life back.
void find_escapes(const Settings &settings, Device *device) {
    std::sort(device->escape_log.begin(), device->escape_log.end(),
              [](const EscapeEntry &a, const EscapeEntry &b) { return a.time < b.time; });
    int64_t life = static_cast<int64_t>(settings.escape_life) * 60;
    for (bool restart : {false, true}) {
        EscapeEpisode *open = nullptr;
        for (const EscapeEntry &e : device->escape_log) {
            if ((e.check == "redirect") != restart) continue;
            if (open == nullptr || e.time > open->end) {
                device->escapes.push_back(EscapeEpisode{e.time, e.time, restart, 0});
                open = &device->escapes.back();
            }
            ++open->entries;
            open->end = e.time + (restart ? 60 : life);
        }
    }
}

void finish_series(Device *device) {
    for (ClientSeries &s : device->clients) {
        std::stable_sort(s.intervals.begin(), s.intervals.end(),
                         [](const Interval &a, const Interval &b) { return a.end < b.end; });
        // The same row read from two copies of a file counts once.
        s.intervals.erase(std::unique(s.intervals.begin(), s.intervals.end(),
                                      [](const Interval &a, const Interval &b) {
                                          return a.end == b.end && a.auths == b.auths;
                                      }),
                          s.intervals.end());
        for (size_t i = 0; i < s.intervals.size(); ++i) {
            Interval &in = s.intervals[i];
            int64_t gap = i > 0 ? in.end - s.intervals[i - 1].end : 0;
            in.start = (gap > 0 && gap <= 4 * kDefaultInterval) ? s.intervals[i - 1].end
                                                                : in.end - kDefaultInterval;
        }
    }
    std::sort(device->clients.begin(), device->clients.end(),
              [](const ClientSeries &a, const ClientSeries &b) { return a.client < b.client; });
    std::stable_sort(
        device->abnormal.begin(), device->abnormal.end(),
        [](const AbnormalRecord &a, const AbnormalRecord &b) { return a.time < b.time; });
}

// Notes on what the files went through.
void note_file(const ParsedFile &file, Device *device) {
    if (file.restarts > 0) {
        device->notes.push_back(file.path + ": restarted " + std::to_string(file.restarts) +
                                " time(s) after reaching its size limit; older rows are lost");
    }
    if (file.cut_rows > 0) {
        device->notes.push_back(file.path + ": " + std::to_string(file.cut_rows) +
                                " cut or unreadable row(s) skipped");
    }
    if (file.header_missing) {
        device->notes.push_back(file.path + ": no header line at the start");
    }
    if (file.kind != FileKind::kDot1xDaily) return;
    // Running totals that go back: the daemon restarted or its statistics
    // were cleared.
    Columns c(file);
    std::map<std::string, double> last;
    for (const Row &row : file.rows) {
        std::string type = c.text(row, "type");
        double total = c.number(row, "auth total number");
        auto it = last.find(type);
        if (it != last.end() && total < it->second) {
            device->notes.push_back(file.path + ": " + type + " totals went back before " +
                                    iso_time(row.time) +
                                    ": the daemon restarted or its statistics were cleared");
        }
        last[type] = total;
    }
}

}  // namespace

Device build_device(const std::string &label, const std::vector<ParsedFile> &files,
                    const Settings &settings) {
    Device device;
    device.label = label;
    bool seen[static_cast<int>(FileKind::kUnknown) + 1] = {};
    // Interval rows first: the substatistic rows join them.
    for (int pass = 0; pass < 2; ++pass) {
        for (const ParsedFile &file : files) {
            bool causes = file.kind == FileKind::kWebauthSub;
            if ((pass == 1) != causes) continue;
            seen[static_cast<int>(file.kind)] = true;
            device.sources.push_back(file.path + " (" + kind_name(file.kind) + ", " +
                                     std::to_string(file.rows.size()) + " rows)");
            note_file(file, &device);
            for (const Reader &reader : kReaders) {
                if (reader.kind == file.kind) reader.read(file, &device);
            }
        }
    }
    if (seen[static_cast<int>(FileKind::kWebauthInterval)] &&
        !seen[static_cast<int>(FileKind::kWebauthSub)]) {
        device.notes.push_back("wba_substatistic.csv not found: web-auth failures have no causes");
    }
    finish_series(&device);
    std::sort(device.cpp.begin(), device.cpp.end());
    find_escapes(settings, &device);
    return device;
}

std::vector<Episode> find_episodes(const std::vector<Device> &devices, const Settings &settings) {
    std::vector<Episode> episodes;
    for (const Device &device : devices) {
        for (const ClientSeries &s : device.clients) {
            Episode *open = nullptr;
            std::map<std::string, double> causes;
            auto close = [&]() {
                if (open == nullptr) return;
                double most = 0;
                for (const auto &c : causes) {
                    if (c.second > most) {
                        most = c.second;
                        open->cause = c.first;
                    }
                }
                open = nullptr;
                causes.clear();
            };
            for (const Interval &in : s.intervals) {
                bool bad = in.auths >= settings.min_auths && in.rate() < settings.threshold;
                if (!bad) {
                    close();
                    continue;
                }
                if (open == nullptr) {
                    episodes.emplace_back();
                    open = &episodes.back();
                    open->device = device.label;
                    open->client = s.client;
                    open->what = "success rate low";
                    open->start = in.start;
                }
                open->end = in.end;
                open->auths += in.auths;
                open->failures += in.auths - in.successes;
                open->worst_rate = std::min(open->worst_rate, in.rate());
                for (const auto &c : in.causes) causes[c.first] += c.second;
            }
            close();
        }
        for (const EscapeEpisode &e : device.escapes) {
            Episode ep;
            ep.device = device.label;
            ep.client = "webauth";
            ep.what = e.restart ? "redirect side restart" : "users escaped authentication";
            ep.cause = e.restart ? "redirect time above its threshold"
                                 : "authentication time or time-outs above their thresholds";
            ep.start = e.start;
            ep.end = e.end;
            ep.log_entries = e.entries;
            episodes.push_back(ep);
        }
    }
    std::stable_sort(episodes.begin(), episodes.end(),
                     [](const Episode &a, const Episode &b) { return a.start < b.start; });
    return episodes;
}

}  // namespace authmng_report
