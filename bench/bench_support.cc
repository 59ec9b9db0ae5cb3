#include "bench/bench_support.h"

#include <benchmark/benchmark.h>
#include <ftw.h>
#include <pthread.h>
#include <sys/stat.h>

#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>
#include <thread>
#include <vector>

#include "authmng_host.h"

// valgrind --tool=callgrind --toggle-collect=authmng_bench_icount_op counts
// the instructions of the operations run through this function only.
extern "C" __attribute__((noinline)) void authmng_bench_icount_op(void (*op)()) {
    op();
    __asm__ volatile("" ::: "memory");
}

namespace authmng_bench {

// The floor's mutex and record: external names, so the compiler must keep
// every increment a real store before the unlock.
pthread_mutex_t g_floor_mutex;
authmng_dot1x_stat_t g_floor_record;

namespace {

// 2026-03-09 14:05:07 UTC: away from the daily write hour.
constexpr int64_t kPinnedClock = 1773065107;

std::string g_root;

int remove_entry(const char *path, const struct stat *, int, struct FTW *) {
    return remove(path);
}

void remove_root() {
    if (!g_root.empty()) nftw(g_root.c_str(), remove_entry, 16, FTW_DEPTH | FTW_PHYS);
}

[[noreturn]] void fail(const char *what) {
    fprintf(stderr, "bench: %s\n", what);
    exit(2);
}

// Events per round of a threaded row, shared out among its threads.
constexpr long kEventsPerRound = 200000;

// One round: the threads start together and the round's time runs from
// their start to the end of the last one, so the figure is the aggregate
// throughput (all events over the wall time), which an unfair lock cannot
// flatter by letting one thread finish early.
double timed_round(const Row *row, int threads) {
    std::atomic<int> ready{0};
    std::atomic<bool> go{false};
    std::vector<std::thread> pool;
    for (int t = 0; t < threads; ++t) {
        pool.emplace_back([row, threads, &ready, &go] {
            ready.fetch_add(1);
            while (!go.load()) {
            }
            for (long i = 0; i < kEventsPerRound / threads; ++i) row->op();
        });
    }
    while (ready.load() < threads) {
    }
    auto start = std::chrono::steady_clock::now();
    go.store(true);
    for (std::thread &t : pool) t.join();
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

void register_threads(const Row *row, int threads) {
    std::string name = std::string(row->name) + "/threads:" + std::to_string(threads);
    benchmark::RegisterBenchmark(name.c_str(), [row, threads](benchmark::State &state) {
        row->setup();
        for (auto _ : state) {
            state.SetIterationTime(timed_round(row, threads));
        }
        state.SetItemsProcessed(state.iterations() * (kEventsPerRound / threads * threads));
    })->UseManualTime();
}

void register_row(const Row *row) {
    if (row->threads > 0) {
        register_threads(row, 1);
        register_threads(row, row->threads);
        return;
    }
    benchmark::RegisterBenchmark(row->name, [row](benchmark::State &state) {
        row->setup();
        for (auto _ : state) {
            if (row->prepare != nullptr) {
                state.PauseTiming();
                row->prepare();
                state.ResumeTiming();
            }
            row->op();
        }
        state.SetItemsProcessed(state.iterations());
    });
}

int run_icount(const Row &row, long n) {
    row.setup();
    for (long i = 0; i < n; ++i) {
        if (row.prepare != nullptr) row.prepare();
        authmng_bench_icount_op(row.op);
    }
    printf("%s %ld\n", row.name, n);
    return 0;
}

}  // namespace

void start_library(int32_t client_type) {
    char pattern[] = "/tmp/authmng-bench-XXXXXX";
    if (mkdtemp(pattern) == nullptr) fail("no temporary directory");
    g_root = pattern;
    atexit(remove_root);
    std::string tmp = g_root + "/tmp";
    std::string flash = g_root + "/flash";
    if (mkdir(tmp.c_str(), 0777) != 0 || mkdir(flash.c_str(), 0777) != 0) fail("mkdir");
    setenv("TMPDIR", tmp.c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", flash.c_str(), 1);
    setenv("TZ", "UTC", 1);
    tzset();
    authmng_host_clock_set(kPinnedClock);
    // Start-up's error records go to stderr; nothing else is logged with
    // debugging off.
    authmng_reg_t reg = {client_type, 100, 101};
    if (authmng_init(&reg) != 0) fail("authmng_init failed");
    g_authmng_lib_event_dbg = 0;
    g_authmng_lib_error_dbg = 0;
    authmng_init_mtx(&g_floor_mutex);
}

std::string private_path(const char *name) {
    return g_root + "/tmp/" + name;
}

void floor_event() {
    pthread_mutex_lock(&g_floor_mutex);
    authmng_dot1x_stat_t &r = g_floor_record;
    ++r.auth_total;
    ++r.auth_result[0];
    for (authmng_range_t &range : r.range) ++range.count[2];
    ++r.over3s_total;
    ++r.over3s_sta;
    ++r.current_online_number;
    benchmark::ClobberMemory();
    pthread_mutex_unlock(&g_floor_mutex);
}

authmng_auth_info_t blank_event(int32_t client_type, uint32_t event, uint32_t result) {
    authmng_auth_info_t info;
    memset(&info, 0, sizeof info);
    info.client_type = client_type;
    info.event = event;
    info.result = result;
    return info;
}

int run(int argc, char **argv, const Row *rows, std::size_t count) {
    const char *icount = nullptr;
    long n = 10000;
    for (int i = 1; i < argc; ++i) {
        if (strncmp(argv[i], "--icount=", 9) == 0) icount = argv[i] + 9;
        if (strncmp(argv[i], "--icount-n=", 11) == 0) n = atol(argv[i] + 11);
    }
    if (icount != nullptr) {
        for (std::size_t i = 0; i < count; ++i) {
            if (strcmp(rows[i].name, icount) == 0) return run_icount(rows[i], n);
        }
        fprintf(stderr, "bench: no row %s\n", icount);
        return 2;
    }
    for (std::size_t i = 0; i < count; ++i) register_row(&rows[i]);
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv)) return 1;
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}

}  // namespace authmng_bench
