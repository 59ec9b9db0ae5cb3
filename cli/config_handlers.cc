// The configuration commands of the web-auth process. Each handler both
// carries out its command and, when the framework generates the saved
// configuration, emits the command's line if the value differs from its
// default, so the saved configuration holds only changed values.
#include <cstdint>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/relaxed.h"

#include "escape/check.h"

using authmng::load_relaxed;
using authmng::store_relaxed;

namespace {

// Defaults of the configuration values (their load-time values).
constexpr uint32_t kAuthThresholdDefault = 5000;      // ms
constexpr uint32_t kRatioDefault = 10;                // percent
constexpr uint32_t kRedirectThresholdDefault = 3000;  // ms
constexpr uint32_t kEscapeTimeDefault = 30;           // minutes
constexpr uint32_t kEscapeLifeDefault = 30;           // minutes

bool generating(const cli_parse_state *ps) {
    return (cli_gen_mode(ps) & (CLI_GEN_CONFIG | CLI_GEN_CONFIG_ALL)) != 0;
}

// The plain form stores the number of the line, the negated form the
// default.
void set_number(const cli_parse_state *ps, uint32_t &value, uint32_t default_value) {
    uint32_t number = static_cast<uint32_t>(cli_slot_value(ps, CLI_SLOT_NUMBER));
    store_relaxed(value, cli_negated(ps) ? default_value : number);
}

}  // namespace

extern "C" void authmng_escape_enable_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        c2p_printf(load_relaxed(g_authmng_check_open) != 0, ps, "authmanage user-escape enable");
        return;
    }
    if (cli_negated(ps)) {
        store_relaxed(g_authmng_check_open, 0);
        // The first report after a later enable only sets a new baseline.
        authmng::escape_clear_previous_totals();
    } else {
        store_relaxed(g_authmng_check_open, 1);
    }
}

extern "C" void authmng_escape_when_auth_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        uint32_t value = load_relaxed(g_authmng_check_auth_threshold);
        c2p_printf(value != kAuthThresholdDefault, ps,
                   "authmanage user-escape when authentication-time %d", static_cast<int>(value));
        return;
    }
    set_number(ps, g_authmng_check_auth_threshold, kAuthThresholdDefault);
}

extern "C" void authmng_escape_when_ratio_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        uint32_t value = load_relaxed(g_authmng_check_ratio);
        c2p_printf(value != kRatioDefault, ps, "authmanage user-escape when timeout-ratio %d",
                   static_cast<int>(value));
        return;
    }
    set_number(ps, g_authmng_check_ratio, kRatioDefault);
}

extern "C" void authmng_escape_when_redirect_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        uint32_t value = load_relaxed(g_authmng_check_redirect_threshold);
        c2p_printf(value != kRedirectThresholdDefault, ps,
                   "authmanage user-escape when redirect-time %d", static_cast<int>(value));
        return;
    }
    set_number(ps, g_authmng_check_redirect_threshold, kRedirectThresholdDefault);
}

extern "C" void authmng_escape_time_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        uint32_t value = load_relaxed(g_authmng_escape_time);
        c2p_printf(value != kEscapeTimeDefault, ps, "authmanage user-escape time %d",
                   static_cast<int>(value));
        return;
    }
    set_number(ps, g_authmng_escape_time, kEscapeTimeDefault);
}

extern "C" void authmng_escape_life_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        uint32_t value = load_relaxed(g_authmng_escape_life);
        c2p_printf(value != kEscapeLifeDefault, ps, "authmanage user-escape life %d",
                   static_cast<int>(value));
        return;
    }
    set_number(ps, g_authmng_escape_life, kEscapeLifeDefault);
}

extern "C" void authmng_statistic_enable_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    if (generating(ps)) {
        c2p_printf(load_relaxed(g_authmng_statistic_enable) == 0, ps,
                   "no authmanage statistic enable");
        return;
    }
    store_relaxed(g_authmng_statistic_enable, cli_negated(ps) ? 0 : 1);
}
