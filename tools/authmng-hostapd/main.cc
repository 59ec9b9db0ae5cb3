// authmng-hostapd: hostapd's 802.1X authentications into the library, live
// (attached to hostapd's control interfaces) or replayed from a recording.
#include <getopt.h>
#include <sys/stat.h>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "authmng.h"
#include "authmng_host.h"
#include "bridge.h"
#include "command_server.h"
#include "daemon_commands.h"
#include "metrics.h"
#include "metrics_server.h"
#include "replay.h"

using namespace authmng_hostapd;

namespace {

volatile sig_atomic_t g_stop = 0;
void on_signal(int) {
    g_stop = 1;
}

const char kUsage[] =
    "usage: authmng-hostapd -i CTRL_PATH [-i CTRL_PATH ...] [options]\n"
    "       authmng-hostapd --replay FILE [--repeat N] [--cmd LINE ...] [options]\n"
    "  -i, --ctrl PATH      a hostapd control interface (e.g. /var/run/hostapd/eth0)\n"
    "  -s, --socket PATH    command socket for authmng-cli (default /run/authmng-hostapd.sock)\n"
    "  -m, --metrics ADDR   serve Prometheus metrics on [ADDR:]PORT (loopback by default)\n"
    "      --tmp DIR        the library's temporary area (TMPDIR)\n"
    "      --flash DIR      the library's flash home\n"
    "      --record FILE    write the received event stream to FILE\n"
    "      --replay FILE    feed a recorded stream to the library and report the rate\n"
    "      --repeat N       replay the stream N times (default 1)\n"
    "      --cmd LINE       after a replay, run this command line (repeatable)\n";

bool make_dirs(const std::string &path) {
    for (size_t slash = path.find('/', 1);; slash = path.find('/', slash + 1)) {
        std::string part = path.substr(0, slash);
        if (mkdir(part.c_str(), 0755) != 0 && errno != EEXIST) return false;
        if (slash == std::string::npos) return true;
    }
}

}  // namespace

int main(int argc, char **argv) {
    enum { kTmp = 1000, kFlash, kRecord, kReplay, kRepeat, kCmd };
    const option options[] = {{"ctrl", required_argument, nullptr, 'i'},
                              {"socket", required_argument, nullptr, 's'},
                              {"metrics", required_argument, nullptr, 'm'},
                              {"tmp", required_argument, nullptr, kTmp},
                              {"flash", required_argument, nullptr, kFlash},
                              {"record", required_argument, nullptr, kRecord},
                              {"replay", required_argument, nullptr, kReplay},
                              {"repeat", required_argument, nullptr, kRepeat},
                              {"cmd", required_argument, nullptr, kCmd},
                              {"help", no_argument, nullptr, 'h'},
                              {nullptr, 0, nullptr, 0}};
    std::vector<std::string> ctrl_paths, commands;
    std::string socket_path = authmng_cmd::kDefaultSocket, metrics, record, replay;
    int repeat = 1;
    for (int opt; (opt = getopt_long(argc, argv, "i:s:m:h", options, nullptr)) != -1;) {
        switch (opt) {
            case 'i':
                ctrl_paths.push_back(optarg);
                break;
            case 's':
                socket_path = optarg;
                break;
            case 'm':
                metrics = optarg;
                break;
            case kTmp:
                setenv("TMPDIR", optarg, 1);
                break;
            case kFlash:
                setenv("AUTHMNG_FLASH_HOME", optarg, 1);
                break;
            case kRecord:
                record = optarg;
                break;
            case kReplay:
                replay = optarg;
                break;
            case kRepeat:
                repeat = atoi(optarg);
                break;
            case kCmd:
                commands.push_back(optarg);
                break;
            case 'h':
                fputs(kUsage, stdout);
                return 0;
            default:
                fputs(kUsage, stderr);
                return 2;
        }
    }
    if ((ctrl_paths.empty() == replay.empty()) || repeat < 1 || optind != argc) {
        fputs(kUsage, stderr);
        return 2;
    }
    for (const char *area : {getenv("TMPDIR"), getenv("AUTHMNG_FLASH_HOME")}) {
        if (area != nullptr && !make_dirs(area)) {
            fprintf(stderr, "authmng-hostapd: cannot create %s: %s\n", area, strerror(errno));
            return 1;
        }
    }
    bind_command_words();
    authmng_reg_t reg = {AUTHMNG_CLIENT_DOT1X, kDebugPoint, kShowPoint};
    if (authmng_init(&reg) != 0) {
        fprintf(stderr, "authmng-hostapd: the library did not start (see the lines above)\n");
        return 1;
    }
    BridgeCounters counters;

    if (!replay.empty()) {
        ReplayResult result;
        std::string error;
        if (!replay_file(replay, repeat, &result, &error)) {
            fprintf(stderr, "authmng-hostapd: %s\n", error.c_str());
            return 1;
        }
        print_replay(stdout, result);
        int status = 0;
        for (const std::string &line : commands) {
            std::string output;
            if (run_daemon_command(line, counters, &output) != authmng_cmd::kRun) status = 1;
            fputs(output.c_str(), stdout);
        }
        return status;
    }

    struct sigaction action;
    memset(&action, 0, sizeof action);
    action.sa_handler = on_signal;
    sigaction(SIGINT, &action, nullptr);
    sigaction(SIGTERM, &action, nullptr);
    signal(SIGPIPE, SIG_IGN);

    Bridge bridge(ctrl_paths, &counters);
    if (!record.empty() && !bridge.record_to(record)) {
        fprintf(stderr, "authmng-hostapd: cannot write %s: %s\n", record.c_str(), strerror(errno));
        return 1;
    }
    CommandServer commands_server;
    if (!commands_server.start(socket_path, [&counters](const std::string &line, std::string *out) {
            return run_daemon_command(line, counters, out);
        })) {
        fprintf(stderr, "authmng-hostapd: command socket %s: %s\n", socket_path.c_str(),
                strerror(errno));
        return 1;
    }
    MetricsServer metrics_server;
    if (!metrics.empty()) {
        std::string error;
        if (!metrics_server.start(
                metrics,
                [&counters] {
                    StatsSnapshot snapshot;
                    take_snapshot(&snapshot);
                    return render_metrics(snapshot, &counters);
                },
                &error)) {
            fprintf(stderr, "authmng-hostapd: %s\n", error.c_str());
            return 1;
        }
    }
    fprintf(stderr, "authmng-hostapd: running; commands on %s%s%s\n", socket_path.c_str(),
            metrics.empty() ? "" : ", metrics on ", metrics.c_str());
    bridge.run(&g_stop);
    fprintf(stderr, "authmng-hostapd: stopping\n");
    return 0;
}
