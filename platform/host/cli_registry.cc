// Host command-line registry: groups added by the library, the words bound
// to attachment points, and the output stream of cli_printf.
#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <mutex>

#include "authmng_host.h"
#include "cli_host.h"

namespace authmng_host {
namespace {

std::mutex g_mutex;
Group g_groups[kMaxGroups];
int g_group_count = 0;
Binding g_bindings[kMaxBindings] = {
    {6, "show"},
    {17, "debug"},
    {28, ""},
};
int g_binding_count = 3;
std::atomic<FILE *> g_cli_out{nullptr};

}  // namespace

int group_count() {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_group_count;
}

const Group *group_at(int index) {
    std::lock_guard<std::mutex> lock(g_mutex);
    return (index >= 0 && index < g_group_count) ? &g_groups[index] : nullptr;
}

int binding_count() {
    std::lock_guard<std::mutex> lock(g_mutex);
    return g_binding_count;
}

const Binding *binding_at(int index) {
    std::lock_guard<std::mutex> lock(g_mutex);
    return (index >= 0 && index < g_binding_count) ? &g_bindings[index] : nullptr;
}

FILE *cli_stream() {
    FILE *out = g_cli_out.load();
    return out != nullptr ? out : stdout;
}

}  // namespace authmng_host

using namespace authmng_host;

extern "C" int cli_add_command(int point, cli_parse_node *group, const char *name) {
    std::lock_guard<std::mutex> lock(g_mutex);
    if (group == nullptr || g_group_count >= kMaxGroups) return -1;
    g_groups[g_group_count++] = Group{point, group, name};
    return 0;
}

extern "C" int cli_printf(const char *fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    int n = vfprintf(cli_stream(), fmt, ap);
    va_end(ap);
    return n;
}

extern "C" void authmng_host_cli_output(FILE *out) {
    g_cli_out.store(out);
}

extern "C" int authmng_host_cli_groups(void) {
    return group_count();
}

extern "C" int authmng_host_cli_group_at(int index, int *point, const char **name) {
    const Group *g = group_at(index);
    if (g == nullptr) return -1;
    if (point != nullptr) *point = g->point;
    if (name != nullptr) *name = g->name;
    return 0;
}

extern "C" int authmng_host_cli_bind(int point, const char *prefix) {
    if (prefix == nullptr || strlen(prefix) >= sizeof(Binding::prefix)) return -1;
    std::lock_guard<std::mutex> lock(g_mutex);
    for (int i = 0; i < g_binding_count; ++i) {
        if (g_bindings[i].point == point) {
            snprintf(g_bindings[i].prefix, sizeof g_bindings[i].prefix, "%s", prefix);
            return 0;
        }
    }
    if (g_binding_count >= kMaxBindings) return -1;
    g_bindings[g_binding_count].point = point;
    snprintf(g_bindings[g_binding_count].prefix, sizeof g_bindings[g_binding_count].prefix, "%s",
             prefix);
    ++g_binding_count;
    return 0;
}
