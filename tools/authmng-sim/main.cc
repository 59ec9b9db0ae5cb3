// authmng-sim: runs the library as a daemon would, on a trace or on a
// built-in day, with the library's timer on virtual time.
#include <dirent.h>
#include <getopt.h>
#include <sys/stat.h>

#include <cinttypes>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include "authmng_host.h"
#include "day.h"
#include "progress.h"
#include "prompt.h"
#include "simulator.h"
#include "trace.h"

using namespace authmng_sim;

namespace {

constexpr char kDefaultStart[] = "2026-03-09T00:00:00";

void usage(FILE *out) {
    fprintf(out,
            "usage: authmng-sim [options]\n"
            "  --client dot1x|webauth|cpp  the daemon to play (default dot1x)\n"
            "  --out DIR                   output: DIR/tmp is TMPDIR, DIR/flash the flash home\n"
            "                              (default ./authmng-out; refused when not empty)\n"
            "  --append                    add to the files already in a non-empty --out\n"
            "  --trace FILE                replay a trace file ('-' for standard input)\n"
            "  --strict                    stop at the first bad trace line\n"
            "  --seed N                    built-in day: random seed (default 1)\n"
            "  --users N                   built-in day: users (default 200)\n"
            "  --hours H                   built-in day: length in hours (default 24)\n"
            "  --start TIME                when the daemon starts, YYYY-MM-DDTHH:MM:SS local\n"
            "                              time (built-in day default %s; a trace\n"
            "                              starts at its first event unless given)\n"
            "  --until TIME                keep the timer running up to TIME after the events\n"
            "  --write-trace FILE          write the built-in day as a trace and exit\n"
            "  --cmd LINE                  run a command line after the replay (repeatable)\n"
            "  -i, --interactive           open a command prompt after the replay\n"
            "  --debug                     turn the event and error debug lines on\n"
            "  --quiet                     no closing report\n"
            "  -h, --help                  this text\n",
            kDefaultStart);
}

struct Options {
    int32_t client = AUTHMNG_CLIENT_DOT1X;
    std::string out = "authmng-out";
    std::string trace;
    std::string write_trace;
    std::string start;
    std::string until;
    bool strict = false;
    bool append = false;
    bool interactive = false;
    bool debug = false;
    bool quiet = false;
    DayOptions day;
    std::vector<std::string> commands;
};

bool parse_number(const char *text, uint64_t *value) {
    char *end = nullptr;
    if (text == nullptr || *text == '\0' || *text == '-') return false;
    *value = strtoull(text, &end, 10);
    return *end == '\0';
}

// 0 to go on, otherwise the exit status.
int parse_options(int argc, char **argv, Options *options) {
    enum {
        kClient = 1000,
        kOut,
        kAppend,
        kTrace,
        kStrict,
        kSeed,
        kUsers,
        kHours,
        kStart,
        kUntil,
        kWriteTrace,
        kCmd,
        kDebug,
        kQuiet
    };
    static const struct option longs[] = {
        {"client", required_argument, nullptr, kClient},
        {"out", required_argument, nullptr, kOut},
        {"append", no_argument, nullptr, kAppend},
        {"trace", required_argument, nullptr, kTrace},
        {"strict", no_argument, nullptr, kStrict},
        {"seed", required_argument, nullptr, kSeed},
        {"users", required_argument, nullptr, kUsers},
        {"hours", required_argument, nullptr, kHours},
        {"start", required_argument, nullptr, kStart},
        {"until", required_argument, nullptr, kUntil},
        {"write-trace", required_argument, nullptr, kWriteTrace},
        {"cmd", required_argument, nullptr, kCmd},
        {"interactive", no_argument, nullptr, 'i'},
        {"debug", no_argument, nullptr, kDebug},
        {"quiet", no_argument, nullptr, kQuiet},
        {"help", no_argument, nullptr, 'h'},
        {nullptr, 0, nullptr, 0},
    };
    int c;
    uint64_t number = 0;
    while ((c = getopt_long(argc, argv, "ih", longs, nullptr)) != -1) {
        switch (c) {
            case kClient:
                if (strcmp(optarg, "dot1x") == 0) {
                    options->client = AUTHMNG_CLIENT_DOT1X;
                } else if (strcmp(optarg, "webauth") == 0) {
                    options->client = AUTHMNG_CLIENT_WBA;
                } else if (strcmp(optarg, "cpp") == 0) {
                    options->client = AUTHMNG_CLIENT_CPP;
                } else {
                    fprintf(stderr, "authmng-sim: --client: '%s' is not dot1x, webauth or cpp\n",
                            optarg);
                    return 2;
                }
                break;
            case kOut:
                options->out = optarg;
                break;
            case kAppend:
                options->append = true;
                break;
            case kTrace:
                options->trace = optarg;
                break;
            case kStrict:
                options->strict = true;
                break;
            case kSeed:
                if (!parse_number(optarg, &number)) {
                    fprintf(stderr, "authmng-sim: --seed: '%s' is not a number\n", optarg);
                    return 2;
                }
                options->day.seed = number;
                break;
            case kUsers:
                if (!parse_number(optarg, &number) || number == 0 || number > 1000000) {
                    fprintf(stderr,
                            "authmng-sim: --users: '%s' is not a number from 1 to 1000000\n",
                            optarg);
                    return 2;
                }
                options->day.users = static_cast<uint32_t>(number);
                break;
            case kHours: {
                char *end = nullptr;
                double hours = strtod(optarg, &end);
                if (*end != '\0' || !(hours > 0) || hours > 24 * 366) {
                    fprintf(stderr,
                            "authmng-sim: --hours: '%s' is not a positive number of hours\n",
                            optarg);
                    return 2;
                }
                options->day.hours = hours;
                break;
            }
            case kStart:
                options->start = optarg;
                break;
            case kUntil:
                options->until = optarg;
                break;
            case kWriteTrace:
                options->write_trace = optarg;
                break;
            case kCmd:
                options->commands.emplace_back(optarg);
                break;
            case 'i':
                options->interactive = true;
                break;
            case kDebug:
                options->debug = true;
                break;
            case kQuiet:
                options->quiet = true;
                break;
            case 'h':
                usage(stdout);
                return -1;
            default:
                usage(stderr);
                return 2;
        }
    }
    if (optind < argc) {
        fprintf(stderr, "authmng-sim: unexpected argument '%s'\n", argv[optind]);
        usage(stderr);
        return 2;
    }
    return 0;
}

int write_day_trace(const Options &options, int64_t start) {
    FILE *out = options.write_trace == "-" ? stdout : fopen(options.write_trace.c_str(), "w");
    if (out == nullptr) {
        fprintf(stderr, "authmng-sim: cannot write %s: %s\n", options.write_trace.c_str(),
                strerror(errno));
        return 1;
    }
    DayOptions day = options.day;
    day.client = options.client;
    day.start = start;
    fprintf(out,
            "# authmng-sim built-in day: client %s, seed %" PRIu64
            ", users %u, hours %g\n"
            "# replay it as it ran with: --client %s --start %s --until %s\n",
            client_name(options.client), day.seed, day.users, day.hours,
            client_name(options.client), format_time(start).c_str(),
            format_time(start + static_cast<int64_t>(day.hours * 3600.0)).c_str());
    uint64_t n = generate_day(day, [out](const TraceEvent &event) {
        fputs(format_event(event).c_str(), out);
        fputc('\n', out);
    });
    if (out != stdout) fclose(out);
    fprintf(stderr, "authmng-sim: wrote %" PRIu64 " events\n", n);
    return 0;
}

// Whether dir exists and holds anything.
bool has_entries(const std::string &dir) {
    DIR *d = opendir(dir.c_str());
    if (d == nullptr) return false;
    bool found = false;
    while (struct dirent *entry = readdir(d)) {
        if (strcmp(entry->d_name, ".") != 0 && strcmp(entry->d_name, "..") != 0) {
            found = true;
            break;
        }
    }
    closedir(d);
    return found;
}

// Starts the library at begin. Start-up turns the debug switches off, so
// --debug sets them here, before the first event.
bool start_daemon(const Options &options, int64_t begin, Simulator *simulator) {
    std::string why;
    if (!simulator->start(options.client, options.out, begin, &why)) {
        fprintf(stderr, "authmng-sim: %s\n", why.c_str());
        return false;
    }
    if (options.debug) {
        g_authmng_lib_event_dbg = 1;
        g_authmng_lib_error_dbg = 1;
    }
    return true;
}

// Replays a trace; the number of bad lines, or -1 when --strict stopped.
// start: when the daemon starts, or 0 for the time of the first event.
long replay_trace(const Options &options, int64_t start, Simulator *simulator, bool *started) {
    FILE *in = options.trace == "-" ? stdin : fopen(options.trace.c_str(), "r");
    if (in == nullptr) {
        fprintf(stderr, "authmng-sim: cannot read %s: %s\n", options.trace.c_str(),
                strerror(errno));
        return -1;
    }
    struct stat st;
    double size = (in != stdin && fstat(fileno(in), &st) == 0 && st.st_size > 0)
                      ? static_cast<double>(st.st_size)
                      : 0;
    Progress progress;
    TraceParser parser(start);
    TraceEvent event;
    std::string error;
    char *line = nullptr;
    size_t capacity = 0;
    long bad = 0;
    unsigned long number = 0;
    while (getline(&line, &capacity, in) != -1) {
        ++number;
        ParseResult result = parser.parse(line, &event, &error);
        if (result == ParseResult::Skipped) continue;
        if (result == ParseResult::Error) {
            fprintf(stderr, "authmng-sim: %s:%lu: %s\n",
                    options.trace == "-" ? "<stdin>" : options.trace.c_str(), number,
                    error.c_str());
            ++bad;
            if (options.strict) {
                bad = -1;
                break;
            }
            continue;
        }
        if (!*started) {
            if (!start_daemon(options, start != 0 ? start : event.time, simulator)) {
                bad = -1;
                break;
            }
            *started = true;
        }
        simulator->deliver(event);
        if (size > 0 && (number & 0xFFF) == 0) progress.update(ftell(in) / size);
    }
    free(line);
    if (in != stdin) fclose(in);
    return bad;
}

}  // namespace

int main(int argc, char **argv) {
    Options options;
    int status = parse_options(argc, argv, &options);
    if (status != 0) return status < 0 ? 0 : status;

    int64_t start = 0;
    bool start_given = !options.start.empty();
    if (!start_given) options.start = kDefaultStart;
    if (!parse_time(options.start.c_str(), 0, &start)) {
        fprintf(stderr, "authmng-sim: --start: '%s' is not YYYY-MM-DDTHH:MM:SS\n",
                options.start.c_str());
        return 2;
    }
    int64_t until = 0;
    if (!options.until.empty() && !parse_time(options.until.c_str(), start, &until)) {
        fprintf(stderr, "authmng-sim: --until: '%s' is not YYYY-MM-DDTHH:MM:SS\n",
                options.until.c_str());
        return 2;
    }
    if (!options.write_trace.empty()) return write_day_trace(options, start);
    if (!options.append && has_entries(options.out)) {
        fprintf(stderr,
                "authmng-sim: --out %s is not empty: this run's rows would be appended to the "
                "files there. Choose an empty folder, remove it, or give --append.\n",
                options.out.c_str());
        return 2;
    }

    Simulator simulator;
    bool started = false;
    long bad = 0;
    if (!options.trace.empty()) {
        bad = replay_trace(options, start_given ? start : 0, &simulator, &started);
        if (bad < 0) return 1;
    }
    if (!started) {
        if (!start_daemon(options, start, &simulator)) return 1;
        started = true;
        if (options.trace.empty()) {
            DayOptions day = options.day;
            day.client = options.client;
            day.start = start;
            int64_t end = start + static_cast<int64_t>(day.hours * 3600.0);
            Progress progress;
            generate_day(day, [&simulator, &progress, start, end](const TraceEvent &event) {
                simulator.deliver(event);
                progress.update(static_cast<double>(event.time - start) /
                                static_cast<double>(end - start));
            });
            simulator.advance_to(end);
        }
    }
    if (until > simulator.now()) simulator.advance_to(until);

    uint64_t refused_before = simulator.commands_refused();
    for (const std::string &line : options.commands) {
        printf("%s# %s\n", client_name(options.client), line.c_str());
        fflush(stdout);
        simulator.run_command(line);
        fflush(stdout);
    }
    bool commands_refused = simulator.commands_refused() > refused_before;
    if (options.interactive) run_prompt(&simulator);
    if (!options.quiet) simulator.report(stdout);
    if (bad > 0) fprintf(stderr, "authmng-sim: %ld bad trace line(s) skipped\n", bad);
    return (bad > 0 || commands_refused) ? 1 : 0;
}
