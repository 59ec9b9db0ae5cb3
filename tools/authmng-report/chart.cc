#include "chart.h"

#include <algorithm>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <map>

#include "rows.h"

namespace authmng_report {
namespace {

constexpr double kWidth = 960, kHeight = 230;
constexpr double kLeft = 56, kRight = 12, kTop = 10, kBottom = 28;
constexpr double kLaneHeight = 26;
constexpr const char *kColors[] = {"#1f77b4", "#d62728", "#2ca02c", "#ff7f0e", "#9467bd",
                                   "#8c564b", "#e377c2", "#17becf", "#bcbd22", "#7f7f7f"};

const char *color(size_t i) {
    return kColors[i % (sizeof kColors / sizeof kColors[0])];
}

std::string fmt(const char *format, ...) __attribute__((format(printf, 1, 2)));
std::string fmt(const char *format, ...) {
    char text[192];
    va_list ap;
    va_start(ap, format);
    vsnprintf(text, sizeof text, format, ap);
    va_end(ap);
    return text;
}

std::string number_text(double v) {
    char text[32];
    if (std::fabs(v - std::round(v)) < 1e-9) {
        snprintf(text, sizeof text, "%.0f", v);
    } else {
        snprintf(text, sizeof text, "%.1f", v);
    }
    return text;
}

// "03-09 10:30" of civil seconds.
std::string short_time(int64_t t) {
    std::string iso = iso_time(t);
    return iso.substr(5, 5) + " " + iso.substr(11, 5);
}

// A round step giving at most about five ticks up to top.
double nice_step(double top) {
    double raw = top / 5;
    double magnitude = std::pow(10, std::floor(std::log10(raw)));
    for (double m : {1.0, 2.0, 5.0, 10.0}) {
        if (m * magnitude >= raw) return m * magnitude;
    }
    return 10 * magnitude;
}

struct Frame {
    int64_t from = 0, to = 1;
    double top = 1;
    double height = kHeight;
    double x(int64_t t) const {
        return kLeft + (kWidth - kLeft - kRight) * static_cast<double>(t - from) /
                           static_cast<double>(to - from);
    }
    double y(double v) const { return height - kBottom - (height - kTop - kBottom) * v / top; }
};

std::string time_axis(const Frame &f) {
    static const int64_t kSteps[] = {3600, 3 * 3600, 6 * 3600, 12 * 3600, 86400, 7 * 86400};
    int64_t step = kSteps[0];
    for (int64_t s : kSteps) {
        step = s;
        if ((f.to - f.from) / s <= 10) break;
    }
    std::string out = fmt("<line class=\"axis\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>",
                          kLeft, f.height - kBottom, kWidth - kRight, f.height - kBottom);
    for (int64_t t = (f.from + step - 1) / step * step; t <= f.to; t += step) {
        out += fmt("<line class=\"grid\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>", f.x(t),
                   kTop, f.x(t), f.height - kBottom);
        out += fmt("<text class=\"tick\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"middle\">", f.x(t),
                   f.height - kBottom + 16) +
               html_escape(short_time(t)) + "</text>";
    }
    return out;
}

std::string value_axis(const Frame &f) {
    std::string out;
    double step = nice_step(f.top);
    for (double v = 0; v <= f.top + 1e-9; v += step) {
        out += fmt("<line class=\"grid\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>", kLeft,
                   f.y(v), kWidth - kRight, f.y(v));
        out += fmt("<text class=\"tick\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">", kLeft - 4,
                   f.y(v) + 4) +
               number_text(v) + "</text>";
    }
    return out;
}

std::string mark_title(const Chart &chart, const Series &s, const Point &p) {
    std::string when = chart.style == ChartStyle::kLines
                           ? short_time(p.end)
                           : short_time(p.start) + " to " + short_time(p.end);
    std::string value = chart.style == ChartStyle::kSpans ? "" : ": " + number_text(p.value);
    return "<title>" + html_escape(s.name + ", " + when + value + " " + chart.unit) + "</title>";
}

std::string draw_lines(const Chart &chart, const Frame &f) {
    std::string out;
    for (size_t i = 0; i < chart.series.size(); ++i) {
        const Series &s = chart.series[i];
        if (s.points.empty()) continue;
        std::string path;
        for (const Point &p : s.points) path += fmt("%.1f,%.1f ", f.x(p.end), f.y(p.value));
        out += "<polyline class=\"line\" fill=\"none\" stroke=\"" + std::string(color(i)) +
               "\" points=\"" + path + "\"/>";
        for (const Point &p : s.points) {
            out += fmt("<circle class=\"mark\" r=\"2.2\" cx=\"%.1f\" cy=\"%.1f\" fill=\"",
                       f.x(p.end), f.y(p.value)) +
                   color(i) + "\">" + mark_title(chart, s, p) + "</circle>";
        }
    }
    return out;
}

std::string draw_bars(const Chart &chart, const Frame &f) {
    std::string out;
    std::map<std::pair<int64_t, int64_t>, double> base;
    for (size_t i = 0; i < chart.series.size(); ++i) {
        const Series &s = chart.series[i];
        for (const Point &p : s.points) {
            if (p.value <= 0) continue;
            double &below = base[{p.start, p.end}];
            double x = f.x(p.start) + 0.5;
            double w = std::max(1.0, f.x(p.end) - f.x(p.start) - 1.0);
            out += fmt("<rect class=\"mark\" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"",
                       x, f.y(below + p.value), w, f.y(below) - f.y(below + p.value)) +
                   " fill=\"" + color(i) + "\">" + mark_title(chart, s, p) + "</rect>";
            below += p.value;
        }
    }
    return out;
}

std::string draw_spans(const Chart &chart, const Frame &f) {
    std::string out;
    for (size_t i = 0; i < chart.series.size(); ++i) {
        const Series &s = chart.series[i];
        double y = kTop + static_cast<double>(i) * kLaneHeight;
        out += fmt("<text class=\"tick\" x=\"%.1f\" y=\"%.1f\" text-anchor=\"end\">", kLeft - 4,
                   y + kLaneHeight / 2 + 4) +
               html_escape(s.name.substr(0, 8)) + "</text>";
        for (const Point &p : s.points) {
            double w = std::max(2.0, f.x(p.end) - f.x(p.start));
            out += fmt("<rect class=\"mark\" x=\"%.1f\" y=\"%.1f\" width=\"%.1f\" height=\"%.1f\"",
                       f.x(p.start), y + 3, w, kLaneHeight - 6) +
                   " fill=\"" + color(i) + "\">" + mark_title(chart, s, p) + "</rect>";
        }
    }
    return out;
}

}  // namespace

std::string html_escape(const std::string &text) {
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\'':
                out += "&#39;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

std::string render_chart(const Chart &chart) {
    Frame f;
    bool any = false;
    std::map<std::pair<int64_t, int64_t>, double> stacks;
    for (const Series &s : chart.series) {
        for (const Point &p : s.points) {
            int64_t start = chart.style == ChartStyle::kLines ? p.end : p.start;
            if (!any || start < f.from) f.from = start;
            if (!any || p.end > f.to) f.to = p.end;
            any = true;
            double top = chart.style == ChartStyle::kStackedBars
                             ? (stacks[{p.start, p.end}] += std::max(0.0, p.value))
                             : p.value;
            f.top = std::max(f.top, top);
        }
    }
    if (chart.to > chart.from) {
        f.from = any ? std::min(f.from, chart.from) : chart.from;
        f.to = any ? std::max(f.to, chart.to) : chart.to;
    }
    if (f.to <= f.from) f.to = f.from + 3600;
    if (chart.reference >= 0) f.top = std::max(f.top, chart.reference);
    f.top = chart.top > 0
                ? chart.top
                : nice_step(f.top * 1.05) * std::ceil(f.top * 1.05 / nice_step(f.top * 1.05));
    if (chart.style == ChartStyle::kSpans) {
        f.height = kTop + kBottom + kLaneHeight * static_cast<double>(chart.series.size());
    }

    std::string out = "<figure class=\"chart\" id=\"" + html_escape(chart.id) + "\"><figcaption>" +
                      html_escape(chart.title) + "</figcaption>";
    out += fmt("<svg viewBox=\"0 0 %.0f %.0f\" role=\"img\">", kWidth, f.height);
    out += time_axis(f);
    if (chart.style != ChartStyle::kSpans) out += value_axis(f);
    if (chart.reference >= 0) {
        out += fmt("<line class=\"reference\" x1=\"%.1f\" y1=\"%.1f\" x2=\"%.1f\" y2=\"%.1f\"/>",
                   kLeft, f.y(chart.reference), kWidth - kRight, f.y(chart.reference));
    }
    switch (chart.style) {
        case ChartStyle::kLines:
            out += draw_lines(chart, f);
            break;
        case ChartStyle::kStackedBars:
            out += draw_bars(chart, f);
            break;
        case ChartStyle::kSpans:
            out += draw_spans(chart, f);
            break;
    }
    out += "</svg><div class=\"legend\">";
    for (size_t i = 0; i < chart.series.size(); ++i) {
        out += std::string("<span><i style=\"background:") + color(i) + "\"></i>" +
               html_escape(chart.series[i].name) + "</span>";
    }
    if (!chart.unit.empty()) out += "<span class=\"unit\">" + html_escape(chart.unit) + "</span>";
    return out + "</div></figure>\n";
}

}  // namespace authmng_report
