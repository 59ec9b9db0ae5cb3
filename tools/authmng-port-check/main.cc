// authmng-port-check: checks the platform calls of this process (the host
// stand-in, or the port a device build links) against what the library
// relies on. One line per check; exit status 1 when any check fails.
#include <cstdio>
#include <cstring>

#include "checks.h"

namespace {

void usage(FILE *out) {
    fprintf(out,
            "usage: authmng-port-check [--list] [CHECK...]\n"
            "  runs every check, or the named ones; prints PASS or FAIL per check\n"
            "  and exits 1 when any check fails\n");
}

}  // namespace

int main(int argc, char **argv) {
    size_t count = 0;
    const port_check::Check *all = port_check::checks(&count);
    if (argc > 1 && strcmp(argv[1], "--list") == 0) {
        for (size_t i = 0; i < count; ++i) printf("%-18s %s\n", all[i].name, all[i].what);
        return 0;
    }
    for (int a = 1; a < argc; ++a) {
        bool known = false;
        for (size_t i = 0; i < count; ++i) known = known || strcmp(argv[a], all[i].name) == 0;
        if (!known) {
            fprintf(stderr, "authmng-port-check: no check named \"%s\"\n", argv[a]);
            usage(stderr);
            return 2;
        }
    }
    int failed = 0;
    int run = 0;
    for (size_t i = 0; i < count; ++i) {
        bool chosen = argc == 1;
        for (int a = 1; a < argc; ++a) chosen = chosen || strcmp(argv[a], all[i].name) == 0;
        if (!chosen) continue;
        ++run;
        const char *reason = all[i].run();
        if (reason == nullptr) {
            printf("PASS  %s\n", all[i].name);
        } else {
            printf("FAIL  %s: %s\n", all[i].name, reason);
            ++failed;
        }
        fflush(stdout);
    }
    printf("%d passed, %d failed\n", run - failed, failed);
    return failed == 0 ? 0 : 1;
}
