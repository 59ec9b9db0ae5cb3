/*
 * Control API of the host stand-in of the device (libqx_authmng_host).
 * Host builds only: tests, the simulator and example daemons use it to pin
 * the clock, route output and type command lines.
 */
#ifndef AUTHMNG_HOST_H
#define AUTHMNG_HOST_H

#include <stdint.h>
#include <stdio.h>

#if defined(AUTHMNG_BUILDING_HOST)
#define AUTHMNG_HOST_API __attribute__((visibility("default")))
#else
#define AUTHMNG_HOST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* Pin the wall clock (qx_time_get selector 2) to epoch_seconds. */
AUTHMNG_HOST_API void authmng_host_clock_set(int64_t epoch_seconds);
/* Follow the real clock again. */
AUTHMNG_HOST_API void authmng_host_clock_real(void);
/* Nonzero: qx_time_get reports failure (all ones). */
AUTHMNG_HOST_API void authmng_host_clock_fail(int on);

/* Failing allocations (authmng_port_zalloc): after n more allocations
 * have succeeded, every further one fails until this is called again; a
 * negative n (the default) lets every allocation succeed. */
AUTHMNG_HOST_API void authmng_host_alloc_fail_after(int n);
/* Allocations the library has asked for so far, failed ones included. */
AUTHMNG_HOST_API long authmng_host_allocations(void);

/* Where cli_printf writes; NULL = stdout. */
AUTHMNG_HOST_API void authmng_host_cli_output(FILE *out);
/* Where syslog lines go; NULL = stderr. */
AUTHMNG_HOST_API void authmng_host_syslog_output(FILE *out);

/* Bind the words that lead to an attachment point (e.g. 6 -> "show").
 * Returns 0, -1 when the table is full or prefix is NULL. */
AUTHMNG_HOST_API int authmng_host_cli_bind(int point, const char *prefix);
/* Run one command line: 0 handled; -1 refused (a one-line reason is printed
 * to the cli output) and nothing run. */
AUTHMNG_HOST_API int authmng_host_cli_exec(const char *line);
/* Write the saved-configuration lines, one a line. */
AUTHMNG_HOST_API void authmng_host_cli_saved_config(FILE *out);
/* Command groups added so far with cli_add_command. */
AUTHMNG_HOST_API int authmng_host_cli_groups(void);
/* The attachment point and name of group number index (0-based, in the
 * order of adding); 0, or -1 when there is no such group. */
AUTHMNG_HOST_API int authmng_host_cli_group_at(int index, int *point, const char **name);

/* Completion of a partly typed command line: the keywords that may follow
 * the words of typed and begin with partial, one a line, into buf (size
 * bytes, always terminated). Returns how many. */
AUTHMNG_HOST_API int authmng_host_cli_complete(const char *typed, const char *partial, char *buf,
                                               size_t size);

/* Nonzero: "?" and completion also offer hidden keywords (a device's
 * framework never does; a simulator's prompt may). Default off. */
AUTHMNG_HOST_API void authmng_host_cli_list_hidden(int on);

/* Debug registrations made with sys_add_debug so far; the name of the
 * latest one in *name when name is not NULL. */
AUTHMNG_HOST_API int authmng_host_debug_registrations(const char **name);

/* Health-monitor calls seen so far: registrations and keep-alives. */
AUTHMNG_HOST_API int authmng_host_ham_registrations(void);
AUTHMNG_HOST_API int authmng_host_ham_resets(void);
/* Nonzero: every health-monitor call fails with -1. */
AUTHMNG_HOST_API void authmng_host_ham_fail(int on);

#ifdef __cplusplus
}
#endif

#endif /* AUTHMNG_HOST_H */
