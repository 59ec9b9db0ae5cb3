// The two steps the web-auth intakes share: counting a time into a
// histogram of the live record, and the counter restart.
#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "webauth/intake.h"

namespace authmng {

void authmng_webauth_statistic_range(uint32_t index, uint32_t value) {
    if (index >= AUTHMNG_WBA_RANGE_NUM) return;
    authmng_range_t &range = g_authmng_webauth.range[index];
    // A descriptor that was never set up (num 0) counts nothing.
    uint32_t num = range.num < AUTHMNG_RANGE_SLOTS ? range.num : AUTHMNG_RANGE_SLOTS;
    if (num < 2) return;
    if (value < range.bound[1]) {
        ++range.count[0];
        AUTHMNG_EVENT_DBG("range[%d]++\n", 0);
        return;
    }
    for (uint32_t i = num - 1; i >= 1; --i) {
        if (value >= range.bound[i]) {
            ++range.count[i];
            AUTHMNG_EVENT_DBG("range[%d]++\n", static_cast<int>(i));
            return;
        }
    }
}

bool authmng_webauth_statistic_reverse() {
    // The caller (an intake) holds the mutex; the interval write and the
    // clear take it again, so no other thread sees the record between them.
    LibraryLock lock;
    authmng_write_webauth_statistic_to_tmp();
    authmng_webauth_init();
    ++g_authmng_statistic_reverse;
    return true;
}

}  // namespace authmng
