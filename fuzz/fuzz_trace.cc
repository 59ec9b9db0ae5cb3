// Lines of a simulator trace, one per input line, into one parser. A line
// is skipped, refused with a one-line reason, or an event: of a known kind,
// at a time from the previous event's up to the horizon, and written back as
// a trace line (times in 1970-2099; not when the line would end in a CR) it
// parses into the same event again.
#include <ctime>

#include "fuzz_support.h"
#include "trace.h"

using namespace authmng_fuzz;
using authmng_sim::Category;
using authmng_sim::ParseResult;
using authmng_sim::TraceEvent;
using authmng_sim::TraceParser;

namespace {

constexpr size_t kMaxLine = 600;
constexpr int64_t kTraceStart = 1773014400;  // 2026-03-09T00:00:00 UTC

// The time, kind, and the record (or command line) of the kind's category.
bool same_event(const TraceEvent &a, const TraceEvent &b) {
    if (a.time != b.time || a.kind != b.kind) return false;
    switch (authmng_sim::kind_info(a.kind).category) {
        case Category::Auth:
            return memcmp(&a.info, &b.info, sizeof a.info) == 0;
        case Category::Redirect:
            return memcmp(&a.redirect, &b.redirect, sizeof a.redirect) == 0;
        case Category::StationMove:
            return memcmp(&a.move, &b.move, sizeof a.move) == 0;
        case Category::EscapeCheck:
            return memcmp(&a.totals, &b.totals, sizeof a.totals) == 0;
        case Category::CppSample:
            return a.cpp.value == b.cpp.value;
        case Category::Command:
            return a.command == b.command;
    }
    return false;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    setenv("TZ", "UTC", 1);
    tzset();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    int64_t previous = (in.take<uint8_t>() & 1) ? kTraceStart : 0;
    TraceParser parser(previous);
    TraceEvent event, again;
    std::string error;
    bool after_event = true;  // a refused line may have moved the time on unseen
    for (Steps steps(in); steps.next();) {
        const std::string line = in.line(kMaxLine);
        error.clear();
        const ParseResult result = parser.parse(line.c_str(), &event, &error);
        if (result == ParseResult::Skipped) continue;
        if (result == ParseResult::Error) {
            FUZZ_CHECK(!error.empty() && error.find('\n') == std::string::npos);
            after_event = false;
            continue;
        }
        FUZZ_CHECK(result == ParseResult::Event && error.empty());
        FUZZ_CHECK(event.kind < authmng_sim::kind_count());
        FUZZ_CHECK(event.time >= previous && event.time <= authmng_sim::kLatestTime);
        FUZZ_CHECK(previous == 0 || !after_event ||
                   event.time - previous <= authmng_sim::kLongestStep);
        previous = event.time, after_event = true;
        if (event.time < 0) continue;  // the writer serves times from 1970 on
        const std::string text = authmng_sim::format_event(event);
        if (text.back() == '\r') continue;  // read back, that is a line end (CR LF)
        TraceParser fresh(0);
        FUZZ_CHECK(fresh.parse(text.c_str(), &again, &error) == ParseResult::Event);
        FUZZ_CHECK(same_event(event, again));
    }
    return 0;
}
