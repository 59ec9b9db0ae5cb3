// The debug commands of the two daemons as an operator types them: the
// debug switches, the run-time tuning values, clear-statistic and the
// summary.
#include "authmng_platform.h"
#include "cli/cli_fixture.h"
#include "core/lock.h"

namespace authmng_test {
namespace {

using DebugCommandsTest = CliTest;

TEST_F(DebugCommandsTest, SwitchesFollowEventAndErrorAndTheirNegation) {
    start_client(AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(exec("debug authmng event"), 0);
    EXPECT_EQ(exec("debug authmng error"), 0);
    EXPECT_EQ(exec("no debug authmng event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg, 0);
    EXPECT_EQ(g_authmng_lib_error_dbg, 1);
    // The escape debug group of the web-auth process drives the same switches.
    EXPECT_EQ(exec("no debug authmanage error"), 0);
    EXPECT_EQ(exec("debug authmanage event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg, 1);
    EXPECT_EQ(g_authmng_lib_error_dbg, 0);
    EXPECT_EQ(take_cli(), "");
    expect_refused("debug authmng event now", "Unknown word \"now\"");
}

TEST_F(DebugCommandsTest, TuningValuesAndClearStatisticInWebauthProcess) {
    start_client(AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(exec("debug authmng abnormal-value 2500"), 0);
    EXPECT_EQ(take_cli(), "set abnormal value: 2500.\n");
    EXPECT_EQ(g_authmng_authtime_abnormal_value, 2500u);
    expect_refused("debug authmng abnormal-value 0", "\"0\" out of range (1 to 10000)");
    expect_refused("debug authmng record-num 10001", "(1 to 10000)");

    EXPECT_EQ(exec("debug authmng write-clock 0"), 0);
    EXPECT_EQ(take_cli(), "set time(0 h) to write file.\n");
    EXPECT_EQ(g_authmng_write_file_clock, 0u);
    EXPECT_EQ(exec("debug authmng write-clock 23"), 0);
    expect_refused("debug authmng write-clock 24", "(0 to 23)");

    expect_refused("debug authmng write-tmp 0", "\"0\" out of range (1 to 1440)");
    EXPECT_EQ(exec("debug authmng write-tmp 1440"), 0);
    EXPECT_EQ(take_cli(), " set interval time(1440 min) to write tmp.\n");
    expect_refused("debug authmng write-tmp 1441", "(1 to 1440)");
    EXPECT_EQ(g_authmng_write_tmp_clock, 1440u);
    EXPECT_EQ(exec("debug authmng summary"), 0);
    std::string summary = take_cli();
    for (const char *line :
         {" current interval is 1440\n", " current time is 23\n", " timeout is 2500\n"}) {
        EXPECT_NE(summary.find(line), std::string::npos) << line;
    }

    g_authmng_webauth.auth_total = 9;
    g_authmng_webauth_tmp.move_count = 2;
    EXPECT_EQ(exec("debug authmng clear-statistic"), 0);
    EXPECT_EQ(g_authmng_webauth.auth_total + g_authmng_webauth_tmp.move_count, 0u);
    EXPECT_EQ(take_cli(), "");
}

TEST_F(DebugCommandsTest, SummaryOfAFreshWebauthProcess) {
    start_client(AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(exec("debug authmng summary"), 0);
    EXPECT_EQ(take_cli(),
              "\nState of statistical: true.\n"
              "the interval of write to tmp:\n"
              " range: [1, 1440], unit: minutes.\n"
              " default interval is 30\n"
              " current interval is 30\n"
              "the time of write to flash:\n"
              " range: [0, 23]\n"
              " default time is 1\n"
              " current time is 1\n"
              "the number of abnormal write to record:\n"
              " range: [1, 10000]\n"
              " default number is 1000\n"
              " current number is 1000\n"
              " timeout is 3000\n"
              "number of reverser: 0.\n");
}

TEST_F(DebugCommandsTest, RecordNumWritesTheQueuedRecordsBeforeTheNewCap) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    const std::string file = flash_path("/security/authmanage/dot1x/dot1x_abnormal.csv");
    for (int i = 0; i < 20; ++i) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 1);
        authmng_record_abnormal_auth(&info);
    }
    EXPECT_EQ(exec("debug authmng record-num 10"), 0);
    EXPECT_EQ(take_cli(), "set abnormal record max: 10, and write abnormal to flash\n");
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    EXPECT_EQ(count_lines(read_file(file)), 21u);  // header and all twenty records
    EXPECT_EQ(g_authmng_abnormal_record_max, 10u);
}

TEST_F(DebugCommandsTest, ClearStatisticClearsTheFour802Dot1xRecordsSilently) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    {
        authmng::LibraryLock lock;
        g_amg_d1x[AUTHMNG_METHOD_DOT1X].auth_total = 4;
        g_amg_d1x[AUTHMNG_METHOD_MAB].offline_total = 3;
        g_amg_d1x_tmp[AUTHMNG_METHOD_DOT1X].reauth_total = 2;
        g_amg_d1x_tmp[AUTHMNG_METHOD_MAB].range[AUTHMNG_RANGE_AUTH].count[1] = 1;
    }
    EXPECT_EQ(exec("debug authmng clear-statistic"), 0);
    EXPECT_EQ(take_cli(), "");
    EXPECT_EQ(g_amg_d1x[AUTHMNG_METHOD_DOT1X].auth_total +
                  g_amg_d1x[AUTHMNG_METHOD_MAB].offline_total +
                  g_amg_d1x_tmp[AUTHMNG_METHOD_DOT1X].reauth_total +
                  g_amg_d1x_tmp[AUTHMNG_METHOD_MAB].range[AUTHMNG_RANGE_AUTH].count[1],
              0u);
    // Cleared records keep their histogram shape: below 1 s, 1 to 3 s, above.
    EXPECT_EQ(g_amg_d1x_tmp[AUTHMNG_METHOD_MAB].range[AUTHMNG_RANGE_AUTH].bound[2], 3000u);
}

TEST_F(DebugCommandsTest, ClearStatisticInCppProcessDoesNothing) {
    // A cpp process registers no commands; attach the debug group by hand.
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    ASSERT_EQ(cli_add_command(100, &Tauthmng_proc_debug_group, "authmanage debug"), 0);
    ASSERT_EQ(authmng_host_cli_bind(100, "debug authmng"), 0);
    g_authmng_webauth.auth_total = 5;
    g_amg_d1x[AUTHMNG_METHOD_DOT1X].auth_total = 5;
    EXPECT_EQ(exec("debug authmng clear-statistic"), 0);
    EXPECT_EQ(take_cli(), "");
    EXPECT_EQ(g_authmng_webauth.auth_total + g_amg_d1x[AUTHMNG_METHOD_DOT1X].auth_total, 10u);
}

}  // namespace
}  // namespace authmng_test
