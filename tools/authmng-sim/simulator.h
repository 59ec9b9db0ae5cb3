// The simulator's daemon: starts the library as one client with its storage
// under an output directory, runs the library's timer on virtual time, and
// delivers trace events and command lines as the daemon would.
#ifndef AUTHMNG_SIM_SIMULATOR_H
#define AUTHMNG_SIM_SIMULATOR_H

#include <cstdint>
#include <cstdio>
#include <string>

#include "trace.h"

namespace authmng_sim {

// The words an operator types to reach the client's own show and debug
// groups, e.g. "show dot1x authmng statistic".
const char *client_name(int32_t client_type);

class Simulator {
public:
    // Creates <out>/tmp and <out>/flash, points TMPDIR and the flash home at
    // them, pins the clock at start_time and starts the library. false, with
    // *error set, when that fails.
    bool start(int32_t client_type, const std::string &out_dir, int64_t start_time,
               std::string *error);

    // Runs one timer tick for every whole minute from the last tick up to
    // time, each with the clock pinned at its minute, then pins the clock at
    // time. Time never goes back. A run of minutes where nothing is due
    // passes at once, leaving the library as its ticks would.
    void advance_to(int64_t time);

    // Advances to the event's time and hands it to the library.
    void deliver(const TraceEvent &event);

    // Runs one command line at the current virtual time; 0 handled, -1
    // refused.
    int run_command(const std::string &line);

    int64_t now() const { return now_; }
    int64_t start_time() const { return start_; }
    int64_t ticks() const { return ticks_; }
    uint64_t events(std::size_t kind) const { return kind < kKindCount ? events_[kind] : 0; }
    uint64_t commands_run() const { return commands_run_; }
    uint64_t commands_refused() const { return commands_refused_; }
    const std::string &out_dir() const { return out_dir_; }

    // What the run did: time span, events by kind, commands, files written.
    void report(FILE *out) const;

private:
    void pass_idle_ticks(int64_t count);

    int32_t client_ = AUTHMNG_CLIENT_DOT1X;
    std::string out_dir_;
    int64_t start_ = 0;
    int64_t now_ = 0;
    int64_t next_tick_ = 0;
    int64_t ticks_ = 0;
    uint64_t events_[kKindCount] = {};
    uint64_t commands_run_ = 0;
    uint64_t commands_refused_ = 0;
};

// Points of the client's own groups in the simulated command line.
constexpr int kSimDebugPoint = 100;
constexpr int kSimShowPoint = 200;

}  // namespace authmng_sim

#endif
