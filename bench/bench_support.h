// What the benchmark programs share: one library start per process in a
// private directory, the floor an event is compared with, and the runner
// that hands the rows to Google Benchmark or, for callgrind, runs one row a
// fixed number of times inside one named function.
#ifndef AUTHMNG_BENCH_SUPPORT_H
#define AUTHMNG_BENCH_SUPPORT_H

#include <cstddef>
#include <cstdint>
#include <string>

#include "authmng.h"

namespace authmng_bench {

// One measured operation.
struct Row {
    const char *name;
    void (*setup)();    // before each run of iterations; must be idempotent
    void (*prepare)();  // before each operation, not measured; may be null
    void (*op)();       // the measured operation
    int threads;        // 0: one thread; n: aggregate throughput of 1 and of n threads
};

// Starts the library as client_type with TMPDIR and the flash home in a
// fresh directory (removed at exit), TZ=UTC, the clock pinned to
// 2026-03-09 14:05:07 UTC and both debug switches off. Exits on failure.
void start_library(int32_t client_type);

// Full path of a file in the temporary directory of this process.
std::string private_path(const char *name);

// The floor of one event: a lock/unlock pair of a mutex made recursive by
// authmng_init_mtx around twelve 64-bit increments in a record of the
// live record's type. Nothing else.
void floor_event();

// Registers rows with Google Benchmark and runs them, or with
// --icount=<row> [--icount-n=<n>] runs that row's operation n times inside
// authmng_bench_icount_op (for valgrind --toggle-collect). Returns the exit
// status.
int run(int argc, char **argv, const Row *rows, std::size_t count);

// An event record with every time and flag zero.
authmng_auth_info_t blank_event(int32_t client_type, uint32_t event, uint32_t result);

}  // namespace authmng_bench

#endif
