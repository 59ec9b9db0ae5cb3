// The event entry of both daemons: checks the record and the master switch
// and hands the record to the intake of its kind.
#include "authmng.h"
#include "core/log.h"
#include "core/relaxed.h"

using authmng::load_relaxed;

extern "C" void authmng_notify_auth_info(const authmng_auth_info_t *auth_info) {
    if (auth_info == nullptr) {
        AUTHMNG_ERROR_DBG("auth_info == NULL.\n");
        return;
    }
    if (!load_relaxed(g_authmng_statistic_enable)) {
        AUTHMNG_ERROR_DBG("g_authmng_statistic_enable == false.\n");
        return;
    }
    int32_t kind = auth_info->client_type;
    if (kind == AUTHMNG_CLIENT_WBA && load_relaxed(g_authmng_client_type) == AUTHMNG_CLIENT_WBA) {
        AUTHMNG_EVENT_DBG("client == AUTHMNG_CLIENT_WBA\n");
        authmng_notify_webauth_info(auth_info);
        return;
    }
    if (kind == AUTHMNG_CLIENT_DOT1X || kind == AUTHMNG_CLIENT_MAB) {
        AUTHMNG_EVENT_DBG("client == AUTHMNG_CLIENT_DOT1X\n");
        // The 802.1X intake does not change the record; its signature is the
        // daemons' historical one.
        authmng_notify_dot1x_info(const_cast<authmng_auth_info_t *>(auth_info));
        return;
    }
    AUTHMNG_ERROR_DBG("client(%d) error\n", kind);
}
