// Host command-line parse framework: runs typed lines through the command
// trees added with cli_add_command, lists the choices for "?", and
// generates the saved configuration. The rules (exact keywords, hidden
// keywords, refusal messages) are described in platform/README.md.
#include <atomic>
#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <string>

#include "authmng_host.h"
#include "cli_host.h"

namespace authmng_host {

constexpr int kMaxWords = 32;
constexpr size_t kMaxLine = 512;
constexpr int kMaxSlots = 8;
constexpr int kMaxSteps = 4096;  // a walk longer than this means a cyclic tree
constexpr int kMaxDepth = 64;    // depth of the saved-configuration walk
constexpr int kMaxChoices = 64;  // lines of one "?" listing
constexpr size_t kChoiceSize = 48;

// Whether "?" and completion offer hidden keywords too (a simulator's
// prompt does, so that a newcomer finds the configuration lines).
std::atomic<bool> g_list_hidden{false};

struct SlotEntry {
    uint32_t id;
    uint64_t value;
    const void *pointer;
};

// The latest number node that did not take the word at its position.
struct NumberMiss {
    int pos = -1;
    bool out_of_range = false;
    uint32_t lowest = 0;
    uint32_t highest = 0;
};

}  // namespace authmng_host

using namespace authmng_host;

// The framework's parse-state block: what the walk of one line (or of the
// saved configuration) has collected so far.
struct cli_parse_state {
    uint32_t gen_mode = 0;
    int negated = 0;
    SlotEntry slots[kMaxSlots] = {};
    int slot_count = 0;
    FILE *config_out = nullptr;
    const char *const *words = nullptr;
    int word_count = 0;
    int pos = 0;        // the next word to match
    bool done = false;  // an end-of-line node ran its handler
    NumberMiss number_miss;
};

namespace authmng_host {
namespace {

void store_slot(cli_parse_state *ps, uint32_t id, uint64_t value, const void *pointer) {
    for (int i = 0; i < ps->slot_count; ++i) {
        if (ps->slots[i].id == id) {
            ps->slots[i].value = value;
            ps->slots[i].pointer = pointer;
            return;
        }
    }
    if (ps->slot_count < kMaxSlots) ps->slots[ps->slot_count++] = SlotEntry{id, value, pointer};
}

const SlotEntry *find_slot(const cli_parse_state *ps, uint32_t id) {
    for (int i = 0; i < ps->slot_count; ++i) {
        if (ps->slots[i].id == id) return &ps->slots[i];
    }
    return nullptr;
}

// Decimal digits only. Values too large for 32 bits come back as a value
// above every bound, so they are refused as out of range.
bool parse_number(const char *word, uint64_t *value) {
    if (*word == '\0') return false;
    uint64_t v = 0;
    for (const char *c = word; *c != '\0'; ++c) {
        if (*c < '0' || *c > '9') return false;
        if (v <= UINT32_MAX) v = v * 10 + static_cast<uint64_t>(*c - '0');
    }
    *value = v;
    return true;
}

// A line split into words in place.
struct Words {
    char text[kMaxLine];
    const char *word[kMaxWords];
    int count = 0;
};

// false when the line is too long or has too many words.
bool split_words(const char *line, Words *out, const char **error) {
    out->count = 0;
    if (strlen(line) >= sizeof out->text) {
        *error = "% Line too long";
        return false;
    }
    snprintf(out->text, sizeof out->text, "%s", line);
    for (char *c = out->text; *c != '\0';) {
        while (*c == ' ' || *c == '\t' || *c == '\r' || *c == '\n') *c++ = '\0';
        if (*c == '\0') break;
        if (out->count == kMaxWords) {
            *error = "% Too many words";
            return false;
        }
        out->word[out->count++] = c;
        while (*c != '\0' && *c != ' ' && *c != '\t' && *c != '\r' && *c != '\n') ++c;
    }
    return true;
}

// The lines of one "?" listing, without repeats, in the order met.
struct Choices {
    char choice[kMaxChoices][kChoiceSize];
    const char *help[kMaxChoices];
    int count = 0;

    void add(const char *text, const char *help_text) {
        for (int i = 0; i < count; ++i) {
            if (strcmp(choice[i], text) == 0) return;
        }
        if (count == kMaxChoices) return;
        snprintf(choice[count], kChoiceSize, "%s", text);
        help[count] = help_text != nullptr ? help_text : "";
        ++count;
    }

    void add_node(const cli_parse_node *node) {
        if (node->action == common_keyword_action) {
            auto *arg = static_cast<const cli_keyword_arg_t *>(node->arg);
            if (arg == nullptr || arg->keyword == nullptr) return;
            if ((arg->attr1 & CLI_KW_ATTR_HIDDEN_BIT) != 0 && !g_list_hidden.load()) return;
            add(arg->keyword, arg->help);
        } else if (node->action == common_number_action) {
            auto *arg = static_cast<const cli_number_arg_t *>(node->arg);
            if (arg == nullptr) return;
            char range[kChoiceSize];
            snprintf(range, sizeof range, "<%u-%u>", arg->lowest, arg->highest);
            add(range, arg->help);
        } else if (node->action == eol_action) {
            add("<cr>", "");
        }
    }

    void print(FILE *out) const {
        for (int i = 0; i < count; ++i) {
            if (help[i][0] == '\0') {
                fprintf(out, "  %s\n", choice[i]);
            } else {
                fprintf(out, "  %-22s%s\n", choice[i], help[i]);
            }
        }
    }
};

bool takes_a_word(const cli_parse_node *node) {
    return node->action == common_keyword_action || node->action == common_number_action ||
           node->action == eol_action;
}

enum class Walk { kHandled, kListed, kRefused };

// Walks one group from its attachment point: along accept links while the
// actions match, along alternate links while they do not. With choices,
// the nodes that could take the next word once the words are used up are
// listed instead of run.
Walk walk_group(const cli_parse_node *group, cli_parse_state *ps, Choices *choices) {
    const cli_parse_node *node = group;
    for (int steps = 0; steps < kMaxSteps; ++steps) {
        if (node == nullptr || node == &Tno_alt || node->action == nullptr) break;
        if (choices != nullptr && ps->pos == ps->word_count && takes_a_word(node)) {
            choices->add_node(node);
            if (node->action == eol_action) return Walk::kListed;
            node = node->alternate;
            continue;
        }
        if (node->action(ps, node) != 0) {
            if (ps->done) return Walk::kHandled;
            node = node->accept;
        } else {
            node = node->alternate;
        }
    }
    if (choices != nullptr && ps->pos == ps->word_count) return Walk::kListed;
    return Walk::kRefused;
}

// Visits every configuration-output node below node, accept before
// alternate, so the lines come out in tree order.
void generate(const cli_parse_node *node, cli_parse_state *ps, int depth) {
    if (depth > kMaxDepth || node == nullptr || node == &Tno_alt || node->action == nullptr) {
        return;
    }
    if (node->action == c2p_action) {
        node->action(ps, node);
        return;
    }
    if (node->action == eol_action) return;
    generate(node->accept, ps, depth + 1);
    generate(node->alternate, ps, depth + 1);
}

// A typed line: a leading "no" and a trailing "?" taken off, the words
// between them are what the trees walk.
struct TypedLine {
    Words all;
    // Ends in NULL: a node that looked past the last word would find no
    // word there rather than whatever the stack held.
    const char *word[kMaxWords + 1] = {};
    int count = 0;
    int negated = 0;
    bool listing = false;
    char shown[kMaxLine] = "";  // the line for messages, one blank between words
};

// false (with the reason) when the line is too long or has too many words.
bool read_line(const char *line, TypedLine *out, const char **error) {
    if (!split_words(line, &out->all, error)) return false;
    const Words &all = out->all;
    int first = 0;
    if (all.count > 0 && strcmp(all.word[0], "no") == 0) {
        out->negated = 1;
        first = 1;
    }
    out->listing = all.count > first && strcmp(all.word[all.count - 1], "?") == 0;
    int end = all.count - (out->listing ? 1 : 0);
    for (int i = first; i < end; ++i) out->word[out->count++] = all.word[i];
    for (int i = 0, used = 0; i < end; ++i) {
        size_t room = sizeof out->shown - static_cast<size_t>(used);
        int n = snprintf(out->shown + used, room, "%s%s", i > 0 ? " " : "", all.word[i]);
        if (n < 0 || static_cast<size_t>(n) >= room) break;
        used += n;
    }
    return true;
}

// Number of words of prefix that begin the line, or -1 when it does not
// begin with them. When the line is a leading part of the prefix and
// next_word is given, it receives the prefix word that would follow.
int match_prefix(const char *prefix, const TypedLine &line, char *next_word, size_t size) {
    Words words;
    const char *error = nullptr;
    if (!split_words(prefix, &words, &error)) return -1;
    for (int i = 0; i < words.count; ++i) {
        if (i == line.count) {
            // Copied: the words live in this call's own buffer.
            if (next_word != nullptr) snprintf(next_word, size, "%s", words.word[i]);
            return -1;
        }
        if (strcmp(words.word[i], line.word[i]) != 0) return -1;
    }
    return words.count;
}

const char *first_group_name(int point) {
    for (int i = 0; i < group_count(); ++i) {
        const Group *g = group_at(i);
        if (g != nullptr && g->point == point) return g->name != nullptr ? g->name : "";
    }
    return nullptr;
}

void refuse(const char *fmt, ...) __attribute__((format(printf, 1, 2)));
void refuse(const char *fmt, ...) {
    FILE *out = cli_stream();
    va_list ap;
    va_start(ap, fmt);
    vfprintf(out, fmt, ap);
    va_end(ap);
    fputc('\n', out);
}

// Where the walks of a line got to.
struct Outcome {
    int furthest = -1;  // the furthest word position a refused walk reached
    NumberMiss miss;    // the number node that failed there, if any
    bool listed = false;
};

void note_refusal(Outcome *outcome, int pos, const NumberMiss &miss) {
    if (pos <= outcome->furthest) return;
    outcome->furthest = pos;
    outcome->miss = miss;
}

// Walks the line from word `first` through every group at point, in the
// order they were added; the first group that takes the line runs it.
Walk walk_point(int point, int first, const TypedLine &line, Choices *choices, Outcome *outcome) {
    for (int g = 0; g < group_count(); ++g) {
        const Group *group = group_at(g);
        if (group == nullptr || group->point != point) continue;
        cli_parse_state ps;
        ps.negated = line.negated;
        ps.words = line.word;
        ps.word_count = line.count;
        ps.pos = first;
        Walk result = walk_group(group->group, &ps, choices);
        if (result == Walk::kHandled) return result;
        if (result == Walk::kListed) {
            outcome->listed = true;
        } else {
            note_refusal(outcome, ps.pos, ps.number_miss);
        }
    }
    return Walk::kRefused;
}

// Walks the groups of every bound prefix the line begins with, longest
// prefix first; the first group that takes the line runs it. With
// choices, collects the "?" listing of every group instead.
Walk walk_points(const TypedLine &line, Choices *choices, Outcome *outcome) {
    struct Candidate {
        int point;
        int words;
    } candidates[kMaxBindings];
    int candidate_count = 0;
    for (int i = 0; i < binding_count() && candidate_count < kMaxBindings; ++i) {
        const Binding *b = binding_at(i);
        if (b == nullptr) continue;
        char next_word[kChoiceSize] = "";
        int n = match_prefix(b->prefix, line, choices != nullptr ? next_word : nullptr,
                             sizeof next_word);
        const char *name = first_group_name(b->point);
        if (next_word[0] != '\0' && name != nullptr) choices->add(next_word, name);
        if (n < 0) continue;
        // A prefix with nothing behind it takes the line no further than
        // its own words.
        if (name == nullptr) note_refusal(outcome, n, NumberMiss{});
        int at = candidate_count++;
        for (; at > 0 && candidates[at - 1].words < n; --at) candidates[at] = candidates[at - 1];
        candidates[at] = Candidate{b->point, n};
    }
    for (int c = 0; c < candidate_count; ++c) {
        if (walk_point(candidates[c].point, candidates[c].words, line, choices, outcome) ==
            Walk::kHandled) {
            return Walk::kHandled;
        }
    }
    return outcome->listed || (choices != nullptr && choices->count > 0) ? Walk::kListed
                                                                         : Walk::kRefused;
}

// The one-line reason of a refused line.
void report_refusal(const TypedLine &line, const Outcome &outcome) {
    int at = outcome.furthest;
    const NumberMiss &miss = outcome.miss;
    if (at < 0) {  // no bound prefix begins the line
        if (line.count == 0) {
            refuse("%% No commands");
        } else {
            refuse("%% Unknown word \"%s\"", line.word[0]);
        }
    } else if (at >= line.count) {
        refuse("%% Incomplete command: \"%s\"", line.shown);
    } else if (miss.pos == at && miss.out_of_range) {
        refuse("%% Number \"%s\" out of range (%u to %u)", line.word[at], miss.lowest,
               miss.highest);
    } else if (miss.pos == at) {
        refuse("%% Unknown word \"%s\" (a number %u to %u is expected)", line.word[at], miss.lowest,
               miss.highest);
    } else {
        refuse("%% Unknown word \"%s\"", line.word[at]);
    }
}

}  // namespace
}  // namespace authmng_host

extern "C" {

cli_parse_node Tno_alt = {nullptr, nullptr, nullptr, nullptr};

int append_point_action(cli_parse_state *, const cli_parse_node *) {
    return 1;
}

int common_keyword_action(cli_parse_state *ps, const cli_parse_node *node) {
    auto *arg = static_cast<const cli_keyword_arg_t *>(node->arg);
    if (arg == nullptr || arg->keyword == nullptr || ps->pos >= ps->word_count) return 0;
    if (strcmp(ps->words[ps->pos], arg->keyword) != 0) return 0;
    if (arg->kind == CLI_KW_STORE) store_slot(ps, arg->slot, arg->value, nullptr);
    ++ps->pos;
    return 1;
}

int common_number_action(cli_parse_state *ps, const cli_parse_node *node) {
    auto *arg = static_cast<const cli_number_arg_t *>(node->arg);
    if (arg == nullptr || ps->pos >= ps->word_count) return 0;
    uint64_t value = 0;
    bool number = parse_number(ps->words[ps->pos], &value);
    if (!number || value < arg->lowest || value > arg->highest) {
        bool out_of_range = number;
        ps->number_miss = NumberMiss{ps->pos, out_of_range, arg->lowest, arg->highest};
        return 0;
    }
    store_slot(ps, arg->slot, value, nullptr);
    ++ps->pos;
    return 1;
}

int set_cdb_var_action(cli_parse_state *ps, const cli_parse_node *node) {
    auto *arg = static_cast<const cli_set_arg_t *>(node->arg);
    if (arg != nullptr) store_slot(ps, arg->slot, arg->value, arg->pointer);
    return 1;
}

int noprefix_action(cli_parse_state *ps, const cli_parse_node *) {
    return ps->negated ? 1 : 0;
}

int c2p_action(cli_parse_state *ps, const cli_parse_node *node) {
    if (ps->gen_mode == 0) return 1;
    auto *arg = static_cast<const cli_c2p_arg_t *>(node->arg);
    if (arg != nullptr && arg->handler != nullptr) arg->handler(ps);
    return 0;
}

int eol_action(cli_parse_state *ps, const cli_parse_node *node) {
    if (ps->pos != ps->word_count) return 0;
    auto *arg = static_cast<const cli_eol_arg_t *>(node->arg);
    if (arg != nullptr && arg->handler != nullptr) arg->handler(ps);
    ps->done = true;
    return 1;
}

uint64_t cli_slot_value(const cli_parse_state *ps, uint32_t slot) {
    const SlotEntry *entry = ps == nullptr ? nullptr : find_slot(ps, slot);
    return entry == nullptr ? 0 : entry->value;
}

const void *cli_slot_pointer(const cli_parse_state *ps, uint32_t slot) {
    const SlotEntry *entry = ps == nullptr ? nullptr : find_slot(ps, slot);
    return entry == nullptr ? nullptr : entry->pointer;
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
    auto *table = static_cast<authmng_debug_switch_t *>(
        const_cast<void *>(cli_slot_pointer(ps, CLI_SLOT_NUMBER)));
    if (table == nullptr) return;
    uint64_t index = cli_slot_value(ps, CLI_SLOT_CODE);
    for (uint64_t i = 0; i <= index; ++i) {
        if (table[i].sw == nullptr || table[i].desc == nullptr) return;
    }
    __atomic_store_n(table[index].sw, static_cast<uint8_t>(ps->negated ? 0 : 1), __ATOMIC_RELAXED);
}

int authmng_host_cli_exec(const char *line) {
    TypedLine typed;
    const char *error = nullptr;
    if (!read_line(line == nullptr ? "" : line, &typed, &error)) {
        refuse("%s", error);
        return -1;
    }
    if (typed.count == 0 && !typed.listing) {
        if (typed.negated) {
            refuse("%% Incomplete command: \"%s\"", typed.shown);
        } else {
            refuse("%% Empty command line");
        }
        return -1;
    }
    Choices choices;
    Outcome outcome;
    Walk result = walk_points(typed, typed.listing ? &choices : nullptr, &outcome);
    if (result == Walk::kHandled) return 0;
    if (result == Walk::kListed) {
        choices.print(cli_stream());
        return 0;
    }
    report_refusal(typed, outcome);
    return -1;
}

int authmng_port_check_exec(int point, const char *line) {
    TypedLine typed;
    const char *error = nullptr;
    if (!read_line(line == nullptr ? "" : line, &typed, &error)) {
        refuse("%s", error);
        return -1;
    }
    Outcome outcome;
    if (walk_point(point, 0, typed, nullptr, &outcome) == Walk::kHandled) return 0;
    if (outcome.furthest < 0) outcome.furthest = 0;
    report_refusal(typed, outcome);
    return -1;
}

void authmng_host_cli_list_hidden(int on) {
    g_list_hidden.store(on != 0);
}

int authmng_host_cli_complete(const char *typed, const char *partial, char *buf, size_t size) {
    if (buf == nullptr || size == 0) return 0;
    buf[0] = '\0';
    std::string line = std::string(typed == nullptr ? "" : typed) + " ?";
    TypedLine words;
    const char *error = nullptr;
    if (!read_line(line.c_str(), &words, &error)) return 0;
    Choices choices;
    Outcome outcome;
    walk_points(words, &choices, &outcome);
    size_t used = 0;
    size_t partial_len = partial == nullptr ? 0 : strlen(partial);
    int count = 0;
    for (int i = 0; i < choices.count; ++i) {
        const char *word = choices.choice[i];
        if (word[0] == '<' || strncmp(word, partial == nullptr ? "" : partial, partial_len) != 0) {
            continue;
        }
        int n = snprintf(buf + used, size - used, "%s\n", word);
        if (n < 0 || static_cast<size_t>(n) >= size - used) {
            buf[used] = '\0';  // whole words only
            break;
        }
        used += static_cast<size_t>(n);
        ++count;
    }
    return count;
}

void authmng_host_cli_saved_config(FILE *out) {
    if (out == nullptr) return;
    for (int g = 0; g < group_count(); ++g) {
        const Group *group = group_at(g);
        if (group == nullptr) continue;
        cli_parse_state ps;
        ps.gen_mode = CLI_GEN_CONFIG;
        ps.config_out = out;
        generate(group->group, &ps, 0);
    }
    fflush(out);
}

}  // extern "C"
