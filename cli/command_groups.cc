// The library's command groups. Until the command trees are built, each
// group is an attachment point with nothing behind it.
#include "authmng.h"
#include "authmng_platform.h"

extern "C" {
cli_parse_node Tcfg_authmng_lib_cmd = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
cli_parse_node Texec_authmanage_lib_show_cmd = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
cli_parse_node Texec_web_authmng_lib_show_cmd = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
cli_parse_node Texec_1x_authmng_lib_show_cmd = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
cli_parse_node Tauthmng_proc_debug_group = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
cli_parse_node Tauthmanage_lib_debug_group = {append_point_action, nullptr, &Tno_alt, &Tno_alt};
}
