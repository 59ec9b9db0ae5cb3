/* A minimal 802.1X daemon in plain C: starts the library as an 802.1X
 * client, reports a few events, turns event debugging on and prints the
 * debug state and the abnormal records it queued.
 *
 * Build against an installed library:
 *   gcc -std=c99 dot1x_daemon.c $(pkg-config --cflags --libs qx_authmng)
 */
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "authmng.h"

static authmng_auth_info_t make_event(int32_t kind, uint32_t event, uint32_t result,
                                      uint32_t auth_time, const char *user) {
    authmng_auth_info_t info;
    memset(&info, 0, sizeof info);
    info.client_type = kind;
    info.event = event;
    info.result = result;
    info.auth_time = auth_time;
    info.online_num = 1;
    snprintf(info.username, sizeof info.username, "%s", user);
    return info;
}

int main(void) {
    authmng_reg_t reg = {AUTHMNG_CLIENT_DOT1X, 100, 200};
    if (authmng_init(&reg) != 0) {
        fprintf(stderr, "authmng_init failed (are TMPDIR and AUTHMNG_FLASH_HOME writable?)\n");
        return 1;
    }
    g_authmng_lib_event_dbg = 1;
    authmng_show_debug_state();

    authmng_auth_info_t fast = make_event(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 0, 300, "alice");
    authmng_auth_info_t slow = make_event(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 0, 2500, "bob");
    authmng_auth_info_t fail = make_event(AUTHMNG_CLIENT_MAB, D1X_AUTH, 5, 40, "0011.2233.4455");
    authmng_notify_auth_info(&fast);
    authmng_notify_auth_info(&slow);
    authmng_notify_auth_info(&fail);

    printf("abnormal records queued: %u\n", (unsigned)g_authmng_abnormal_record_num);
    printf("result 5 reads \"%s\"\n", authmng_dot1x_auth_reason_str(5));
    return 0;
}
