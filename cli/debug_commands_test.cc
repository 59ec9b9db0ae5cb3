// The debug commands of the two daemons as an operator types them: the
// debug switches, the run-time tuning values, clear-statistic and the
// summary.
#include "authmng_platform.h"
#include "cli/cli_fixture.h"
#include "core/lock.h"

namespace authmng_test {
namespace {

using DebugCommandsTest = CliTest;

TEST_F(DebugCommandsTest, SwitchesTuningValuesSummaryAndClearStatisticInWebauthProcess) {
    start_client(AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(exec("debug authmng event") + exec("debug authmng error"), 0);
    EXPECT_EQ(exec("no debug authmng event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg * 10 + g_authmng_lib_error_dbg, 1);
    // The escape debug group of the web-auth process drives the same switches.
    EXPECT_EQ(exec("no debug authmanage error") + exec("debug authmanage event"), 0);
    EXPECT_EQ(g_authmng_lib_event_dbg * 10 + g_authmng_lib_error_dbg, 10);
    // Only the tuning values answer, each with its line.
    for (const char *line :
         {"abnormal-value 2500", "write-clock 0", "write-clock 23", "write-tmp 1440"}) {
        EXPECT_EQ(exec(std::string("debug authmng ") + line), 0) << line;
    }
    EXPECT_EQ(take_cli(),
              "set abnormal value: 2500.\nset time(0 h) to write file.\n"
              "set time(23 h) to write file.\n set interval time(1440 min) to write tmp.\n");
    // The range in each refusal pins both bounds of the number.
    const char *const kRefused[][2] = {{"abnormal-value 0", "\"0\" out of range (1 to 10000)"},
                                       {"record-num 10001", "(1 to 10000)"},
                                       {"write-clock 24", "(0 to 23)"},
                                       {"write-tmp 1441", "(1 to 1440)"},
                                       {"event now", "Unknown word \"now\""}};
    for (const auto &r : kRefused) expect_refused(std::string("debug authmng ") + r[0], r[1]);
    g_authmng_abnormal_record_max = 20;
    EXPECT_EQ(exec("debug authmng summary"), 0);
    EXPECT_EQ(take_cli(),
              "\nState of statistical: true.\nthe interval of write to tmp:\n"
              " range: [1, 1440], unit: minutes.\n default interval is 30\n"
              " current interval is 1440\nthe time of write to flash:\n range: [0, 23]\n"
              " default time is 1\n current time is 23\n"
              "the number of abnormal write to record:\n range: [1, 10000]\n"
              " default number is 1000\n current number is 20\n timeout is 2500\n"
              "number of reverser: 0.\n");

    g_authmng_webauth.auth_total = 9;
    g_authmng_webauth_tmp.move_count = 2;
    EXPECT_EQ(exec("debug authmng clear-statistic"), 0);
    EXPECT_EQ(g_authmng_webauth.auth_total + g_authmng_webauth_tmp.move_count, 0u);
    EXPECT_EQ(take_cli(), "");
}

// The records already queued go out before the new cap; clearing resets
// the four records to their empty form, histogram bounds kept.
TEST_F(DebugCommandsTest, RecordNumAndClearStatisticIn802Dot1xProcess) {
    start_client(AUTHMNG_CLIENT_DOT1X);
    for (int i = 0; i < 20; ++i) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 1);
        authmng_record_abnormal_auth(&info);
    }
    EXPECT_EQ(exec("debug authmng record-num 10"), 0);
    EXPECT_EQ(take_cli(), "set abnormal record max: 10, and write abnormal to flash\n");
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    EXPECT_EQ(g_authmng_abnormal_record_max, 10u);
    // The header and all twenty records.
    EXPECT_EQ(count_lines(read_file(flash_path("/security/authmanage/dot1x/dot1x_abnormal.csv"))),
              21u);

    authmng_dot1x_stat_t *const kRecords[] = {
        &g_amg_d1x[AUTHMNG_METHOD_DOT1X], &g_amg_d1x[AUTHMNG_METHOD_MAB],
        &g_amg_d1x_tmp[AUTHMNG_METHOD_DOT1X], &g_amg_d1x_tmp[AUTHMNG_METHOD_MAB]};
    {
        authmng::LibraryLock lock;
        for (authmng_dot1x_stat_t *record : kRecords)
            record->range[AUTHMNG_RANGE_AUTH].count[1] = 1;
    }
    EXPECT_EQ(exec("debug authmng clear-statistic"), 0);
    EXPECT_EQ(take_cli(), "");
    for (const authmng_dot1x_stat_t *record : kRecords) {
        const authmng_range_t &auth = record->range[AUTHMNG_RANGE_AUTH];
        EXPECT_EQ(auth.count[1] * 10000 + auth.bound[2], 3000u);
    }
}

}  // namespace
}  // namespace authmng_test
