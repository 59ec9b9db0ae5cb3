// The configuration commands as an operator types them in a web-auth
// process, and the saved configuration they leave.
#include <vector>

#include "cli/cli_fixture.h"

namespace authmng_test {
namespace {

struct NumberCommand {
    const char *line;
    uint32_t *value;
    uint32_t lowest, highest, fallback;  // fallback: the default
};

const NumberCommand kNumberCommands[] = {
    {"authmanage user-escape when authentication-time", &g_authmng_check_auth_threshold, 1000,
     10000, 5000},
    {"authmanage user-escape when timeout-ratio", &g_authmng_check_ratio, 1, 100, 10},
    {"authmanage user-escape when redirect-time", &g_authmng_check_redirect_threshold, 1000, 10000,
     3000},
    {"authmanage user-escape time", &g_authmng_escape_time, 10, 240, 30},
    {"authmanage user-escape life", &g_authmng_escape_life, 10, 240, 30},
};

std::string with(const char *line, uint32_t n) {
    return std::string(line) + " " + std::to_string(n);
}

using ConfigCommandsTest = CliTest;

TEST_F(ConfigCommandsTest, NumbersWithinBoundsAndNegatedFormsWithoutNumber) {
    start_client(AUTHMNG_CLIENT_WBA);
    for (const NumberCommand &c : kNumberCommands) {
        SCOPED_TRACE(c.line);
        // The range of the refusal pins both bounds.
        expect_refused(with(c.line, c.highest + 1),
                       "(" + std::to_string(c.lowest) + " to " + std::to_string(c.highest) + ")");
        EXPECT_EQ(*c.value, c.fallback);
        EXPECT_EQ(exec(with(c.line, c.lowest)), 0);
        EXPECT_EQ(*c.value, c.lowest);
        expect_refused(c.line, "Incomplete command");
        expect_refused("no " + with(c.line, c.lowest), "Unknown word");
        EXPECT_EQ(exec(std::string("no ") + c.line), 0);
        EXPECT_EQ(*c.value, c.fallback);
    }
    expect_refused("authmanage user-escape enable now", "Unknown word \"now\"");
    expect_refused("no authmanage statistic", "Incomplete command: \"no authmanage statistic\"");
    EXPECT_EQ(g_authmng_check_open + g_authmng_statistic_enable, 1);

    // Enabling the escape keeps its baseline; disabling clears it.
    g_authmng_info_record = authmng_info_record_t{11, 12, 13, 14, 15, 1};
    EXPECT_EQ(exec("authmanage user-escape enable"), 0);
    EXPECT_EQ(g_authmng_check_open, 1);
    EXPECT_EQ(g_authmng_info_record.total_auth_time, 14u);
    EXPECT_EQ(exec("no authmanage user-escape enable"), 0);
    EXPECT_EQ(g_authmng_check_open, 0);
    const authmng_info_record_t &r = g_authmng_info_record;
    EXPECT_EQ(r.total_redirect_count + r.total_redirect_time + r.total_auth_count +
                  r.total_auth_time + r.total_auth_timeout_count + r.wrapped,
              0u);
}

// Lines typed in another order than the saved configuration lists them;
// each saved line shows its own value and runs as typed.
TEST_F(ConfigCommandsTest, SavedConfigurationHoldsChangedValuesInOrder) {
    start_client(AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(exec("authmanage user-escape time 30"), 0);
    EXPECT_EQ(saved_config(), "");
    const std::string expected =
        "authmanage user-escape enable\n"
        "authmanage user-escape when authentication-time 7000\n"
        "authmanage user-escape when timeout-ratio 25\n"
        "authmanage user-escape when redirect-time 4000\n"
        "authmanage user-escape time 31\n"
        "authmanage user-escape life 45\n"
        "no authmanage statistic enable\n";
    std::vector<std::string> lines;
    for (size_t at = 0, end; (end = expected.find('\n', at)) != std::string::npos; at = end + 1) {
        lines.push_back(expected.substr(at, end - at));
    }
    for (auto line = lines.rbegin(); line != lines.rend(); ++line) EXPECT_EQ(exec(*line), 0);
    EXPECT_EQ(saved_config(), expected);
    EXPECT_EQ(g_authmng_check_ratio, 25u);
    EXPECT_EQ(exec("authmanage statistic enable"), 0);
    EXPECT_EQ(saved_config(), expected.substr(0, expected.rfind("no ")));
}

}  // namespace
}  // namespace authmng_test
