// Start-up: one call per process registers the client, creates its storage
// directories, attaches its command groups and debug switches, clears its
// records, and starts the timer thread. A failing step ends start-up at
// once; what was done before it stays.
#include <pthread.h>

#include <cstdlib>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/abnormal_list.h"
#include "core/log.h"
#include "core/paths.h"
#include "core/relaxed.h"

using namespace authmng;

namespace {

// Attachment points of the device's command line used by the library.
constexpr int kConfigPoint = 28;
constexpr int kEscapeShowPoint = 6;
constexpr int kEscapeDebugPoint = 17;

// Timer-thread and abnormal-threshold values set at start-up.
constexpr uint32_t kWriteTmpClockDefault = 30;
constexpr uint32_t kWebauthAbnormalValue = 3000;
constexpr uint32_t kDot1xAbnormalValue = 1000;

void switch_debug_off() {
    store_relaxed(g_authmng_lib_event_dbg, 0);
    store_relaxed(g_authmng_lib_error_dbg, 0);
}

// A client's directory in the flash area, then in the temporary area; false
// (after logging the message of the failed area) when one cannot be made.
bool create_client_dirs(const char *relative, const char *flash_failure, const char *tmp_failure) {
    if (authmng_create_dir(relative, 1) != 0) {
        AUTHMNG_LOG_RECORD("AUTHMNG_CREATE_DIR", "%s", flash_failure);
        return false;
    }
    if (authmng_create_dir(relative, 0) != 0) {
        AUTHMNG_LOG_RECORD("AUTHMNG_CREATE_DIR", "%s", tmp_failure);
        return false;
    }
    return true;
}

// Each start-up step returns false (after logging) when start-up must end.
bool start_webauth(const authmng_reg_t &reg) {
    if (!create_client_dirs(kWebauthDir, "Failed to create flash webauth dir.\r\n",
                            "Failed to create tmp webauth dir.\r\n")) {
        return false;
    }
    cli_add_command(kConfigPoint, &Tcfg_authmng_lib_cmd, "cfg authmanage");
    cli_add_command(kEscapeShowPoint, &Texec_authmanage_lib_show_cmd, "show webauth escape info");
    cli_add_command(reg.show_mode, &Texec_web_authmng_lib_show_cmd, "show authmng info");
    authmng_webauth_init();
    authmng_webauth_debug_init(reg.debug_mode);
    store_relaxed(g_authmng_authtime_abnormal_value, kWebauthAbnormalValue);
    store_relaxed(g_authmng_client_type, AUTHMNG_CLIENT_WBA);
    return true;
}

bool start_dot1x(const authmng_reg_t &reg) {
    if (!create_client_dirs(kDot1xDir, "Failed to create dot1x dir.\r\n",
                            "Failed to create tmp dot1x dir.\r\n")) {
        return false;
    }
    cli_add_command(reg.show_mode, &Texec_1x_authmng_lib_show_cmd, "show authmng info");
    authmng_dot1x_init(&g_amg_d1x[AUTHMNG_METHOD_DOT1X]);
    authmng_dot1x_init(&g_amg_d1x[AUTHMNG_METHOD_MAB]);
    authmng_dot1x_init(&g_amg_d1x_tmp[AUTHMNG_METHOD_DOT1X]);
    authmng_dot1x_init(&g_amg_d1x_tmp[AUTHMNG_METHOD_MAB]);
    authmng_dot1x_debug_init(reg.debug_mode);
    store_relaxed(g_authmng_authtime_abnormal_value, kDot1xAbnormalValue);
    store_relaxed(g_authmng_client_type, AUTHMNG_CLIENT_DOT1X);
    return true;
}

bool start_cpp() {
    if (authmng_create_dir(kCppDir, 0) != 0) {
        AUTHMNG_LOG_RECORD("AUTHMNG_CREATE_DIR", "Failed to create cpp dir.\r\n");
        return false;
    }
    store_relaxed(g_authmng_client_type, AUTHMNG_CLIENT_CPP);
    return true;
}

}  // namespace

extern "C" int authmng_init_mtx(pthread_mutex_t *mutex) {
    if (mutex == nullptr) return -1;
    pthread_mutexattr_t attr;
    pthread_mutexattr_init(&attr);
    pthread_mutexattr_settype(&attr, PTHREAD_MUTEX_RECURSIVE);
    if (pthread_mutex_init(mutex, &attr) != 0) exit(1);
    int old_ceiling = 0;
    if (pthread_mutex_setprioceiling(mutex, 0, &old_ceiling) != 0) {
        // Not every mutex protocol has a ceiling; the request is advisory.
    }
    pthread_mutexattr_destroy(&attr);
    return 0;
}

extern "C" int authmng_dot1x_debug_init(int debug_mode) {
    switch_debug_off();
    cli_add_command(debug_mode, &Tauthmng_proc_debug_group, "authmanage debug");
    return sys_add_debug("dot1x_authmng_debug", authmanage_array, authmng_show_debug_state, 0, 0,
                         0);
}

extern "C" int authmng_webauth_debug_init(int debug_mode) {
    switch_debug_off();
    cli_add_command(debug_mode, &Tauthmng_proc_debug_group, "authmanage debug");
    cli_add_command(kEscapeDebugPoint, &Tauthmanage_lib_debug_group, "authmanage escape debug");
    return sys_add_debug("authmanage-debug", authmanage_array, authmng_show_debug_state, 0, 0, 0);
}

extern "C" int32_t authmng_init(const authmng_reg_t *reg) {
    if (reg == nullptr) {
        AUTHMNG_LOG_RECORD("AUTHMNG_INIT", "reg is NULL.\r\n");
        return -1;
    }
    int32_t type = reg->client_type;
    if (type > AUTHMNG_CLIENT_MAB) {
        AUTHMNG_LOG_RECORD("AUTHMNG_INIT", "type is error.\r\n");
        return -1;
    }
    if (type == AUTHMNG_CLIENT_MAB || type < 0) {
        AUTHMNG_LOG_RECORD("AUTHMNG_INIT", "type is not exist.\r\n");
        return -1;
    }

    bool started = type == AUTHMNG_CLIENT_WBA     ? start_webauth(*reg)
                   : type == AUTHMNG_CLIENT_DOT1X ? start_dot1x(*reg)
                                                  : start_cpp();
    if (!started) return -1;

    abnormal_list_reset();
    store_relaxed(g_authmng_write_tmp_clock, kWriteTmpClockDefault);
    if (pthread_create(&g_authmng_timer_thread, nullptr, authmng_timer_task, nullptr) != 0) {
        AUTHMNG_LOG_RECORD("AUTHMNG_CREATE_PTHREAD", "Failed to create thread.\r\n");
        return -1;
    }
    return 0;
}
