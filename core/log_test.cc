// The debug switches, their display, and the form of a debug line.
#include <cctype>
#include <string>

#include "support/fixture.h"

namespace authmng_test {
namespace {

using LogTest = AuthmngTest;

TEST_F(LogTest, DebugDisplayListsTheSwitchesThatAreOn) {
    authmng_show_debug_state();  // both off: nothing, not even the header
    g_authmng_lib_error_dbg = 1;
    authmng_show_debug_state();
    g_authmng_lib_event_dbg = 1;
    authmng_show_debug_state();
    EXPECT_EQ(take_cli(),
              "authmng debug:\r\nauthmng error debugging is on\n"
              "authmng debug:\r\nauthmng event debugging is on\nauthmng error debugging is on\n");
}

TEST_F(LogTest, DebugLinesCarryTheirSwitchFunctionAndPaddedLineNumber) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    authmng_auth_info_t info = event_record(4, 0);  // no such client
    authmng_notify_auth_info(&info);
    EXPECT_EQ(take_syslog(), "") << "switch off: no line";

    g_authmng_lib_error_dbg = 1;
    authmng_notify_auth_info(&info);
    std::string line = take_syslog();
    const std::string prefix =
        "7 UNKNOW_MODULE DEBUG 2: AUTHMNG_LIB_ERROR_DBG: [authmng_notify_auth_info line:";
    ASSERT_EQ(line.compare(0, prefix.size(), prefix), 0) << line;
    // The line number is left-aligned and padded with blanks to four.
    std::string number = line.substr(prefix.size(), 4);
    EXPECT_TRUE(isdigit(number[0]) && number.find_first_not_of("0123456789 ") == std::string::npos);
    EXPECT_EQ(line.substr(prefix.size() + 4), "] client(4) error\n");
    authmng_notify_auth_info(nullptr);
    EXPECT_NE(take_syslog().find("] auth_info == NULL.\n"), std::string::npos);

    g_authmng_lib_event_dbg = 1;
    info.client_type = AUTHMNG_CLIENT_WBA;
    authmng_notify_auth_info(&info);
    line = take_syslog();
    EXPECT_NE(line.find("7 UNKNOW_MODULE DEBUG 2: AUTHMNG_LIB_EVENT_DBG: [authmng_notify_auth_info "
                        "line:"),
              std::string::npos);
    EXPECT_NE(line.find("] client == AUTHMNG_CLIENT_WBA\n"), std::string::npos) << line;
}

TEST_F(LogTest, HealthMonitorFailuresAreErrorRecords) {
    authmng_host_ham_fail(1);
    EXPECT_LT(authmng_reg_ham(12, 34, 120, 5), 0);
    EXPECT_LT(authmng_nty_ham_reset(12, 34, 120, 5), 0);
    authmng_unreg_ham(12, 34, 120, 5);
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG HAM_MSG 3: pid 12 tid 34 register ham failed\n"
              "3 AUTHMNG HAM_MSG 3: failed to nty ham reset pid 12 tid 34\n"
              "3 AUTHMNG HAM_MSG 3: Failed to unreg ham, ret(-1).\n");
    authmng_host_ham_fail(0);
    EXPECT_EQ(authmng_reg_ham(12, 34, 120, 5) + authmng_nty_ham_reset(12, 34, 120, 5), 0);
    EXPECT_EQ(take_syslog(), "");
}

}  // namespace
}  // namespace authmng_test
