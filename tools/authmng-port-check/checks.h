// The named checks of authmng-port-check: what the library relies on from
// the platform calls of the process it is loaded into.
#ifndef AUTHMNG_PORT_CHECK_CHECKS_H
#define AUTHMNG_PORT_CHECK_CHECKS_H

#include <cstddef>

namespace port_check {

// Runs one check: nullptr when it passed, else why it failed (valid until
// the next check runs).
using CheckFn = const char *(*)();

struct Check {
    const char *name;
    const char *what;
    CheckFn run;
};

// Every check, in the order they run: the device services first, then the
// command-line framework walking the library's six command trees.
const Check *checks(size_t *count);

// Formats the reason of a failure into the buffer shared by all checks.
const char *fail(const char *fmt, ...) __attribute__((format(printf, 1, 2)));

// The service checks (service_checks.cc) and the command-tree checks
// (tree_checks.cc).
const char *check_wall_clock();
const char *check_monotonic_clock();
const char *check_flash_home();
const char *check_memory();
const char *check_syslog();
const char *check_cli_printf();
const char *check_debug_registry();
const char *check_health_monitor();
const char *check_cli_keyword();
const char *check_cli_number_bounds();
const char *check_cli_negation();
const char *check_cli_end_of_line();
const char *check_cli_saved_config();

}  // namespace port_check

#endif
