#include "tidy.h"

#include <cstring>

namespace authmng_report {
namespace {

const char *value_kind(FileKind kind, const std::string &column) {
    if (kind == FileKind::kDot1xDaily) return "total";
    static const char *const kCurrent[] = {"current_online_user", "online_user", "rd_user",
                                           "average_online"};
    for (const char *name : kCurrent) {
        if (column == name) return "current";
    }
    return "interval";
}

std::string line_of(std::initializer_list<std::string> fields) {
    std::string line;
    for (const std::string &f : fields) {
        if (!line.empty()) line += ',';
        line += csv_field(f);
    }
    return line + "\n";
}

void add_statistics(const std::string &device, const ParsedFile &file, std::string *out) {
    bool typed = file.kind == FileKind::kDot1xInterval || file.kind == FileKind::kDot1xDaily;
    const char *client = file.kind == FileKind::kCpp ? "cpp" : typed ? "" : "webauth";
    for (const Row &row : file.rows) {
        std::string time = iso_time(row.time);
        std::string row_client = typed ? row.fields[0] : client;
        for (size_t i = typed ? 1 : 0; i < file.columns.size(); ++i) {
            *out += line_of({device, file.path, row_client, time, file.columns[i], row.fields[i],
                             value_kind(file.kind, file.columns[i])});
        }
    }
}

void add_records(const std::string &device, const ParsedFile &file, std::string *out) {
    if (out->empty()) {
        *out = "device,file,time";
        for (const std::string &c : file.columns) *out += "," + csv_field(c);
        *out += "\n";
    }
    for (const Row &row : file.rows) {
        *out += csv_field(device) + "," + csv_field(file.path) + "," + iso_time(row.time);
        for (const std::string &f : row.fields) *out += "," + csv_field(f);
        *out += "\n";
    }
}

}  // namespace

std::string csv_field(const std::string &text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) return text;
    std::string quoted = "\"";
    for (char c : text) {
        if (c == '"') quoted += '"';
        quoted += c;
    }
    return quoted + "\"";
}

std::vector<std::pair<std::string, std::string>> tidy_tables(const std::vector<TreeFiles> &trees) {
    std::string statistics = "device,file,client,time,measure,value,kind\n";
    std::string dot1x_abnormal, wba_abnormal;
    std::string escape_log = "device,file,time,check,average,sample\n";
    for (const TreeFiles &tree : trees) {
        for (const ParsedFile &file : tree.files) {
            switch (file.kind) {
                case FileKind::kDot1xAbnormal:
                    add_records(tree.label, file, &dot1x_abnormal);
                    break;
                case FileKind::kWebauthAbnormal:
                    add_records(tree.label, file, &wba_abnormal);
                    break;
                case FileKind::kEscapeLog:
                    for (const Row &row : file.rows) {
                        escape_log += line_of({tree.label, file.path, iso_time(row.time),
                                               row.fields[0], row.fields[1], row.fields[2]});
                    }
                    break;
                default:
                    add_statistics(tree.label, file, &statistics);
                    break;
            }
        }
    }
    return {{"statistics.csv", statistics},
            {"abnormal_dot1x.csv", dot1x_abnormal},
            {"abnormal_webauth.csv", wba_abnormal},
            {"escape_log.csv", escape_log}};
}

}  // namespace authmng_report
