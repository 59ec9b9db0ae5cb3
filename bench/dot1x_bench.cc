// The 802.1X daemon's costs: the intake (alone and from two threads), an
// abnormal event on a full list, the statistic display, the daily row pair
// and the drain of the abnormal list; each next to the floor it is judged
// against.
#include <arpa/inet.h>
#include <benchmark/benchmark.h>
#include <netinet/in.h>
#include <unistd.h>

#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <iterator>
#include <string>
#include <vector>

#include "authmng.h"
#include "authmng_host.h"
#include "authmng_platform.h"
#include "bench/bench_support.h"
#include "dot1x/statistic_files.h"

using namespace authmng_bench;

namespace {

// ---------------------------------------------------------------------------
// Events

// A successful first authentication of 3.5 s that touches every part of
// the time analysis: seven histograms, a long-time reason (AAA timed out),
// the over-3-second block and the average. The abnormal threshold is set
// to its highest value (10000 ms) so the event is not queued: queueing is
// measured by its own row.
authmng_auth_info_t success_event() {
    authmng_auth_info_t e = blank_event(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 0);
    e.online_num = 1200;
    e.auth_time = 3500;
    e.sta_time = 500;
    e.self_time = 200;
    e.aaa_time = 2500;
    e.rds_time = 2300;
    e.rds_srv_time = 2000;
    e.rssi = -61;
    e.aaa_timeout = 1;
    snprintf(e.username, sizeof e.username, "%s", "alice@example.com");
    return e;
}

// A fast failed first authentication ("aaa reject"): always abnormal.
authmng_auth_info_t failed_event() {
    authmng_auth_info_t e = blank_event(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
    e.online_num = 1200;
    e.auth_time = 240;
    e.aaa_time = 200;
    e.rds_time = 180;
    e.rds_srv_time = 150;
    e.rssi = -70;
    snprintf(e.username, sizeof e.username, "%s", "mallory@example.com");
    return e;
}

const authmng_auth_info_t g_success = success_event();
const authmng_auth_info_t g_failed = failed_event();

constexpr uint32_t kThresholdMax = 10000;
constexpr uint32_t kThresholdDefault = 1000;
constexpr uint32_t kListCapDefault = 1000;
constexpr uint32_t kDrainRecords = 10000;

void clear_records() {
    pthread_mutex_lock(&g_authmng_mtx);
    for (authmng_dot1x_stat_t &r : g_amg_d1x) authmng_dot1x_init(&r);
    pthread_mutex_unlock(&g_authmng_mtx);
}

// ---------------------------------------------------------------------------
// The intake

void setup_success() {
    g_authmng_authtime_abnormal_value = kThresholdMax;
    clear_records();
}

void op_success() {
    authmng_notify_auth_info(&g_success);
}

// ---------------------------------------------------------------------------
// An abnormal event on a full list, and its floor: one allocation, one
// free and one copy of the record, in a queue as long as the list.

std::vector<authmng_abnormal_node_t *> g_queue;
std::size_t g_queue_next = 0;

void setup_alloc_floor() {
    if (!g_queue.empty()) return;
    for (uint32_t i = 0; i < kListCapDefault; ++i) {
        g_queue.push_back(
            static_cast<authmng_abnormal_node_t *>(calloc(1, sizeof(authmng_abnormal_node_t))));
    }
}

void op_alloc_floor() {
    free(g_queue[g_queue_next]);
    auto *node = static_cast<authmng_abnormal_node_t *>(calloc(1, sizeof(authmng_abnormal_node_t)));
    memcpy(&node->info, &g_failed, sizeof node->info);
    g_queue[g_queue_next] = node;
    g_queue_next = (g_queue_next + 1) % g_queue.size();
}

void setup_full_list() {
    g_authmng_authtime_abnormal_value = kThresholdDefault;
    g_authmng_abnormal_record_max = kListCapDefault;
    clear_records();
    while (g_authmng_abnormal_record_num < kListCapDefault) authmng_record_abnormal_auth(&g_failed);
}

void op_failed() {
    authmng_notify_auth_info(&g_failed);
}

// ---------------------------------------------------------------------------
// A record as a long-running daemon has it: every counter non-zero, totals
// equal to their sums.

// A value from 1 to scale that differs from seed to seed.
uint64_t spread(uint32_t seed, uint64_t scale) {
    return (static_cast<uint64_t>(seed + 1) * 2654435761u) % scale + 1;
}

void fill_record(authmng_dot1x_stat_t &r, uint32_t salt) {
    authmng_dot1x_init(&r);
    r.old_online_number = 812;
    r.current_online_number = 1340 + salt;
    r.max_online_number = 2917;
    for (uint32_t c = 0; c < AUTHMNG_D1X_CODE_NUM; ++c) {
        r.auth_result[c] = c == 0 ? 900000 + salt : spread(c + salt, 4000);
        r.reauth_result[c] = c == 0 ? 500000 + salt : spread(c + 7 + salt, 900);
        r.offline_reason[c] = spread(c + 13 + salt, 7000);
        r.auth_total += r.auth_result[c];
        r.reauth_total += r.reauth_result[c];
        r.offline_total += r.offline_reason[c];
    }
    r.auth_success_rate = static_cast<uint32_t>(r.auth_result[0] * 100 / r.auth_total);
    r.reauth_success_rate = static_cast<uint32_t>(r.reauth_result[0] * 100 / r.reauth_total);
    r.auth_avg_time = 734;
    for (uint32_t d = 0; d < AUTHMNG_D1X_RANGE_NUM; ++d) {
        uint64_t slow = spread(d + salt, r.auth_result[0] / 4);
        uint64_t slower = spread(d + 3 + salt, r.auth_result[0] / 8);
        r.range[d].count[1] = slow;
        r.range[d].count[2] = slower;
        r.range[d].count[0] = r.auth_result[0] - slow - slower;
    }
    uint64_t *over1s[] = {&r.over1s_sta, &r.over1s_self, &r.over1s_aaa, &r.over1s_rds,
                          &r.over1s_rds_srv};
    uint64_t *over3s[] = {&r.over3s_sta, &r.over3s_self, &r.over3s_aaa, &r.over3s_rds,
                          &r.over3s_rds_srv};
    for (uint32_t i = 0; i < 5; ++i) {
        *over1s[i] = spread(i + salt, 90000000);
        *over3s[i] = spread(i + 11 + salt, 300000000);
        r.over1s_total += *over1s[i];
        r.over3s_total += *over3s[i];
    }
    r.success_rssi_sum = -61 * 1000000;
    r.fail_rssi_sum = -77 * 30000;
    r.offline_rssi_sum = -65 * 700000;
}

void fill_live_records() {
    pthread_mutex_lock(&g_authmng_mtx);
    fill_record(g_amg_d1x[0], 0);
    fill_record(g_amg_d1x[1], 5);
    for (uint32_t i = 0; i < AUTHMNG_REASON_NUM; ++i) {
        g_authmng_sec_range_reason[i] = spread(i, 80000);
        g_authmng_thi_range_reason[i] = spread(i + 4, 20000);
    }
    pthread_mutex_unlock(&g_authmng_mtx);
}

// ---------------------------------------------------------------------------
// The statistic display, and its floor: the same lines, each formatted
// with snprintf into a line buffer and nothing else. The floor is checked
// against the display's own output once, so it formats exactly what the
// display prints.

class Lines {
public:
    explicit Lines(std::string *collect) : collect_(collect) {}

    __attribute__((format(printf, 2, 3))) void operator()(const char *fmt, ...) {
        va_list ap;
        va_start(ap, fmt);
        int n = vsnprintf(buf_, sizeof buf_, fmt, ap);
        va_end(ap);
        benchmark::DoNotOptimize(buf_);
        if (collect_ != nullptr && n > 0) collect_->append(buf_, static_cast<std::size_t>(n));
    }

private:
    char buf_[2000];
    std::string *collect_;
};

uint64_t quotient(uint64_t a, uint64_t b) {
    return b == 0 ? 0 : a / b;
}
unsigned u32(uint64_t v) {
    return static_cast<uint32_t>(v);
}
int i32(uint64_t v) {
    return static_cast<int32_t>(static_cast<uint32_t>(v));
}
uint64_t group(const uint64_t *c, uint32_t first, uint32_t last) {
    uint64_t sum = 0;
    for (uint32_t i = first; i <= last; ++i) sum += c[i];
    return sum;
}
int rssi_avg(int32_t sum, uint64_t count) {
    int32_t n = static_cast<int32_t>(static_cast<uint32_t>(count));
    return n == 0 ? 0 : static_cast<int>(static_cast<int64_t>(sum) / n);
}

void statistic_lines(const authmng_dot1x_stat_t &s, const char *m, Lines &out) {
    const uint64_t *ar = s.auth_result;
    const uint64_t *rr = s.reauth_result;
    const uint64_t *orr = s.offline_reason;
    out("\nshow %s authentication information:\n", m);
    out(" %s current online number:..................%" PRIu64 ".\n", m, s.current_online_number);
    out(" %s historical max online number:...........%" PRIu64 ".\n", m, s.max_online_number);
    out(" %s aggregate online number:................%" PRIu64 ".\n", m,
        s.old_online_number + ar[0]);
    uint64_t base = s.auth_total - ar[5] - ar[9] - ar[23] - ar[24];
    uint64_t a_stamg = group(ar, 61, 87), a_rsna = group(ar, 101, 106),
             a_roam = group(ar, 121, 132);
    uint64_t wireless = ar[1] + ar[2] + a_stamg + a_rsna + a_roam;
    out("\n%s authentication statistic:\n", m);
    out(" authentication number:........................%" PRIu64 ".\n", s.auth_total);
    out(" authentication success:.......................%" PRIu64 ".\n", ar[0]);
    out(" authentication success rate:..................%u%%.\n", u32(quotient(ar[0] * 100, base)));
    out(" wireless foundation factor:....................%u%%.\n",
        u32(quotient(wireless * 100, s.auth_total)));
    out("  %-41s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(1), ar[1]);
    out("  %-41s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(2), ar[2]);
    out("  auth fail by stamg                       : %" PRIu64 "\n", a_stamg);
    out("  auth fail by rsna                        : %" PRIu64 "\n", a_rsna);
    out("  auth fail by roam                        : %" PRIu64 "\n", a_roam);
    out(" adjust authentication success rate:...........%u%%.\n",
        u32(quotient(ar[0] * 100, base - wireless)));
    for (uint32_t c = 3; c <= 24; ++c) {
        out("  %-41s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(c), ar[c]);
    }
    out("  other                                    : %" PRIu64 "\n", ar[134]);
    out(" authentication success rssi avgvalue:.........%ddBm.\n",
        rssi_avg(s.success_rssi_sum, ar[0] + rr[0]));
    out(" authentication fail rssi avgvalue:............%ddBm.\n",
        rssi_avg(s.fail_rssi_sum, ar[1] + ar[2] + rr[1] + rr[2]));

    uint64_t by_auth = s.reauth_total - rr[0];
    uint64_t shown = by_auth + s.offline_total;
    out("\n%s offline statistic:\n", m);
    out(" offline_total:................................%" PRIu64 ".\n", shown);
    for (uint32_t c = 0; c <= 42; ++c) {
        out("  %-41s: %" PRIu64 "\n", authmng_dot1x_offline_reason_str(c), orr[c]);
    }
    out("  offline by sta                           : %" PRIu64 ".\n", group(orr, 61, 87));
    out("  offline by rsna                          : %" PRIu64 ".\n", group(orr, 101, 106));
    out("  offline by roam                          : %" PRIu64 ".\n", group(orr, 121, 132));
    out("  other reason                             : %" PRIu64 ".\n", orr[134]);
    out("  offline_by_auth:.............................%" PRIu64 ".\n", by_auth);
    for (uint32_t c = 1; c <= 24; ++c) {
        out("    %-39s: %" PRIu64 "\n", authmng_dot1x_auth_reason_str(c), rr[c]);
    }
    out("    reauth fail by stamg                   : %" PRIu64 ".\n", group(rr, 61, 87));
    out("    reauth fail by rsna                    : %" PRIu64 ".\n", group(rr, 101, 106));
    out("    reauth fail by roam                    : %" PRIu64 ".\n", group(rr, 121, 132));
    out("    other reason                           : %" PRIu64 ".\n", rr[134]);
    out(" reauth offline ratio:.........................%u%%.\n",
        u32(quotient(by_auth * 100, shown)));
    out("\n");

    const uint64_t *whole = s.range[0].count;
    out("auth_range_1000:...............................%d.\n", i32(whole[0]));
    out("auth_range_3000:...............................%d.\n", i32(whole[1]));
    out("auth_range_other:..............................%d.\n", i32(whole[2]));
    out("auth success less than 1 second ratio..........%u%%.\n",
        u32(quotient(whole[0] * 100, ar[0])));
    out("auth success consume average time:.............%ums.\n", s.auth_avg_time);
    const char *names[] = {"Sta", "Self", "Aaa", "Rds", "RdsSrv"};
    const uint64_t over1s[] = {s.over1s_sta, s.over1s_self, s.over1s_aaa, s.over1s_rds,
                               s.over1s_rds_srv};
    const uint64_t over3s[] = {s.over3s_sta, s.over3s_self, s.over3s_aaa, s.over3s_rds,
                               s.over3s_rds_srv};
    out("auth success 1 to 3 second total time..........%" PRIu64 "ms.\n", s.over1s_total);
    for (int i = 0; i < 5; ++i) {
        out("  %-6s 1 to 3 second total time .............%" PRIu64 "ms(%" PRIu64 "%%)\n", names[i],
            over1s[i], quotient(over1s[i] * 100, s.over1s_total));
        out("  %-6s consume average time .................%" PRIu64 "ms\n", names[i],
            quotient(over1s[i], u32(whole[1])));
    }
    out("auth success more than 3 second total time.....%" PRIu64 "ms.\n", s.over3s_total);
    for (int i = 0; i < 5; ++i) {
        out("  %-6s more than 3 second total time ........%" PRIu64 "ms(%" PRIu64 "%%)\n", names[i],
            over3s[i], quotient(over3s[i] * 100, s.over3s_total));
        out("  %-6s consume average time .................%" PRIu64 "ms\n", names[i],
            quotient(over3s[i], u32(whole[2])));
    }
    const char *ranges[] = {"", "AuthExSrv", "Sta", "Self", "Aaa", "Rds", "RdsSrv"};
    const char *positions[] = {"1000", "3000", "other"};
    for (int d = 1; d < AUTHMNG_D1X_RANGE_NUM; ++d) {
        out("\n");
        for (int j = 0; j < 3; ++j) {
            out("%-9s range_%-5s:.........................%d\n", ranges[d], positions[j],
                i32(s.range[d].count[j]));
        }
    }
    out("\n");
    const char *labels[] = {"sta timeout ........", "aaa timeout ........", "sta and aaa timeout ",
                            "other..............."};
    out("auth_range_3000 reason:\n");
    for (int e = 0; e < 4; ++e) {
        out("  %-20s.........................%" PRIu64 "\n", labels[e],
            g_authmng_sec_range_reason[e]);
    }
    out("\nauth_range_other reason:\n");
    for (int e = 0; e < 4; ++e) {
        out("  %-20s.........................%" PRIu64 "\n", labels[e],
            g_authmng_thi_range_reason[e]);
    }
    out("\n");
}

FILE *g_discard = nullptr;

void check_statistic_floor() {
    static bool checked = false;
    if (checked) return;
    char *shown = nullptr;
    size_t length = 0;
    FILE *capture = open_memstream(&shown, &length);
    authmng_host_cli_output(capture);
    authmng_show_dot1x_statistic(0);
    fclose(capture);
    authmng_host_cli_output(g_discard);
    std::string floor_text;
    Lines lines(&floor_text);
    statistic_lines(g_amg_d1x[0], "DOT1X", lines);
    bool same = floor_text == std::string(shown, length);
    free(shown);
    if (!same) {
        fprintf(stderr, "bench: the statistic floor does not print what the display prints\n");
        exit(2);
    }
    checked = true;
}

void setup_statistic() {
    if (g_discard == nullptr) g_discard = fopen("/dev/null", "w");
    authmng_host_cli_output(g_discard);
    fill_live_records();
    check_statistic_floor();
}

void op_statistic_floor() {
    Lines lines(nullptr);
    statistic_lines(g_amg_d1x[0], "DOT1X", lines);
}

void op_statistic() {
    authmng_show_dot1x_statistic(0);
}

// ---------------------------------------------------------------------------
// The daily row pair, and its floor: each row formatted by one snprintf.

#define U1 ",%" PRIu64
#define U5 U1 U1 U1 U1 U1
#define U10 U5 U5
constexpr char kDailyRowFormat[] = "%02d.%02d %02d:%02d:%02d,%s" U10 U10 U10 U10 U10 U5 U1 U1 "\n";
#undef U1
#undef U5
#undef U10

char g_row[2][2000];

void daily_row(const authmng_dot1x_stat_t &r, const char *label, char *row) {
    time_t now = static_cast<time_t>(qx_time_get(QX_TIME_WALL_SECONDS));
    struct tm t;
    localtime_r(&now, &t);
    const uint64_t *h = r.range[0].count;
    snprintf(
        row, 2000, kDailyRowFormat, t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, label,
        r.auth_total, r.auth_result[0], r.reauth_total, r.reauth_result[0], r.offline_total, h[0],
        h[1], h[2], static_cast<uint64_t>(r.auth_avg_time), r.over1s_total, r.over1s_sta,
        quotient(r.over1s_sta, h[1]), r.over1s_self, quotient(r.over1s_self, h[1]), r.over1s_aaa,
        quotient(r.over1s_aaa, h[1]), r.over1s_rds, quotient(r.over1s_rds, h[1]), r.over1s_rds_srv,
        quotient(r.over1s_rds_srv, h[1]), r.over3s_total, r.over3s_sta,
        quotient(r.over3s_sta, h[2]), r.over3s_self, quotient(r.over3s_self, h[2]), r.over3s_aaa,
        quotient(r.over3s_aaa, h[2]), r.over3s_rds, quotient(r.over3s_rds, h[2]), r.over3s_rds_srv,
        quotient(r.over3s_rds_srv, h[2]), r.range[1].count[0], r.range[1].count[1],
        r.range[1].count[2], r.range[2].count[0], r.range[2].count[1], r.range[2].count[2],
        r.range[3].count[0], r.range[3].count[1], r.range[3].count[2], r.range[4].count[0],
        r.range[4].count[1], r.range[4].count[2], r.range[5].count[0], r.range[5].count[1],
        r.range[5].count[2], r.range[6].count[0], r.range[6].count[1], r.range[6].count[2],
        g_authmng_sec_range_reason[0], g_authmng_sec_range_reason[1], g_authmng_sec_range_reason[2],
        g_authmng_sec_range_reason[3], g_authmng_thi_range_reason[0], g_authmng_thi_range_reason[1],
        g_authmng_thi_range_reason[2], g_authmng_thi_range_reason[3]);
}

void op_daily_floor() {
    daily_row(g_amg_d1x[0], "dot1x", g_row[0]);
    daily_row(g_amg_d1x[1], "mab", g_row[1]);
    benchmark::DoNotOptimize(g_row);
}

void op_daily() {
    authmng_dot1x_flash_row(0, g_row[0]);
    authmng_dot1x_flash_row(1, g_row[1]);
    benchmark::DoNotOptimize(g_row);
}

void setup_daily() {
    fill_live_records();
    static bool checked = false;
    if (checked) return;
    op_daily_floor();
    std::string floor_text = std::string(g_row[0]) + g_row[1];
    op_daily();
    if (floor_text != std::string(g_row[0]) + g_row[1]) {
        fprintf(stderr, "bench: the daily floor does not format the library's rows\n");
        exit(2);
    }
    checked = true;
}

// ---------------------------------------------------------------------------
// The drain of 10,000 abnormal records to the abnormal file, and its floor:
// a plain loop that formats the same rows from an array and writes them to
// a file of its own.

std::vector<authmng_abnormal_node_t> g_records;

void make_records() {
    if (!g_records.empty()) return;
    g_records.resize(kDrainRecords);
    for (uint32_t i = 0; i < kDrainRecords; ++i) {
        authmng_abnormal_node_t &node = g_records[i];
        memset(&node, 0, sizeof node);
        node.time = qx_time_get(QX_TIME_WALL_SECONDS);
        uint32_t kind = i % 3;
        authmng_auth_info_t &e = node.info;
        e = blank_event(i % 4 == 0 ? AUTHMNG_CLIENT_MAB : AUTHMNG_CLIENT_DOT1X, kind, i % 25);
        e.offline_reason = kind == D1X_OFFLINE ? 1 + i % 42 : 0;
        snprintf(e.username, sizeof e.username, "user%05u@corp.example.com", i);
        const uint8_t mac[6] = {0x00,
                                0x1a,
                                0x2b,
                                static_cast<uint8_t>(i >> 16),
                                static_cast<uint8_t>(i >> 8),
                                static_cast<uint8_t>(i)};
        memcpy(e.mac, mac, sizeof mac);
        e.ip = htonl(0x0a000000u + i);
        e.auth_time = 1000 + i % 4000;
        e.sta_time = 100 + i % 900;
        e.self_time = 20 + i % 80;
        e.aaa_time = 600 + i % 2000;
        e.rds_time = 500 + i % 1800;
        e.rds_srv_time = 400 + i % 1500;
        e.aaa_code = static_cast<int32_t>(i % 7) - 3;
        e.rds_code = static_cast<int32_t>(i % 5);
        e.rssi = -40 - static_cast<int32_t>(i % 50);
        e.aaa_timeout = i % 2;
        e.requestid_timeout = i % 3 == 0;
        e.request_timeout = i % 5 == 0;
        e.rsna_notify = i % 4;
        e.start_notify = i % 6;
        e.dismatch_id = i % 2;
        e.logoff = i % 3;
    }
}

std::string library_abnormal_path() {
    const char *flash = getenv("AUTHMNG_FLASH_HOME");
    return std::string(flash) + "/security/authmanage/dot1x/dot1x_abnormal.csv";
}

void prepare_drain() {
    // Records that earlier rows left queued go first, to a file removed
    // before the measured drain starts.
    if (g_authmng_abnormal_record_num != 0) authmng_write_dot1x_abnormal_record_to_file();
    unlink(library_abnormal_path().c_str());
    for (const authmng_abnormal_node_t &node : g_records) authmng_record_abnormal_auth(&node.info);
}

void op_drain() {
    authmng_write_dot1x_abnormal_record_to_file();
}

constexpr char kAbnormalHeader[] =
    "date,username,mac,ip,auth_time,aaa timeout,requestid_timeout,request_timeout,rsna_notify,"
    "start_notify,Type,Reason,Rssi,StaT,SelfT,AaaT,RdsT,RdsST,Acode,Rcode,DisMatchId,LogOff\n";

std::string g_floor_file;

void prepare_drain_floor() {
    unlink(g_floor_file.c_str());
}

void op_drain_floor() {
    FILE *f = fopen(g_floor_file.c_str(), "a");
    if (f == nullptr) return;
    fputs(kAbnormalHeader, f);
    char row[2000];
    for (const authmng_abnormal_node_t &node : g_records) {
        const authmng_auth_info_t &e = node.info;
        time_t when = static_cast<time_t>(node.time);
        struct tm t;
        localtime_r(&when, &t);
        char mac[15];
        snprintf(mac, sizeof mac, "%02x%02x.%02x%02x.%02x%02x", e.mac[0], e.mac[1], e.mac[2],
                 e.mac[3], e.mac[4], e.mac[5]);
        char ip[INET_ADDRSTRLEN];
        struct in_addr address;
        address.s_addr = e.ip;
        inet_ntop(AF_INET, &address, ip, sizeof ip);
        const char *reason = e.event == D1X_OFFLINE
                                 ? authmng_dot1x_offline_reason_str(e.offline_reason)
                                 : authmng_dot1x_auth_reason_str(e.result);
        snprintf(row, sizeof row,
                 "%02d.%02d %02d:%02d:%02d,%.*s,%s,%s,%u,%u,%u,%u,%u,%u,%s,%s,%d,%u,%u,%u,%u,%u,%d,"
                 "%d,%u,%u\n",
                 t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec,
                 static_cast<int>(strnlen(e.username, sizeof e.username)), e.username, mac, ip,
                 e.auth_time, unsigned{e.aaa_timeout}, unsigned{e.requestid_timeout},
                 unsigned{e.request_timeout}, unsigned{e.rsna_notify}, unsigned{e.start_notify},
                 authmng_dot1x_event_str(e.event), reason, e.rssi, e.sta_time, e.self_time,
                 e.aaa_time, e.rds_time, e.rds_srv_time, e.aaa_code, e.rds_code,
                 unsigned{e.dismatch_id}, unsigned{e.logoff});
        fputs(row, f);
    }
    fclose(f);
}

std::string file_text(const std::string &path) {
    std::string text;
    FILE *f = fopen(path.c_str(), "rb");
    if (f == nullptr) return text;
    char chunk[65536];
    size_t n;
    while ((n = fread(chunk, 1, sizeof chunk, f)) > 0) text.append(chunk, n);
    fclose(f);
    return text;
}

void setup_drain() {
    g_authmng_abnormal_record_max = kDrainRecords;
    make_records();
    if (g_floor_file.empty()) g_floor_file = private_path("floor_abnormal.csv");
    static bool checked = false;
    if (checked) return;
    prepare_drain();
    op_drain();
    prepare_drain_floor();
    op_drain_floor();
    std::string drained = file_text(library_abnormal_path());
    if (drained.empty() || drained != file_text(g_floor_file)) {
        fprintf(stderr, "bench: the drain floor does not write the library's rows\n");
        exit(2);
    }
    checked = true;
}

void nothing() {}

const Row kRows[] = {
    {"floor/event", nothing, nullptr, floor_event, 0},
    {"dot1x/auth_success", setup_success, nullptr, op_success, 0},
    {"dot1x/intake", setup_success, nullptr, op_success, 2},
    {"floor/alloc_copy_free", setup_alloc_floor, nullptr, op_alloc_floor, 0},
    {"dot1x/auth_fail_full_list", setup_full_list, nullptr, op_failed, 0},
    {"floor/statistic_snprintf", setup_statistic, nullptr, op_statistic_floor, 0},
    {"dot1x/show_statistic", setup_statistic, nullptr, op_statistic, 0},
    {"floor/daily_rows_snprintf", setup_daily, nullptr, op_daily_floor, 0},
    {"dot1x/daily_rows", setup_daily, nullptr, op_daily, 0},
    {"floor/drain_loop_10000", setup_drain, prepare_drain_floor, op_drain_floor, 0},
    {"dot1x/drain_10000", setup_drain, prepare_drain, op_drain, 0},
};

}  // namespace

int main(int argc, char **argv) {
    start_library(AUTHMNG_CLIENT_DOT1X);
    return run(argc, argv, kRows, std::size(kRows));
}
