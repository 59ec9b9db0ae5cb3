// Start-up of the three clients: refusals, directories, command groups,
// debug registration, values, and failures of the storage steps.
#include <cstdlib>
#include <filesystem>
#include <string>
#include <vector>

#include "authmng_platform.h"
#include "support/fixture.h"

namespace authmng_test {
namespace {

// Entries of a directory (0 when it is missing).
long entries(const std::string &path) {
    std::error_code missing;
    return std::distance(std::filesystem::directory_iterator(path, missing), {});
}

// The command groups as "<point> <name>, ", then the debug registrations
// and the latest name.
std::string registered() {
    std::string all;
    const char *name = nullptr;
    for (int i = 0, point = 0; authmng_host_cli_group_at(i, &point, &name) == 0; ++i) {
        all += std::to_string(point) + " " + name + ", ";
    }
    int debug = authmng_host_debug_registrations(&name);
    return all + std::to_string(debug) + (debug > 0 ? name : "");
}

using InitTest = AuthmngTest;

TEST_F(InitTest, RefusedRecordsLogTheirMessageAndCreateNothing) {
    long threads = entries("/proc/self/task");
    EXPECT_EQ(std::vector<int>({authmng_init(nullptr), start(3), start(4), start(-1)}),
              std::vector<int>(4, -1));
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG AUTHMNG_INIT 3: reg is NULL.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is not exist.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is error.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is not exist.\r\n");
    EXPECT_EQ(entries(tmp_dir()) + entries(flash_dir()), 0);
    EXPECT_EQ(entries("/proc/self/task"), threads);
    EXPECT_EQ(registered(), "0");
}

TEST_F(InitTest, WebauthClientRegistersFiveGroupsAndItsDebugSwitches) {
    g_authmng_lib_event_dbg = 1;
    g_authmng_write_tmp_clock = 7;
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA, 41, 42), 0);
    EXPECT_EQ(registered(),
              "28 cfg authmanage, 6 show webauth escape info, 42 show authmng info, "
              "41 authmanage debug, 17 authmanage escape debug, 1authmanage-debug");
    EXPECT_EQ(std::vector<uint64_t>({g_authmng_authtime_abnormal_value, g_authmng_write_tmp_clock,
                                     g_authmng_lib_event_dbg, g_authmng_lib_error_dbg,
                                     g_authmng_abnormal_record_num}),
              std::vector<uint64_t>({3000, 30, 0, 0, 0}));
    EXPECT_EQ(g_authmng_client_type, AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(g_authmng_auth_abnormal_record_list.next, &g_authmng_auth_abnormal_record_list);
    EXPECT_TRUE(exists(flash_path("/security/authmanage/webauth")) &&
                exists(tmp_path("/security/authmanage/webauth")) &&
                !exists(tmp_path("/security/authmanage/dot1x")));
    // Web-auth histograms are set up by start-up.
    EXPECT_EQ(g_authmng_webauth.range[2].num * 1000 + g_authmng_webauth.range[2].bound[1], 3500u);
    EXPECT_EQ(g_authmng_webauth_tmp.range[12].num, 2u);
    EXPECT_EQ(take_syslog(), "");
}

TEST_F(InitTest, Dot1xClientRegistersShowAndDebugGroupsAndClearsItsRecords) {
    authmng_dot1x_stat_t *const kRecords[] = {&g_amg_d1x[0], &g_amg_d1x[1], &g_amg_d1x_tmp[0],
                                              &g_amg_d1x_tmp[1]};
    for (authmng_dot1x_stat_t *record : kRecords) record->auth_total = 9;
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X, 51, 52), 0);
    EXPECT_EQ(registered(), "52 show authmng info, 51 authmanage debug, 1dot1x_authmng_debug");
    EXPECT_EQ(g_authmng_client_type, AUTHMNG_CLIENT_DOT1X);
    EXPECT_EQ(g_authmng_authtime_abnormal_value, 1000u);
    for (const authmng_dot1x_stat_t *record : kRecords) {  // histograms set up
        const authmng_range_t &last = record->range[AUTHMNG_D1X_RANGE_NUM - 1];
        EXPECT_EQ(
            std::vector<uint64_t>({record->auth_total, last.num, last.bound[1], last.bound[2]}),
            std::vector<uint64_t>({0, 3, 1000, 3000}));
    }
    EXPECT_TRUE(exists(flash_path("/security/authmanage/dot1x")) &&
                exists(tmp_path("/security/authmanage/dot1x")));
}

// The mutex is recursive before start-up, which a daemon may run while
// holding it; start-up leaves it as it is.
TEST_F(InitTest, CppClientCreatesOnlyItsTemporaryDirectoryUnderAHeldMutex) {
    ASSERT_EQ(pthread_mutex_lock(&g_authmng_mtx), 0);
    EXPECT_EQ(pthread_mutex_trylock(&g_authmng_mtx), 0);
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    EXPECT_EQ(pthread_mutex_unlock(&g_authmng_mtx) + pthread_mutex_unlock(&g_authmng_mtx), 0);
    EXPECT_EQ(pthread_mutex_trylock(&g_authmng_mtx), 0);  // free again
    pthread_mutex_unlock(&g_authmng_mtx);
    EXPECT_EQ(authmng_init_mtx(nullptr), -1);  // no mutex to set up: refused
    EXPECT_EQ(registered(), "0");
    EXPECT_EQ(g_authmng_authtime_abnormal_value + g_authmng_client_type, 0u + AUTHMNG_CLIENT_CPP);
    EXPECT_TRUE(exists(tmp_path("/security/authmanage/cpp")));
    EXPECT_EQ(entries(flash_dir()), 0);
}

TEST_F(InitTest, StorageFailuresOfEachClientEndStartUpWithTheirMessage) {
    unsetenv("TMPDIR");
    EXPECT_EQ(start(AUTHMNG_CLIENT_WBA), -1);  // after the flash directory
    EXPECT_TRUE(exists(flash_path("/security/authmanage/webauth")));
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_CPP), -1);
    // A flash home longer than a path may be is unavailable.
    setenv("AUTHMNG_FLASH_HOME", std::string(120, 'f').c_str(), 1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_WBA), -1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create tmp webauth dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create tmp dot1x dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create cpp dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create flash webauth dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create dot1x dir.\r\n");
    EXPECT_EQ(g_authmng_client_type, 0);
    EXPECT_EQ(authmng_host_cli_groups(), 0);
}

}  // namespace
}  // namespace authmng_test
