/*
 * The device calls the library makes. A device build implements these with
 * the device SDK; platform/host/ implements them for a Linux host (tests,
 * simulator). Nothing else in the library talks to the device.
 */
#ifndef AUTHMNG_PLATFORM_H
#define AUTHMNG_PLATFORM_H

#include <stddef.h>
#include <stdint.h>
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

/* Write one log line. severity 3 error / 7 debug; cls is the device's class
 * word (2 debug lines, 3 error records), passed as given. */
AUTHMNG_PORT_API void printk_syslog_ext(int severity, const char *module, const char *mnemonic,
                                        int cls, const char *fmt, ...)
    __attribute__((format(printf, 5, 6)));

/* ---- memory ------------------------------------------------------- */

/* size zero-filled bytes for a row buffer, scratch text or abnormal-list
 * node; NULL when no memory is left (every caller then skips its work).
 * Released with authmng_port_free. Callable from any thread. */
AUTHMNG_PORT_API void *authmng_port_zalloc(size_t size);
AUTHMNG_PORT_API void authmng_port_free(void *block);

/* ---- time ----------------------------------------------------------- */

#define QX_TIME_WALL_SECONDS 2    /* selector: wall clock, seconds */
#define QX_TIME_FAILED UINT64_MAX /* result of a failed reading */

/* Wall-clock seconds since the epoch for selector 2; QX_TIME_FAILED on
 * failure. */
AUTHMNG_PORT_API uint64_t qx_time_get(int selector);
/* Monotonic time; 0 on success. */
AUTHMNG_PORT_API int qx_monotime(struct timeval *tv);
AUTHMNG_PORT_API int64_t qx_timeval_to_sec(const struct timeval *tv);

/* ---- flash storage -------------------------------------------------- */

/* Fill buf (size bytes) with the flash home directory; 0 on success. */
AUTHMNG_PORT_API int fs_get_flash_home(char *buf, int size);

/* ---- health monitor ------------------------------------------------- */

AUTHMNG_PORT_API int ham_client_reg_thread_notify(int pid, int tid, int a, int b);
AUTHMNG_PORT_API int ham_client_reset_thread_notify(int pid, int tid, int a, int b);
AUTHMNG_PORT_API int ham_client_unreg_thread_notify(int pid, int tid, int a, int b);

/* ---- debug registry ------------------------------------------------- */

/* Register a table of debug switches (ended by an entry of two NULLs) with
 * a callback that shows their state. */
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

/* The node kinds. */
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

/* Attach a command group at an attachment point under a name. */
AUTHMNG_PORT_API int cli_add_command(int point, struct cli_parse_node *group, const char *name);
/* Print to the command-line user who runs the command. */
AUTHMNG_PORT_API int cli_printf(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
/* Add a saved-configuration line when cond is true. */
AUTHMNG_PORT_API int c2p_printf(int cond, struct cli_parse_state *ps, const char *fmt, ...)
    __attribute__((format(printf, 3, 4)));
/* The framework's debug-switch handler: turns the switch whose index is in
 * slot 20000 of the table in slot 20736 on, or off in the negated form. */
AUTHMNG_PORT_API void common_debug_ctrl_cmd(struct cli_parse_state *ps);

#ifdef __cplusplus
}
#endif

#endif /* AUTHMNG_PLATFORM_H */
