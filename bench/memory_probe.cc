// Memory of an 802.1X process: the heap each queued abnormal record holds,
// and the peak resident memory of the process before and after it queues
// 10,000 records. Prints "name value" lines for scripts/bench.sh.
#include <malloc.h>

#include <cstdio>
#include <cstring>

#include "authmng.h"
#include "bench/bench_support.h"

using namespace authmng_bench;

namespace {

constexpr uint32_t kRecords = 10000;

// A field of /proc/self/status in kB, or -1.
long status_kb(const char *field) {
    FILE *f = fopen("/proc/self/status", "r");
    if (f == nullptr) return -1;
    char line[256];
    long value = -1;
    size_t length = strlen(field);
    while (fgets(line, sizeof line, f) != nullptr) {
        if (strncmp(line, field, length) == 0 && line[length] == ':') {
            sscanf(line + length + 1, "%ld", &value);
            break;
        }
    }
    fclose(f);
    return value;
}

}  // namespace

int main() {
    start_library(AUTHMNG_CLIENT_DOT1X);
    g_authmng_abnormal_record_max = kRecords;
    long hwm_before = status_kb("VmHWM");
    struct mallinfo2 before = mallinfo2();

    authmng_auth_info_t e = blank_event(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
    for (uint32_t i = 0; i < kRecords; ++i) {
        snprintf(e.username, sizeof e.username, "user%05u@corp.example.com", i);
        e.auth_time = 100 + i;
        authmng_record_abnormal_auth(&e);
    }

    struct mallinfo2 after = mallinfo2();
    long hwm_after = status_kb("VmHWM");
    void *first = g_authmng_auth_abnormal_record_list.next;
    if (g_authmng_abnormal_record_num != kRecords ||
        first == &g_authmng_auth_abnormal_record_list) {
        fprintf(stderr, "memory_probe: %u records queued, %u expected\n",
                g_authmng_abnormal_record_num, kRecords);
        return 2;
    }
    double heap_per_record =
        static_cast<double>(after.uordblks - before.uordblks) / static_cast<double>(kRecords);
    printf("record_bytes %zu\n", sizeof(authmng_auth_info_t));
    printf("node_bytes %zu\n", sizeof(authmng_abnormal_node_t));
    printf("node_usable_bytes %zu\n", malloc_usable_size(first));
    printf("heap_per_record_bytes %.1f\n", heap_per_record);
    printf("records %u\n", kRecords);
    printf("peak_rss_before_kb %ld\n", hwm_before);
    printf("peak_rss_kb %ld\n", hwm_after);
    return 0;
}
