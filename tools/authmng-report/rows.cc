#include "rows.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace authmng_report {
namespace {

// The first columns of each header: enough to tell the files apart.
struct KindInfo {
    FileKind kind;
    const char *name;
    const char *header_start;
};
constexpr KindInfo kKinds[] = {
    {FileKind::kDot1xInterval, "dot1x interval", "date,type,current_online_user,"},
    {FileKind::kDot1xDaily, "dot1x daily", "date,type,auth total number,"},
    {FileKind::kDot1xAbnormal, "dot1x abnormal", "date,username,mac,ip,auth_time,"},
    {FileKind::kWebauthInterval, "web-auth interval", "date,online_user,auth_count,"},
    {FileKind::kWebauthSub, "web-auth causes and steps", "date,aaa_reject,"},
    {FileKind::kWebauthAbnormal, "web-auth abnormal", "date,username,mac,ip,ack_time,"},
    {FileKind::kCpp, "cpp", "time,cpp"},
};

bool starts_with(const std::string &text, const char *prefix) {
    return text.compare(0, strlen(prefix), prefix) == 0;
}

bool is_header(const std::string &line) {
    return starts_with(line, "date,") || starts_with(line, "time,");
}

std::string trim(const std::string &text) {
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return std::string();
    size_t last = text.find_last_not_of(" \t");
    return text.substr(first, last - first + 1);
}

std::vector<std::string> split(const std::string &line) {
    std::vector<std::string> fields;
    size_t start = 0;
    for (;;) {
        size_t comma = line.find(',', start);
        fields.push_back(trim(line.substr(start, comma - start)));
        if (comma == std::string::npos) break;
        start = comma + 1;
    }
    return fields;
}

std::vector<std::string> lines_of(const std::string &text) {
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        bool complete = end != std::string::npos;
        if (!complete) end = text.size();
        std::string line = text.substr(start, end - start);
        if (!line.empty() && line.back() == '\r') line.pop_back();
        // A last line without its line end was cut while being written.
        lines.push_back(complete ? line : line + '\n');
        start = end + 1;
    }
    return lines;
}

// "2687ms" -> "2687", "100min" -> "100"; other text unchanged.
std::string without_unit(const std::string &field) {
    size_t end = field.size();
    while (end > 0 && field[end - 1] >= 'a' && field[end - 1] <= 'z') --end;
    std::string number = field.substr(0, end);
    return end < field.size() && is_number(number) ? number : field;
}

// Reads an unsigned decimal from *p; false when there is none.
bool read_int(const char **p, int *value) {
    if (**p < '0' || **p > '9') return false;
    long v = 0;
    while (**p >= '0' && **p <= '9' && v < 100000) v = v * 10 + (*(*p)++ - '0');
    *value = static_cast<int>(v);
    return true;
}

int64_t order_key(const MonthDayTime &t) {
    return ((((t.month * 32LL) + t.day) * 24 + t.hour) * 60 + t.minute) * 60 + t.second;
}

// Gives each row its year (see YearRule) and its civil time.
void assign_years(const std::vector<MonthDayTime> &dates, const YearRule &years,
                  std::vector<Row> *rows) {
    if (rows->empty()) return;
    std::vector<int> year(rows->size());
    if (years.first_year != 0) {
        year[0] = years.first_year;
        for (size_t i = 1; i < rows->size(); ++i) {
            year[i] = year[i - 1] + (order_key(dates[i]) < order_key(dates[i - 1]) ? 1 : 0);
        }
    } else {
        time_t mtime = static_cast<time_t>(years.mtime);
        struct tm tm = {};
        localtime_r(&mtime, &tm);
        MonthDayTime file_time{tm.tm_mon + 1, tm.tm_mday, 23, 59, 59};
        size_t last = rows->size() - 1;
        year[last] = tm.tm_year + 1900 - (order_key(dates[last]) > order_key(file_time) ? 1 : 0);
        for (size_t i = last; i-- > 0;) {
            year[i] = year[i + 1] - (order_key(dates[i]) > order_key(dates[i + 1]) ? 1 : 0);
        }
    }
    for (size_t i = 0; i < rows->size(); ++i) {
        const MonthDayTime &d = dates[i];
        (*rows)[i].time = civil_seconds(year[i], d.month, d.day, d.hour, d.minute, d.second);
    }
}

bool parse_ctime(const std::string &line, int64_t *civil) {
    static const char kMonths[] = "JanFebMarAprMayJunJulAugSepOctNovDec";
    char weekday[4], month[4];
    int day, hour, minute, second, year;
    if (sscanf(line.c_str(), "%3s %3s %d %d:%d:%d %d", weekday, month, &day, &hour, &minute,
               &second, &year) != 7) {
        return false;
    }
    const char *at = strstr(kMonths, month);
    if (at == nullptr || strlen(month) != 3 || (at - kMonths) % 3 != 0) return false;
    int m = static_cast<int>(at - kMonths) / 3 + 1;
    if (day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60 || year < 1970 ||
        year > 9999) {
        return false;
    }
    *civil = civil_seconds(year, m, day, hour, minute, second);
    return true;
}

// log.txt: a ctime line, then "<check>: <average> <sample>".
ParsedFile parse_escape_log(const std::string &path, const std::string &text) {
    ParsedFile file;
    file.kind = FileKind::kEscapeLog;
    file.path = path;
    file.columns = {"check", "average", "sample"};
    int64_t pending = -1;
    for (const std::string &line : lines_of(text)) {
        int64_t when = 0;
        if (parse_ctime(line, &when)) {
            if (pending >= 0) ++file.cut_rows;
            pending = when;
            continue;
        }
        char check[16];
        unsigned long average = 0, sample = 0;
        char end = 0;
        if (pending >= 0 && line.find('\n') == std::string::npos &&
            sscanf(line.c_str(), "%15[a-z]: %lu %lu%c", check, &average, &sample, &end) == 3) {
            Row row;
            row.time = pending;
            row.fields = {check, std::to_string(average), std::to_string(sample)};
            file.rows.push_back(row);
        } else if (!line.empty()) {
            ++file.cut_rows;
        }
        pending = -1;
    }
    if (pending >= 0) ++file.cut_rows;
    return file;
}

}  // namespace

const char *kind_name(FileKind kind) {
    for (const KindInfo &k : kKinds) {
        if (k.kind == kind) return k.name;
    }
    return kind == FileKind::kEscapeLog ? "escape log" : "unknown";
}

FileKind detect_kind(const std::string &file_name, const std::string &first_line) {
    if (file_name == "log.txt") return FileKind::kEscapeLog;
    for (const KindInfo &k : kKinds) {
        if (starts_with(first_line, k.header_start)) return k.kind;
    }
    return FileKind::kUnknown;
}

int64_t civil_seconds(int year, int month, int day, int hour, int minute, int second) {
    // Days from 1970-01-01 of a proleptic Gregorian date.
    int64_t y = year - (month <= 2 ? 1 : 0);
    int64_t era = (y >= 0 ? y : y - 399) / 400;
    int64_t yoe = y - era * 400;
    int64_t doy = (153 * (month + (month > 2 ? -3 : 9)) + 2) / 5 + day - 1;
    int64_t doe = yoe * 365 + yoe / 4 - yoe / 100 + doy;
    int64_t days = era * 146097 + doe - 719468;
    return days * 86400 + hour * 3600 + minute * 60 + second;
}

std::string iso_time(int64_t civil) {
    time_t t = static_cast<time_t>(civil);
    struct tm tm = {};
    gmtime_r(&t, &tm);
    char text[80];
    snprintf(text, sizeof text, "%04d-%02d-%02dT%02d:%02d:%02d", tm.tm_year + 1900, tm.tm_mon + 1,
             tm.tm_mday, tm.tm_hour, tm.tm_min, tm.tm_sec);
    return text;
}

int civil_year(int64_t civil) {
    time_t t = static_cast<time_t>(civil);
    struct tm tm = {};
    gmtime_r(&t, &tm);
    return tm.tm_year + 1900;
}

bool parse_month_day(const std::string &text, MonthDayTime *out) {
    const char *p = text.c_str();
    MonthDayTime t;
    bool ok = read_int(&p, &t.month) && *p++ == '.' && read_int(&p, &t.day) && *p++ == ' ' &&
              read_int(&p, &t.hour) && *p++ == ':' && read_int(&p, &t.minute) && *p++ == ':' &&
              read_int(&p, &t.second) && *p == '\0';
    if (!ok || t.month < 1 || t.month > 12 || t.day < 1 || t.day > 31 || t.hour > 23 ||
        t.minute > 59 || t.second > 60) {
        return false;
    }
    *out = t;
    return true;
}

double number_of(const std::string &field) {
    return is_number(field) ? strtod(field.c_str(), nullptr) : 0;
}

bool is_number(const std::string &field) {
    size_t i = (!field.empty() && field[0] == '-') ? 1 : 0;
    if (i == field.size()) return false;
    for (; i < field.size(); ++i) {
        if (field[i] < '0' || field[i] > '9') return false;
    }
    return true;
}

ParsedFile parse_file(FileKind kind, const std::string &path, const std::string &text,
                      const YearRule &years) {
    if (kind == FileKind::kEscapeLog) return parse_escape_log(path, text);
    ParsedFile file;
    file.kind = kind;
    file.path = path;
    bool units = kind == FileKind::kWebauthInterval || kind == FileKind::kWebauthSub;
    bool named = kind == FileKind::kDot1xAbnormal || kind == FileKind::kWebauthAbnormal;
    std::vector<MonthDayTime> dates;
    bool first = true;
    int segment = 0;
    for (const std::string &line : lines_of(text)) {
        if (line.empty()) continue;
        if (is_header(line)) {
            std::vector<std::string> columns = split(line);
            columns.erase(columns.begin());
            if (file.columns.empty()) file.columns = columns;
            if (!first) {
                ++file.restarts;
                ++segment;
            }
            first = false;
            continue;
        }
        if (first) file.header_missing = true;
        first = false;
        std::vector<std::string> fields = split(line);
        MonthDayTime date;
        if (fields.empty() || !parse_month_day(fields[0], &date)) {
            ++file.cut_rows;
            continue;
        }
        fields.erase(fields.begin());
        // A user name may hold commas: the columns after it never do.
        if (named && !file.columns.empty() && fields.size() > file.columns.size()) {
            size_t extra = fields.size() - file.columns.size();
            for (size_t i = 1; i <= extra; ++i) fields[0] += "," + fields[i];
            fields.erase(fields.begin() + 1, fields.begin() + 1 + static_cast<long>(extra));
        }
        if (file.columns.empty() || fields.size() != file.columns.size() ||
            line.find('\n') != std::string::npos) {
            ++file.cut_rows;
            continue;
        }
        if (units) {
            for (std::string &f : fields) f = without_unit(f);
        }
        Row row;
        row.fields = fields;
        row.segment = segment;
        file.rows.push_back(row);
        dates.push_back(date);
    }
    assign_years(dates, years, &file.rows);
    return file;
}

}  // namespace authmng_report
