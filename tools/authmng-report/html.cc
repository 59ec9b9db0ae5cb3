#include "html.h"

#include <cstdio>

#include "chart.h"
#include "views.h"

namespace authmng_report {
namespace {

constexpr char kStyle[] = R"(
body{font:14px/1.4 system-ui,sans-serif;margin:24px;color:#222;max-width:1000px}
h1{font-size:22px;margin:0 0 4px}h2{font-size:18px;margin:28px 0 8px;border-bottom:1px solid #ccc}
.meta{color:#666}figure{margin:14px 0}figcaption{font-weight:600;margin-bottom:2px}
svg{width:100%;height:auto;background:#fcfcfc}
.axis{stroke:#444}.grid{stroke:#e4e4e4}.reference{stroke:#d62728;stroke-dasharray:5 4}
.tick{font-size:11px;fill:#555}.line{stroke-width:1.6}
.legend span{margin-right:14px;white-space:nowrap}.legend i{display:inline-block;width:10px;
height:10px;margin-right:4px}.legend .unit{color:#777}
#wrong li{margin:4px 0}.bad{color:#b00;font-weight:600}
table{border-collapse:collapse;font-size:12px;width:100%}
th,td{border-bottom:1px solid #eee;padding:2px 6px;text-align:left;white-space:nowrap}
td.num{text-align:right}.scroll{max-height:480px;overflow:auto;border:1px solid #ddd}
form.filter input{width:130px;margin-right:8px}form.filter .count{color:#666}
)";

// Filters the rows of the abnormal tables by the inputs of their forms.
constexpr char kScript[] = R"(
document.querySelectorAll('form.filter').forEach(function (form) {
  var table = document.getElementById(form.getAttribute('data-table'));
  var rows = Array.prototype.slice.call(table.tBodies[0].rows);
  var inputs = Array.prototype.slice.call(form.querySelectorAll('input'));
  var count = form.querySelector('.count');
  function apply() {
    var shown = 0;
    rows.forEach(function (row) {
      var ok = inputs.every(function (input) {
        var want = input.value.trim().toLowerCase();
        if (!want) return true;
        var cell = row.cells[+input.getAttribute('data-col')].textContent.toLowerCase();
        var op = input.getAttribute('data-op');
        if (op === 'from') return cell >= want;
        if (op === 'to') return cell.slice(0, want.length) <= want;
        return cell.indexOf(want) >= 0;
      });
      row.hidden = !ok;
      if (ok) shown++;
    });
    count.textContent = shown + ' of ' + rows.length + ' records shown';
  }
  form.addEventListener('input', apply);
  form.addEventListener('submit', function (e) { e.preventDefault(); });
  apply();
});
)";

std::string e(const std::string &text) {
    return html_escape(text);
}

std::string number(double v, int decimals = 0) {
    char text[48];
    snprintf(text, sizeof text, "%.*f", decimals, v);
    return text;
}

std::string when(int64_t t) {
    std::string iso = iso_time(t);
    return iso.substr(0, 10) + " " + iso.substr(11, 5);
}

std::string episodes_list(const Model &model) {
    const Settings &s = model.settings;
    std::string out = "<section id=\"wrong\"><h2>What went wrong when</h2>";
    out += "<p class=\"meta\">Intervals with at least " + number(s.min_auths) +
           " authentications and a success rate below " +
           number(s.threshold, s.threshold == static_cast<int>(s.threshold) ? 0 : 1) +
           "%, merged into episodes; user escapes and redirect-side restarts from the escape "
           "log.</p>";
    if (model.episodes.empty()) return out + "<p>Nothing went wrong.</p></section>\n";
    out += "<ol>";
    for (const Episode &ep : model.episodes) {
        out += "<li><b>" + e(when(ep.start)) + " to " + e(when(ep.end)) + "</b> " + e(ep.device) +
               ", " + e(client_title(ep.client)) + ": <span class=\"bad\">" + e(ep.what) +
               "</span>";
        if (ep.log_entries > 0) {
            out += " (" + number(ep.log_entries) + " escape-log entries): " + e(ep.cause);
        } else {
            out += ", down to " + number(ep.worst_rate, 1) + "% (" + number(ep.failures) + " of " +
                   number(ep.auths) +
                   " failed); mostly: " + e(ep.cause.empty() ? "cause not recorded" : ep.cause);
        }
        out += "</li>";
    }
    return out + "</ol></section>\n";
}

std::string abnormal_table(const Device &device, const std::string &id) {
    static const char *const kHeads[] = {"time", "client", "user",  "MAC",
                                         "IP",   "event",  "cause", "auth ms"};
    std::string out = "<h3>Abnormal authentications</h3>";
    out += "<form class=\"filter\" data-table=\"" + id + "\">" +
           "user <input data-col=\"2\" name=\"user\"> MAC <input data-col=\"3\" name=\"mac\"> "
           "cause <input data-col=\"6\" name=\"cause\"> from <input data-col=\"0\" "
           "data-op=\"from\" name=\"from\" placeholder=\"2026-03-09 10:00\"> to <input "
           "data-col=\"0\" data-op=\"to\" name=\"to\" placeholder=\"2026-03-09 11\"> "
           "<span class=\"count\"></span></form>";
    out += "<div class=\"scroll\"><table class=\"records\" id=\"" + id + "\"><thead><tr>";
    for (const char *h : kHeads) out += std::string("<th>") + h + "</th>";
    for (const char *step : kStepNames) out += std::string("<th>") + step + " ms</th>";
    out += "</tr></thead><tbody>";
    for (const AbnormalRecord &r : device.abnormal) {
        out += "<tr><td>" + e(when(r.time)) + "</td><td>" + e(r.client) + "</td><td>" + e(r.user) +
               "</td><td>" + e(r.mac) + "</td><td>" + e(r.ip) + "</td><td>" + e(r.event) +
               "</td><td>" + e(r.cause) + "</td><td class=\"num\">" + number(r.auth_time) + "</td>";
        for (double step : r.steps) out += "<td class=\"num\">" + number(step) + "</td>";
        out += "</tr>\n";
    }
    return out + "</tbody></table></div>\n";
}

std::string device_section(const Model &model, const Device &device, size_t index) {
    std::string prefix = "d" + std::to_string(index) + "-";
    std::string out = "<section class=\"device\"><h2>" + e(device.label) + "</h2>";
    out += "<details><summary>" + std::to_string(device.sources.size()) + " file(s) read";
    if (!device.notes.empty()) out += ", " + std::to_string(device.notes.size()) + " note(s)";
    out += "</summary><ul>";
    for (const std::string &s : device.sources) out += "<li>" + e(s) + "</li>";
    for (const std::string &n : device.notes) out += "<li class=\"bad\">" + e(n) + "</li>";
    out += "</ul></details>";
    for (const Chart &chart : device_charts(device, model.settings, prefix)) {
        out += render_chart(chart);
    }
    if (!device.abnormal.empty()) out += abnormal_table(device, prefix + "abnormal");
    return out + "</section>\n";
}

}  // namespace

std::string render_report(const Model &model) {
    int64_t from = 0, to = 0;
    for (const Device &d : model.devices) {
        for (const ClientSeries &s : d.clients) {
            for (const Interval &in : s.intervals) {
                if (from == 0 || in.start < from) from = in.start;
                if (in.end > to) to = in.end;
            }
        }
    }
    std::string out =
        "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">"
        "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; "
        "style-src 'unsafe-inline'; script-src 'unsafe-inline'\">"
        "<title>Authentication report</title><style>";
    out += kStyle;
    out += "</style></head><body><h1>Authentication report</h1><p class=\"meta\">";
    for (size_t i = 0; i < model.devices.size(); ++i) {
        out += (i > 0 ? ", " : "") + e(model.devices[i].label);
    }
    if (to > 0) out += " &middot; " + e(when(from)) + " to " + e(when(to)) + " (device local time)";
    out += "</p>\n" + episodes_list(model);
    for (size_t i = 0; i < model.devices.size(); ++i) {
        out += device_section(model, model.devices[i], i);
    }
    out += "<script>";
    out += kScript;
    return out + "</script></body></html>\n";
}

}  // namespace authmng_report
