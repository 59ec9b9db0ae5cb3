// Host allocation: calloc, with a switch that makes allocations fail from a
// chosen one on, so tests can reach every failure path of the library
// without touching its code.
#include <atomic>
#include <cstdlib>

#include "authmng_host.h"
#include "authmng_platform.h"

namespace {
// Allocations left before they start failing; negative: never fail.
std::atomic<long> g_left{-1};
std::atomic<long> g_allocations{0};
}  // namespace

extern "C" void authmng_host_alloc_fail_after(int n) {
    g_left.store(n);
}

extern "C" long authmng_host_allocations(void) {
    return g_allocations.load();
}

extern "C" void *authmng_port_zalloc(size_t size) {
    ++g_allocations;
    long left = g_left.load();
    while (left >= 0) {
        if (left == 0) return nullptr;
        if (g_left.compare_exchange_weak(left, left - 1)) break;
    }
    return calloc(1, size);
}

extern "C" void authmng_port_free(void *block) {
    free(block);
}
