// Each service check passes on the host stand-in and fails once the
// stand-in's matching service is made to fail.
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>

#include "authmng_host.h"
#include "checks.h"

namespace {

const port_check::Check *find(const char *name) {
    size_t count = 0;
    const port_check::Check *all = port_check::checks(&count);
    for (size_t i = 0; i < count; ++i) {
        if (strcmp(all[i].name, name) == 0) return &all[i];
    }
    return nullptr;
}

struct Fault {
    const char *check;
    void (*on)();
    void (*off)();
};

const Fault kFaults[] = {
    {"wall-clock", [] { authmng_host_clock_fail(1); }, [] { authmng_host_clock_fail(0); }},
    {"wall-clock", [] { authmng_host_clock_set(86400); }, [] { authmng_host_clock_real(); }},
    {"health-monitor", [] { authmng_host_ham_fail(1); }, [] { authmng_host_ham_fail(0); }},
    {"memory", [] { authmng_host_alloc_fail_after(0); }, [] { authmng_host_alloc_fail_after(-1); }},
    {"flash-home", [] { setenv("AUTHMNG_FLASH_HOME", "relative/flash", 1); },
     [] { setenv("AUTHMNG_FLASH_HOME", "/tmp", 1); }},
};

TEST(PortCheckTest, EachServiceCheckCatchesItsFault) {
    setenv("AUTHMNG_FLASH_HOME", "/tmp", 1);
    for (const Fault &fault : kFaults) {
        const port_check::Check *check = find(fault.check);
        ASSERT_NE(check, nullptr) << fault.check;
        EXPECT_EQ(check->run(), nullptr) << fault.check;
        fault.on();
        EXPECT_NE(check->run(), nullptr) << fault.check << " passed with its fault";
        fault.off();
    }
}

}  // namespace
