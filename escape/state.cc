// The escape check's process-wide state: the three checks, the previous
// totals of the daemon's reports and its last maximum of online users.
// All zero at load; guarded by g_authmng_mtx.
#include <cstring>

#include "authmng.h"
#include "core/lock.h"
#include "escape/check.h"

extern "C" {

authmng_check_t g_authmng_check[AUTHMNG_CHECK_TYPE_NUM];
authmng_info_record_t g_authmng_info_record;
uint32_t g_authmng_max_online_user = 0;

}  // extern "C"

namespace authmng {

void escape_clear_previous_totals() {
    LibraryLock lock;
    std::memset(&g_authmng_info_record, 0, sizeof g_authmng_info_record);
}

}  // namespace authmng
