// Internal steps of the web-auth intakes: the histogram count and the
// counter-restart rule. Both are called with g_authmng_mtx held.
#ifndef AUTHMNG_WEBAUTH_INTAKE_H
#define AUTHMNG_WEBAUTH_INTAKE_H

#include <cstdint>

#include "authmng.h"
#include "core/log.h"

namespace authmng {

// Counts value into range[index] of the live record: below bound[1] into
// count[0], else into the highest range in use whose lower bound the value
// reaches. A descriptor with fewer than two ranges in use (never set up)
// counts nothing. Inline and without branches on the value: a successful
// authentication counts twelve histograms.
inline void authmng_webauth_statistic_range(uint32_t index, uint32_t value) {
    if (index >= AUTHMNG_WBA_RANGE_NUM) return;
    authmng_range_t &range = g_authmng_webauth.range[index];
    uint32_t num = range.num < AUTHMNG_RANGE_SLOTS ? range.num : AUTHMNG_RANGE_SLOTS;
    if (num < 2) return;
    uint32_t slot = 1;
    if (num == 3 && value >= range.bound[2]) slot = 2;
    if (value < range.bound[1]) slot = 0;
    ++range.count[slot];
    AUTHMNG_EVENT_DBG("range[%d]++\n", static_cast<int>(slot));
}

// Writes the interval files, clears both records and counts the restart in
// g_authmng_statistic_reverse. Returns true.
bool authmng_webauth_statistic_reverse();

// The restart rule: a counter above 2^64 - 10002 (within 10001 of
// wrapping) makes the intake restart the record before counting.
constexpr uint64_t kRestartLimit = UINT64_MAX - 10001;
inline bool near_limit(uint64_t counter) {
    return counter > kRestartLimit;
}

}  // namespace authmng

#endif
