/* The public header from a plain C99 translation unit: it compiles, links
 * against the shared library, and keeps the field order and widths of the
 * records the daemons fill. A change of order or width fails here. */
#include <stddef.h>
#include <stdio.h>

#include "authmng.h"

static int failures = 0;

#define CHECK(cond)                                                    \
    do {                                                               \
        if (!(cond)) {                                                 \
            fprintf(stderr, "%s:%d: %s\n", __FILE__, __LINE__, #cond); \
            ++failures;                                                \
        }                                                              \
    } while (0)

/* b directly follows a of the given width in record T. */
#define FOLLOWS(T, a, width, b) CHECK(offsetof(T, b) == offsetof(T, a) + (width))

int main(void) {
    /* Registration record: three 32-bit words. */
    CHECK(offsetof(authmng_reg_t, client_type) == 0);
    FOLLOWS(authmng_reg_t, client_type, 4, debug_mode);
    FOLLOWS(authmng_reg_t, debug_mode, 4, show_mode);
    CHECK(sizeof(authmng_reg_t) == 12);

    /* Event record: the order of every field the daemons fill. */
    CHECK(offsetof(authmng_auth_info_t, client_type) == 0);
    CHECK(offsetof(authmng_auth_info_t, online_num) >= 4);
    FOLLOWS(authmng_auth_info_t, online_num, 8, reauth_num);
    FOLLOWS(authmng_auth_info_t, reauth_num, 8, ip);
    FOLLOWS(authmng_auth_info_t, ip, 4, auth_time);
    FOLLOWS(authmng_auth_info_t, auth_time, 4, scc_time);
    FOLLOWS(authmng_auth_info_t, scc_time, 4, acct_time);
    FOLLOWS(authmng_auth_info_t, acct_time, 4, ack_time);
    FOLLOWS(authmng_auth_info_t, ack_time, 4, portal_time);
    FOLLOWS(authmng_auth_info_t, portal_time, 4, wba_state);
    FOLLOWS(authmng_auth_info_t, wba_state, 4, wba_event);
    FOLLOWS(authmng_auth_info_t, wba_event, 4, aaa_time);
    FOLLOWS(authmng_auth_info_t, aaa_time, 4, aaa_code);
    FOLLOWS(authmng_auth_info_t, aaa_code, 4, rds_srv_time);
    FOLLOWS(authmng_auth_info_t, rds_srv_time, 4, rds_time);
    FOLLOWS(authmng_auth_info_t, rds_time, 4, rds_code);
    FOLLOWS(authmng_auth_info_t, rds_code, 4, acct_aaa_time);
    FOLLOWS(authmng_auth_info_t, acct_aaa_time, 4, aaa_acct_code);
    FOLLOWS(authmng_auth_info_t, aaa_acct_code, 4, acct_rds_svr_time);
    FOLLOWS(authmng_auth_info_t, acct_rds_svr_time, 4, acct_rds_time);
    FOLLOWS(authmng_auth_info_t, acct_rds_time, 4, rds_acct_code);
    FOLLOWS(authmng_auth_info_t, rds_acct_code, 4, sta_time);
    FOLLOWS(authmng_auth_info_t, sta_time, 4, self_time);
    FOLLOWS(authmng_auth_info_t, self_time, 4, rssi);
    /* The long-time classification reads the three flags after rssi. */
    FOLLOWS(authmng_auth_info_t, rssi, 4, aaa_timeout);
    FOLLOWS(authmng_auth_info_t, aaa_timeout, 1, requestid_timeout);
    FOLLOWS(authmng_auth_info_t, requestid_timeout, 1, request_timeout);
    FOLLOWS(authmng_auth_info_t, request_timeout, 1, rsna_notify);
    FOLLOWS(authmng_auth_info_t, rsna_notify, 1, start_notify);
    FOLLOWS(authmng_auth_info_t, start_notify, 1, dismatch_id);
    FOLLOWS(authmng_auth_info_t, dismatch_id, 1, logoff);
    CHECK(offsetof(authmng_auth_info_t, result) == offsetof(authmng_auth_info_t, logoff) + 2);
    FOLLOWS(authmng_auth_info_t, result, 4, event);
    FOLLOWS(authmng_auth_info_t, event, 4, offline_reason);
    FOLLOWS(authmng_auth_info_t, offline_reason, 4, online_time);
    FOLLOWS(authmng_auth_info_t, online_time, 4, username);
    FOLLOWS(authmng_auth_info_t, username, 256, mac);
    CHECK(sizeof(((authmng_auth_info_t *)0)->username) == 256);

    /* Redirect and station-move reports. */
    CHECK(offsetof(authmng_rd_info_t, rd_user) == 0);
    FOLLOWS(authmng_rd_info_t, rd_user, 8, reserved);
    FOLLOWS(authmng_rd_info_t, reserved, 4, rd_time);
    FOLLOWS(authmng_rd_info_t, rd_time, 4, rd_result);
    CHECK(offsetof(authmng_stamove_info_t, move_type) == 0);
    FOLLOWS(authmng_stamove_info_t, move_type, 4, move_fail);

    /* Escape check input and verdict. */
    CHECK(offsetof(authmng_check_input_t, total_redirect_count) == 0);
    FOLLOWS(authmng_check_input_t, total_redirect_count, 4, total_redirect_time);
    FOLLOWS(authmng_check_input_t, total_redirect_time, 4, total_auth_count);
    FOLLOWS(authmng_check_input_t, total_auth_count, 4, total_auth_time);
    FOLLOWS(authmng_check_input_t, total_auth_time, 4, total_auth_timeout_count);
    FOLLOWS(authmng_check_input_t, total_auth_timeout_count, 4, max_online_user);
    CHECK(sizeof(authmng_check_input_t) == 24);
    CHECK(offsetof(authmng_check_result_t, escape_time) == 0);
    FOLLOWS(authmng_check_result_t, escape_time, 4, escape_ratio);
    FOLLOWS(authmng_check_result_t, escape_ratio, 4, reboot_enable);

    /* TLV buffer. */
    CHECK(offsetof(authmng_tlv_buf_t, used) == 0);
    FOLLOWS(authmng_tlv_buf_t, used, 2, left);
    FOLLOWS(authmng_tlv_buf_t, left, 2, data);
    CHECK(sizeof(((authmng_tlv_buf_t *)0)->data) == 150);

    /* Histogram record and the record heads the daemons may read. */
    FOLLOWS(authmng_range_t, id, 4, num);
    FOLLOWS(authmng_range_t, num, 4, count);
    FOLLOWS(authmng_range_t, count, 24, bound);
    CHECK(offsetof(authmng_abnormal_node_t, next) == 0);
    FOLLOWS(authmng_abnormal_node_t, next, sizeof(void *), prev);

    /* Linking: a function and a global of the shared library. */
    CHECK(authmng_dot1x_auth_reason_str(0)[0] == 'a');
    CHECK(g_authmng_abnormal_record_max == 1000);

    if (failures == 0) printf("c_abi_test: 1 passed, 0 failed\n");
    return failures == 0 ? 0 : 1;
}
