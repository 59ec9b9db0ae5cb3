// The host stand-in itself, which every other test and the simulator stand
// on: the real clock, the allocation switch and its counter, the debug
// registry, the health monitor, and the command line's bindings, listings
// and refusals on a tree of its own.
#include <cstdlib>
#include <ctime>
#include <string>

#include "authmng_platform.h"
#include "cli/cli_fixture.h"

namespace authmng_test {
namespace {

void no_show() {}

TEST(HostStandInTest, ClockAllocationsDebugRegistryAndHealthMonitor) {
    authmng_host_clock_set(5);
    EXPECT_EQ(qx_time_get(QX_TIME_WALL_SECONDS), 5u);
    authmng_host_clock_real();
    uint64_t now = static_cast<uint64_t>(time(nullptr));
    uint64_t seen = qx_time_get(QX_TIME_WALL_SECONDS);
    EXPECT_TRUE(seen >= now && seen <= now + 1) << seen;
    // The timer's keep-alive counts in the monotonic seconds of the device.
    struct timespec mono;
    clock_gettime(CLOCK_MONOTONIC, &mono);
    EXPECT_LE(authmng_get_clock() - mono.tv_sec, 1);
    EXPECT_GE(authmng_get_clock(), mono.tv_sec);

    // Every call counts, failed ones too: the fault sweep steps through
    // the failure points by this count.
    long before = authmng_host_allocations();
    authmng_host_alloc_fail_after(1);
    void *first = authmng_port_zalloc(8);
    bool failing = authmng_port_zalloc(8) == nullptr && authmng_port_zalloc(8) == nullptr;
    authmng_host_alloc_fail_after(-1);
    void *again = authmng_port_zalloc(8);
    EXPECT_TRUE(first != nullptr && failing && again != nullptr);
    EXPECT_EQ(authmng_host_allocations(), before + 4);
    authmng_port_free(first), authmng_port_free(again);

    authmng_debug_switch_t table[1] = {};
    EXPECT_EQ(sys_add_debug(nullptr, table, no_show, 0, 0, 0), -1);
    EXPECT_EQ(sys_add_debug("first", table, no_show, 0, 0, 0), 0);
    EXPECT_EQ(sys_add_debug("second", table, no_show, 0, 0, 0), 0);
    const char *latest = nullptr;
    EXPECT_EQ(authmng_host_debug_registrations(&latest), 2);
    EXPECT_STREQ(latest, "second");

    auto ham_calls = [] {
        return ham_client_reg_thread_notify(1, 2, 3, 4) * 100 +
               ham_client_reset_thread_notify(1, 2, 3, 4) * 10 +
               ham_client_unreg_thread_notify(1, 2, 3, 4);
    };
    EXPECT_EQ(ham_calls(), 0);
    authmng_host_ham_fail(1);
    EXPECT_EQ(ham_calls(), -111);
    authmng_host_ham_fail(0);
    EXPECT_EQ(authmng_host_ham_registrations() * 10 + authmng_host_ham_resets(), 11);
}

// Each tree's end of line counts its runs.
int g_ran = 0;
int g_ran_long = 0;
template <int *runs>
void count_run(cli_parse_state *) {
    ++*runs;
}

// A tree of its own at point 0: "zero set <1-9>".
constexpr cli_eol_arg_t kEol = {1, count_run<&g_ran>, nullptr, nullptr};
const cli_parse_node zero_eol = {eol_action, &kEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kDigit = {"digit", 1, 9, 0, 0, CLI_SLOT_NUMBER, 0};
cli_parse_node zero_digit = {common_number_action, &kDigit, &zero_eol, &Tno_alt};
constexpr cli_keyword_arg_t kSet = {"set", "set help", "", 0, 0, 1, CLI_KW_PLAIN, 0, 0};
cli_parse_node zero_set = {common_keyword_action, &kSet, &zero_digit, &Tno_alt};

// "<5-9>" behind a longer prefix; its alternate is a node without action.
constexpr cli_eol_arg_t kLongEol = {1, count_run<&g_ran_long>, nullptr, nullptr};
const cli_parse_node long_eol = {eol_action, &kLongEol, &Tno_alt, &Tno_alt};
constexpr cli_number_arg_t kHighDigit = {"high digit", 5, 9, 0, 0, CLI_SLOT_NUMBER, 0};
const cli_parse_node no_action = {nullptr, nullptr, nullptr, nullptr};
cli_parse_node long_digit = {common_number_action, &kHighDigit, &long_eol, &no_action};

using HostCommandLineTest = CliTest;

TEST_F(HostCommandLineTest, BindingsListingsAndRefusals) {
    ASSERT_EQ(authmng_host_cli_bind(28, "cfg"), 0);  // the empty prefix no longer leads anywhere
    auto said = [this](const std::string &line) {
        take_cli();
        int result = authmng_host_cli_exec(line.c_str());
        return std::to_string(result) + " " + take_cli();
    };
    EXPECT_EQ(said("?"), "-1 % No commands\n");
    EXPECT_EQ(said("no"), "-1 % Incomplete command: \"no\"\n");
    EXPECT_EQ(said(std::string(600, 'x')), "-1 % Line too long\n");

    ASSERT_EQ(authmng_host_cli_bind(0, "zero"), 0);
    ASSERT_EQ(cli_add_command(0, &zero_set, "zero tree"), 0);
    EXPECT_EQ(said("zero set 4"), "0 ");
    EXPECT_EQ(said("?"), "0   zero                  zero tree\n");  // the one bound word
    EXPECT_EQ(g_ran, 1);
    EXPECT_EQ(said("zero set"), "-1 % Incomplete command: \"zero set\"\n");
    EXPECT_EQ(said("zero set x"), "-1 % Unknown word \"x\" (a number 1 to 9 is expected)\n");

    char buf[64];
    EXPECT_EQ(authmng_host_cli_complete(nullptr, "z", buf, sizeof buf), 1);
    EXPECT_STREQ(buf, "zero\n");

    // Four bound so far: 28 more fit, then the table is full; a bound
    // point may still be bound again.
    for (int point = 1000; point < 1028; ++point) {
        EXPECT_EQ(authmng_host_cli_bind(point, "p"), 0) << point;
    }
    EXPECT_EQ(authmng_host_cli_bind(2000, "p"), -1);
    EXPECT_EQ(authmng_host_cli_bind(0, "set nought"), 0);
    EXPECT_EQ(said("set nought set 9"), "0 ");
    // A line that only begins a prefix does not reach the group behind it.
    EXPECT_EQ(said("set"), "-1 % Unknown word \"set\"\n");
    EXPECT_EQ(authmng_host_cli_group_at(authmng_host_cli_groups(), nullptr, nullptr), -1);
    // Of two prefixes that take a line, the longer is tried first, though
    // bound later; when its walk ends on a node without action, the shorter
    // one still gets the line.
    ASSERT_EQ(authmng_host_cli_bind(0, "set"), 0);
    ASSERT_EQ(authmng_host_cli_bind(1001, "set set"), 0);
    ASSERT_EQ(cli_add_command(1001, &long_digit, "longer"), 0);
    EXPECT_EQ(said("set set 5"), "0 ");
    EXPECT_EQ(said("set set 4"), "0 ");
    EXPECT_EQ(g_ran_long, 1);
    EXPECT_EQ(g_ran, 3);
    // A group behind the empty prefix that begins with a number; the port
    // check's runner refuses an overlong line as the command line does.
    ASSERT_EQ(authmng_host_cli_bind(1000, ""), 0);
    ASSERT_EQ(cli_add_command(1000, &zero_digit, "digits"), 0);
    EXPECT_EQ(said("x"), "-1 % Unknown word \"x\" (a number 1 to 9 is expected)\n");
    EXPECT_EQ(authmng_port_check_exec(0, std::string(600, 'x').c_str()), -1);
}

}  // namespace
}  // namespace authmng_test
