#include "prompt.h"

#include <readline/history.h>
#include <readline/readline.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "authmng_host.h"

namespace authmng_sim {
namespace {

// Keywords that may follow the words typed so far, from the command trees.
char *complete_keyword(const char *text, int state) {
    static char candidates[4096];
    static char *cursor = nullptr;
    if (state == 0) {
        std::string typed(rl_line_buffer, static_cast<size_t>(rl_point));
        typed.resize(typed.size() - strlen(text));
        candidates[0] = '\0';
        authmng_host_cli_complete(typed.c_str(), text, candidates, sizeof candidates);
        cursor = candidates;
    }
    while (cursor != nullptr && *cursor != '\0') {
        char *word = cursor;
        char *end = strchr(cursor, '\n');
        if (end != nullptr) {
            *end = '\0';
            cursor = end + 1;
        } else {
            cursor += strlen(cursor);
        }
        if (*word != '\0') return strdup(word);
    }
    return nullptr;
}

char **complete(const char *text, int, int) {
    rl_attempted_completion_over = 1;
    return rl_completion_matches(text, complete_keyword);
}

}  // namespace

void run_prompt(Simulator *simulator) {
    rl_attempted_completion_function = complete;
    std::string prompt = std::string("authmng(") + client_name(g_authmng_client_type) + ")# ";
    printf(
        "Type show, debug and configuration commands; \"?\" lists what may follow, "
        "tab completes, \"exit\" leaves.\n");
    for (;;) {
        char *line = readline(prompt.c_str());
        if (line == nullptr) break;
        std::string text(line);
        free(line);
        size_t first = text.find_first_not_of(" \t");
        if (first == std::string::npos) continue;
        add_history(text.c_str());
        if (text.compare(first, std::string::npos, "exit") == 0 ||
            text.compare(first, std::string::npos, "quit") == 0) {
            break;
        }
        fflush(stdout);
        simulator->run_command(text);
        fflush(stdout);
    }
}

}  // namespace authmng_sim
