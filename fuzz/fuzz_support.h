// Shared by the fuzz targets: a sandbox for the library's two storage
// areas, a started client whose timer never writes on its own, a reader of
// the fuzzer's bytes, and the checks that turn a broken invariant into a
// reported crash.
#ifndef AUTHMNG_FUZZ_FUZZ_SUPPORT_H
#define AUTHMNG_FUZZ_FUZZ_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include "authmng.h"
#include "authmng_host.h"

// A broken invariant: print it and abort, so libFuzzer keeps the input.
#define FUZZ_CHECK(cond)                                                                 \
    do {                                                                                 \
        if (!(cond)) {                                                                   \
            fprintf(stderr, "%s:%d: invariant broken: %s\n", __FILE__, __LINE__, #cond); \
            abort();                                                                     \
        }                                                                                \
    } while (0)

namespace authmng_fuzz {

// The clock every input starts from: 2026-03-09 14:05:07 UTC.
constexpr int64_t kFuzzClock = 1773065107;

// The fuzzer's bytes, read from the front; an exhausted input reads zeros.
class Input {
public:
    Input(const uint8_t *data, size_t size) : data_(data), left_(size) {}
    bool empty() const { return left_ == 0; }

    template <typename T>
    T take() {
        T value{};
        bytes(&value, sizeof value);
        return value;
    }
    // A value below n (n > 0), from as few bytes as n needs.
    uint32_t below(uint32_t n) {
        uint32_t raw = n <= 0x100     ? take<uint8_t>()
                       : n <= 0x10000 ? take<uint16_t>()
                                      : take<uint32_t>();
        return raw % n;
    }
    // Fills out with up to size bytes, zeros after the input's end.
    void bytes(void *out, size_t size) {
        size_t n = size < left_ ? size : left_;
        memcpy(out, data_, n);
        memset(static_cast<uint8_t *>(out) + n, 0, size - n);
        data_ += n, left_ -= n;
    }
    // Text up to a newline (not included) or max characters; never holds a
    // zero byte.
    std::string line(size_t max) {
        std::string text;
        while (left_ > 0 && text.size() < max) {
            char c = static_cast<char>(*data_++);
            --left_;
            if (c == '\n') break;
            text.push_back(c == '\0' ? ' ' : c);
        }
        return text;
    }

private:
    const uint8_t *data_;
    size_t left_;
};

// Points a fresh TMPDIR and flash home (removed at exit) at the library,
// TZ=UTC, the clock pinned, cli and syslog output discarded; stops the
// timer's schedule from ever coming due (the fuzzer owns every write) and
// starts the client. Aborts when start-up fails.
void start_client(int32_t client, int32_t debug_mode = 100, int32_t show_mode = 200);
const std::string &sandbox();

// The stream that takes the output nobody reads.
FILE *discard();

// Where capture_cli collects: one stream and one buffer kept for the whole
// run, so a capture allocates nothing once the buffer has grown.
FILE *capture_begin();
const std::string &capture_end();

// What the calls of f printed through cli_printf; valid up to the next
// capture.
template <typename F>
const std::string &capture_cli(F &&f) {
    authmng_host_cli_output(capture_begin());
    f();
    authmng_host_cli_output(discard());
    return capture_end();
}

// How much one input may do. A step that prints a display, dumps or writes
// a file costs a hundred cheap ones, so an input runs at most kMaxSteps
// steps (fewer where most steps write a file), of which at most kMaxHeavySteps heavy ones (a heavy
// step past that is left out); the rest of a longer input is not used. Every input then finishes in
// well under a millisecond, and the state a long run builds up comes from steps that set it
// directly (e.g. counters at their limits).
class Steps {
public:
    static constexpr int kMaxSteps = 48;
    static constexpr int kMaxHeavySteps = 1;

    explicit Steps(const Input &in, int max_steps = kMaxSteps) : in_(in), max_(max_steps) {}
    bool next() { return !in_.empty() && steps_++ < max_; }
    bool heavy() { return heavy_++ < kMaxHeavySteps; }

private:
    const Input &in_;
    const int max_;
    int steps_ = 0, heavy_ = 0;
};

// The valid codes of a daemon's event records: 0 to count - 1 each.
struct EventCodes {
    uint32_t events, results, offline_reasons;
};

// An event record from a few bytes of input. Most of the time small codes
// (each one past its range now and then), a client type of 1 to 3, times up
// to about 10 s and a short user name; the shape bits ask for any 32-bit
// codes (0x01), any client type (0x02), any 32-bit times (0x04), and a user
// name that fills its field without a terminator (0x40). User names never
// hold a comma or a line end.
authmng_auth_info_t read_event(Input &in, uint8_t shape, const EventCodes &codes);

size_t count_of(const std::string &text, char c);

// The tuning values an intake target draws from its input: abnormal
// threshold, list cap, master switch, debug switches, the clock and whether
// it fails. Returns whether the clock now fails.
bool tune(Input &in);
// The file from byte offset on ("" when missing).
std::string read_file(const std::string &path, long offset = 0);
long file_size(const std::string &path);

}  // namespace authmng_fuzz

#endif
