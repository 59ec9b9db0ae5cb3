// Internal to the host stand-in: the command-line registry shared by the
// registry and the parse framework.
#ifndef AUTHMNG_PLATFORM_HOST_CLI_HOST_H
#define AUTHMNG_PLATFORM_HOST_CLI_HOST_H

#include <cstdio>

#include "authmng_platform.h"

namespace authmng_host {

constexpr int kMaxGroups = 32;
constexpr int kMaxBindings = 32;

struct Group {
    int point;
    cli_parse_node *group;
    const char *name;
};

struct Binding {
    int point;
    char prefix[128];
};

// Snapshot accessors; the registry is written at start-up and read by the
// command-line thread.
int group_count();
const Group *group_at(int index);
int binding_count();
const Binding *binding_at(int index);

// The stream cli_printf writes to (stdout by default).
FILE *cli_stream();

}  // namespace authmng_host

#endif
