// Host time service: the wall clock can be pinned (virtual time for tests
// and the simulator) or made to fail; the monotonic clock is the kernel's.
#include <atomic>
#include <cstdint>
#include <ctime>
#include <mutex>

#include "authmng_host.h"
#include "authmng_platform.h"

namespace {
std::atomic<bool> g_pinned{false};
// 64-bit atomics are not lock-free on every target; a mutex serves.
std::mutex g_pinned_mutex;
int64_t g_pinned_seconds = 0;
std::atomic<bool> g_failing{false};
}  // namespace

extern "C" void authmng_host_clock_set(int64_t epoch_seconds) {
    {
        std::lock_guard<std::mutex> lock(g_pinned_mutex);
        g_pinned_seconds = epoch_seconds;
    }
    g_pinned.store(true);
}

extern "C" void authmng_host_clock_real(void) {
    g_pinned.store(false);
}

extern "C" void authmng_host_clock_fail(int on) {
    g_failing.store(on != 0);
}

extern "C" uint64_t qx_time_get(int selector) {
    if (selector != QX_TIME_WALL_SECONDS || g_failing.load()) return QX_TIME_FAILED;
    if (g_pinned.load()) {
        std::lock_guard<std::mutex> lock(g_pinned_mutex);
        return static_cast<uint64_t>(g_pinned_seconds);
    }
    return static_cast<uint64_t>(time(nullptr));
}

extern "C" int qx_monotime(struct timeval *tv) {
    if (tv == nullptr) return -1;
    struct timespec ts;
    if (clock_gettime(CLOCK_MONOTONIC, &ts) != 0) return -1;
    tv->tv_sec = ts.tv_sec;
    tv->tv_usec = static_cast<suseconds_t>(ts.tv_nsec / 1000);
    return 0;
}

extern "C" int64_t qx_timeval_to_sec(const struct timeval *tv) {
    return tv == nullptr ? 0 : static_cast<int64_t>(tv->tv_sec);
}
