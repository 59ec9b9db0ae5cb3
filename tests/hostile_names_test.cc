// User names built to attack the operator: CSV field and row forgery,
// spreadsheet formulas, terminal escape sequences. Every output that shows
// a name prints it escaped for its kind; each CSV file still parses into
// its columns with a strict parser. Ordinary names print as they are.
#include <unistd.h>

#include <cstdio>
#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

struct Name {
    const char *raw;
    const char *terminal;  // displays, summaries, debug lines
    const char *csv;       // the abnormal files
};

const Name kNames[] = {
    {"a,b", "a,b", "\"a,b\""},
    {"say \"hi\"", "say \"hi\"", "\"say \"\"hi\"\"\""},
    {"x\r\n01.01 00:00:00,forged", "x\\x0d\\x0a01.01 00:00:00,forged",
     "\"x\\x0d\\x0a01.01 00:00:00,forged\""},
    {"\x1b[2J\x1b]0;owned\x07", "\\x1b[2J\\x1b]0;owned\\x07", "\"\\x1b[2J\\x1b]0;owned\\x07\""},
    {"=HYPERLINK(\"http://x\")", "=HYPERLINK(\"http://x\")", "\"'=HYPERLINK(\"\"http://x\"\")\""},
    {"@SUM(A1)", "@SUM(A1)", "'@SUM(A1)"},
    {"+cmd|x", "+cmd|x", "'+cmd|x"},
    {"-x", "-x", "'-x"},
    {"\tTAB", "\\x09TAB", "\"'\\x09TAB\""},
    {"del\x7f", "del\\x7f", "\"del\\x7f\""},
    {"+8613800000000", "+8613800000000", "+8613800000000"},
    {"-5", "-5", "-5"},
    {"o'neil.smith@corp-1/x", "o'neil.smith@corp-1/x", "o'neil.smith@corp-1/x"},
};

// Ten characters: the display's name column is at least that wide.
const std::string kReference = "reference1";

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    size_t at = text.find(from);
    if (at != std::string::npos) text.replace(at, from.size(), to);
    return text;
}

// Whether every row of a CSV file parses strictly into as many columns as
// its header, and the file has rows lines in all.
bool parses_into_columns(const std::string &path, size_t rows) {
    std::string command =
        "python3 -c 'import csv,sys\n"
        "rows = list(csv.reader(open(sys.argv[1], newline=\"\"), strict=True))\n"
        "sys.exit(len(rows) != int(sys.argv[2]) or any(len(r) != len(rows[0]) for r in rows))' " +
        path + " " + std::to_string(rows);
    return system(command.c_str()) == 0;
}

class HostileNamesTest : public AuthmngTest {
protected:
    // Queues one abnormal record of the client under name, shows the list
    // and writes the abnormal file: what the display printed and what the
    // write added to the file.
    std::pair<std::string, std::string> queue_show_write(int32_t client, const char *name) {
        // 802.1X: a slow success (abnormal, and a debug line with the name);
        // web-auth: a failure.
        authmng_auth_info_t info = event_record(client, 0, client == AUTHMNG_CLIENT_WBA ? 3 : 0);
        info.auth_time = 5000;
        snprintf(info.username, sizeof info.username, "%s", name);
        authmng_notify_auth_info(&info);
        take_cli();
        const bool web = client == AUTHMNG_CLIENT_WBA;
        web ? authmng_show_webauth_statistic_abnormal()
            : authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
        const std::string file = flash_path(web ? "/security/authmanage/webauth/wba_abnormal.csv"
                                                : "/security/authmanage/dot1x/dot1x_abnormal.csv");
        const size_t before = read_file(file).size();
        web ? authmng_write_webauth_abnormal_record_to_file()
            : authmng_write_dot1x_abnormal_record_to_file();
        return {take_cli(), read_file(file).substr(before)};
    }

    // Each name against the reference name in the display and the file;
    // the debug lines are checked by the caller.
    void check_every_sink(int32_t client, const std::string &file) {
        queue_show_write(client, kReference.c_str());  // the file and its header
        for (const Name &name : kNames) {
            SCOPED_TRACE(name.terminal);
            auto reference = queue_show_write(client, kReference.c_str());
            auto hostile = queue_show_write(client, name.raw);
            char column[300];  // the 802.1X table pads names to 10 columns
            snprintf(column, sizeof column, client == AUTHMNG_CLIENT_WBA ? "%s" : "%-10s",
                     name.terminal);
            EXPECT_NE(hostile.second, "");
            EXPECT_EQ(hostile.first, replaced(reference.first, kReference, column));
            EXPECT_EQ(hostile.second, replaced(reference.second, "," + kReference + ",",
                                               "," + std::string(name.csv) + ","));
        }
        if (access("/usr/bin/python3", X_OK) != 0) return;  // no strict parser at hand
        EXPECT_TRUE(parses_into_columns(flash_path(file), 2 + 2 * std::size(kNames)));
    }
};

TEST_F(HostileNamesTest, Dot1xDisplaysFilesAndDebugLines) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    check_every_sink(AUTHMNG_CLIENT_DOT1X, "/security/authmanage/dot1x/dot1x_abnormal.csv");
    const std::string log = take_syslog();
    for (const Name &name : kNames) {
        EXPECT_NE(log.find("] user(" + std::string(name.terminal) + ")1x auth time: 5000.\n"),
                  std::string::npos)
            << name.terminal;
    }
    for (char c : log) EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << int(c);
}

TEST_F(HostileNamesTest, WebauthDisplaysAndFiles) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    check_every_sink(AUTHMNG_CLIENT_WBA, "/security/authmanage/webauth/wba_abnormal.csv");
}

}  // namespace
