// The counter restart the web-auth intakes share (the histogram step is
// inline in webauth/intake.h).
#include "authmng.h"
#include "core/lock.h"
#include "core/log.h"
#include "webauth/intake.h"

namespace authmng {

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
