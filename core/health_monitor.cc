// Health-monitor wrappers of the timer thread (and, for unregistering, of
// the daemons).
#include "authmng.h"
#include "authmng_platform.h"
#include "core/log.h"

extern "C" int authmng_reg_ham(int32_t pid, int32_t tid, int32_t a, int32_t b) {
    int ret = ham_client_reg_thread_notify(pid, tid, a, b);
    if (ret < 0) AUTHMNG_LOG_RECORD("HAM_MSG", "pid %d tid %d register ham failed\n", pid, tid);
    return ret;
}

extern "C" int authmng_nty_ham_reset(int32_t pid, int32_t tid, int32_t a, int32_t b) {
    int ret = ham_client_reset_thread_notify(pid, tid, a, b);
    if (ret < 0) AUTHMNG_LOG_RECORD("HAM_MSG", "failed to nty ham reset pid %d tid %d\n", pid, tid);
    return ret;
}

extern "C" void authmng_unreg_ham(int32_t pid, int32_t tid, int32_t a, int32_t b) {
    int ret = ham_client_unreg_thread_notify(pid, tid, a, b);
    if (ret < 0) AUTHMNG_LOG_RECORD("HAM_MSG", "Failed to unreg ham, ret(%d).\n", ret);
}
