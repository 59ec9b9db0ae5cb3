// Checks of the command-line framework: the port's parse-node actions walk
// the library's six command groups, attached here at points of their own,
// and the handlers at the ends of the lines leave their values behind.
#include <cstdint>
#include <cstring>
#include <string>

#include "authmng.h"
#include "authmng_platform.h"
#include "capture.h"
#include "checks.h"

namespace port_check {
namespace {

// Attachment points of the groups; the show and debug points stand for a
// client's show_mode and debug_mode.
constexpr int kConfig = 28;
constexpr int kEscapeShow = 6;
constexpr int kEscapeDebug = 17;
constexpr int kDebug = 100;
constexpr int kWebShow = 200;
constexpr int kDot1xShow = 201;

constexpr int kHandled = 0;
constexpr int kRefused = -1;

// The values the commands below change, restored before every check.
struct Value {
    void *where;
    size_t size;
    uint64_t saved;
};
Value g_values[] = {
    {&g_authmng_escape_time, sizeof g_authmng_escape_time, 0},
    {&g_authmng_check_ratio, sizeof g_authmng_check_ratio, 0},
    {&g_authmng_check_redirect_threshold, sizeof g_authmng_check_redirect_threshold, 0},
    {&g_authmng_statistic_enable, sizeof g_authmng_statistic_enable, 0},
    {&g_authmng_write_file_clock, sizeof g_authmng_write_file_clock, 0},
    {&g_authmng_write_tmp_clock, sizeof g_authmng_write_tmp_clock, 0},
    {&g_authmng_abnormal_record_max, sizeof g_authmng_abnormal_record_max, 0},
    {&g_authmng_lib_event_dbg, sizeof g_authmng_lib_event_dbg, 0},
    {&g_authmng_lib_error_dbg, sizeof g_authmng_lib_error_dbg, 0},
};

// Attaches the six groups once and brings the values back to where the
// library started them.
void prepare() {
    static bool attached = false;
    if (!attached) {
        attached = true;
        for (Value &v : g_values) memcpy(&v.saved, v.where, v.size);
        cli_add_command(kConfig, &Tcfg_authmng_lib_cmd, "cfg authmanage");
        cli_add_command(kEscapeShow, &Texec_authmanage_lib_show_cmd, "show webauth escape info");
        cli_add_command(kWebShow, &Texec_web_authmng_lib_show_cmd, "show authmng info");
        cli_add_command(kDot1xShow, &Texec_1x_authmng_lib_show_cmd, "show authmng info");
        cli_add_command(kDebug, &Tauthmng_proc_debug_group, "authmanage debug");
        cli_add_command(kEscapeDebug, &Tauthmanage_lib_debug_group, "authmanage escape debug");
    }
    for (const Value &v : g_values) memcpy(v.where, &v.saved, v.size);
}

uint64_t read_value(const void *where) {
    for (const Value &v : g_values) {
        if (v.where != where) continue;
        uint64_t value = 0;
        if (v.size == sizeof(uint8_t)) value = *static_cast<const uint8_t *>(where);
        if (v.size == sizeof(uint32_t)) value = *static_cast<const uint32_t *>(where);
        return value;
    }
    return UINT64_MAX;
}

// One typed line: whether the framework runs it, and what it leaves
// behind (a value, or a text in the command output).
struct Line {
    int point;
    const char *words;
    int result;
    const void *value;  // nullptr: no value to look at
    uint64_t expected;
    const char *output;  // nullptr: no output to look for
};

const char *run_lines(const Line *lines, size_t count) {
    prepare();
    for (size_t i = 0; i < count; ++i) {
        const Line &line = lines[i];
        Capture capture;
        int result = authmng_port_check_exec(line.point, line.words);
        if (result != line.result) {
            return fail("\"%s\" at point %d was %s", line.words, line.point,
                        result == kHandled ? "run, not refused" : "refused, not run");
        }
        if (line.value != nullptr && read_value(line.value) != line.expected) {
            return fail("after \"%s\" the value is %llu, not %llu", line.words,
                        static_cast<unsigned long long>(read_value(line.value)),
                        static_cast<unsigned long long>(line.expected));
        }
        if (line.output != nullptr && strstr(capture.cli(), line.output) == nullptr) {
            return fail("\"%s\" did not print \"%s\"", line.words, line.output);
        }
    }
    return nullptr;
}

template <size_t N>
const char *run_lines(const Line (&lines)[N]) {
    return run_lines(lines, N);
}

}  // namespace

// Keywords, hidden ones among them, and the values stored by keywords and
// set-value nodes into the slots the handlers read.
const char *check_cli_keyword() {
    static const Line kLines[] = {
        {kDot1xShow, "statistic", kHandled, nullptr, 0, "show DOT1X authentication information"},
        {kDot1xShow, "mab statistic", kHandled, nullptr, 0, "show MAB authentication information"},
        {kDot1xShow, "mab abnormal reauth", kHandled, nullptr, 0, nullptr},
        {kDot1xShow, "statistic tmp", kRefused, nullptr, 0, nullptr},
        {kWebShow, "statistic tmp", kHandled, nullptr, 0, nullptr},
        {kWebShow, "mab statistic", kRefused, nullptr, 0, nullptr},
        {kEscapeShow, "authmanage user-escape", kHandled, nullptr, 0, nullptr},
        {kDebug, "record-num 7", kHandled, &g_authmng_abnormal_record_max, 7, nullptr},
        {kDebug, "write-tmp 9", kHandled, &g_authmng_write_tmp_clock, 9, nullptr},
        {kDebug, "event", kHandled, &g_authmng_lib_event_dbg, 1, nullptr},
        {kDebug, "event", kHandled, &g_authmng_lib_error_dbg, 0, nullptr},
        {kEscapeDebug, "authmanage error", kHandled, &g_authmng_lib_error_dbg, 1, nullptr},
        {kConfig, "authmanage user-escape when redirect-time 1000", kHandled, nullptr, 0, nullptr},
    };
    return run_lines(kLines);
}

// Both bounds of a number are taken, one past either is refused, and a
// number beyond 32 bits does not wrap into range.
const char *check_cli_number_bounds() {
    static const Line kLines[] = {
        {kConfig, "authmanage user-escape time 9", kRefused, &g_authmng_escape_time, 30, nullptr},
        {kConfig, "authmanage user-escape time 241", kRefused, &g_authmng_escape_time, 30, nullptr},
        {kConfig, "authmanage user-escape time 10", kHandled, &g_authmng_escape_time, 10, nullptr},
        {kConfig, "authmanage user-escape time 240", kHandled, &g_authmng_escape_time, 240,
         nullptr},
        {kConfig, "authmanage user-escape when timeout-ratio 4294967297", kRefused,
         &g_authmng_check_ratio, 10, nullptr},
        {kDebug, "write-clock 0", kHandled, &g_authmng_write_file_clock, 0, nullptr},
        {kDebug, "write-clock 24", kRefused, &g_authmng_write_file_clock, 0, nullptr},
        {kDebug, "write-tmp 0", kRefused, &g_authmng_write_tmp_clock, 30, nullptr},
    };
    return run_lines(kLines);
}

// A leading "no" takes the negated branch: the negated configuration forms
// end without a number, and the debug switches go off.
const char *check_cli_negation() {
    static const Line kLines[] = {
        {kConfig, "authmanage user-escape when timeout-ratio 50", kHandled, &g_authmng_check_ratio,
         50, nullptr},
        {kConfig, "no authmanage user-escape when timeout-ratio", kHandled, &g_authmng_check_ratio,
         10, nullptr},
        {kConfig, "no authmanage statistic enable", kHandled, &g_authmng_statistic_enable, 0,
         nullptr},
        {kConfig, "authmanage statistic enable", kHandled, &g_authmng_statistic_enable, 1, nullptr},
        {kDebug, "event", kHandled, &g_authmng_lib_event_dbg, 1, nullptr},
        {kDebug, "no event", kHandled, &g_authmng_lib_event_dbg, 0, nullptr},
        {kEscapeDebug, "authmanage error", kHandled, &g_authmng_lib_error_dbg, 1, nullptr},
        {kEscapeDebug, "no authmanage error", kHandled, &g_authmng_lib_error_dbg, 0, nullptr},
    };
    return run_lines(kLines);
}

// A handler runs only where the line ends at an end-of-line node.
const char *check_cli_end_of_line() {
    static const Line kLines[] = {
        {kConfig, "authmanage user-escape when timeout-ratio", kRefused, nullptr, 0, nullptr},
        {kConfig, "authmanage user-escape", kRefused, nullptr, 0, nullptr},
        {kConfig, "authmanage user-escape time 31 32", kRefused, &g_authmng_escape_time, 30,
         nullptr},
        {kDot1xShow, "statistic fail extra", kRefused, nullptr, 0, nullptr},
        {kDot1xShow, "mab", kRefused, nullptr, 0, nullptr},
        {kDebug, "", kRefused, nullptr, 0, nullptr},
    };
    return run_lines(kLines);
}

// The configuration-output nodes in generation mode: c2p_printf lines for
// the values that differ from their defaults, in tree order, and none
// while every value is at its default.
const char *check_cli_saved_config() {
    prepare();
    MemoryStream defaults;
    authmng_port_check_saved_config(defaults.file());
    if (defaults.text()[0] != '\0') {
        return fail("the saved configuration of the defaults is not empty: \"%s\"",
                    defaults.text());
    }
    static const Line kLines[] = {
        {kConfig, "no authmanage statistic enable", kHandled, nullptr, 0, nullptr},
        {kConfig, "authmanage user-escape time 31", kHandled, nullptr, 0, nullptr},
    };
    if (const char *failure = run_lines(kLines)) return failure;
    MemoryStream changed;
    authmng_port_check_saved_config(changed.file());
    const char *expected = "authmanage user-escape time 31\nno authmanage statistic enable\n";
    std::string text = changed.text();
    prepare();
    if (text != expected)
        return fail("saved configuration \"%s\", not \"%s\"", text.c_str(), expected);
    return nullptr;
}

}  // namespace port_check
