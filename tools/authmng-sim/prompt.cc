#include "prompt.h"

#include <readline/history.h>
#include <readline/readline.h>

#include <sys/select.h>

#include <cerrno>
#include <csignal>
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

// Ctrl-C cancels the line being typed; the prompt goes on.
volatile sig_atomic_t g_interrupted = 0;
void on_interrupt(int) {
    g_interrupted = 1;
}

// The line handler of readline's callback interface.
bool g_end = false;
Simulator *g_simulator = nullptr;
void on_line(char *line) {
    if (line == nullptr) {
        g_end = true;
        printf("\n");
        return;
    }
    std::string text(line);
    free(line);
    size_t first = text.find_first_not_of(" \t");
    if (first == std::string::npos) return;
    add_history(text.c_str());
    if (text.compare(first, std::string::npos, "exit") == 0 ||
        text.compare(first, std::string::npos, "quit") == 0) {
        g_end = true;
        return;
    }
    fflush(stdout);
    g_simulator->run_command(text);
    fflush(stdout);
}

}  // namespace

void run_prompt(Simulator *simulator) {
    rl_attempted_completion_function = complete;
    rl_catch_signals = 0;  // SIGINT is ours: it cancels the line
    authmng_host_cli_list_hidden(1);
    std::string prompt = std::string("authmng(") + client_name(g_authmng_client_type) + ")# ";
    printf(
        "Type show, debug and configuration commands; \"?\" lists what may follow, "
        "tab completes, Ctrl-C cancels the line, \"exit\" leaves.\n");
    fflush(stdout);

    struct sigaction interrupt = {}, previous = {};
    interrupt.sa_handler = on_interrupt;
    sigemptyset(&interrupt.sa_mask);
    sigaction(SIGINT, &interrupt, &previous);
    // SIGINT stays blocked except inside the wait, so none is missed.
    sigset_t blocked, waiting;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGINT);
    sigprocmask(SIG_BLOCK, &blocked, &waiting);
    sigdelset(&waiting, SIGINT);
    g_simulator = simulator;
    g_end = false;
    rl_callback_handler_install(prompt.c_str(), on_line);
    while (!g_end) {
        fd_set in;
        FD_ZERO(&in);
        FD_SET(fileno(rl_instream), &in);
        int ready = pselect(fileno(rl_instream) + 1, &in, nullptr, nullptr, nullptr, &waiting);
        if (g_interrupted) {
            g_interrupted = 0;
            rl_callback_sigcleanup();
            rl_replace_line("", 0);
            printf("^C\n");
            rl_on_new_line();
            rl_redisplay();
            continue;
        }
        if (ready < 0) {
            if (errno == EINTR) continue;
            break;
        }
        rl_callback_read_char();
    }
    rl_callback_handler_remove();
    sigprocmask(SIG_UNBLOCK, &blocked, nullptr);
    sigaction(SIGINT, &previous, nullptr);
    authmng_host_cli_list_hidden(0);
}

}  // namespace authmng_sim
