// The simulator's trace format: one event per line,
//
//   <time> <kind> [field=value ...]
//
// <time> is YYYY-MM-DDTHH:MM:SS (local time), @<epoch seconds>, or +<seconds>
// after the previous line (a refused line with a valid time counts as one).
// Blank lines and lines starting with '#' are skipped. See README.md for the
// kinds and their fields.
#ifndef AUTHMNG_SIM_TRACE_H
#define AUTHMNG_SIM_TRACE_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "authmng.h"

namespace authmng_sim {

enum class Category { Auth, Redirect, StationMove, EscapeCheck, Command, CppSample };

// One kind of trace line: its name and what it delivers.
struct KindInfo {
    const char *name;
    Category category;
    int32_t client_type;  // Auth: the record's client_type
    uint32_t event;       // Auth: the record's event
};

constexpr std::size_t kKindCount = 17;
const KindInfo &kind_info(std::size_t index);
std::size_t kind_count();

// The cpp client's counter at a moment.
struct CppReport {
    uint32_t value;
};

struct TraceEvent {
    int64_t time = 0;
    std::size_t kind = 0;  // index into the kind table
    authmng_auth_info_t info;
    authmng_rd_info_t redirect;
    authmng_stamove_info_t move;
    authmng_check_input_t totals;
    std::string command;
    CppReport cpp;
};

enum class ParseResult { Skipped, Event, Error };

class TraceParser {
public:
    // previous_time: the time that a first "+N" counts from; 0 when the
    // first line names the start (it may then be any time to the horizon).
    explicit TraceParser(int64_t previous_time) : previous_(previous_time) {}

    // Parses one line (without or with its line end). On Error, *error says
    // what is wrong, naming the field when one is at fault.
    ParseResult parse(const char *line, TraceEvent *event, std::string *error);

private:
    int64_t previous_;
    std::string words_;  // the line being split, reused between lines
};

// The text form of one event, the inverse of parse (used to write a
// built-in day out as a trace).
std::string format_event(const TraceEvent &event);

// The horizon of a trace line: no later than 2099-12-31T23:59:59 UTC (far
// past any device's service life and past 2038, and every time plus a step
// stays well inside 64 bits), and no more than 366 days after the previous
// line or the start. Idle minutes pass at once, but the interval writes of a
// longer jump (one every 30 minutes by default) would take the simulator
// many seconds; such a jump is a mistyped time.
constexpr int64_t kLatestTime = 4102444799;
constexpr int64_t kLongestStep = 366 * 86400;

// Local time of an epoch as YYYY-MM-DDTHH:MM:SS; parse_time accepts it.
std::string format_time(int64_t epoch);
// False for no time and for a time past kLatestTime.
bool parse_time(const char *text, int64_t previous, int64_t *epoch);

}  // namespace authmng_sim

#endif
