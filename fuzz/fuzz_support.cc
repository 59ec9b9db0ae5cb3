#include "fuzz_support.h"

#include <ftw.h>
#include <sys/stat.h>

#include <ctime>

namespace authmng_fuzz {
namespace {

std::string g_sandbox;
FILE *g_discard = nullptr;
std::string g_captured;
FILE *g_capture = nullptr;

ssize_t append_captured(void *, const char *buf, size_t size) {
    g_captured.append(buf, size);
    return static_cast<ssize_t>(size);
}

int remove_entry(const char *path, const struct stat *, int, struct FTW *) {
    return remove(path);
}

void remove_sandbox() {
    if (!g_sandbox.empty()) nftw(g_sandbox.c_str(), remove_entry, 16, FTW_DEPTH | FTW_PHYS);
}

}  // namespace

// The library opens a stream per file write, each with a fresh buffer. With
// ASan's default quarantine of 256 MB no freed buffer is handed out again for
// a long while, so every write touches new pages and the page faults cost
// more than the input. 16 MB still holds every block an input frees (use
// after free stays caught) and keeps the pages warm. ASAN_OPTIONS overrides.
extern "C" const char *__asan_default_options() {
    return "quarantine_size_mb=16";
}

const std::string &sandbox() {
    return g_sandbox;
}

FILE *discard() {
    return g_discard;
}

FILE *capture_begin() {
    if (g_capture == nullptr) {
        g_capture = fopencookie(nullptr, "w", {nullptr, append_captured, nullptr, nullptr});
        FUZZ_CHECK(g_capture != nullptr);
    }
    g_captured.clear();
    return g_capture;
}

const std::string &capture_end() {
    fflush(g_capture);
    return g_captured;
}

void start_client(int32_t client, int32_t debug_mode, int32_t show_mode) {
    // In memory where the machine has it: the file writes are most of an
    // input's system time.
    char shm[] = "/dev/shm/authmng-fuzz-XXXXXX", tmp_pattern[] = "/tmp/authmng-fuzz-XXXXXX";
    char *pattern = mkdtemp(shm) != nullptr ? shm : tmp_pattern;
    FUZZ_CHECK(pattern == shm || mkdtemp(pattern) != nullptr);
    g_sandbox = pattern;
    atexit(remove_sandbox);
    std::string tmp = g_sandbox + "/tmp", flash = g_sandbox + "/flash";
    FUZZ_CHECK(mkdir(tmp.c_str(), 0777) == 0 && mkdir(flash.c_str(), 0777) == 0);
    setenv("TMPDIR", tmp.c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", flash.c_str(), 1);
    setenv("TZ", "UTC", 1);
    tzset();
    authmng_host_clock_set(kFuzzClock);
    g_discard = fopen("/dev/null", "w");
    FUZZ_CHECK(g_discard != nullptr);
    authmng_host_cli_output(g_discard);
    authmng_host_syslog_output(g_discard);
    // Before the timer thread exists: no hour matches, and the interval
    // countdown outlasts any run.
    g_authmng_write_file_clock = 99;
    g_authmng_interval = UINT32_MAX;
    authmng_reg_t reg = {client, debug_mode, show_mode};
    FUZZ_CHECK(authmng_init(&reg) == 0);
}

authmng_auth_info_t read_event(Input &in, uint8_t shape, const EventCodes &codes) {
    authmng_auth_info_t info;
    memset(&info, 0, sizeof info);
    info.client_type = (shape & 0x02) ? in.take<int32_t>() : static_cast<int32_t>(1 + in.below(3));
    uint32_t *code[] = {&info.event, &info.result, &info.offline_reason};
    const uint32_t count[] = {codes.events, codes.results, codes.offline_reasons};
    for (int i = 0; i < 3; ++i) {
        *code[i] = (shape & 0x01) ? in.take<uint32_t>() : in.below(count[i] + 1);
    }
    info.online_num = in.take<uint16_t>(), info.reauth_num = in.take<uint16_t>();
    info.ip = in.take<uint32_t>();
    for (uint32_t *time : {&info.auth_time, &info.scc_time, &info.acct_time, &info.ack_time,
                           &info.portal_time, &info.aaa_time, &info.rds_srv_time, &info.rds_time,
                           &info.acct_aaa_time, &info.acct_rds_svr_time, &info.acct_rds_time,
                           &info.sta_time, &info.self_time, &info.online_time}) {
        *time = (shape & 0x04) ? in.take<uint32_t>() : in.take<uint8_t>() * 41u;
    }
    info.wba_state = in.take<uint8_t>(), info.wba_event = in.take<uint8_t>();
    info.aaa_code = in.take<int8_t>(), info.rds_code = in.take<int8_t>();
    info.aaa_acct_code = in.take<int8_t>(), info.rds_acct_code = in.take<int8_t>();
    info.rssi = in.take<int8_t>();
    const uint8_t flags = in.take<uint8_t>();
    uint8_t *flag[] = {&info.aaa_timeout, &info.requestid_timeout, &info.request_timeout,
                       &info.rsna_notify, &info.start_notify,      &info.dismatch_id,
                       &info.logoff};
    for (int i = 0; i < 7; ++i) *flag[i] = (flags >> i) & 1;
    in.bytes(info.username, in.below(13));
    if (shape & 0x40) {
        for (char &c : info.username) c = c == '\0' ? 'u' : c;
    }
    for (char &c : info.username) c = c == '\n' || c == '\r' || c == ',' ? '_' : c;
    in.bytes(info.mac, sizeof info.mac);
    return info;
}

size_t count_of(const std::string &text, char c) {
    size_t n = 0;
    const char *end = text.data() + text.size();
    for (const char *at = text.data(); (at = static_cast<const char *>(memchr(at, c, end - at)));
         ++at) {
        ++n;
    }
    return n;
}

std::string read_file(const std::string &path, long offset) {
    std::string text;
    FILE *f = fopen(path.c_str(), "rb");
    if (f == nullptr) return text;
    if (offset > 0 && fseek(f, offset, SEEK_SET) != 0) offset = 0;
    char chunk[4096];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, f)) > 0) text.append(chunk, n);
    fclose(f);
    return text;
}

long file_size(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 ? static_cast<long>(st.st_size) : 0;
}

bool tune(Input &in) {
    g_authmng_authtime_abnormal_value = 1 + in.below(10000);
    g_authmng_abnormal_record_max = 1 + in.below(10000);
    uint8_t flags = in.take<uint8_t>();
    g_authmng_statistic_enable = (flags & 0x07) != 0;
    g_authmng_lib_event_dbg = g_authmng_lib_error_dbg = (flags & 0x08) != 0;
    bool clock_failing = (flags & 0x30) == 0x30;
    authmng_host_clock_fail(clock_failing);
    authmng_host_clock_set(in.take<uint32_t>());
    return clock_failing;
}

}  // namespace authmng_fuzz
