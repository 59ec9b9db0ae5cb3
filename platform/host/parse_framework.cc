// Host command-line parse framework: walks the library's static command
// trees for a typed line. Until the trees are walked here, every line is
// refused with a reason.
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "authmng_host.h"
#include "cli_host.h"

// The framework's parse-state block.
struct cli_parse_state {
    uint32_t gen_mode;
    int negated;
    uint64_t code;
    uint64_t method;
    uint64_t number;
    const void *pointer;
    FILE *config_out;
};

extern "C" {

cli_parse_node Tno_alt = {nullptr, nullptr, nullptr, nullptr};

int append_point_action(cli_parse_state *, const cli_parse_node *) {
    return 1;
}
int common_keyword_action(cli_parse_state *, const cli_parse_node *) {
    return 0;
}
int common_number_action(cli_parse_state *, const cli_parse_node *) {
    return 0;
}
int set_cdb_var_action(cli_parse_state *, const cli_parse_node *) {
    return 1;
}
int noprefix_action(cli_parse_state *ps, const cli_parse_node *) {
    return ps->negated;
}
int c2p_action(cli_parse_state *, const cli_parse_node *) {
    return 1;
}
int eol_action(cli_parse_state *, const cli_parse_node *) {
    return 0;
}

uint64_t cli_slot_value(const cli_parse_state *ps, uint32_t slot) {
    if (ps == nullptr) return 0;
    switch (slot) {
        case CLI_SLOT_CODE:
            return ps->code;
        case CLI_SLOT_METHOD:
            return ps->method;
        case CLI_SLOT_NUMBER:
            return ps->number;
        default:
            return 0;
    }
}

const void *cli_slot_pointer(const cli_parse_state *ps, uint32_t slot) {
    return (ps != nullptr && slot == CLI_SLOT_NUMBER) ? ps->pointer : nullptr;
}

uint32_t cli_gen_mode(const cli_parse_state *ps) {
    return ps == nullptr ? 0 : ps->gen_mode;
}

int cli_negated(const cli_parse_state *ps) {
    return ps == nullptr ? 0 : ps->negated;
}

int c2p_printf(int cond, cli_parse_state *ps, const char *fmt, ...) {
    if (!cond || ps == nullptr || ps->config_out == nullptr) return 0;
    va_list ap;
    va_start(ap, fmt);
    int n = vfprintf(ps->config_out, fmt, ap);
    va_end(ap);
    fputc('\n', ps->config_out);
    return n;
}

void common_debug_ctrl_cmd(cli_parse_state *ps) {
    if (ps == nullptr) return;
    auto *table = static_cast<authmng_debug_switch_t *>(const_cast<void *>(ps->pointer));
    if (table == nullptr) return;
    uint64_t index = ps->code;
    for (uint64_t i = 0; i <= index; ++i) {
        if (table[i].sw == nullptr || table[i].desc == nullptr) return;
    }
    *table[index].sw = ps->negated ? 0 : 1;
}

int authmng_host_cli_exec(const char *line) {
    fprintf(authmng_host::cli_stream(), "%% Command refused: \"%s\" (no command trees yet)\n",
            line == nullptr ? "" : line);
    return -1;
}

void authmng_host_cli_saved_config(FILE *) {}

}  // extern "C"
