// Start-up of the three clients: refusals, directories, command groups,
// debug registration, values, and failures of the storage steps.
#include <dirent.h>
#include <sys/stat.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "authmng_platform.h"
#include "support/fixture.h"

namespace authmng_test {
namespace {

int thread_count() {
    int n = 0;
    DIR *dir = opendir("/proc/self/task");
    if (dir == nullptr) return -1;
    while (struct dirent *entry = readdir(dir)) n += entry->d_name[0] != '.';
    closedir(dir);
    return n;
}

bool dir_is_empty(const std::string &path) {
    DIR *dir = opendir(path.c_str());
    if (dir == nullptr) return true;
    int n = 0;
    while (struct dirent *entry = readdir(dir)) n += entry->d_name[0] != '.';
    closedir(dir);
    return n == 0;
}

// The registered command groups as "<point> <name>", in order.
std::vector<std::string> groups() {
    std::vector<std::string> all;
    for (int i = 0; i < authmng_host_cli_groups(); ++i) {
        int point = 0;
        const char *name = nullptr;
        authmng_host_cli_group_at(i, &point, &name);
        all.push_back(std::to_string(point) + " " + name);
    }
    return all;
}

using InitTest = AuthmngTest;

TEST_F(InitTest, RefusedRecordsLogTheirMessageAndCreateNothing) {
    int threads = thread_count();
    EXPECT_EQ(authmng_init(nullptr), -1);
    EXPECT_EQ(start(3), -1);
    EXPECT_EQ(start(4), -1);
    EXPECT_EQ(start(-1), -1);
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG AUTHMNG_INIT 3: reg is NULL.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is not exist.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is error.\r\n"
              "3 AUTHMNG AUTHMNG_INIT 3: type is not exist.\r\n");
    EXPECT_TRUE(dir_is_empty(tmp_dir()));
    EXPECT_TRUE(dir_is_empty(flash_dir()));
    EXPECT_EQ(thread_count(), threads);
    EXPECT_EQ(authmng_host_cli_groups(), 0);
}

TEST_F(InitTest, WebauthClientRegistersFiveGroupsAndItsDebugSwitches) {
    g_authmng_lib_event_dbg = 1;
    g_authmng_write_tmp_clock = 7;
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA, 41, 42), 0);
    EXPECT_EQ(groups(), (std::vector<std::string>{"28 cfg authmanage", "6 show webauth escape info",
                                                  "42 show authmng info", "41 authmanage debug",
                                                  "17 authmanage escape debug"}));
    const char *registered = nullptr;
    EXPECT_EQ(authmng_host_debug_registrations(&registered), 1);
    EXPECT_STREQ(registered, "authmanage-debug");

    EXPECT_EQ(g_authmng_client_type, AUTHMNG_CLIENT_WBA);
    EXPECT_EQ(g_authmng_authtime_abnormal_value, 3000u);
    EXPECT_EQ(g_authmng_write_tmp_clock, 30u);
    EXPECT_EQ(g_authmng_lib_event_dbg, 0);
    EXPECT_EQ(g_authmng_lib_error_dbg, 0);
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    EXPECT_EQ(g_authmng_auth_abnormal_record_list.next, &g_authmng_auth_abnormal_record_list);
    EXPECT_TRUE(exists(flash_path("/security/authmanage/webauth")));
    EXPECT_TRUE(exists(tmp_path("/security/authmanage/webauth")));
    EXPECT_FALSE(exists(tmp_path("/security/authmanage/dot1x")));
    // Web-auth histograms are set up by start-up.
    EXPECT_EQ(g_authmng_webauth.range[2].num, 3u);
    EXPECT_EQ(g_authmng_webauth.range[2].bound[1], 500u);
    EXPECT_EQ(g_authmng_webauth_tmp.range[12].num, 2u);
    EXPECT_EQ(take_syslog(), "");
}

TEST_F(InitTest, Dot1xClientRegistersShowAndDebugGroupsAndClearsItsRecords) {
    g_amg_d1x[1].auth_total = 9;
    g_amg_d1x_tmp[0].offline_total = 9;
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X, 51, 52), 0);
    EXPECT_EQ(groups(), (std::vector<std::string>{"52 show authmng info", "51 authmanage debug"}));
    const char *registered = nullptr;
    EXPECT_EQ(authmng_host_debug_registrations(&registered), 1);
    EXPECT_STREQ(registered, "dot1x_authmng_debug");

    EXPECT_EQ(g_authmng_client_type, AUTHMNG_CLIENT_DOT1X);
    EXPECT_EQ(g_authmng_authtime_abnormal_value, 1000u);
    EXPECT_EQ(g_amg_d1x[1].auth_total, 0u);
    EXPECT_EQ(g_amg_d1x_tmp[0].offline_total, 0u);
    for (const authmng_dot1x_stat_t *records : {g_amg_d1x, g_amg_d1x_tmp}) {
        for (int method = 0; method < 2; ++method) {
            for (uint32_t i = 0; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
                const authmng_range_t &r = records[method].range[i];
                EXPECT_EQ(std::vector<uint64_t>({r.id, r.num, r.bound[0], r.bound[1], r.bound[2]}),
                          std::vector<uint64_t>({i, 3, 0, 1000, 3000}));
            }
        }
    }
    EXPECT_TRUE(exists(flash_path("/security/authmanage/dot1x")));
    EXPECT_TRUE(exists(tmp_path("/security/authmanage/dot1x")));
}

TEST_F(InitTest, CppClientCreatesOnlyItsTemporaryDirectory) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    EXPECT_EQ(authmng_host_cli_groups(), 0);
    EXPECT_EQ(authmng_host_debug_registrations(nullptr), 0);
    EXPECT_EQ(g_authmng_authtime_abnormal_value, 0u);
    EXPECT_EQ(g_authmng_client_type, AUTHMNG_CLIENT_CPP);
    EXPECT_TRUE(exists(tmp_path("/security/authmanage/cpp")));
    EXPECT_TRUE(dir_is_empty(flash_dir()));
}

TEST_F(InitTest, UnsetTmpdirFailsTheWebauthStartAfterTheFlashDirectory) {
    unsetenv("TMPDIR");
    EXPECT_EQ(start(AUTHMNG_CLIENT_WBA), -1);
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create tmp webauth dir.\r\n");
    EXPECT_TRUE(exists(flash_path("/security/authmanage/webauth")));
    EXPECT_EQ(authmng_host_cli_groups(), 0);
}

TEST_F(InitTest, StorageFailuresOfEachClientEndStartUpWithTheirMessage) {
    unsetenv("TMPDIR");
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_CPP), -1);
    // A flash home longer than a path may be is unavailable.
    setenv("AUTHMNG_FLASH_HOME", std::string(120, 'f').c_str(), 1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_WBA), -1);
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_EQ(take_syslog(),
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create tmp dot1x dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create cpp dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create flash webauth dir.\r\n"
              "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create dot1x dir.\r\n");
    EXPECT_EQ(g_authmng_client_type, 0);
}

TEST_F(InitTest, ARegularFileInTheWayFailsTheDirectoryStep) {
    ASSERT_EQ(mkdir(flash_path("/security").c_str(), 0777), 0);
    write_file(flash_path("/security/authmanage"), "not a directory\n");
    EXPECT_EQ(start(AUTHMNG_CLIENT_DOT1X), -1);
    EXPECT_EQ(take_syslog(), "3 AUTHMNG AUTHMNG_CREATE_DIR 3: Failed to create dot1x dir.\r\n");
}

// Recursive before start-up, which a daemon may run while holding it;
// start-up leaves it as it is.
TEST_F(InitTest, MutexIsRecursiveFromTheStart) {
    ASSERT_EQ(pthread_mutex_lock(&g_authmng_mtx), 0);
    EXPECT_EQ(pthread_mutex_trylock(&g_authmng_mtx), 0);
    ASSERT_EQ(start(AUTHMNG_CLIENT_CPP), 0);
    EXPECT_EQ(pthread_mutex_unlock(&g_authmng_mtx), 0);
    EXPECT_EQ(pthread_mutex_unlock(&g_authmng_mtx), 0);
    EXPECT_EQ(pthread_mutex_trylock(&g_authmng_mtx), 0);  // free again
    pthread_mutex_unlock(&g_authmng_mtx);
    EXPECT_EQ(authmng_init_mtx(nullptr), -1);  // no mutex to set up: refused
}

}  // namespace
}  // namespace authmng_test
