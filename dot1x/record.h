// Shapes and code tables of the 802.1X statistics record.
#ifndef AUTHMNG_DOT1X_RECORD_H
#define AUTHMNG_DOT1X_RECORD_H

#include <cstdint>

#include "authmng.h"

namespace authmng {

// Every histogram of an 802.1X record: below 1 s, 1 s to below 3 s, 3 s
// and more.
constexpr uint32_t kDot1xRangeSlots = 3;
constexpr uint64_t kDot1xRangeBounds[kDot1xRangeSlots] = {0, 1000, 3000};

// Highest valid codes of the event record in an 802.1X daemon.
constexpr uint32_t kDot1xMaxEvent = D1X_REAUTH_START;
constexpr uint32_t kDot1xMaxCode = AUTHMNG_D1X_CODE_NUM - 1;

// The code groups that the shows and the interval file sum up.
struct CodeSpan {
    uint32_t first;
    uint32_t last;  // inclusive
};
constexpr CodeSpan kStamgCodes = {61, 87};
constexpr CodeSpan kRsnaCodes = {101, 106};
constexpr CodeSpan kRoamCodes = {121, 132};
constexpr uint32_t kOtherReasonCode = 134;

// Method index of an event record's client type: 2 -> 802.1X, else MAB.
inline uint32_t dot1x_method_of(int32_t client_type) {
    return client_type == AUTHMNG_CLIENT_DOT1X ? AUTHMNG_METHOD_DOT1X : AUTHMNG_METHOD_MAB;
}

}  // namespace authmng

#endif
