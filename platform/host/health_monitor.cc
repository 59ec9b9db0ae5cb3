// Host health monitor: counts registrations and keep-alives; can be made
// to refuse every call.
#include <atomic>

#include "authmng_host.h"
#include "authmng_platform.h"

namespace {
std::atomic<int> g_registrations{0};
std::atomic<int> g_resets{0};
std::atomic<bool> g_failing{false};
}  // namespace

extern "C" void authmng_host_ham_fail(int on) {
    g_failing.store(on != 0);
}
extern "C" int authmng_host_ham_registrations(void) {
    return g_registrations.load();
}
extern "C" int authmng_host_ham_resets(void) {
    return g_resets.load();
}

extern "C" int ham_client_reg_thread_notify(int, int, int, int) {
    if (g_failing.load()) return -1;
    ++g_registrations;
    return 0;
}

extern "C" int ham_client_reset_thread_notify(int, int, int, int) {
    if (g_failing.load()) return -1;
    ++g_resets;
    return 0;
}

extern "C" int ham_client_unreg_thread_notify(int, int, int, int) {
    return g_failing.load() ? -1 : 0;
}
