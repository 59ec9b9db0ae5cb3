// Host syslog: one line per call on stderr (or the stream set by the
// control API): "<severity> <module> <mnemonic> <cls>: <message>".
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "authmng_host.h"
#include "authmng_platform.h"

namespace {
std::atomic<FILE *> g_syslog_out{nullptr};
}

extern "C" void authmng_host_syslog_output(FILE *out) {
    g_syslog_out.store(out);
}

extern "C" void printk_syslog_ext(int severity, const char *module, const char *mnemonic, int cls,
                                  const char *fmt, ...) {
    char message[2048];
    va_list ap;
    va_start(ap, fmt);
    int n = vsnprintf(message, sizeof message, fmt, ap);
    va_end(ap);
    if (n < 0) return;
    size_t len = strlen(message);
    const char *end = (len > 0 && message[len - 1] == '\n') ? "" : "\n";
    FILE *out = g_syslog_out.load();
    if (out == nullptr) out = stderr;
    fprintf(out, "%d %s %s %d: %s%s", severity, module ? module : "", mnemonic ? mnemonic : "", cls,
            message, end);
    fflush(out);
}
