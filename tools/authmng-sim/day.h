// The built-in day: a seeded, realistic stream of a daemon's events.
//
// 802.1X: a daily load curve with morning and afternoon peaks, 802.1X and
// MAB side by side, realistic shares of successes and failure causes,
// re-authentications and offlines, and a slow-RADIUS episode (10:00-10:25)
// whose slow and timed-out authentications land on the abnormal list.
// Web-auth: redirects, authentications, offlines, station moves, a running
// escape-check report every minute, and a server slowdown (13:00-13:20)
// that makes the check let users escape, then a recovery.
// cpp: the cpp counter once a minute.
#ifndef AUTHMNG_SIM_DAY_H
#define AUTHMNG_SIM_DAY_H

#include <cstdint>
#include <functional>

#include "trace.h"

namespace authmng_sim {

struct DayOptions {
    int32_t client = AUTHMNG_CLIENT_DOT1X;
    uint64_t seed = 1;
    uint32_t users = 200;  // scales every rate
    double hours = 24.0;   // length of the generated stretch
    int64_t start = 0;     // epoch of its first second
};

// Calls emit for every event, in time order; returns how many.
uint64_t generate_day(const DayOptions &options,
                      const std::function<void(const TraceEvent &)> &emit);

}  // namespace authmng_sim

#endif
