// Internal steps of the web-auth intakes: the histogram count and the
// counter-restart rule. Both are called with g_authmng_mtx held.
#ifndef AUTHMNG_WEBAUTH_INTAKE_H
#define AUTHMNG_WEBAUTH_INTAKE_H

#include <cstdint>

namespace authmng {

// Counts value into range[index] of the live record.
void authmng_webauth_statistic_range(uint32_t index, uint32_t value);

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
