// Checks of the device services: time, flash home, memory, syslog, the
// command-line output, the debug registry and the health monitor.
#include <sys/syscall.h>
#include <unistd.h>

#include <cstdarg>
#include <cstdint>
#include <cstring>
#include <ctime>
#include <string>

#include "authmng.h"
#include "authmng_platform.h"
#include "capture.h"
#include "checks.h"

namespace port_check {
namespace {

constexpr uint64_t kYear2020 = 1577836800;  // 2020-01-01T00:00:00Z
constexpr int kFlashHomeSize = 108;         // the buffer the library passes
constexpr size_t kRowSize = 2000;           // a row buffer of the writers
constexpr int kHamPeriod = 120;             // what the timer thread registers
constexpr int kHamRetries = 5;

size_t count_lines(const char *text) {
    size_t lines = 0;
    for (const char *c = text; *c != '\0'; ++c) lines += *c == '\n';
    return lines;
}

uint8_t g_switch_a = 0;
uint8_t g_switch_b = 0;
authmng_debug_switch_t g_switches[] = {
    {&g_switch_a, "port check switch a"}, {&g_switch_b, "port check switch b"}, {nullptr, nullptr}};
void show_switches() {
    cli_printf("port check switches %u %u\n", g_switch_a, g_switch_b);
}

}  // namespace

const char *check_wall_clock() {
    uint64_t first = qx_time_get(QX_TIME_WALL_SECONDS);
    uint64_t second = qx_time_get(QX_TIME_WALL_SECONDS);
    if (first == QX_TIME_FAILED) return fail("qx_time_get(2) failed (all ones)");
    if (first < kYear2020)
        return fail("qx_time_get(2) = %llu, before 2020", (unsigned long long)first);
    if (second < first)
        return fail("qx_time_get(2) went back from %llu to %llu", (unsigned long long)first,
                    (unsigned long long)second);
    return nullptr;
}

const char *check_monotonic_clock() {
    struct timeval before = {0, 0};
    struct timeval after = {0, 0};
    if (qx_monotime(&before) != 0) return fail("qx_monotime failed");
    struct timespec pause = {1, 100 * 1000 * 1000};
    nanosleep(&pause, nullptr);
    if (qx_monotime(&after) != 0) return fail("qx_monotime failed on the second reading");
    int64_t elapsed = qx_timeval_to_sec(&after) - qx_timeval_to_sec(&before);
    if (elapsed < 1 || elapsed > 2) {
        return fail("1.1 s of sleep read as %lld s", static_cast<long long>(elapsed));
    }
    struct timeval odd = {5, 999999};
    if (qx_timeval_to_sec(&odd) != 5) return fail("qx_timeval_to_sec({5, 999999}) is not 5");
    return nullptr;
}

const char *check_flash_home() {
    char home[kFlashHomeSize + 8];
    memset(home, 0x5a, sizeof home);
    if (fs_get_flash_home(home, kFlashHomeSize) != 0) return fail("fs_get_flash_home failed");
    if (memchr(home, '\0', kFlashHomeSize) == nullptr) {
        return fail("the flash home is not terminated within %d bytes", kFlashHomeSize);
    }
    if (home[0] != '/') return fail("the flash home \"%s\" is not an absolute path", home);
    for (size_t i = kFlashHomeSize; i < sizeof home; ++i) {
        if (home[i] != 0x5a) return fail("fs_get_flash_home wrote past its buffer");
    }
    char tiny[4 + 8];
    memset(tiny, 0x5a, sizeof tiny);
    int result = fs_get_flash_home(tiny, 4);
    for (size_t i = 4; i < sizeof tiny; ++i) {
        if (tiny[i] != 0x5a) return fail("fs_get_flash_home wrote past a 4-byte buffer");
    }
    if (result == 0 && memchr(tiny, '\0', 4) == nullptr) {
        return fail("fs_get_flash_home succeeded with 4 bytes but left them unterminated");
    }
    return nullptr;
}

const char *check_memory() {
    auto *block = static_cast<unsigned char *>(authmng_port_zalloc(kRowSize));
    if (block == nullptr) return fail("authmng_port_zalloc(%zu) gave NULL", kRowSize);
    bool zero = true;
    for (size_t i = 0; i < kRowSize; ++i) zero = zero && block[i] == 0;
    authmng_port_free(block);
    return zero ? nullptr : fail("authmng_port_zalloc gave bytes that are not zero");
}

const char *check_syslog() {
    Capture capture;
    printk_syslog_ext(7, "UNKNOW_MODULE", "DEBUG", 2, "port check %s %d\n", "debug line", 1);
    printk_syslog_ext(3, "AUTHMNG", "HAM_MSG", 3, "port check %s", "100% record");
    std::string log = capture.log();
    static const char *const kExpected[] = {"UNKNOW_MODULE", "DEBUG",   "port check debug line 1",
                                            "AUTHMNG",       "HAM_MSG", "port check 100% record"};
    for (const char *text : kExpected) {
        if (log.find(text) == std::string::npos) return fail("no \"%s\" in the log lines", text);
    }
    if (count_lines(log.c_str()) != 2) {
        return fail("two calls gave %zu log lines, not 2", count_lines(log.c_str()));
    }
    return nullptr;
}

const char *check_cli_printf() {
    Capture capture;
    std::string row(1500, '.');
    cli_printf("%-6s|%5u|%s\n", "ab", 42u, "");
    cli_printf("%s\n", row.c_str());
    cli_printf("no line end");
    std::string expected = "ab    |   42|\n" + row + "\n" + "no line end";
    if (expected != capture.cli()) return fail("cli_printf did not deliver the text byte for byte");
    return nullptr;
}

const char *check_debug_registry() {
    int result = sys_add_debug("authmng-port-check", g_switches, show_switches, 0, 0, 0);
    return result == 0 ? nullptr : fail("sys_add_debug returned %d", result);
}

const char *check_health_monitor() {
    int pid = static_cast<int>(getpid());
    int tid = static_cast<int>(syscall(SYS_gettid));
    int result = ham_client_reg_thread_notify(pid, tid, kHamPeriod, kHamRetries);
    if (result < 0) return fail("ham_client_reg_thread_notify returned %d", result);
    result = ham_client_reset_thread_notify(pid, tid, kHamPeriod, kHamRetries);
    if (result < 0) return fail("ham_client_reset_thread_notify returned %d", result);
    result = ham_client_unreg_thread_notify(pid, tid, kHamPeriod, kHamRetries);
    if (result < 0) return fail("ham_client_unreg_thread_notify returned %d", result);
    return nullptr;
}

}  // namespace port_check
