/* The public header from a plain C99 translation unit: it compiles, links
 * against the shared library, and keeps the field order and widths of the
 * records the daemons fill. A change of order or width fails here. */
#include <stddef.h>
#include <stdio.h>

#include "authmng.h"

static int failures = 0;

/* A field of a record: where it starts, and how wide the one before it is. */
struct field {
    size_t at, width_before;
    const char *name;
};

/* Each field directly follows the one before it in the list (the first
 * entry marks the start of the record). */
static void expect_chain(const char *record, const struct field *f, size_t n) {
    size_t i;
    for (i = 1; i < n; ++i) {
        if (f[i].at == f[i - 1].at + f[i].width_before) continue;
        fprintf(stderr, "%s: %s does not follow %s\n", record, f[i].name, f[i - 1].name);
        ++failures;
    }
}

#define CHAIN(T, ...)                                               \
    do {                                                            \
        typedef T R;                                                \
        const struct field list[] = {{0, 0, "start"}, __VA_ARGS__}; \
        expect_chain(#T, list, sizeof list / sizeof list[0]);       \
    } while (0)
/* f follows the field before it, which is w bytes wide (0: the first field). */
#define F(f, w) \
    { offsetof(R, f), (w), #f }

int main(void) {
    CHAIN(authmng_reg_t, F(client_type, 0), F(debug_mode, 4), F(show_mode, 4));

    /* Event record: the order of every field the daemons fill. The 64-bit
     * counters start where the target aligns them, from byte 4 on. The
     * long-time classification reads the flags after rssi. */
    if (offsetof(authmng_auth_info_t, online_num) < 4) ++failures;
    CHAIN(authmng_auth_info_t, F(online_num, offsetof(R, online_num)), F(reauth_num, 8), F(ip, 8),
          F(auth_time, 4), F(scc_time, 4), F(acct_time, 4), F(ack_time, 4), F(portal_time, 4),
          F(wba_state, 4), F(wba_event, 4), F(aaa_time, 4), F(aaa_code, 4), F(rds_srv_time, 4),
          F(rds_time, 4), F(rds_code, 4), F(acct_aaa_time, 4), F(aaa_acct_code, 4),
          F(acct_rds_svr_time, 4), F(acct_rds_time, 4), F(rds_acct_code, 4), F(sta_time, 4),
          F(self_time, 4), F(rssi, 4), F(aaa_timeout, 4), F(requestid_timeout, 1),
          F(request_timeout, 1), F(rsna_notify, 1), F(start_notify, 1), F(dismatch_id, 1),
          F(logoff, 1), F(result, 2), F(event, 4), F(offline_reason, 4), F(online_time, 4),
          F(username, 4), F(mac, 256));
    CHAIN(authmng_rd_info_t, F(rd_user, 0), F(reserved, 8), F(rd_time, 4), F(rd_result, 4));
    CHAIN(authmng_stamove_info_t, F(move_type, 0), F(move_fail, 4));
    CHAIN(authmng_check_input_t, F(total_redirect_count, 0), F(total_redirect_time, 4),
          F(total_auth_count, 4), F(total_auth_time, 4), F(total_auth_timeout_count, 4),
          F(max_online_user, 4));
    CHAIN(authmng_check_result_t, F(escape_time, 0), F(escape_ratio, 4), F(reboot_enable, 4));
    CHAIN(authmng_tlv_buf_t, F(used, 0), F(left, 2), F(data, 2));
    /* The histogram record and the head of a list node the daemons may read. */
    CHAIN(authmng_range_t, F(id, 0), F(num, 4), F(count, 4), F(bound, 24));
    CHAIN(authmng_abnormal_node_t, F(next, 0), F(prev, sizeof(void *)));

    /* Whole sizes, and linking: a function and a global of the shared library. */
    if (sizeof(authmng_reg_t) != 12 || sizeof(authmng_check_input_t) != 24 ||
        sizeof(((authmng_tlv_buf_t *)0)->data) != 150 ||
        authmng_dot1x_auth_reason_str(0)[0] != 'a' || g_authmng_abnormal_record_max != 1000) {
        fprintf(stderr, "c_abi_test: a record size or a library symbol is wrong\n");
        ++failures;
    }

    if (failures == 0) printf("c_abi_test: 1 passed, 0 failed\n");
    return failures == 0 ? 0 : 1;
}
