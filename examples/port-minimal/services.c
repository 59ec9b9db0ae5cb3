/* The device services of the minimal port: syslog on stderr, memory from
 * the C library, the system clocks, a flash home from the environment, and
 * a health monitor and debug registry that only keep what they are told. */
#include <stdarg.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#include "authmng_platform.h"
#include "port_minimal.h"

#define PORT_FLASH_HOME "/flash" /* when AUTHMNG_FLASH_HOME is unset */
#define PORT_DEBUG_TABLES 8
#define PORT_LOG_LINE 2048

static FILE *g_log_out; /* NULL: stderr */

void port_log_output(FILE *out) {
    g_log_out = out;
}

/* "<module>-<severity>-<mnemonic>: <message>", one line a call. */
void printk_syslog_ext(int severity, const char *module, const char *mnemonic, int cls,
                       const char *fmt, ...) {
    char message[PORT_LOG_LINE];
    va_list ap;
    size_t len;
    (void)cls;
    va_start(ap, fmt);
    if (vsnprintf(message, sizeof message, fmt, ap) < 0) message[0] = '\0';
    va_end(ap);
    len = strlen(message);
    if (len > 0 && message[len - 1] == '\n') message[len - 1] = '\0';
    fprintf(g_log_out != NULL ? g_log_out : stderr, "%s-%d-%s: %s\n", module ? module : "-",
            severity, mnemonic ? mnemonic : "-", message);
}

void *authmng_port_zalloc(size_t size) {
    return calloc(1, size);
}

void authmng_port_free(void *block) {
    free(block);
}

uint64_t qx_time_get(int selector) {
    struct timespec now;
    if (selector != QX_TIME_WALL_SECONDS || clock_gettime(CLOCK_REALTIME, &now) != 0) {
        return QX_TIME_FAILED;
    }
    return (uint64_t)now.tv_sec;
}

int qx_monotime(struct timeval *tv) {
    struct timespec now;
    if (tv == NULL || clock_gettime(CLOCK_MONOTONIC, &now) != 0) return -1;
    tv->tv_sec = now.tv_sec;
    tv->tv_usec = (suseconds_t)(now.tv_nsec / 1000);
    return 0;
}

int64_t qx_timeval_to_sec(const struct timeval *tv) {
    return tv == NULL ? 0 : (int64_t)tv->tv_sec;
}

int fs_get_flash_home(char *buf, int size) {
    const char *home = getenv("AUTHMNG_FLASH_HOME");
    int n;
    if (buf == NULL || size <= 0) return -1;
    if (home == NULL || home[0] == '\0') home = PORT_FLASH_HOME;
    n = snprintf(buf, (size_t)size, "%s", home);
    if (n < 0 || n >= size) {
        buf[0] = '\0';
        return -1;
    }
    return 0;
}

/* The device's monitor would watch the thread; this one accepts every call. */
int ham_client_reg_thread_notify(int pid, int tid, int a, int b) {
    (void)pid, (void)tid, (void)a, (void)b;
    return 0;
}

int ham_client_reset_thread_notify(int pid, int tid, int a, int b) {
    (void)pid, (void)tid, (void)a, (void)b;
    return 0;
}

int ham_client_unreg_thread_notify(int pid, int tid, int a, int b) {
    (void)pid, (void)tid, (void)a, (void)b;
    return 0;
}

static struct {
    const char *name;
    authmng_debug_switch_t *table;
    void (*show)(void);
} g_debug_tables[PORT_DEBUG_TABLES];
static int g_debug_table_count;

int sys_add_debug(const char *name, authmng_debug_switch_t *table, void (*show)(void), int a, int b,
                  int c) {
    (void)a, (void)b, (void)c;
    if (name == NULL || table == NULL || g_debug_table_count == PORT_DEBUG_TABLES) return -1;
    g_debug_tables[g_debug_table_count].name = name;
    g_debug_tables[g_debug_table_count].table = table;
    g_debug_tables[g_debug_table_count].show = show;
    ++g_debug_table_count;
    return 0;
}
