// Replay of a recorded event stream (event_log.h) through the station
// mapper into the library, timed: the bridge's ingest rate.
#ifndef AUTHMNG_HOSTAPD_REPLAY_H
#define AUTHMNG_HOSTAPD_REPLAY_H

#include <cstdint>
#include <cstdio>
#include <string>

namespace authmng_hostapd {

struct ReplayResult {
    uint64_t lines = 0;      // lines of the file
    uint64_t bad_lines = 0;  // lines that were not a recorded entry
    uint64_t events = 0;     // event lines delivered to the mapper (all rounds)
    uint64_t malformed = 0;  // of which the parser refused
    uint64_t records = 0;    // event records handed to the library
    double seconds = 0;      // processing time, reading the file excluded
};

// Reads path and replays it rounds times (each round shifted in time past
// the previous one). false, with *error set, when the file cannot be read.
bool replay_file(const std::string &path, int rounds, ReplayResult *result, std::string *error);

void print_replay(FILE *out, const ReplayResult &result);

}  // namespace authmng_hostapd

#endif
