// User names built to attack the operator: CSV field and row forgery,
// spreadsheet formulas, terminal escape sequences. Every output that shows
// a name prints it escaped for its kind, and each CSV file still parses into
// its columns with a strict parser. Ordinary names print as they are.
#include <unistd.h>

#include <cstdio>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const struct {
    const char *raw, *terminal, *csv;
} kNames[] = {
    {"a,b", "a,b", "\"a,b\""},
    {"say \"hi\"", "say \"hi\"", "\"say \"\"hi\"\"\""},
    {"x\r\n01.01 00:00:00,y", "x\\x0d\\x0a01.01 00:00:00,y", "\"x\\x0d\\x0a01.01 00:00:00,y\""},
    {"\x1b[2J\x1b]0;owned\x07", "\\x1b[2J\\x1b]0;owned\\x07", "\"\\x1b[2J\\x1b]0;owned\\x07\""},
    {"=HYPERLINK(\"http://x\")", "=HYPERLINK(\"http://x\")", "\"'=HYPERLINK(\"\"http://x\"\")\""},
    {"@SUM(A1)", "@SUM(A1)", "'@SUM(A1)"},
    {"+cmd|x", "+cmd|x", "'+cmd|x"},
    {"-x", "-x", "'-x"},
    {"\tTAB", "\\x09TAB", "\"'\\x09TAB\""},
    {"del\x7f", "del\\x7f", "\"del\\x7f\""},
    {"+8613800000000", "+8613800000000", "+8613800000000"},
    {"-5", "-5", "-5"},
    {"o'neil.smith@corp-1/x", "o'neil.smith@corp-1/x", "o'neil.smith@corp-1/x"}};

// Ten characters, as wide as the 802.1X table's name column.
const std::string kReference = "reference1";

std::string replaced(std::string text, const std::string &from, const std::string &to) {
    size_t at = text.find(from);
    return at == std::string::npos ? text : text.replace(at, from.size(), to);
}

class HostileNamesTest : public AuthmngTest {
protected:
    // Each name against the reference name, in the abnormal display and in
    // what the abnormal file's write added; then the whole file parses.
    void check_displays_and_files(int32_t client) {
        const bool web = client == AUTHMNG_CLIENT_WBA;
        const std::string file = flash_path(web ? "/security/authmanage/webauth/wba_abnormal.csv"
                                                : "/security/authmanage/dot1x/dot1x_abnormal.csv");
        // Queues an abnormal record under name (802.1X: a slow success, which
        // also logs the name; web-auth: a failure), shows the list, writes.
        auto queue_show_write = [&](const char *name) {
            authmng_auth_info_t info = event_record(client, 0, web ? 3 : 0);
            info.auth_time = 5000;
            snprintf(info.username, sizeof info.username, "%s", name);
            authmng_notify_auth_info(&info);
            take_cli();
            web ? authmng_show_webauth_statistic_abnormal()
                : authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
            const size_t before = read_file(file).size();
            web ? authmng_write_webauth_abnormal_record_to_file()
                : authmng_write_dot1x_abnormal_record_to_file();
            return std::make_pair(take_cli(), read_file(file).substr(before));
        };
        queue_show_write(kReference.c_str());  // the file and its header
        for (const auto &name : kNames) {
            auto reference = queue_show_write(kReference.c_str());
            auto hostile = queue_show_write(name.raw);
            char column[300];
            snprintf(column, sizeof column, web ? "%s" : "%-10s", name.terminal);
            EXPECT_EQ(hostile.first, replaced(reference.first, kReference, column));
            EXPECT_EQ(hostile.second, replaced(reference.second, "," + kReference + ",",
                                               "," + std::string(name.csv) + ","));
        }
        if (access("/usr/bin/python3", X_OK) != 0) return;  // no strict parser at hand
        std::string parse =
            "python3 -c 'import csv,sys\n"
            "rows = list(csv.reader(open(sys.argv[1], newline=\"\"), strict=True))\n"
            "sys.exit(len(rows) != int(sys.argv[2]) or any(len(r) != len(rows[0]) for r in "
            "rows))' " +
            file + " " + std::to_string(2 + 2 * std::size(kNames));
        EXPECT_EQ(system(parse.c_str()), 0);
    }
};

TEST_F(HostileNamesTest, Dot1xDisplaysFilesAndDebugLines) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    check_displays_and_files(AUTHMNG_CLIENT_DOT1X);
    const std::string log = take_syslog();
    for (const auto &name : kNames) {
        EXPECT_NE(log.find("] user(" + std::string(name.terminal) + ")1x auth time: 5000.\n"),
                  std::string::npos);
    }
    for (char c : log) EXPECT_TRUE(c == '\n' || static_cast<unsigned char>(c) >= 0x20) << int(c);
}

TEST_F(HostileNamesTest, WebauthDisplaysAndFiles) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    check_displays_and_files(AUTHMNG_CLIENT_WBA);
}

}  // namespace
