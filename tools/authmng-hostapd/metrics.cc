#include "metrics.h"

#include <pthread.h>

#include <cinttypes>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace authmng_hostapd {
namespace {

constexpr const char *kMethod[AUTHMNG_D1X_METHOD_NUM] = {"dot1x", "mab"};
// The seven histograms' step names, as the interval file labels them.
constexpr const char *kStep[AUTHMNG_D1X_RANGE_NUM] = {"auth", "authExSrv", "sta",   "self",
                                                      "aaa",  "rds",       "rdsSrv"};

class Text {
public:
    void add(const char *format, ...) __attribute__((format(printf, 2, 3))) {
        char line[512];
        va_list args;
        va_start(args, format);
        int n = vsnprintf(line, sizeof line, format, args);
        va_end(args);
        if (n > 0) out_.append(line, static_cast<size_t>(n) < sizeof line ? n : sizeof line - 1);
    }
    void family(const char *name, const char *type, const char *help) {
        add("# HELP %s %s\n# TYPE %s %s\n", name, help, name, type);
    }
    std::string take() { return std::move(out_); }

private:
    std::string out_;
};

// A label value with backslash, quote and line break escaped.
std::string label(const char *text) {
    std::string out;
    for (const char *p = text; *p != '\0'; ++p) {
        if (*p == '\\' || *p == '"') out += '\\';
        if (*p == '\n') {
            out += "\\n";
            continue;
        }
        out += *p;
    }
    return out;
}

// Counters by code: success (code 0) always, every other code once seen.
void by_code(Text *text, const char *name, const char *code_label, const uint64_t *counts,
             const char *method, const char *(*code_text)(uint32_t), bool always_zero) {
    for (uint32_t code = 0; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        if (counts[code] == 0 && !(always_zero && code == 0)) continue;
        text->add("%s{method=\"%s\",code=\"%u\",%s=\"%s\"} %" PRIu64 "\n", name, method, code,
                  code_label, label(code_text(code)).c_str(), counts[code]);
    }
}

}  // namespace

void take_snapshot(StatsSnapshot *snapshot) {
    pthread_mutex_lock(&g_authmng_mtx);
    memcpy(snapshot->d1x, g_amg_d1x, sizeof snapshot->d1x);
    snapshot->abnormal_queued = g_authmng_abnormal_record_num;
    pthread_mutex_unlock(&g_authmng_mtx);
    snapshot->abnormal_cap = g_authmng_abnormal_record_max;
}

std::string render_metrics(const StatsSnapshot &s, const BridgeCounters *c) {
    Text t;
    t.family("authmng_authentications_total", "counter",
             "First 802.1X authentications by method and result code.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        by_code(&t, "authmng_authentications_total", "result", s.d1x[m].auth_result, kMethod[m],
                authmng_dot1x_auth_reason_str, true);
    }
    t.family("authmng_reauthentications_total", "counter",
             "Re-authentications by method and result code.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        by_code(&t, "authmng_reauthentications_total", "result", s.d1x[m].reauth_result, kMethod[m],
                authmng_dot1x_auth_reason_str, true);
    }
    t.family("authmng_offlines_total", "counter", "Users gone offline by method and reason code.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        by_code(&t, "authmng_offlines_total", "reason", s.d1x[m].offline_reason, kMethod[m],
                authmng_dot1x_offline_reason_str, true);
    }
    t.family("authmng_step_duration_seconds", "histogram",
             "Successful first authentications by the time of each step.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        for (int r = 0; r < AUTHMNG_D1X_RANGE_NUM; ++r) {
            const authmng_range_t &range = s.d1x[m].range[r];
            uint64_t below = 0;
            for (uint32_t i = 1; i < AUTHMNG_RANGE_SLOTS; ++i) {
                below += range.count[i - 1];
                t.add(
                    "authmng_step_duration_seconds_bucket{method=\"%s\",step=\"%s\",le=\"%g\"} "
                    "%" PRIu64 "\n",
                    kMethod[m], kStep[r], static_cast<double>(range.bound[i]) / 1000.0, below);
            }
            below += range.count[AUTHMNG_RANGE_SLOTS - 1];
            t.add(
                "authmng_step_duration_seconds_bucket{method=\"%s\",step=\"%s\",le=\"+Inf\"} "
                "%" PRIu64 "\n",
                kMethod[m], kStep[r], below);
            t.add("authmng_step_duration_seconds_count{method=\"%s\",step=\"%s\"} %" PRIu64 "\n",
                  kMethod[m], kStep[r], below);
        }
    }
    t.family("authmng_online_users", "gauge", "Users online at the latest event.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        t.add("authmng_online_users{method=\"%s\"} %" PRIu64 "\n", kMethod[m],
              s.d1x[m].current_online_number);
    }
    t.family("authmng_online_users_max", "gauge", "Most users online since the last clear.");
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        t.add("authmng_online_users_max{method=\"%s\"} %" PRIu64 "\n", kMethod[m],
              s.d1x[m].max_online_number);
    }
    t.family("authmng_abnormal_records_queued", "gauge",
             "Abnormal authentications waiting for the daily write.");
    t.add("authmng_abnormal_records_queued %u\n", s.abnormal_queued);
    t.family("authmng_abnormal_records_cap", "gauge", "Most abnormal records kept.");
    t.add("authmng_abnormal_records_cap %u\n", s.abnormal_cap);
    if (c == nullptr) return t.take();

    struct {
        const char *name;
        const char *help;
        const std::atomic<uint64_t> *value;
    } const bridge[] = {
        {"authmng_hostapd_event_lines_total", "Event lines received from hostapd.", &c->lines},
        {"authmng_hostapd_malformed_lines_total", "Event lines that did not parse.", &c->malformed},
        {"authmng_hostapd_unknown_events_total", "Well-formed lines of events not mapped.",
         &c->unknown},
        {"authmng_hostapd_records_total", "Event records handed to the library.", &c->records},
        {"authmng_hostapd_attaches_total", "Attaches to control interfaces, re-attaches included.",
         &c->attaches},
        {"authmng_hostapd_detaches_total", "Control interfaces lost.", &c->detaches},
        {"authmng_hostapd_poll_failures_total", "STA and MIB requests left unanswered.",
         &c->poll_failures},
        {"authmng_hostapd_link_downs_total", "Ports seen losing their link.", &c->link_downs},
    };
    for (const auto &entry : bridge) {
        t.family(entry.name, "counter", entry.help);
        t.add("%s %" PRIu64 "\n", entry.name, entry.value->load(std::memory_order_relaxed));
    }
    t.family("authmng_hostapd_interfaces_attached", "gauge",
             "Control interfaces attached now, of those configured.");
    t.add("authmng_hostapd_interfaces_attached %u\n", c->attached.load(std::memory_order_relaxed));
    t.family("authmng_hostapd_interfaces", "gauge", "Control interfaces configured.");
    t.add("authmng_hostapd_interfaces %u\n", c->interfaces.load(std::memory_order_relaxed));
    return t.take();
}

}  // namespace authmng_hostapd
