/* The command-line framework of the minimal port: keeps the attached
 * groups, walks a typed line through them with the node actions, and
 * generates the saved configuration. Keywords match as whole words. */
#include <stdarg.h>
#include <stdio.h>
#include <string.h>

#include "authmng_platform.h"
#include "port_minimal.h"

#define PORT_GROUPS 32
#define PORT_WORDS 32
#define PORT_LINE 512
#define PORT_SLOTS 8
#define PORT_STEPS 4096 /* a longer walk means a cyclic tree */
#define PORT_DEPTH 64   /* depth of the saved-configuration walk */

struct port_slot {
    uint32_t id;
    uint64_t value;
    const void *pointer;
};

struct cli_parse_state {
    const char *words[PORT_WORDS];
    int count;
    int pos;
    int negated;
    int done;
    uint32_t gen_mode;
    FILE *config_out;
    struct port_slot slots[PORT_SLOTS];
    int slot_count;
};

static struct {
    int point;
    const struct cli_parse_node *group;
} g_groups[PORT_GROUPS];
static int g_group_count;
static FILE *g_cli_out; /* NULL: stdout */

struct cli_parse_node Tno_alt = {NULL, NULL, NULL, NULL};

static FILE *cli_out(void) {
    return g_cli_out != NULL ? g_cli_out : stdout;
}

static void store_slot(struct cli_parse_state *ps, uint32_t id, uint64_t value,
                       const void *pointer) {
    int i;
    for (i = 0; i < ps->slot_count && ps->slots[i].id != id; ++i) {
    }
    if (i == PORT_SLOTS) return;
    if (i == ps->slot_count) ++ps->slot_count;
    ps->slots[i].id = id;
    ps->slots[i].value = value;
    ps->slots[i].pointer = pointer;
}

static const struct port_slot *find_slot(const struct cli_parse_state *ps, uint32_t id) {
    int i;
    for (i = 0; ps != NULL && i < ps->slot_count; ++i) {
        if (ps->slots[i].id == id) return &ps->slots[i];
    }
    return NULL;
}

int cli_add_command(int point, struct cli_parse_node *group, const char *name) {
    (void)name;
    if (group == NULL || g_group_count == PORT_GROUPS) return -1;
    g_groups[g_group_count].point = point;
    g_groups[g_group_count].group = group;
    ++g_group_count;
    return 0;
}

int append_point_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    (void)ps, (void)node;
    return 1;
}

int common_keyword_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    const cli_keyword_arg_t *arg = node->arg;
    if (arg == NULL || arg->keyword == NULL || ps->pos >= ps->count) return 0;
    if (strcmp(ps->words[ps->pos], arg->keyword) != 0) return 0;
    if (arg->kind == CLI_KW_STORE) store_slot(ps, arg->slot, arg->value, NULL);
    ++ps->pos;
    return 1;
}

/* Decimal digits only, at most ten of them, within 32 bits. */
static int read_number(const char *word, uint64_t *value) {
    size_t len = strlen(word), i;
    *value = 0;
    if (len == 0 || len > 10) return 0;
    for (i = 0; i < len; ++i) {
        if (word[i] < '0' || word[i] > '9') return 0;
        *value = *value * 10 + (uint64_t)(word[i] - '0');
    }
    return *value <= UINT32_MAX;
}

int common_number_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    const cli_number_arg_t *arg = node->arg;
    uint64_t value;
    if (arg == NULL || ps->pos >= ps->count) return 0;
    if (!read_number(ps->words[ps->pos], &value)) return 0;
    if (value < arg->lowest || value > arg->highest) return 0;
    store_slot(ps, arg->slot, value, NULL);
    ++ps->pos;
    return 1;
}

int set_cdb_var_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    const cli_set_arg_t *arg = node->arg;
    if (arg != NULL) store_slot(ps, arg->slot, arg->value, arg->pointer);
    return 1;
}

int noprefix_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    (void)node;
    return ps->negated;
}

int c2p_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    const cli_c2p_arg_t *arg = node->arg;
    if (ps->gen_mode == 0) return 1;
    if (arg != NULL && arg->handler != NULL) arg->handler(ps);
    return 0;
}

int eol_action(struct cli_parse_state *ps, const struct cli_parse_node *node) {
    const cli_eol_arg_t *arg = node->arg;
    if (ps->pos != ps->count) return 0;
    if (arg != NULL && arg->handler != NULL) arg->handler(ps);
    ps->done = 1;
    return 1;
}

uint64_t cli_slot_value(const struct cli_parse_state *ps, uint32_t slot) {
    const struct port_slot *entry = find_slot(ps, slot);
    return entry == NULL ? 0 : entry->value;
}

const void *cli_slot_pointer(const struct cli_parse_state *ps, uint32_t slot) {
    const struct port_slot *entry = find_slot(ps, slot);
    return entry == NULL ? NULL : entry->pointer;
}

uint32_t cli_gen_mode(const struct cli_parse_state *ps) {
    return ps == NULL ? 0 : ps->gen_mode;
}

int cli_negated(const struct cli_parse_state *ps) {
    return ps == NULL ? 0 : ps->negated;
}

int cli_printf(const char *fmt, ...) {
    va_list ap;
    int n;
    va_start(ap, fmt);
    n = vfprintf(cli_out(), fmt, ap);
    va_end(ap);
    return n;
}

int c2p_printf(int cond, struct cli_parse_state *ps, const char *fmt, ...) {
    va_list ap;
    int n;
    if (!cond || ps == NULL || ps->config_out == NULL) return 0;
    va_start(ap, fmt);
    n = vfprintf(ps->config_out, fmt, ap);
    va_end(ap);
    fputc('\n', ps->config_out);
    return n;
}

void common_debug_ctrl_cmd(struct cli_parse_state *ps) {
    authmng_debug_switch_t *table = (authmng_debug_switch_t *)cli_slot_pointer(ps, CLI_SLOT_NUMBER);
    uint64_t index = cli_slot_value(ps, CLI_SLOT_CODE), i;
    if (table == NULL) return;
    for (i = 0; i <= index; ++i) {
        if (table[i].sw == NULL) return; /* past the end of the table */
    }
    *table[index].sw = ps->negated ? 0 : 1;
}

/* Along accept links while the actions match, alternate links while not. */
static int walk(const struct cli_parse_node *node, struct cli_parse_state *ps) {
    int steps;
    for (steps = 0; steps < PORT_STEPS; ++steps) {
        if (node == NULL || node == &Tno_alt || node->action == NULL) return 0;
        if (node->action(ps, node)) {
            if (ps->done) return 1;
            node = node->accept;
        } else {
            node = node->alternate;
        }
    }
    return 0;
}

int authmng_port_check_exec(int point, const char *line) {
    char text[PORT_LINE];
    const char *words[PORT_WORDS];
    int count = 0, first = 0, g;
    char *c, *rest = NULL;
    if (line == NULL || strlen(line) >= sizeof text) return -1;
    strcpy(text, line);
    for (c = strtok_r(text, " \t", &rest); c != NULL; c = strtok_r(NULL, " \t", &rest)) {
        if (count == PORT_WORDS) return -1;
        words[count++] = c;
    }
    if (count > 0 && strcmp(words[0], "no") == 0) first = 1;
    for (g = 0; g < g_group_count; ++g) {
        struct cli_parse_state ps;
        if (g_groups[g].point != point) continue;
        memset(&ps, 0, sizeof ps);
        memcpy(ps.words, words + first, sizeof words[0] * (size_t)(count - first));
        ps.count = count - first;
        ps.negated = first;
        if (walk(g_groups[g].group, &ps)) return 0;
    }
    fprintf(cli_out(), "%% Invalid input: \"%s\"\n", line);
    return -1;
}

static void generate(const struct cli_parse_node *node, struct cli_parse_state *ps, int depth) {
    if (depth > PORT_DEPTH || node == NULL || node == &Tno_alt || node->action == NULL) return;
    if (node->action == c2p_action) {
        node->action(ps, node);
        return;
    }
    if (node->action == eol_action) return;
    generate(node->accept, ps, depth + 1);
    generate(node->alternate, ps, depth + 1);
}

void authmng_port_check_saved_config(FILE *out) {
    int g;
    for (g = 0; out != NULL && g < g_group_count; ++g) {
        struct cli_parse_state ps;
        memset(&ps, 0, sizeof ps);
        ps.gen_mode = CLI_GEN_CONFIG;
        ps.config_out = out;
        generate(g_groups[g].group, &ps, 0);
    }
    if (out != NULL) fflush(out);
}

void authmng_port_check_capture(FILE *cli, FILE *log) {
    g_cli_out = cli;
    port_log_output(log);
}
