// Shape of the web-auth statistics record: the thirteen measured
// quantities and their histograms.
#ifndef AUTHMNG_WEBAUTH_RECORD_H
#define AUTHMNG_WEBAUTH_RECORD_H

#include <cstdint>

#include "authmng.h"

namespace authmng {

// Histogram of quantity i: num ranges with lower bounds bound[0..num-1].
struct WebauthRangeShape {
    uint32_t num;
    uint64_t bound[AUTHMNG_RANGE_SLOTS];
};

constexpr WebauthRangeShape kWebauthRangeShapes[AUTHMNG_WBA_RANGE_NUM] = {
    {3, {0, 1000, 3000}},  // 0 ack_time
    {3, {0, 1000, 3000}},  // 1 ack_time less the servers' time
    {3, {0, 500, 1000}},   // 2 redirect time
    {2, {0, 1000, 0}},     // 3 auth_time
    {2, {0, 1000, 0}},     // 4 aaa less rds
    {2, {0, 1000, 0}},     // 5 rds less rds server
    {2, {0, 1000, 0}},     // 6 rds server
    {2, {0, 1000, 0}},     // 7 scc
    {2, {0, 1000, 0}},     // 8 accounting
    {2, {0, 1000, 0}},     // 9 accounting aaa less rds
    {2, {0, 1000, 0}},     // 10 accounting rds less rds server
    {2, {0, 1000, 0}},     // 11 accounting rds server
    {2, {0, 1000, 0}},     // 12 portal
};

// Highest valid codes of the event record in a web-auth daemon.
constexpr uint32_t kWebauthMaxEvent = WBA_EVENT_OFFLINE;
constexpr uint32_t kWebauthMaxResult = AUTHMNG_WBA_RESULT_NUM - 1;
constexpr uint32_t kWebauthMaxOffline = AUTHMNG_WBA_OFFLINE_NUM - 1;

}  // namespace authmng

#endif
