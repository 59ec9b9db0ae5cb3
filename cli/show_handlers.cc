// The show handlers at the ends of the show chains: each chooses, from the
// command code and method the tree left in the parse state, which display
// to run.
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"

extern "C" void authmng_show_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    authmng_show_check_info();
}

extern "C" void authmng_webauth_show_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    authmng_debug_webauth_check_info();
}

extern "C" void authmng_show_1x_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    uint32_t method = static_cast<uint32_t>(cli_slot_value(ps, CLI_SLOT_METHOD));
    // The abnormal display takes an event-kind filter, not the method: the
    // list is the same with or without "mab".
    switch (cli_slot_value(ps, CLI_SLOT_CODE)) {
        case AUTHMNG_CMD_SHOW_STATISTIC:
            authmng_show_dot1x_statistic(method);
            break;
        case AUTHMNG_CMD_SHOW_FAIL:
            authmng_show_dot1x_statistic_fail(method);
            break;
        case AUTHMNG_CMD_SHOW_AUTH_DETAIL:
            authmng_show_dot1x_auth_detail(method);
            break;
        case AUTHMNG_CMD_SHOW_REAUTH_DETAIL:
            authmng_show_dot1x_reauth_detail(method);
            break;
        case AUTHMNG_CMD_SHOW_OFFLINE_DETAIL:
            authmng_show_dot1x_offline_detail(method);
            break;
        case AUTHMNG_CMD_SHOW_TELNET:
            authmng_show_dot1x_statistic_telnet(method);
            break;
        case AUTHMNG_CMD_SHOW_ABNORMAL:
            authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
            break;
        case AUTHMNG_CMD_SHOW_ABNORMAL_AUTH:
            authmng_show_dot1x_statistic_abnormal(D1X_AUTH);
            break;
        case AUTHMNG_CMD_SHOW_ABNORMAL_REAUTH:
            authmng_show_dot1x_statistic_abnormal(D1X_REAUTH);
            break;
        case AUTHMNG_CMD_SHOW_ABNORMAL_OFFLINE:
            authmng_show_dot1x_statistic_abnormal(D1X_OFFLINE);
            break;
        default:
            break;
    }
}

extern "C" void authmng_show_webauth_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    switch (cli_slot_value(ps, CLI_SLOT_CODE)) {
        case AUTHMNG_CMD_SHOW_STATISTIC:
            authmng_show_webauth_statistic();
            break;
        case AUTHMNG_CMD_SHOW_TELNET:
            authmng_show_webauth_statistic_telnet();
            break;
        case AUTHMNG_CMD_SHOW_ABNORMAL:
            authmng_show_webauth_statistic_abnormal();
            break;
        case AUTHMNG_CMD_SHOW_TMP:
            authmng_show_webauth_tmp_file();
            break;
        default:
            break;
    }
}
