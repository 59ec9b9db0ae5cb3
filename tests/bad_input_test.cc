// Bad input at the library's entries: null pointers, codes out of range,
// user names without a terminator, extreme times and counters at their top.
// Nothing crashes, nothing changes that must not, and nothing prints what
// lies past a field.
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "authmng_platform.h"
#include "escape/check.h"
#include "support/fixture.h"

using namespace authmng_test;

namespace {

constexpr uint64_t kClockTop = UINT32_MAX;  // 2106-02-07 06:28:15 UTC, a Sunday

// Every record and counter an entry could change, as bytes.
std::string state() {
    std::string s;
    auto add = [&s](const auto &x) { s.append(reinterpret_cast<const char *>(&x), sizeof x); };
    add(g_amg_d1x), add(g_amg_d1x_tmp), add(g_authmng_webauth), add(g_authmng_webauth_tmp);
    add(g_authmng_check), add(g_authmng_info_record), add(g_authmng_sec_range_reason);
    add(g_authmng_thi_range_reason), add(g_authmng_abnormal_record_num);
    return s;
}

// A name filling all 256 bytes, followed in the record by MAC bytes that
// read as 'Z' (shown as 5a5a.5a5a.5a5a): a print that ran past the field
// would show a 'Z', or the name would not end where its column does.
const std::string kName(256, 'A');
authmng_auth_info_t unterminated(int32_t kind, uint32_t event, uint32_t result) {
    authmng_auth_info_t info = event_record(kind, event, result);
    memset(info.username, 'A', sizeof info.username);
    memset(info.mac, 'Z', sizeof info.mac);
    return info;
}

// Overlapping runs count twice, so a longer run of 'A' fails the count too.
void expect_names(const std::string &text, size_t count) {
    EXPECT_EQ(occurrences(text, kName), count) << text;
    EXPECT_EQ(text.find('Z'), std::string::npos) << text;
}

using BadInputTest = AuthmngTest;

TEST_F(BadInputTest, NullPointersAtEveryEntry) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    take_cli();
    const std::string before = state();
    char path[AUTHMNG_PATH_MAX + 1];
    EXPECT_EQ(authmng_make_flashpath(nullptr, path, AUTHMNG_PATH_MAX) +
                  authmng_make_flashpath("/x", nullptr, AUTHMNG_PATH_MAX) +
                  authmng_create_dir(nullptr, 0) + authmng_create_dir(nullptr, 1),
              -4);
    authmng_record_abnormal_auth(nullptr);
    authmng_save_abnormal_log(nullptr);
    authmng_dot1x_statistic_loogtime_reason(0, 0, 5000, nullptr);
    authmng_dot1x_init(nullptr);
    authmng_compose_inter_str(nullptr, 2000, 7);
    authmng_check_result_t verdict = {~0u, ~0u, 0xff};
    authmng_get_check_result(nullptr, &verdict);
    EXPECT_EQ(verdict.escape_time + verdict.escape_ratio + verdict.reboot_enable, 0u);
    authmng_check_input_t totals = {1, 2, 3, 4, 5, 6};
    authmng_get_check_result(&totals, nullptr);
    EXPECT_EQ(authmng_get_result_by_type(0, 5, 1, nullptr) +
                  authmng_get_current_result(0, 5, 1, nullptr) +
                  authmng_get_result_by_type(AUTHMNG_CHECK_TYPE_NUM, 5, 1, &verdict),
              0);
    authmng_compare_with_pre_result(nullptr, &verdict);
    authmng_compare_with_pre_result(&g_authmng_check[0], nullptr);
    for (cli_handler_t handler :
         {authmng_escape_enable_cmd, authmng_escape_when_auth_cmd, authmng_escape_when_ratio_cmd,
          authmng_escape_when_redirect_cmd, authmng_escape_time_cmd, authmng_escape_life_cmd,
          authmng_statistic_enable_cmd, authmng_show_cmd, authmng_webauth_show_cmd,
          authmng_show_1x_cmd, authmng_show_webauth_cmd, authmng_proc_debug_cmd}) {
        handler(nullptr);
    }
    int fds[2];
    ASSERT_EQ(socketpair(AF_UNIX, SOCK_SEQPACKET, 0, fds), 0);
    EXPECT_EQ(authmng_unix_connect(fds[0], nullptr) + authmng_unix_receive(fds[1], nullptr, 4) +
                  authmng_reg_cpp_callback(nullptr) + authmng_host_cli_exec(nullptr),
              -3);
    close(fds[0]), close(fds[1]);
    authmng_tlv_buf_init(nullptr);
    EXPECT_EQ(take_cli(), "% Empty command line\n");
    EXPECT_TRUE(state() == before);
    EXPECT_FALSE(exists(tmp_path("/security/authmanage/log.txt")));
}

TEST_F(BadInputTest, CodesOutOfRangeChangeAndPrintNothing) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    const std::string before = state();
    for (uint32_t bad : {135u, 0x80000000u, UINT32_MAX}) {
        for (uint32_t field = 0; field < 3; ++field) {
            authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_MAB, D1X_AUTH, 5);
            info.online_num = 9;
            (field == 0 ? info.event : field == 1 ? info.result : info.offline_reason) = bad;
            authmng_notify_dot1x_info(&info);
        }
    }
    for (int32_t kind : {INT32_MIN, -1, 0, 1, 4, INT32_MAX}) {  // 1: a web-auth event
        authmng_auth_info_t info = event_record(kind, D1X_AUTH, 5);
        authmng_notify_auth_info(&info);
    }
    EXPECT_TRUE(state() == before);
    EXPECT_EQ(take_syslog(), "");
    for (uint32_t index : {2u, UINT32_MAX}) {
        authmng_show_dot1x_statistic(index);
        authmng_show_dot1x_statistic_fail(index);
        authmng_show_dot1x_auth_detail(index);
        authmng_show_dot1x_reauth_detail(index);
        authmng_show_dot1x_offline_detail(index);
        authmng_show_dot1x_statistic_telnet(index);
    }
    EXPECT_EQ(take_cli(), "");
    authmng_auth_info_t queued = event_record(AUTHMNG_CLIENT_DOT1X, UINT32_MAX, UINT32_MAX);
    queued.offline_reason = UINT32_MAX;
    authmng_record_abnormal_auth(&queued);
    authmng_show_dot1x_statistic_abnormal(6);
    EXPECT_EQ(count_lines(take_cli()), 2u);  // header and rule only
    authmng_show_dot1x_statistic_abnormal(UINT32_MAX);
    std::string table = take_cli();  // the row, with blank Type and Reason columns
    EXPECT_NE(table.find(" 0    0    " + std::string(31, ' ') + "0  dBm "), std::string::npos);
}

// Times of 0 and 2^32 - 1 ms in every step, and the clock at 0 and at
// 2^32 - 1 s: histograms and sums follow the 32-bit arithmetic, and every
// date comes out the same on 32-bit and 64-bit devices. The names fill
// their field with no terminator: every output stops at the field.
TEST_F(BadInputTest, Dot1xExtremeTimesAndUnterminatedNames) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_lib_event_dbg = 1;
    authmng_host_clock_set(0);
    authmng_auth_info_t top = unterminated(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 0);
    top.auth_time = top.aaa_time = top.rds_time = top.rds_srv_time = UINT32_MAX;
    top.sta_time = top.self_time = UINT32_MAX;
    authmng_notify_auth_info(&top);
    authmng_host_clock_set(kClockTop);
    authmng_auth_info_t zero = unterminated(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 7);
    authmng_notify_auth_info(&zero);  // failed: queued at the top of the clock
    zero.result = 0;
    authmng_notify_auth_info(&zero);
    expect_names(take_syslog(), 2);  // "user(%s)1x auth time" of each success
    const authmng_dot1x_stat_t &r = g_amg_d1x[0];
    // authExSrv, aaa and rds are 0; rdsSrv, sta and self the top.
    for (uint32_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        bool top_range = i == 0 || i == 2 || i == 3 || i == 6;
        EXPECT_EQ(r.range[i].count[0] + 2 * r.range[i].count[2], top_range ? 3u : 2u) << i;
    }
    EXPECT_EQ(r.over3s_total, 4294967293u);  // 3 * (2^32 - 1) in 32 bits
    EXPECT_EQ(r.over3s_sta + r.over3s_aaa, 4294967295u);
    EXPECT_EQ(r.auth_avg_time, 2147483647u);  // (2^32 - 1 + 0) / 2
    EXPECT_EQ(g_authmng_thi_range_reason[3], 1u);

    authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
    std::string table = take_cli();
    expect_names(table, 2);
    EXPECT_NE(table.find("\n01.01 00:00:00 5a5a.5a5a.5a5a 4294967295 "), std::string::npos);
    EXPECT_NE(table.find("\n02.07 06:28:15 5a5a.5a5a.5a5a 0          "), std::string::npos);
    write_all(AUTHMNG_CLIENT_DOT1X);
    expect_lines(read_file(tmp_path("/security/authmanage/dot1x/dot1x_statistic.csv")),
                 {"02.07 06:28:15,dot1x,0, 3, 2, ip band width fall,0, 0, 0, , 1, 0, 1"});
    EXPECT_NE(read_file(flash_path("/security/authmanage/dot1x/dot1x_statistic.csv"))
                  .find("\n02.07 06:28:15,dot1x,3,2,0,0,0,1,0,1,2147483647,0,"),
              std::string::npos);
    std::string rows = read_file(abnormal_file(AUTHMNG_CLIENT_DOT1X));
    EXPECT_NE(rows.find("\n01.01 00:00:00," + kName + ",5a5a.5a5a.5a5a,0.0.0.0,4294967295,"),
              std::string::npos);
    EXPECT_NE(rows.find("\n02.07 06:28:15," + kName + ",5a5a.5a5a.5a5a,0.0.0.0,0,"),
              std::string::npos);
}

TEST_F(BadInputTest, WebauthExtremeTimesAndUnterminatedNames) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    authmng_host_clock_set(0);
    authmng_auth_info_t top = unterminated(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 0);
    top.ack_time = top.aaa_time = top.acct_rds_time = UINT32_MAX;
    authmng_notify_auth_info(&top);
    authmng_host_clock_set(kClockTop);
    authmng_auth_info_t failed = unterminated(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 13);
    authmng_notify_auth_info(&failed);
    const authmng_webauth_stat_t &w = g_authmng_webauth;
    EXPECT_EQ(w.range[0].count[2] + w.range[1].count[2] + w.range[4].count[1], 3u);
    EXPECT_EQ(w.range[10].count[1] + w.range[9].count[0], 2u);  // 2^32 - 1 and 0 - (2^32 - 1)
    EXPECT_EQ(w.aggregate_time[9], 1u);
    EXPECT_EQ(w.auth_avg_time, UINT32_MAX);

    authmng_show_webauth_statistic_abnormal();
    std::string shown = take_cli();
    const std::string user = "\nusername(" + kName + "),mac(5a5a.5a5a.5a5a),";
    EXPECT_NE(shown.find("\nThu Jan  1 00:00:00 1970" + user), std::string::npos);
    EXPECT_NE(shown.find("\nSun Feb  7 06:28:15 2106" + user), std::string::npos);
    authmng_save_abnormal_log("auth: 1 2\n");
    EXPECT_EQ(read_file(tmp_path("/security/authmanage/log.txt")),
              "Sun Feb  7 06:28:15 2106\nauth: 1 2\n");
    write_all(AUTHMNG_CLIENT_WBA);
    std::string rows = read_file(abnormal_file(AUTHMNG_CLIENT_WBA));
    EXPECT_NE(rows.find("\n1.1 0:0:0," + kName + ",5a5a.5a5a.5a5a,0.0.0.0,4294967295,"),
              std::string::npos);
    EXPECT_NE(rows.find("\n2.7 6:28:15," + kName + ",5a5a.5a5a.5a5a,0.0.0.0,0,"),
              std::string::npos);
    EXPECT_NE(read_file(tmp_path("/security/authmanage/webauth/wba_statistic.csv"))
                  .find("\n2.7 6:28:15, 0, 2, 1, "),
              std::string::npos);
}

// Records whose every byte is 0xff: every counter at its top and histogram
// descriptors of nonsense sizes. The displays print their usual lines, and
// 802.1X events are counted on, wrapping. (A web-auth record at its top
// restarts; its intake's tests pin that.)
TEST_F(BadInputTest, CountersAtTheirTop) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    take_cli();
    for (uint32_t index : {0u, 1u}) authmng_show_dot1x_statistic(index);
    size_t fresh = count_lines(take_cli());
    memset(g_amg_d1x, 0xff, sizeof g_amg_d1x);
    memset(&g_authmng_webauth, 0xff, sizeof g_authmng_webauth);
    for (uint32_t index : {0u, 1u}) authmng_show_dot1x_statistic(index);
    EXPECT_EQ(count_lines(take_cli()), fresh);
    for (uint32_t event : {0u, 1u, 2u}) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, event, 0);
        info.auth_time = 1500;
        authmng_notify_auth_info(&info);
    }
    EXPECT_EQ(g_amg_d1x[0].auth_total + g_amg_d1x[0].reauth_total + g_amg_d1x[0].offline_total, 0u);
    write_all(AUTHMNG_CLIENT_DOT1X);  // the header and the rows of both methods
    EXPECT_EQ(count_lines(read_file(flash_path("/security/authmanage/dot1x/dot1x_statistic.csv"))),
              3u);
    authmng_show_webauth_statistic();
    authmng_show_webauth_statistic_telnet();
}

}  // namespace
