// The process-wide configuration values, debug switches and state of the
// library, with their load-time values. The exported globals are the real
// storage; daemons and command handlers share this one copy.
#include <pthread.h>

#include "authmng.h"

extern "C" {

// Configuration values.
uint8_t g_authmng_statistic_enable = 1;
uint32_t g_authmng_write_tmp_clock = 30;
uint32_t g_authmng_interval = 30;
uint32_t g_authmng_write_file_clock = 1;
uint32_t g_authmng_no_write_count = 1;
uint32_t g_authmng_abnormal_record_max = 1000;
uint32_t g_authmng_escape_time = 30;
uint32_t g_authmng_escape_life = 30;
uint32_t g_authmng_check_ratio = 10;
uint32_t g_authmng_check_auth_threshold = 5000;
uint32_t g_authmng_check_redirect_threshold = 3000;
uint32_t g_authmng_check_wave = 20000;
const char *g_authmng_type_str[AUTHMNG_CHECK_TYPE_NUM] = {"redirect", "auth", "authtimeout"};
uint8_t g_authmng_check_open = 0;

// State.
int32_t g_authmng_client_type = 0;
uint32_t g_authmng_authtime_abnormal_value = 0;
uint32_t g_authmng_abnormal_record_num = 0;
authmng_list_head_t g_authmng_auth_abnormal_record_list = {&g_authmng_auth_abnormal_record_list,
                                                           &g_authmng_auth_abnormal_record_list};
// Recursive from the moment the library is loaded: a daemon may take it
// (the web-auth start-up does) before authmng_init, which therefore leaves
// it as it is.
#ifdef PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP
pthread_mutex_t g_authmng_mtx = PTHREAD_RECURSIVE_MUTEX_INITIALIZER_NP;
#else
pthread_mutex_t g_authmng_mtx = PTHREAD_MUTEX_INITIALIZER;
__attribute__((constructor)) static void authmng_make_mtx_recursive(void) {
    authmng_init_mtx(&g_authmng_mtx);
}
#endif
pthread_t g_authmng_timer_thread;
uint32_t g_authmng_statistic_reverse = 0;
uint32_t g_authmng_max_cpp = 0;
uint32_t (*g_authmng_cpp_handler)(int) = nullptr;
uint8_t g_authmng_lib_event_dbg = 0;
uint8_t g_authmng_lib_error_dbg = 0;

// The debug-switch table handed to the debug registry; the index of an
// entry is what the debug commands "event" (0) and "error" (1) store.
authmng_debug_switch_t authmanage_array[3] = {
    {&g_authmng_lib_event_dbg, "authmanage debug event information"},
    {&g_authmng_lib_error_dbg, "authmanage debug error information"},
    {nullptr, nullptr},
};

}  // extern "C"
