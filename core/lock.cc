#include "core/lock.h"

#include <unistd.h>

namespace authmng {
namespace {

// One pause of a spin-wait: yields the core's resources to the holder.
#if defined(__x86_64__) || defined(__i386__)
inline void spin_pause() {
    __builtin_ia32_pause();
}
#elif defined(__aarch64__) || defined(__arm__)
inline void spin_pause() {
    __asm__ __volatile__("yield" ::: "memory");
}
#else
inline void spin_pause() {
    __asm__ __volatile__("" ::: "memory");
}
#endif

// Pauses before the first and before the last attempt; each attempt waits
// twice as long as the one before.
constexpr unsigned kFirstPauses = 32;
constexpr unsigned kLastPauses = 2048;

bool several_cpus() {
    static const bool several = sysconf(_SC_NPROCESSORS_ONLN) > 1;
    return several;
}

}  // namespace

void LibraryLock::wait_for_mutex() {
    if (several_cpus()) {
        for (unsigned pauses = kFirstPauses; pauses <= kLastPauses; pauses *= 2) {
            for (unsigned i = 0; i < pauses; ++i) spin_pause();
            if (pthread_mutex_trylock(&g_authmng_mtx) == 0) return;
        }
    }
    pthread_mutex_lock(&g_authmng_mtx);
}

}  // namespace authmng
