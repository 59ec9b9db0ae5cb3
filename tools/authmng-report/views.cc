#include "views.h"

#include <algorithm>
#include <map>

namespace authmng_report {
namespace {

Chart make_chart(const std::string &id, const std::string &title, const std::string &unit,
                 ChartStyle style) {
    Chart chart;
    chart.id = id;
    chart.title = title;
    chart.unit = unit;
    chart.style = style;
    return chart;
}

Chart per_client(const Device &device, const std::string &id, const std::string &title,
                 const std::string &unit, double (*value)(const Interval &),
                 bool (*keep)(const Interval &)) {
    Chart chart = make_chart(id, title, unit, ChartStyle::kLines);
    for (const ClientSeries &s : device.clients) {
        Series series{client_title(s.client), {}};
        for (const Interval &in : s.intervals) {
            if (keep(in)) series.points.push_back(Point{in.start, in.end, value(in)});
        }
        if (!series.points.empty()) chart.series.push_back(series);
    }
    return chart;
}

Chart failures_by_cause(const ClientSeries &s, const std::string &id) {
    std::map<std::string, double> totals;
    for (const Interval &in : s.intervals) {
        for (const auto &c : in.causes) totals[c.first] += c.second;
    }
    std::vector<std::pair<double, std::string>> ranked;
    for (const auto &t : totals) ranked.emplace_back(-t.second, t.first);
    std::sort(ranked.begin(), ranked.end());
    std::map<std::string, size_t> lane;
    Chart chart =
        make_chart(id, client_title(s.client) + ": failed authentications by cause, per interval",
                   "failures", ChartStyle::kStackedBars);
    for (const auto &r : ranked) {
        if (chart.series.size() == kTopCauses) {
            chart.series.push_back(Series{"other causes", {}});
            break;
        }
        lane[r.second] = chart.series.size();
        chart.series.push_back(Series{r.second, {}});
    }
    for (const Interval &in : s.intervals) {
        std::vector<double> sums(chart.series.size(), 0);
        for (const auto &c : in.causes) {
            auto it = lane.find(c.first);
            sums[it != lane.end() ? it->second : chart.series.size() - 1] += c.second;
        }
        for (size_t i = 0; i < sums.size(); ++i) {
            if (sums[i] > 0) chart.series[i].points.push_back(Point{in.start, in.end, sums[i]});
        }
    }
    return chart;
}

// Average step times, stacked: per interval (web-auth) or per day (the
// slow 802.1X and MAB authentications).
Chart step_times(const ClientSeries &s, bool days, const std::string &id) {
    std::string title = days ? client_title(s.client) +
                                   ": where slow authentications (1 s and more) spent their time, "
                                   "average per day"
                             : client_title(s.client) +
                                   ": where successful authentications spent their time, average "
                                   "per interval";
    Chart chart = make_chart(id, title, "ms", ChartStyle::kStackedBars);
    for (const Interval &in : days ? s.slow_days : s.intervals) {
        for (size_t i = 0; i < in.steps.size(); ++i) {
            if (chart.series.size() <= i) chart.series.push_back(Series{in.steps[i].first, {}});
            if (in.steps[i].second > 0) {
                chart.series[i].points.push_back(Point{in.start, in.end, in.steps[i].second});
            }
        }
    }
    return chart;
}

bool has_points(const Chart &chart) {
    for (const Series &s : chart.series) {
        if (!s.points.empty()) return true;
    }
    return false;
}

}  // namespace

std::string client_title(const std::string &client) {
    if (client == "dot1x") return "802.1X";
    if (client == "mab") return "MAB";
    if (client == "webauth") return "web-auth";
    return client;
}

std::vector<Chart> device_charts(const Device &device, const Settings &settings,
                                 const std::string &id_prefix) {
    // One time axis for the interval charts of a device.
    int64_t from = 0, to = 0;
    for (const ClientSeries &s : device.clients) {
        for (const Interval &in : s.intervals) {
            if (from == 0 || in.start < from) from = in.start;
            to = std::max(to, in.end);
        }
    }
    std::vector<Chart> charts;
    auto add = [&charts, from, to](Chart chart, bool shared_axis) {
        if (!has_points(chart)) return;
        if (shared_axis) {
            chart.from = from;
            chart.to = to;
        }
        charts.push_back(chart);
    };
    add(per_client(
            device, id_prefix + "auths", "Authentications per interval", "authentications",
            [](const Interval &in) { return in.auths; }, [](const Interval &) { return true; }),
        true);
    Chart rate = per_client(
        device, id_prefix + "rate", "Success rate per interval (dashed: the episode threshold)",
        "%", [](const Interval &in) { return in.rate(); },
        [](const Interval &in) { return in.auths > 0; });
    rate.reference = settings.threshold;
    rate.top = 100;
    add(rate, true);
    for (const ClientSeries &s : device.clients) {
        add(failures_by_cause(s, id_prefix + "causes-" + s.client), true);
    }
    for (const ClientSeries &s : device.clients) {
        bool days = s.client != "webauth";
        add(step_times(s, days, id_prefix + "steps-" + s.client), !days);
    }
    add(per_client(
            device, id_prefix + "online", "Online users", "users",
            [](const Interval &in) { return in.online; }, [](const Interval &) { return true; }),
        true);
    Chart cpp = make_chart(id_prefix + "cpp", "cpp client: highest sample per interval", "",
                           ChartStyle::kLines);
    cpp.series.push_back(Series{"cpp", {}});
    for (const auto &p : device.cpp) {
        cpp.series[0].points.push_back(Point{p.first, p.first, p.second});
    }
    add(cpp, true);
    Chart escapes = make_chart(id_prefix + "escapes",
                               "User escapes and redirect-side restarts (from the escape log)", "",
                               ChartStyle::kSpans);
    escapes.series = {Series{"escape", {}}, Series{"restart", {}}};
    for (const EscapeEpisode &e : device.escapes) {
        escapes.series[e.restart ? 1 : 0].points.push_back(
            Point{e.start, e.end, static_cast<double>(e.entries)});
    }
    add(escapes, true);
    return charts;
}

}  // namespace authmng_report
