// The timer thread: one tick a minute runs the daily flash writes in their
// two-minute window, the interval write of the client, the cpp sampling,
// and keeps the health monitor's watch on the thread.
#include <sys/prctl.h>
#include <sys/select.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <ctime>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/local_time.h"
#include "core/log.h"
#include "core/relaxed.h"

using namespace authmng;

namespace {

constexpr int kTickSeconds = 60;
constexpr int64_t kKeepAliveSeconds = 120;
constexpr int32_t kHamPeriod = 120;
constexpr int32_t kHamRetries = 5;
constexpr int kDailyWindowMinutes = 2;

void authmng_set_thread_name() {
    if (prctl(PR_SET_NAME, "authmng_lib", 0, 0, 0) != 0) {
        AUTHMNG_ERROR_DBG("Failed to set thread name.\n");
    }
}

// Whether the daily flash write is due at this minute.
bool authmng_is_time_to_write() {
    struct tm now = local_time(qx_time_get(QX_TIME_WALL_SECONDS));
    if (static_cast<uint32_t>(now.tm_hour) != load_relaxed(g_authmng_write_file_clock) ||
        now.tm_min >= kDailyWindowMinutes) {
        return false;
    }
    AUTHMNG_EVENT_DBG("is time to write flash.\n");
    return true;
}

void run_daily_writes(int32_t client) {
    if (client == AUTHMNG_CLIENT_WBA) {
        authmng_write_webauth_abnormal_record_to_file();
    } else if (client == AUTHMNG_CLIENT_DOT1X) {
        authmng_write_dot1x_statistic_to_flashfile();
        authmng_write_dot1x_abnormal_record_to_file();
    }
}

// Counts the interval down; true (and reloaded) when the write is due.
bool interval_due() {
    if (--g_authmng_interval != 0) return false;
    g_authmng_interval = load_relaxed(g_authmng_write_tmp_clock);
    return true;
}

}  // namespace

extern "C" int64_t authmng_get_clock(void) {
    struct timeval tv = {0, 0};
    qx_monotime(&tv);
    return qx_timeval_to_sec(&tv);
}

extern "C" void authmng_timer_proc(void) {
    if (!load_relaxed(g_authmng_statistic_enable)) return;
    int32_t client = load_relaxed(g_authmng_client_type);

    if (authmng_is_time_to_write()) {
        if (g_authmng_no_write_count != 0) {
            run_daily_writes(client);
            g_authmng_no_write_count = 0;
        } else {
            ++g_authmng_no_write_count;
        }
    } else {
        ++g_authmng_no_write_count;
    }

    if (client == AUTHMNG_CLIENT_WBA) {
        if (!interval_due()) return;
        authmng_webauth_statistic_change();
        AUTHMNG_EVENT_DBG("web is time to write tmp\n");
        authmng_write_webauth_statistic_to_tmp();
    } else if (client == AUTHMNG_CLIENT_DOT1X) {
        if (!interval_due()) return;
        AUTHMNG_EVENT_DBG("dot1x is time to write tmp\n");
        authmng_write_dot1x_statistic_to_tmpfile();
    } else if (client == AUTHMNG_CLIENT_CPP) {
        uint32_t (*sample)(int) = load_relaxed(g_authmng_cpp_handler);
        if (sample == nullptr) return;
        if (interval_due()) {
            AUTHMNG_EVENT_DBG("cpp is time to write tmp\n");
            authmng_write_cpp_to_file();
            g_authmng_max_cpp = 0;
        }
        uint32_t value = sample(0);
        if (value > g_authmng_max_cpp) g_authmng_max_cpp = value;
    }
}

extern "C" void *authmng_timer_task(void *) {
    authmng_set_thread_name();
    pthread_detach(pthread_self());
    int32_t pid = static_cast<int32_t>(getpid());
    int32_t tid = static_cast<int32_t>(syscall(SYS_gettid));
    authmng_reg_ham(pid, tid, kHamPeriod, kHamRetries);
    int64_t deadline = authmng_get_clock() + kKeepAliveSeconds;
    for (;;) {
        struct timeval wait = {kTickSeconds, 0};
        if (select(0, nullptr, nullptr, nullptr, &wait) < 0) continue;
        int64_t now = authmng_get_clock();
        if (deadline - now < 0) {
            authmng_nty_ham_reset(pid, tid, kHamPeriod, kHamRetries);
            deadline = now + kKeepAliveSeconds;
        }
        authmng_timer_proc();
    }
    return nullptr;
}
