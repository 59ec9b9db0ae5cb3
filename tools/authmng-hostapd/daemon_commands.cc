#include "daemon_commands.h"

#include <cinttypes>
#include <cstdio>
#include <cstdlib>

#include "authmng.h"
#include "authmng_host.h"

namespace authmng_hostapd {
namespace {

std::string trimmed(const std::string &line) {
    size_t first = line.find_first_not_of(" \t\r\n");
    if (first == std::string::npos) return "";
    size_t last = line.find_last_not_of(" \t\r\n");
    return line.substr(first, last - first + 1);
}

constexpr char kCompletePrefix[] = "bridge complete ";
constexpr size_t kCompletePrefixLen = sizeof kCompletePrefix - 1;

}  // namespace

void bind_command_words() {
    authmng_host_cli_bind(kShowPoint, "show dot1x authmng");
    authmng_host_cli_bind(kDebugPoint, "debug dot1x authmng");
}

authmng_cmd::Status run_daemon_command(const std::string &line, const BridgeCounters &c,
                                       std::string *output) {
    std::string words = trimmed(line);
    char *text = nullptr;
    size_t size = 0;
    FILE *out = open_memstream(&text, &size);
    if (out == nullptr) {
        *output = "% out of memory\n";
        return authmng_cmd::kRefused;
    }
    authmng_cmd::Status status = authmng_cmd::kRun;
    if (line.compare(0, kCompletePrefixLen, kCompletePrefix) == 0) {
        // The partly typed line as it stands: the words before the last
        // blank, and the word being typed after it.
        std::string typed = line.substr(kCompletePrefixLen);
        size_t blank = typed.find_last_of(' ');
        std::string partial = blank == std::string::npos ? typed : typed.substr(blank + 1);
        typed = blank == std::string::npos ? "" : typed.substr(0, blank);
        char words_out[4096] = "";
        authmng_host_cli_complete(typed.c_str(), partial.c_str(), words_out, sizeof words_out);
        fputs(words_out, out);
    } else if (words == "bridge status") {
        auto v = [](const std::atomic<uint64_t> &x) { return x.load(std::memory_order_relaxed); };
        fprintf(out,
                "interfaces attached: %u of %u\nevent lines: %" PRIu64 " (malformed %" PRIu64
                ", unknown %" PRIu64 ")\nrecords to the library: %" PRIu64 "\nattaches: %" PRIu64
                ", lost: %" PRIu64 ", link downs: %" PRIu64 "\nunanswered polls: %" PRIu64 "\n",
                c.attached.load(), c.interfaces.load(), v(c.lines), v(c.malformed), v(c.unknown),
                v(c.records), v(c.attaches), v(c.detaches), v(c.link_downs), v(c.poll_failures));
    } else if (words == "bridge write-interval") {
        authmng_write_dot1x_statistic_to_tmpfile();
        fprintf(out, "interval rows written\n");
    } else if (words.compare(0, 7, "bridge ") == 0 || words == "bridge") {
        fprintf(out, "%% unknown bridge command; bridge status | bridge write-interval\n");
        status = authmng_cmd::kRefused;
    } else {
        authmng_host_cli_output(out);
        if (authmng_host_cli_exec(words.c_str()) != 0) status = authmng_cmd::kRefused;
        authmng_host_cli_output(nullptr);
    }
    fclose(out);
    output->assign(text, size);
    free(text);
    return status;
}

}  // namespace authmng_hostapd
