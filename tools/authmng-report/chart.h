// Time charts as inline SVG: lines, stacked bars and spans on a time axis.
#ifndef AUTHMNG_REPORT_CHART_H
#define AUTHMNG_REPORT_CHART_H

#include <cstdint>
#include <string>
#include <vector>

namespace authmng_report {

struct Point {
    int64_t start = 0, end = 0;  // civil seconds; a line point sits at end
    double value = 0;
};

struct Series {
    std::string name;
    std::vector<Point> points;
};

enum class ChartStyle {
    kLines,        // one line per series
    kStackedBars,  // bars from start to end, the series stacked in order
    kSpans,        // one lane per series, a bar from start to end per point
};

struct Chart {
    std::string id;     // element id, [a-z0-9-]
    std::string title;  // plain text
    std::string unit;   // of the values, plain text
    ChartStyle style = ChartStyle::kLines;
    std::vector<Series> series;
    double reference = -1;     // a dashed horizontal line at this value, when >= 0
    int64_t from = 0, to = 0;  // the time axis, when wider than the points
    double top = 0;            // the top of the value axis, when given (e.g. 100 %)
};

// <figure class="chart" id=...> with the SVG and an HTML legend; every
// drawn point is an element of class "mark" with a <title> for hovering.
std::string render_chart(const Chart &chart);

// HTML text with &, <, >, " and ' escaped.
std::string html_escape(const std::string &text);

}  // namespace authmng_report

#endif
