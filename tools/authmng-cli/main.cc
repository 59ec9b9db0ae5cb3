// authmng-cli: the operator's command client of a running authmng-hostapd.
//   authmng-cli [-s SOCKET] show dot1x authmng statistic    one command
//   authmng-cli [-s SOCKET]                                 a prompt
#include <getopt.h>
#include <poll.h>
#include <readline/history.h>
#include <readline/readline.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "authmng.h"
#include "command_protocol.h"

namespace {

// How long the daemon may take to answer one packet.
constexpr int kReplyTimeoutMs = 5000;

// Runs one line at the daemon: its output to out (stdout when null). 0 run,
// 1 refused by the command line, 2 not allowed or no daemon.
int run(const char *socket_path, const std::string &line, std::string *out = nullptr) {
    authmng_tlv_buf_t request;
    if (!authmng_cmd::pack(line.data(), line.size(), &request)) {
        fprintf(stderr, "authmng-cli: command longer than %zu characters\n",
                authmng_cmd::kChunkMax);
        return 1;
    }
    int fd = socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0);
    if (fd < 0 || authmng_unix_connect(fd, socket_path) != 0) {
        fprintf(stderr, "authmng-cli: cannot reach the daemon at %s: %s\n", socket_path,
                strerror(errno));
        if (fd >= 0) close(fd);
        return 2;
    }
    int status = -1;
    // A daemon that refuses the connection may have answered and closed
    // before the request got out: its answer is still there to read.
    bool sent = authmng_unix_send(fd, request.data, request.used) == request.used;
    int send_error = errno;
    for (;;) {
        pollfd pfd = {fd, POLLIN, 0};
        if (poll(&pfd, 1, kReplyTimeoutMs) <= 0) {
            fprintf(stderr, "authmng-cli: no answer from the daemon\n");
            status = 2;
            break;
        }
        char packet[AUTHMNG_TLV_BUF_SIZE + 1];
        int got = authmng_unix_receive(fd, packet, sizeof packet);
        if (got <= 0) break;  // the daemon closes after the last packet
        std::string value;
        if (!authmng_cmd::unpack(packet, static_cast<size_t>(got), &value)) {
            fprintf(stderr, "authmng-cli: malformed answer from the daemon\n");
            status = 2;
            break;
        }
        if (status < 0) {
            status = value == "0" ? 0 : value == "1" ? 1 : 2;
            continue;
        }
        if (out != nullptr) {
            *out += value;
        } else {
            fwrite(value.data(), 1, value.size(), status == 2 ? stderr : stdout);
        }
    }
    close(fd);
    fflush(stdout);
    if (status < 0 && !sent) {
        fprintf(stderr, "authmng-cli: cannot send to %s: %s\n", socket_path, strerror(send_error));
    }
    return status < 0 ? 2 : status;
}

const char *g_socket_path = nullptr;

// The daemon's keywords that may follow the words typed so far.
char *complete_keyword(const char *text, int state) {
    static std::string candidates;
    static size_t cursor = 0;
    if (state == 0) {
        candidates.clear();
        cursor = 0;
        std::string typed(rl_line_buffer, static_cast<size_t>(rl_point));
        if (run(g_socket_path, "bridge complete " + typed, &candidates) != 0) candidates.clear();
    }
    while (cursor < candidates.size()) {
        size_t end = candidates.find('\n', cursor);
        if (end == std::string::npos) end = candidates.size();
        std::string word = candidates.substr(cursor, end - cursor);
        cursor = end + 1;
        if (!word.empty() && word.compare(0, strlen(text), text) == 0) return strdup(word.c_str());
    }
    return nullptr;
}

char **complete(const char *text, int, int) {
    rl_attempted_completion_over = 1;
    return rl_completion_matches(text, complete_keyword);
}

void prompt(const char *socket_path) {
    g_socket_path = socket_path;
    rl_attempted_completion_function = complete;
    std::string history;
    if (const char *home = getenv("HOME")) history = std::string(home) + "/.authmng_cli_history";
    using_history();
    if (!history.empty()) read_history(history.c_str());
    printf(
        "Commands of the daemon at %s; \"?\" at the end lists what may follow, tab completes, "
        "\"exit\" leaves.\n",
        socket_path);
    for (;;) {
        char *line = readline("authmng# ");
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
        run(socket_path, text);
    }
    if (!history.empty()) write_history(history.c_str());
}

}  // namespace

int main(int argc, char **argv) {
    signal(SIGPIPE, SIG_IGN);  // a closed daemon end is an error result, not an end
    const option options[] = {{"socket", required_argument, nullptr, 's'},
                              {"help", no_argument, nullptr, 'h'},
                              {nullptr, 0, nullptr, 0}};
    const char *socket_path = authmng_cmd::kDefaultSocket;
    // "+": options end at the first word of the command.
    for (int opt; (opt = getopt_long(argc, argv, "+s:h", options, nullptr)) != -1;) {
        if (opt == 's') {
            socket_path = optarg;
        } else {
            fprintf(opt == 'h' ? stdout : stderr,
                    "usage: authmng-cli [-s SOCKET] [COMMAND WORDS ...]\n"
                    "  without words: an interactive prompt with history; \"?\" lists words\n");
            return opt == 'h' ? 0 : 2;
        }
    }
    if (optind == argc) {
        prompt(socket_path);
        return 0;
    }
    std::string line;
    for (int i = optind; i < argc; ++i) line += (i > optind ? " " : "") + std::string(argv[i]);
    return run(socket_path, line);
}
