// Host debug registry: remembers the registrations; the switch tables stay
// the caller's.
#include <atomic>

#include "authmng_host.h"
#include "authmng_platform.h"

namespace {
std::atomic<int> g_count{0};
std::atomic<const char *> g_latest{nullptr};
}  // namespace

extern "C" int sys_add_debug(const char *name, authmng_debug_switch_t *table, void (*show)(void),
                             int, int, int) {
    if (name == nullptr || table == nullptr || show == nullptr) return -1;
    g_latest.store(name);
    ++g_count;
    return 0;
}

extern "C" int authmng_host_debug_registrations(const char **name) {
    if (name != nullptr) *name = g_latest.load();
    return g_count.load();
}
