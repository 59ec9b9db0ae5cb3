// Time analysis of successful 802.1X first authentications: the seven
// histograms of a method's live record and the process-wide long-time
// reason counters.
#ifndef AUTHMNG_DOT1X_RANGES_H
#define AUTHMNG_DOT1X_RANGES_H

#include <cstdint>

// Counts value into histogram index (0..6) of the live record of method.
// Call with g_authmng_mtx held. A descriptor that was never set up (num 0)
// counts nothing.
void authmng_dot1x_statistic_range(uint32_t method, uint32_t index, uint32_t value);

#endif
