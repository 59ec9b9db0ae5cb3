// The library's six command groups as static parse trees of the device's
// command-line framework. A node can only point at nodes defined before
// it, so every chain is written from its end back to its first keyword:
// read a chain from the bottom up to follow a command line. At each level
// the alternatives are tried in the order of their alternate links.
#include "authmng.h"
#include "authmng_platform.h"

namespace {

// Argument records of the node kinds, in the framework's layout.
constexpr uint32_t kPlain = CLI_KW_ATTR_PLAIN;
constexpr uint32_t kHidden = CLI_KW_ATTR_HIDDEN;

constexpr cli_keyword_arg_t keyword(const char *word, const char *help, uint32_t attr) {
    return {word, help, nullptr, attr, attr, 1, CLI_KW_PLAIN, 0, 0};
}

// A keyword that stores value into slot (the command code by default).
constexpr cli_keyword_arg_t code_keyword(const char *word, const char *help, uint32_t attr,
                                         uint64_t value, uint32_t slot = CLI_SLOT_CODE) {
    return {word, help, nullptr, attr, attr, 1, CLI_KW_STORE, slot, value};
}

constexpr cli_number_arg_t number(const char *help, uint32_t lowest, uint32_t highest) {
    return {help, lowest, highest, 0, CLI_NUMBER_FLAGS, CLI_SLOT_NUMBER, 0};
}

constexpr cli_eol_arg_t end_of_line(cli_handler_t handler) {
    return {1, handler, nullptr, nullptr};
}

constexpr cli_c2p_arg_t config_output(cli_handler_t handler) {
    return {handler, 0};
}

constexpr cli_set_arg_t set_value(uint64_t value, uint32_t slot) {
    return {value, nullptr, 8, slot};
}

constexpr cli_set_arg_t set_pointer(const void *pointer, uint32_t slot) {
    return {0, pointer, 8, slot};
}

}  // namespace

// ---------------------------------------------------------------------------
// Configuration group (web-auth client, point 28). Each command: keywords,
// configuration output, negation test; the plain form takes its number, the
// negated form ends at once.
// ---------------------------------------------------------------------------

// authmanage statistic enable
constexpr cli_eol_arg_t kStatisticEol = end_of_line(authmng_statistic_enable_cmd);
static const cli_parse_node cfg_statistic_eol = {eol_action, &kStatisticEol, &Tno_alt, &Tno_alt};
cli_parse_node Tcfg_authmng_statistic_no = {noprefix_action, nullptr, &cfg_statistic_eol,
                                            &cfg_statistic_eol};
constexpr cli_c2p_arg_t kStatisticC2p = config_output(authmng_statistic_enable_cmd);
static const cli_parse_node cfg_statistic_c2p = {c2p_action, &kStatisticC2p,
                                                 &Tcfg_authmng_statistic_no, &Tno_alt};
constexpr cli_keyword_arg_t kStatisticEnable =
    keyword("enable", "enable authentication statistic", kPlain);
static const cli_parse_node cfg_statistic_enable = {common_keyword_action, &kStatisticEnable,
                                                    &cfg_statistic_c2p, &Tno_alt};

// authmanage user-escape life <10-240>
constexpr cli_eol_arg_t kLifeEol = end_of_line(authmng_escape_life_cmd);
static const cli_parse_node cfg_life_eol = {eol_action, &kLifeEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kLifeNumber = number("min  (default value:30)", 10, 240);
static const cli_parse_node cfg_life_number = {common_number_action, &kLifeNumber, &cfg_life_eol,
                                               &Tno_alt};
cli_parse_node Tcfg_authmng_escape_life_no = {noprefix_action, nullptr, &cfg_life_eol,
                                              &cfg_life_number};
constexpr cli_c2p_arg_t kLifeC2p = config_output(authmng_escape_life_cmd);
static const cli_parse_node cfg_life_c2p = {c2p_action, &kLifeC2p, &Tcfg_authmng_escape_life_no,
                                            &Tno_alt};
constexpr cli_keyword_arg_t kLife = keyword("life", "escape life", kPlain);
static const cli_parse_node cfg_life = {common_keyword_action, &kLife, &cfg_life_c2p, &Tno_alt};

// authmanage user-escape time <10-240>
constexpr cli_eol_arg_t kTimeEol = end_of_line(authmng_escape_time_cmd);
static const cli_parse_node cfg_time_eol = {eol_action, &kTimeEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kTimeNumber = number("min  (default value:30)", 10, 240);
static const cli_parse_node cfg_time_number = {common_number_action, &kTimeNumber, &cfg_time_eol,
                                               &Tno_alt};
cli_parse_node Tcfg_authmng_escape_time_no = {noprefix_action, nullptr, &cfg_time_eol,
                                              &cfg_time_number};
constexpr cli_c2p_arg_t kTimeC2p = config_output(authmng_escape_time_cmd);
static const cli_parse_node cfg_time_c2p = {c2p_action, &kTimeC2p, &Tcfg_authmng_escape_time_no,
                                            &Tno_alt};
constexpr cli_keyword_arg_t kTime = keyword("time", "escape time", kPlain);
static const cli_parse_node cfg_time = {common_keyword_action, &kTime, &cfg_time_c2p, &cfg_life};

// authmanage user-escape when redirect-time <1000-10000>
constexpr cli_eol_arg_t kRedirectEol = end_of_line(authmng_escape_when_redirect_cmd);
static const cli_parse_node cfg_redirect_eol = {eol_action, &kRedirectEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kRedirectNumber = number("ms  (default value:3000)", 1000, 10000);
static const cli_parse_node cfg_redirect_number = {common_number_action, &kRedirectNumber,
                                                   &cfg_redirect_eol, &Tno_alt};
cli_parse_node Tcfg_authmng_escape_redirect_no = {noprefix_action, nullptr, &cfg_redirect_eol,
                                                  &cfg_redirect_number};
constexpr cli_c2p_arg_t kRedirectC2p = config_output(authmng_escape_when_redirect_cmd);
static const cli_parse_node cfg_redirect_c2p = {c2p_action, &kRedirectC2p,
                                                &Tcfg_authmng_escape_redirect_no, &Tno_alt};
constexpr cli_keyword_arg_t kRedirect = keyword("redirect-time", "redirect time", kHidden);
static const cli_parse_node cfg_redirect = {common_keyword_action, &kRedirect, &cfg_redirect_c2p,
                                            &Tno_alt};

// authmanage user-escape when timeout-ratio <1-100>
constexpr cli_eol_arg_t kRatioEol = end_of_line(authmng_escape_when_ratio_cmd);
static const cli_parse_node cfg_ratio_eol = {eol_action, &kRatioEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kRatioNumber = number("%  (default value:10)", 1, 100);
static const cli_parse_node cfg_ratio_number = {common_number_action, &kRatioNumber, &cfg_ratio_eol,
                                                &Tno_alt};
cli_parse_node Tcfg_authmng_escape_ratio_no = {noprefix_action, nullptr, &cfg_ratio_eol,
                                               &cfg_ratio_number};
constexpr cli_c2p_arg_t kRatioC2p = config_output(authmng_escape_when_ratio_cmd);
static const cli_parse_node cfg_ratio_c2p = {c2p_action, &kRatioC2p, &Tcfg_authmng_escape_ratio_no,
                                             &Tno_alt};
constexpr cli_keyword_arg_t kRatio = keyword("timeout-ratio", "timeout", kPlain);
static const cli_parse_node cfg_ratio = {common_keyword_action, &kRatio, &cfg_ratio_c2p,
                                         &cfg_redirect};

// authmanage user-escape when authentication-time <1000-10000>
constexpr cli_eol_arg_t kAuthEol = end_of_line(authmng_escape_when_auth_cmd);
static const cli_parse_node cfg_auth_eol = {eol_action, &kAuthEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kAuthNumber = number("ms  (default value:5000)", 1000, 10000);
static const cli_parse_node cfg_auth_number = {common_number_action, &kAuthNumber, &cfg_auth_eol,
                                               &Tno_alt};
cli_parse_node Tcfg_authmng_escape_auth_threshod_no = {noprefix_action, nullptr, &cfg_auth_eol,
                                                       &cfg_auth_number};
constexpr cli_c2p_arg_t kAuthC2p = config_output(authmng_escape_when_auth_cmd);
static const cli_parse_node cfg_auth_c2p = {c2p_action, &kAuthC2p,
                                            &Tcfg_authmng_escape_auth_threshod_no, &Tno_alt};
constexpr cli_keyword_arg_t kAuth = keyword("authentication-time", "authentication time", kPlain);
static const cli_parse_node cfg_auth = {common_keyword_action, &kAuth, &cfg_auth_c2p, &cfg_ratio};

// authmanage user-escape when ...
constexpr cli_keyword_arg_t kWhen = keyword("when", "threshold", kPlain);
static const cli_parse_node cfg_when = {common_keyword_action, &kWhen, &cfg_auth, &cfg_time};

// authmanage user-escape enable
constexpr cli_eol_arg_t kEscapeEol = end_of_line(authmng_escape_enable_cmd);
static const cli_parse_node cfg_escape_eol = {eol_action, &kEscapeEol, &Tno_alt, &Tno_alt};
cli_parse_node Tcfg_authmng_escape_no = {noprefix_action, nullptr, &cfg_escape_eol,
                                         &cfg_escape_eol};
constexpr cli_c2p_arg_t kEscapeC2p = config_output(authmng_escape_enable_cmd);
static const cli_parse_node cfg_escape_c2p = {c2p_action, &kEscapeC2p, &Tcfg_authmng_escape_no,
                                              &Tno_alt};
constexpr cli_keyword_arg_t kEscapeEnable = keyword("enable", "enable user escape", kPlain);
static const cli_parse_node cfg_escape_enable = {common_keyword_action, &kEscapeEnable,
                                                 &cfg_escape_c2p, &cfg_when};

// authmanage user-escape ... | authmanage statistic ...
constexpr cli_keyword_arg_t kStatistic = keyword("statistic", "authentication statistic", kHidden);
static const cli_parse_node cfg_statistic = {common_keyword_action, &kStatistic,
                                             &cfg_statistic_enable, &Tno_alt};
constexpr cli_keyword_arg_t kUserEscape = keyword("user-escape", "user escape", kHidden);
static const cli_parse_node cfg_user_escape = {common_keyword_action, &kUserEscape,
                                               &cfg_escape_enable, &cfg_statistic};
constexpr cli_keyword_arg_t kAuthmanage = keyword("authmanage", "config authmanage", kHidden);
static const cli_parse_node cfg_authmanage = {common_keyword_action, &kAuthmanage, &cfg_user_escape,
                                              &Tno_alt};

cli_parse_node Tcfg_authmng_lib_cmd = {append_point_action, nullptr, &cfg_authmanage, &Tno_alt};

// ---------------------------------------------------------------------------
// Escape show group (web-auth client, point 6): authmanage user-escape
// ---------------------------------------------------------------------------

constexpr cli_eol_arg_t kEscapeShowEol = end_of_line(authmng_show_cmd);
static const cli_parse_node esc_show_eol = {eol_action, &kEscapeShowEol, &Tno_alt, &Tno_alt};
constexpr cli_keyword_arg_t kEscapeShowUserEscape = keyword("user-escape", "user escape", kPlain);
static const cli_parse_node esc_show_user_escape = {common_keyword_action, &kEscapeShowUserEscape,
                                                    &esc_show_eol, &Tno_alt};
constexpr cli_keyword_arg_t kEscapeShowAuthmanage =
    keyword("authmanage", "show authmanage", kPlain);
static const cli_parse_node esc_show_authmanage = {common_keyword_action, &kEscapeShowAuthmanage,
                                                   &esc_show_user_escape, &Tno_alt};

cli_parse_node Texec_authmanage_lib_show_cmd = {append_point_action, nullptr, &esc_show_authmanage,
                                                &Tno_alt};

// ---------------------------------------------------------------------------
// Web-auth show group (web-auth client, its show point):
// statistic [telnet | tmp] | abnormal
// ---------------------------------------------------------------------------

constexpr cli_eol_arg_t kWebShowEol = end_of_line(authmng_show_webauth_cmd);
static const cli_parse_node wba_show_eol = {eol_action, &kWebShowEol, &Tno_alt, &Tno_alt};
constexpr cli_keyword_arg_t kWebAbnormal = code_keyword(
    "abnormal", "webauth authmanage abnormal informations", kPlain, AUTHMNG_CMD_SHOW_ABNORMAL);
static const cli_parse_node wba_show_abnormal = {common_keyword_action, &kWebAbnormal,
                                                 &wba_show_eol, &Tno_alt};
constexpr cli_keyword_arg_t kWebTmp =
    code_keyword("tmp", "webauth tmp informations", kHidden, AUTHMNG_CMD_SHOW_TMP);
static const cli_parse_node wba_show_tmp = {common_keyword_action, &kWebTmp, &wba_show_eol,
                                            &wba_show_eol};
constexpr cli_keyword_arg_t kWebTelnet = code_keyword(
    "telnet", "webauth authmanage telnet informations", kHidden, AUTHMNG_CMD_SHOW_TELNET);
static const cli_parse_node wba_show_telnet = {common_keyword_action, &kWebTelnet, &wba_show_eol,
                                               &wba_show_tmp};
constexpr cli_keyword_arg_t kWebStatistic = code_keyword(
    "statistic", "webauth authmanage statistic informations", kPlain, AUTHMNG_CMD_SHOW_STATISTIC);
static const cli_parse_node wba_show_statistic = {common_keyword_action, &kWebStatistic,
                                                  &wba_show_telnet, &wba_show_abnormal};

cli_parse_node Texec_web_authmng_lib_show_cmd = {append_point_action, nullptr, &wba_show_statistic,
                                                 &Tno_alt};

// ---------------------------------------------------------------------------
// 802.1X show group (802.1X client, its show point):
// [mab] statistic [telnet | fail | auth-detail | reauth-detail |
//                  offline-detail]
// [mab] abnormal [auth | reauth | offline]
// ---------------------------------------------------------------------------

constexpr cli_eol_arg_t kDot1xShowEol = end_of_line(authmng_show_1x_cmd);
static const cli_parse_node d1x_show_eol = {eol_action, &kDot1xShowEol, &Tno_alt, &Tno_alt};

constexpr cli_keyword_arg_t kDot1xAbnormalOffline =
    code_keyword("offline", "show authmng abnormal offline informations", kPlain,
                 AUTHMNG_CMD_SHOW_ABNORMAL_OFFLINE);
static const cli_parse_node d1x_show_abnormal_offline = {
    common_keyword_action, &kDot1xAbnormalOffline, &d1x_show_eol, &d1x_show_eol};
constexpr cli_keyword_arg_t kDot1xAbnormalReauth =
    code_keyword("reauth", "show authmng abnormal reauthentication informations", kPlain,
                 AUTHMNG_CMD_SHOW_ABNORMAL_REAUTH);
static const cli_parse_node d1x_show_abnormal_reauth = {
    common_keyword_action, &kDot1xAbnormalReauth, &d1x_show_eol, &d1x_show_abnormal_offline};
constexpr cli_keyword_arg_t kDot1xAbnormalAuth =
    code_keyword("auth", "show authmng abnormal authentication informations", kPlain,
                 AUTHMNG_CMD_SHOW_ABNORMAL_AUTH);
static const cli_parse_node d1x_show_abnormal_auth = {common_keyword_action, &kDot1xAbnormalAuth,
                                                      &d1x_show_eol, &d1x_show_abnormal_reauth};
constexpr cli_keyword_arg_t kDot1xAbnormal = code_keyword(
    "abnormal", "show authmng abnormal all informations", kPlain, AUTHMNG_CMD_SHOW_ABNORMAL);
static const cli_parse_node d1x_show_abnormal = {common_keyword_action, &kDot1xAbnormal,
                                                 &d1x_show_abnormal_auth, &Tno_alt};

constexpr cli_keyword_arg_t kDot1xOfflineDetail = code_keyword(
    "offline-detail", "show offline detail reason", kPlain, AUTHMNG_CMD_SHOW_OFFLINE_DETAIL);
static const cli_parse_node d1x_show_offline_detail = {common_keyword_action, &kDot1xOfflineDetail,
                                                       &d1x_show_eol, &d1x_show_eol};
constexpr cli_keyword_arg_t kDot1xReauthDetail = code_keyword(
    "reauth-detail", "show reauth fail detail reason", kPlain, AUTHMNG_CMD_SHOW_REAUTH_DETAIL);
static const cli_parse_node d1x_show_reauth_detail = {common_keyword_action, &kDot1xReauthDetail,
                                                      &d1x_show_eol, &d1x_show_offline_detail};
constexpr cli_keyword_arg_t kDot1xAuthDetail = code_keyword(
    "auth-detail", "show auth fail detail reason", kPlain, AUTHMNG_CMD_SHOW_AUTH_DETAIL);
static const cli_parse_node d1x_show_auth_detail = {common_keyword_action, &kDot1xAuthDetail,
                                                    &d1x_show_eol, &d1x_show_reauth_detail};
constexpr cli_keyword_arg_t kDot1xFail = code_keyword(
    "fail", "show authmanage fail statistic informations", kPlain, AUTHMNG_CMD_SHOW_FAIL);
static const cli_parse_node d1x_show_fail = {common_keyword_action, &kDot1xFail, &d1x_show_eol,
                                             &d1x_show_auth_detail};
constexpr cli_keyword_arg_t kDot1xTelnet = code_keyword(
    "telnet", "authmanage statistic telnet informations", kHidden, AUTHMNG_CMD_SHOW_TELNET);
static const cli_parse_node d1x_show_telnet = {common_keyword_action, &kDot1xTelnet, &d1x_show_eol,
                                               &d1x_show_fail};
constexpr cli_keyword_arg_t kDot1xStatistic = code_keyword(
    "statistic", "authmanage statistic informations", kPlain, AUTHMNG_CMD_SHOW_STATISTIC);
static const cli_parse_node d1x_show_statistic = {common_keyword_action, &kDot1xStatistic,
                                                  &d1x_show_telnet, &d1x_show_abnormal};

constexpr cli_set_arg_t kDot1xMethod = set_value(AUTHMNG_METHOD_DOT1X, CLI_SLOT_METHOD);
cli_parse_node Tauthmng_show_d1x = {set_cdb_var_action, &kDot1xMethod, &d1x_show_statistic,
                                    &Tno_alt};
constexpr cli_keyword_arg_t kMab =
    code_keyword("mab", "mac auth bypass", kPlain, AUTHMNG_METHOD_MAB, CLI_SLOT_METHOD);
static const cli_parse_node d1x_show_mab = {common_keyword_action, &kMab, &d1x_show_statistic,
                                            &Tauthmng_show_d1x};

cli_parse_node Texec_1x_authmng_lib_show_cmd = {append_point_action, nullptr, &d1x_show_mab,
                                                &Tno_alt};

// ---------------------------------------------------------------------------
// Client debug group (web-auth and 802.1X clients, their debug point):
// event | error | abnormal-value N | record-num N | write-clock N |
// clear-statistic | write-tmp N | summary
// ---------------------------------------------------------------------------

constexpr cli_eol_arg_t kDebugSwitchEol = end_of_line(common_debug_ctrl_cmd);
static const cli_parse_node dbg_switch_eol = {eol_action, &kDebugSwitchEol, &Tno_alt, &Tno_alt};
constexpr cli_set_arg_t kDebugTable = set_pointer(authmanage_array, CLI_SLOT_NUMBER);
cli_parse_node Tauthmng_debug_array = {set_cdb_var_action, &kDebugTable, &dbg_switch_eol, &Tno_alt};

constexpr cli_eol_arg_t kProcDebugEol = end_of_line(authmng_proc_debug_cmd);
static const cli_parse_node dbg_eol = {eol_action, &kProcDebugEol, &Tno_alt, &Tno_alt};

constexpr cli_keyword_arg_t kSummary =
    code_keyword("summary", "authmanage debug summary ", kHidden, AUTHMNG_CMD_DEBUG_SUMMARY);
static const cli_parse_node dbg_summary = {common_keyword_action, &kSummary, &dbg_eol, &Tno_alt};

constexpr cli_number_arg_t kWriteTmpNumber = number("num  (default value: 30min)", 1, 1440);
static const cli_parse_node dbg_write_tmp_number = {common_number_action, &kWriteTmpNumber,
                                                    &dbg_eol, &Tno_alt};
constexpr cli_keyword_arg_t kWriteTmp = code_keyword("write-tmp", "authmanage write tmp interval",
                                                     kHidden, AUTHMNG_CMD_DEBUG_WRITE_TMP);
static const cli_parse_node dbg_write_tmp = {common_keyword_action, &kWriteTmp,
                                             &dbg_write_tmp_number, &dbg_summary};

constexpr cli_keyword_arg_t kClearStatistic = code_keyword(
    "clear-statistic", "authmanage clear statistic", kHidden, AUTHMNG_CMD_DEBUG_CLEAR_STATISTIC);
static const cli_parse_node dbg_clear_statistic = {common_keyword_action, &kClearStatistic,
                                                   &dbg_eol, &dbg_write_tmp};

constexpr cli_number_arg_t kWriteClockNumber = number("hour  (default value: 01)", 0, 23);
static const cli_parse_node dbg_write_clock_number = {common_number_action, &kWriteClockNumber,
                                                      &dbg_eol, &Tno_alt};
constexpr cli_keyword_arg_t kWriteClock = code_keyword("write-clock", "authmanage write file clock",
                                                       kHidden, AUTHMNG_CMD_DEBUG_WRITE_CLOCK);
static const cli_parse_node dbg_write_clock = {common_keyword_action, &kWriteClock,
                                               &dbg_write_clock_number, &dbg_clear_statistic};

constexpr cli_number_arg_t kRecordNumNumber = number("num  (default value: 400)", 1, 10000);
static const cli_parse_node dbg_record_num_number = {common_number_action, &kRecordNumNumber,
                                                     &dbg_eol, &Tno_alt};
constexpr cli_keyword_arg_t kRecordNum = code_keyword(
    "record-num", "authmanage auth abnormal record num", kHidden, AUTHMNG_CMD_DEBUG_RECORD_NUM);
static const cli_parse_node dbg_record_num = {common_keyword_action, &kRecordNum,
                                              &dbg_record_num_number, &dbg_write_clock};

constexpr cli_number_arg_t kAbnormalValueNumber = number("ms  (default value: 3000)", 1, 10000);
static const cli_parse_node dbg_abnormal_value_number = {common_number_action,
                                                         &kAbnormalValueNumber, &dbg_eol, &Tno_alt};
constexpr cli_keyword_arg_t kAbnormalValue = code_keyword(
    "abnormal-value", "authmanage auth abnormal value", kHidden, AUTHMNG_CMD_DEBUG_ABNORMAL_VALUE);
static const cli_parse_node dbg_abnormal_value = {common_keyword_action, &kAbnormalValue,
                                                  &dbg_abnormal_value_number, &dbg_record_num};

constexpr cli_keyword_arg_t kDebugError =
    code_keyword("error", "authmanage error informations", kPlain, AUTHMNG_CMD_DEBUG_ERROR);
static const cli_parse_node dbg_error = {common_keyword_action, &kDebugError, &Tauthmng_debug_array,
                                         &dbg_abnormal_value};
constexpr cli_keyword_arg_t kDebugEvent =
    code_keyword("event", "authmanage event informations", kPlain, AUTHMNG_CMD_DEBUG_EVENT);
static const cli_parse_node dbg_event = {common_keyword_action, &kDebugEvent, &Tauthmng_debug_array,
                                         &dbg_error};

cli_parse_node Tauthmng_proc_debug_group = {append_point_action, nullptr, &dbg_event, &Tno_alt};

// ---------------------------------------------------------------------------
// Escape debug group (web-auth client, point 17):
// authmanage event | authmanage error | authmanage show
// ---------------------------------------------------------------------------

static const cli_parse_node esc_dbg_switch_eol = {eol_action, &kDebugSwitchEol, &Tno_alt, &Tno_alt};
cli_parse_node Tauthmanage_debug_array = {set_cdb_var_action, &kDebugTable, &esc_dbg_switch_eol,
                                          &Tno_alt};

constexpr cli_eol_arg_t kEscapeDebugShowEol = end_of_line(authmng_webauth_show_cmd);
static const cli_parse_node esc_dbg_show_eol = {eol_action, &kEscapeDebugShowEol, &Tno_alt,
                                                &Tno_alt};
constexpr cli_keyword_arg_t kEscapeDebugShow =
    keyword("show", "authmanage show informations", kHidden);
static const cli_parse_node esc_dbg_show = {common_keyword_action, &kEscapeDebugShow,
                                            &esc_dbg_show_eol, &Tno_alt};
static const cli_parse_node esc_dbg_error = {common_keyword_action, &kDebugError,
                                             &Tauthmanage_debug_array, &esc_dbg_show};
static const cli_parse_node esc_dbg_event = {common_keyword_action, &kDebugEvent,
                                             &Tauthmanage_debug_array, &esc_dbg_error};
constexpr cli_keyword_arg_t kEscapeDebugAuthmanage =
    keyword("authmanage", "authmanage debug ", kPlain);
static const cli_parse_node esc_dbg_authmanage = {common_keyword_action, &kEscapeDebugAuthmanage,
                                                  &esc_dbg_event, &Tno_alt};

cli_parse_node Tauthmanage_lib_debug_group = {append_point_action, nullptr, &esc_dbg_authmanage,
                                              &Tno_alt};
