// Reading a device's statistic, abnormal, escape-log and cpp files into
// rows: the kind of a file from its header, the fields of a row without
// blanks or units, and row dates (which carry no year) with their year.
#ifndef AUTHMNG_REPORT_ROWS_H
#define AUTHMNG_REPORT_ROWS_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace authmng_report {

enum class FileKind {
    kDot1xInterval,    // temporary dot1x_statistic.csv
    kDot1xDaily,       // flash dot1x_statistic.csv
    kDot1xAbnormal,    // dot1x_abnormal.csv
    kWebauthInterval,  // wba_statistic.csv
    kWebauthSub,       // wba_substatistic.csv
    kWebauthAbnormal,  // wba_abnormal.csv
    kEscapeLog,        // log.txt
    kCpp,              // cpp.csv
    kUnknown,
};

// The name used in messages and in the tidy files, e.g. "dot1x interval".
const char *kind_name(FileKind kind);

// The kind of a file from its first line (log.txt, which has no header,
// from its name). kUnknown for anything else.
FileKind detect_kind(const std::string &file_name, const std::string &first_line);

// Seconds of a local date and time counted as if it were UTC: dates compare,
// subtract and print without any time zone.
int64_t civil_seconds(int year, int month, int day, int hour, int minute, int second);
// YYYY-MM-DDTHH:MM:SS of civil seconds.
std::string iso_time(int64_t civil);
// The year of civil seconds.
int civil_year(int64_t civil);

// A row date without a year, "03.07 01:00:05" or "3.7 1:0:5".
struct MonthDayTime {
    int month = 0, day = 0, hour = 0, minute = 0, second = 0;
};
bool parse_month_day(const std::string &text, MonthDayTime *out);

struct Row {
    int64_t time = 0;                 // civil seconds, year included
    std::vector<std::string> fields;  // one per column, date excluded, trimmed, no units
    int segment = 0;                  // raised by every header after the first
};

struct ParsedFile {
    FileKind kind = FileKind::kUnknown;
    std::string path;
    std::vector<std::string> columns;  // header columns, date excluded
    std::vector<Row> rows;
    int restarts = 0;  // headers met after the first line: the file was restarted
    int cut_rows = 0;  // rows with too few fields, or an unreadable date, skipped
    bool header_missing = false;
};

// How the year of rows is found: the year of the last row is that of the
// file's modification time (rows walked backwards, a year less at each
// step back over New Year); or, when given, the year of the first row
// (walked forwards).
struct YearRule {
    int64_t mtime = 0;   // seconds since the epoch
    int first_year = 0;  // --year, 0 when not given
};

// Parses the text of a file of a known kind. Never fails: what cannot be
// read is counted in cut_rows.
ParsedFile parse_file(FileKind kind, const std::string &path, const std::string &text,
                      const YearRule &years);

// A field as a number (decimal, optional sign); 0 when it is not one.
double number_of(const std::string &field);
// Whether a field is a number once its unit is taken off.
bool is_number(const std::string &field);

}  // namespace authmng_report

#endif
