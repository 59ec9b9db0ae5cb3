// Command lines, one per input line, into the host command-line framework
// of a web-auth process (all five of its groups, plus the 802.1X show group
// at a point of its own). A line is handled (0) or refused (-1) with one
// line of reason and nothing changed; every value a command sets stays in
// its range; and the saved configuration, typed back into a process at the
// defaults, gives the same configuration again.
#include <cstdio>

#include "authmng_platform.h"
#include "fuzz_support.h"

using namespace authmng_fuzz;

namespace {

constexpr size_t kMaxLine = 600;  // past the framework's own limit of 511

// Everything a command line may change.
struct Settings {
    uint8_t check_open, statistic_enable, event_dbg, error_dbg;
    uint32_t auth_threshold, ratio, redirect_threshold, escape_time, escape_life;
    uint32_t abnormal_value, record_max, file_clock, tmp_clock, abnormal_num;
    authmng_webauth_stat_t webauth;

    static Settings take() {
        Settings s;
        memset(&s, 0, sizeof s);
        s.check_open = g_authmng_check_open, s.statistic_enable = g_authmng_statistic_enable;
        s.event_dbg = g_authmng_lib_event_dbg, s.error_dbg = g_authmng_lib_error_dbg;
        s.auth_threshold = g_authmng_check_auth_threshold, s.ratio = g_authmng_check_ratio;
        s.redirect_threshold = g_authmng_check_redirect_threshold;
        s.escape_time = g_authmng_escape_time, s.escape_life = g_authmng_escape_life;
        s.abnormal_value = g_authmng_authtime_abnormal_value;
        s.record_max = g_authmng_abnormal_record_max, s.file_clock = g_authmng_write_file_clock;
        s.tmp_clock = g_authmng_write_tmp_clock, s.abnormal_num = g_authmng_abnormal_record_num;
        s.webauth = g_authmng_webauth;
        return s;
    }
    bool same(const Settings &o) const { return memcmp(this, &o, sizeof o) == 0; }
    // The seven values of the configuration commands.
    bool same_configuration(const Settings &o) const {
        return check_open == o.check_open && statistic_enable == o.statistic_enable &&
               auth_threshold == o.auth_threshold && ratio == o.ratio &&
               redirect_threshold == o.redirect_threshold && escape_time == o.escape_time &&
               escape_life == o.escape_life;
    }
};

bool within(uint32_t v, uint32_t low, uint32_t high) {
    return v >= low && v <= high;
}

bool in_range(const Settings &s) {
    return s.check_open <= 1 && s.statistic_enable <= 1 && s.event_dbg <= 1 && s.error_dbg <= 1 &&
           within(s.auth_threshold, 1000, 10000) && within(s.ratio, 1, 100) &&
           within(s.redirect_threshold, 1000, 10000) && within(s.escape_time, 10, 240) &&
           within(s.escape_life, 10, 240) && within(s.abnormal_value, 1, 10000) &&
           within(s.record_max, 1, 10000) && (s.file_clock <= 23 || s.file_clock == 99) &&
           within(s.tmp_clock, 1, 1440);
}

void defaults() {
    g_authmng_check_open = 0, g_authmng_statistic_enable = 1;
    g_authmng_check_auth_threshold = 5000, g_authmng_check_ratio = 10;
    g_authmng_check_redirect_threshold = 3000, g_authmng_escape_time = 30;
    g_authmng_escape_life = 30;
}

int exec(const std::string &line, std::string *said) {
    int rc = 0;
    *said = capture_cli([&] { rc = authmng_host_cli_exec(line.c_str()); });
    return rc;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    FUZZ_CHECK(authmng_host_cli_bind(200, "show authmng") == 0);
    FUZZ_CHECK(authmng_host_cli_bind(100, "debug authmng") == 0);
    FUZZ_CHECK(authmng_host_cli_bind(201, "show dot1x") == 0);
    start_client(AUTHMNG_CLIENT_WBA);
    cli_add_command(201, &Texec_1x_authmng_lib_show_cmd, "show authmng info");
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    defaults();
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = 0;
    g_authmng_authtime_abnormal_value = 3000, g_authmng_abnormal_record_max = 1000;
    g_authmng_write_file_clock = 99, g_authmng_write_tmp_clock = 30;

    Input in(data, size);
    std::string said;
    for (Steps steps(in); steps.next();) {
        const std::string line = in.line(kMaxLine);
        const Settings before = Settings::take();
        const int rc = exec(line, &said);
        FUZZ_CHECK(rc == 0 || rc == -1);
        if (rc == -1) {  // one line of reason, nothing run
            FUZZ_CHECK(count_of(said, '\n') == 1 && said.compare(0, 2, "% ") == 0);
            FUZZ_CHECK(before.same(Settings::take()));
        }
        FUZZ_CHECK(in_range(Settings::take()));
    }

    // The saved configuration reproduces the configuration.
    const Settings configured = Settings::take();
    char *buf = nullptr;
    size_t len = 0;
    FILE *out = open_memstream(&buf, &len);
    authmng_host_cli_saved_config(out);
    fclose(out);
    const std::string saved(buf, len);
    free(buf);
    defaults();
    for (size_t at = 0, end; at < saved.size(); at = end + 1) {
        end = saved.find('\n', at);
        FUZZ_CHECK(end != std::string::npos);
        FUZZ_CHECK(exec(saved.substr(at, end - at), &said) == 0 && said.empty());
    }
    FUZZ_CHECK(configured.same_configuration(Settings::take()));
    return 0;
}
