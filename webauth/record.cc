// The web-auth statistics record, its interval baseline, and the clear.
#include <cstring>

#include "authmng.h"
#include "core/lock.h"
#include "webauth/record.h"

extern "C" {
authmng_webauth_stat_t g_authmng_webauth;
authmng_webauth_stat_t g_authmng_webauth_tmp;
}

namespace {

void clear_record(authmng_webauth_stat_t &record) {
    memset(&record, 0, sizeof record);
    for (uint32_t i = 0; i < AUTHMNG_WBA_RANGE_NUM; ++i) {
        const authmng::WebauthRangeShape &shape = authmng::kWebauthRangeShapes[i];
        record.range[i].id = i;
        record.range[i].num = shape.num;
        for (uint32_t j = 0; j < shape.num; ++j) record.range[i].bound[j] = shape.bound[j];
    }
}

}  // namespace

extern "C" void authmng_webauth_init(void) {
    authmng::LibraryLock lock;
    clear_record(g_authmng_webauth);
    clear_record(g_authmng_webauth_tmp);
}

extern "C" int authmng_webauth_statistic_change(void) {
    return 1;
}
