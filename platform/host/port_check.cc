// The self-check calls of the host stand-in, over its control API
// (authmng_port_check_exec lives with the parse framework).
#include "authmng_host.h"
#include "authmng_platform.h"

extern "C" void authmng_port_check_saved_config(FILE *out) {
    authmng_host_cli_saved_config(out);
}

extern "C" void authmng_port_check_capture(FILE *cli, FILE *log) {
    authmng_host_cli_output(cli);
    authmng_host_syslog_output(log);
}
