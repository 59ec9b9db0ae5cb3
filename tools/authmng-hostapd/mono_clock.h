// Monotonic time in microseconds: event stamps, deadlines, replay timing.
#ifndef AUTHMNG_HOSTAPD_MONO_CLOCK_H
#define AUTHMNG_HOSTAPD_MONO_CLOCK_H

#include <cstdint>
#include <ctime>

namespace authmng_hostapd {

inline int64_t monotonic_us() {
    timespec ts;
    clock_gettime(CLOCK_MONOTONIC, &ts);
    return static_cast<int64_t>(ts.tv_sec) * 1000000 + ts.tv_nsec / 1000;
}

}  // namespace authmng_hostapd

#endif
