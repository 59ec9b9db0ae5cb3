// The invariants of the statistics records and the abnormal list, shared
// by the stress test and the fuzz targets. Read them with g_authmng_mtx
// held when other threads run.
#ifndef AUTHMNG_TESTS_SUPPORT_INVARIANTS_H
#define AUTHMNG_TESTS_SUPPORT_INVARIANTS_H

#include <cstdint>

#include "authmng.h"
#include "core/abnormal_list.h"

namespace authmng_test {

// 802.1X, from a clear on: every total is the sum of its codes, and every
// histogram of a record that start-up set up counts each success once.
inline bool dot1x_consistent(const authmng_dot1x_stat_t &r) {
    uint64_t auth = 0, reauth = 0, offline = 0;
    for (int code = 0; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        auth += r.auth_result[code], reauth += r.reauth_result[code];
        offline += r.offline_reason[code];
    }
    bool ok = auth == r.auth_total && reauth == r.reauth_total && offline == r.offline_total;
    for (const authmng_range_t &h : r.range) {
        ok = ok && h.num == 3 && h.count[0] + h.count[1] + h.count[2] == r.auth_result[0];
    }
    return ok;
}

// Web-auth: the same, with the redirect histogram counting successful
// redirects among all redirect reports, and failed moves among all moves.
inline bool webauth_consistent(const authmng_webauth_stat_t &r) {
    uint64_t auth = 0, offline = 0;
    for (uint64_t n : r.auth_result) auth += n;
    for (uint64_t n : r.offline_reason) offline += n;
    bool ok =
        auth == r.auth_total && offline == r.offline_total && r.move_fail_count <= r.move_count;
    for (int i = 0; i < AUTHMNG_WBA_RANGE_NUM; ++i) {
        const authmng_range_t &h = r.range[i];
        const uint64_t counted = h.count[0] + h.count[1] + h.count[2];
        ok = ok && h.num == (i < 3 ? 3u : 2u) &&
             (i == 2 ? counted <= r.http_req_count : counted == r.auth_result[0]);
    }
    return ok;
}

// Records on the list, all of them or those of one event kind.
inline uint32_t abnormal_list_length(uint32_t filter = AUTHMNG_ABNORMAL_FILTER_ALL) {
    uint32_t n = 0;
    authmng::abnormal_list_for_each([&](const authmng_abnormal_node_t &node) {
        n += filter == AUTHMNG_ABNORMAL_FILTER_ALL || node.info.event == filter;
    });
    return n;
}

}  // namespace authmng_test

#endif
