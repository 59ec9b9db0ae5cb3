/*
 * The device calls the library makes: the contract a port implements.
 * platform/host/ implements it for a Linux host (tests, simulator); a device
 * build (AUTHMNG_PLATFORM=external) takes it from the device SDK, and
 * examples/port-minimal/ is a small port in plain C. Nothing else in the
 * library talks to the device. authmng-port-check checks a port against the
 * rules below.
 *
 * Threads. The library calls the port from three kinds of thread: the
 * daemon's own threads (event entries, the escape check), the library's
 * timer thread "authmng_lib" (one a process, started by authmng_init), and
 * the thread the port's command-line framework runs handlers on. Calls
 * marked "any thread" may come from all three at once.
 *
 * Failures. Every result the library reads is listed with what it does on
 * a failure; no failure of the port makes the library crash or stop.
 */
#ifndef AUTHMNG_PLATFORM_H
#define AUTHMNG_PLATFORM_H

#include <stddef.h>
#include <stdint.h>
#include <stdio.h>
#include <sys/time.h>

#include "authmng.h"

#if defined(AUTHMNG_BUILDING_HOST)
#define AUTHMNG_PORT_API __attribute__((visibility("default")))
#else
#define AUTHMNG_PORT_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---- syslog --------------------------------------------------------- */

/* Write one log line. severity: 3 for an error record, 7 for a debug line.
 * module and mnemonic: "AUTHMNG" and the record's tag (e.g. "AUTHMNG_INIT",
 * "HAM_MSG") for error records; "UNKNOW_MODULE" and "DEBUG" for debug
 * lines. cls: the device's class word, 3 for error records and 2 for debug
 * lines, passed as given. The message may or may not end in a newline; it
 * is one line either way. Any thread. No result: a line the device cannot
 * take is lost. */
AUTHMNG_PORT_API void printk_syslog_ext(int severity, const char *module, const char *mnemonic,
                                        int cls, const char *fmt, ...)
    __attribute__((format(printf, 5, 6)));

/* ---- memory ------------------------------------------------------- */

/* size zero-filled bytes for a row buffer, scratch text or abnormal-list
 * node; NULL when no memory is left (every caller then skips its work: no
 * row, no display, no queued record). Released with authmng_port_free
 * (never given NULL). Any thread. */
AUTHMNG_PORT_API void *authmng_port_zalloc(size_t size);
AUTHMNG_PORT_API void authmng_port_free(void *block);

/* ---- time ----------------------------------------------------------- */

#define QX_TIME_WALL_SECONDS 2    /* selector: wall clock, seconds */
#define QX_TIME_FAILED UINT64_MAX /* result of a failed reading */

/* Wall-clock seconds since the epoch for selector 2 (the only selector the
 * library uses); QX_TIME_FAILED on failure. Read when an abnormal record is
 * queued (daemon threads), by the file writers (timer thread, clear
 * commands) and by the escape log. On failure the abnormal record, the
 * interval rows and the escape-log line are left out, and the daily and cpp
 * rows carry the zero date; the counters are kept. Any thread. */
AUTHMNG_PORT_API uint64_t qx_time_get(int selector);
/* Monotonic time into tv; 0 on success. The library sets tv to zero before
 * the call and does not read the result: a failing clock reads as second 0,
 * which only moves the health-monitor keep-alive. Timer thread, and daemon
 * threads through authmng_get_clock. */
AUTHMNG_PORT_API int qx_monotime(struct timeval *tv);
/* Whole seconds of a reading of qx_monotime (microseconds dropped). */
AUTHMNG_PORT_API int64_t qx_timeval_to_sec(const struct timeval *tv);

/* ---- flash storage -------------------------------------------------- */

/* Fill buf (size bytes, the terminating NUL included) with the absolute
 * path of the flash home directory; 0 on success, nonzero when there is
 * none or it does not fit. The library passes size 108 and ends the buffer
 * itself. On failure the flash path is not built: authmng_init fails with
 * "Failed to create flash ... dir." and the daily flash writes are skipped.
 * Start-up thread, timer thread, command-line thread (clear commands). */
AUTHMNG_PORT_API int fs_get_flash_home(char *buf, int size);

/* ---- health monitor ------------------------------------------------- */

/* The watch of the health monitor over one thread. pid: getpid() of the
 * process; tid: the kernel thread id (gettid) of the watched thread.
 * a: the keep-alive period in seconds the thread promises (the library
 * passes 120); b: how many periods may go by without a keep-alive before
 * the monitor acts on the thread (the library passes 5). What acting means
 * (a report, a restart) is the monitor's.
 *
 * reg: start watching; called once by the timer thread as it starts.
 * reset: a keep-alive; the timer thread sends one at its first 60-second
 *        tick after more than 120 seconds since the previous one.
 * unreg: stop watching; never called by the library itself, only through
 *        authmng_unreg_ham by a daemon (any thread, the same four values).
 * All three: 0 or more on success, negative on failure. On failure the
 * library writes the error record (module "AUTHMNG", tag "HAM_MSG") and
 * carries on; it does not retry until the next keep-alive is due. */
AUTHMNG_PORT_API int ham_client_reg_thread_notify(int pid, int tid, int a, int b);
AUTHMNG_PORT_API int ham_client_reset_thread_notify(int pid, int tid, int a, int b);
AUTHMNG_PORT_API int ham_client_unreg_thread_notify(int pid, int tid, int a, int b);

/* ---- debug registry ------------------------------------------------- */

/* Register the library's debug switches under name ("dot1x_authmng_debug"
 * or "authmanage-debug"). table: the exported authmanage_array, entries of
 * a switch byte and its description, ended by an entry of two NULLs; the
 * registry keeps the pointer (the table lives as long as the process) and
 * may set the bytes (1 on, 0 off) from any thread. show: prints the state
 * of the switches with cli_printf; the registry calls it on its
 * command-line thread when the operator asks. a, b, c: reserved by the
 * registry; the library always passes 0, 0, 0. Returns 0 on success;
 * called once by authmng_init (start-up thread), which does not fail on a
 * registry failure: the switches still work through the debug commands. */
AUTHMNG_PORT_API int sys_add_debug(const char *name, authmng_debug_switch_t *table,
                                   void (*show)(void), int a, int b, int c);

/* ---- command line --------------------------------------------------- */

/* Value slots of the parse-state block used by the command trees. */
#define CLI_SLOT_CODE 20000   /* command code */
#define CLI_SLOT_METHOD 20008 /* 802.1X show method: 0 802.1X, 1 MAB */
#define CLI_SLOT_NUMBER 20736 /* number argument, or the debug-switch table */

/* Generation-mode bits: the framework is asking for saved-configuration
 * lines. */
#define CLI_GEN_CONFIG 0x02u
#define CLI_GEN_CONFIG_ALL 0x10u

/* Keyword attribute words (see platform/README.md for the host meaning). */
#define CLI_KW_ATTR_PLAIN 2u
#define CLI_KW_ATTR_HIDDEN 18u
#define CLI_KW_ATTR_HIDDEN_BIT 0x10u /* the bit that makes 18 of 2 */

/* Keyword kinds. */
#define CLI_KW_PLAIN 2u
#define CLI_KW_STORE 10u

/* Flag word of number nodes. */
#define CLI_NUMBER_FLAGS 0x12Fu

struct cli_parse_state;
struct cli_parse_node;

/* An action matches the node against the parse state: nonzero when it
 * matched (parsing goes on at accept), 0 when not (alternate is tried). */
typedef int (*cli_action_t)(struct cli_parse_state *ps, const struct cli_parse_node *node);
typedef void (*cli_handler_t)(struct cli_parse_state *ps);

/* A parse node: action, its argument record, accept and alternate links.
 * The trees are static and read-only to the framework; a link that leads
 * nowhere is &Tno_alt. */
struct cli_parse_node {
    cli_action_t action;
    const void *arg;
    const struct cli_parse_node *accept;
    const struct cli_parse_node *alternate;
};

/* Argument records of the node kinds. */
typedef struct cli_keyword_arg {
    const char *keyword;
    const char *help;
    const char *empty;
    uint32_t attr1;
    uint32_t attr2;
    uint32_t one;
    uint32_t kind;  /* CLI_KW_PLAIN or CLI_KW_STORE */
    uint32_t slot;  /* 0 for a plain keyword */
    uint64_t value; /* stored into slot by a CLI_KW_STORE keyword */
} cli_keyword_arg_t;

typedef struct cli_number_arg {
    const char *help;
    uint32_t lowest;
    uint32_t highest;
    uint32_t zero1;
    uint32_t flags; /* CLI_NUMBER_FLAGS */
    uint32_t slot;  /* CLI_SLOT_NUMBER */
    uint32_t zero2;
} cli_number_arg_t;

typedef struct cli_set_arg {
    uint64_t value;      /* stored when pointer is NULL */
    const void *pointer; /* stored instead, when not NULL */
    uint32_t width;      /* 8 */
    uint32_t slot;
} cli_set_arg_t;

typedef struct cli_c2p_arg {
    cli_handler_t handler;
    uint32_t zero;
} cli_c2p_arg_t;

typedef struct cli_eol_arg {
    uint32_t one;
    cli_handler_t handler;
    const void *empty1;
    const void *empty2;
} cli_eol_arg_t;

/* The node kinds; platform/README.md says what each must do. Called by the
 * port's own framework on its command-line thread, never by the library. */
AUTHMNG_PORT_API int append_point_action(struct cli_parse_state *ps,
                                         const struct cli_parse_node *node);
AUTHMNG_PORT_API int common_keyword_action(struct cli_parse_state *ps,
                                           const struct cli_parse_node *node);
AUTHMNG_PORT_API int common_number_action(struct cli_parse_state *ps,
                                          const struct cli_parse_node *node);
AUTHMNG_PORT_API int set_cdb_var_action(struct cli_parse_state *ps,
                                        const struct cli_parse_node *node);
AUTHMNG_PORT_API int noprefix_action(struct cli_parse_state *ps, const struct cli_parse_node *node);
AUTHMNG_PORT_API int c2p_action(struct cli_parse_state *ps, const struct cli_parse_node *node);
AUTHMNG_PORT_API int eol_action(struct cli_parse_state *ps, const struct cli_parse_node *node);

/* The shared "no alternative" node. */
AUTHMNG_PORT_API extern struct cli_parse_node Tno_alt;

/* Parse-state accessors for the handlers. */
AUTHMNG_PORT_API uint64_t cli_slot_value(const struct cli_parse_state *ps, uint32_t slot);
AUTHMNG_PORT_API const void *cli_slot_pointer(const struct cli_parse_state *ps, uint32_t slot);
AUTHMNG_PORT_API uint32_t cli_gen_mode(const struct cli_parse_state *ps);
AUTHMNG_PORT_API int cli_negated(const struct cli_parse_state *ps);

/* Attach a command group at an attachment point under a name. point: 28
 * (configuration), 6 (show), 17 (debug) or the client's own show_mode and
 * debug_mode; several groups may share a point and are tried in the order
 * added. group and name live as long as the process. Start-up thread; the
 * result is not read (a group that cannot be attached offers no commands). */
AUTHMNG_PORT_API int cli_add_command(int point, struct cli_parse_node *group, const char *name);
/* Print to the command-line user who runs the command, byte for byte (the
 * displays lay out columns and end their own lines; one call may carry
 * several lines and more than a thousand bytes). Command-line thread, and
 * whichever thread calls a display or authmng_show_debug_state. The result
 * is not read. */
AUTHMNG_PORT_API int cli_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
/* Add a saved-configuration line when cond is true; the format carries no
 * line end. ps is the parse state the configuration-output handler was
 * given. Command-line thread, while the saved configuration is generated.
 * The result is not read. */
AUTHMNG_PORT_API int c2p_printf(int cond, struct cli_parse_state *ps, const char *fmt, ...)
    __attribute__((format(printf, 3, 4)));
/* The framework's debug-switch handler: turns the switch whose index is in
 * slot 20000 of the table in slot 20736 on, or off in the negated form. */
AUTHMNG_PORT_API void common_debug_ctrl_cmd(struct cli_parse_state *ps);

/* ---- port self-check ------------------------------------------------ */

/* The library never calls these three. authmng-port-check drives the
 * port's command-line framework through them, so that a port can prove its
 * framework walks the library's trees as the device's does. */

/* Run line as typed at attachment point `point`: the words that follow the
 * point's own words, a leading "no" for the negated form. 0 when an
 * end-of-line handler ran; -1 when the line was refused (unknown word,
 * number out of bounds, line ended early) and no handler ran. */
AUTHMNG_PORT_API int authmng_port_check_exec(int point, const char *line);
/* Generate the saved configuration of every attached group into out, one
 * line per c2p_printf line, in tree order. */
AUTHMNG_PORT_API void authmng_port_check_saved_config(FILE *out);
/* From now on cli_printf output goes to cli and syslog lines to log; NULL
 * sends each back to where the port normally sends it. */
AUTHMNG_PORT_API void authmng_port_check_capture(FILE *cli, FILE *log);

#ifdef __cplusplus
}
#endif

#endif /* AUTHMNG_PLATFORM_H */
