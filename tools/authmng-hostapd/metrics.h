// The live statistics in the Prometheus text exposition format: what a
// fleet's Prometheus scrapes from every device.
#ifndef AUTHMNG_HOSTAPD_METRICS_H
#define AUTHMNG_HOSTAPD_METRICS_H

#include <cstdint>
#include <string>

#include "authmng.h"
#include "counters.h"

namespace authmng_hostapd {

struct StatsSnapshot {
    authmng_dot1x_stat_t d1x[AUTHMNG_D1X_METHOD_NUM];
    uint32_t abnormal_queued;
    uint32_t abnormal_cap;
};

// Copies the library's 802.1X records under its mutex.
void take_snapshot(StatsSnapshot *snapshot);

// The exposition text of a snapshot and the bridge's counters (counters may
// be null: then the bridge's families are left out).
std::string render_metrics(const StatsSnapshot &snapshot, const BridgeCounters *counters);

}  // namespace authmng_hostapd

#endif
