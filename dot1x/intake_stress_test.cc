// Intake threads against the interval, daily and abnormal writers and the
// clear: the records stay consistent and the abnormal list keeps its count
// and cap. Also run under ThreadSanitizer.
#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

#include "core/abnormal_list.h"
#include "core/lock.h"
#include "support/fixture.h"

using namespace authmng_test;

namespace {

constexpr uint32_t kListCap = 40;

bool consistent(const authmng_dot1x_stat_t &r) {
    uint64_t auth = 0, reauth = 0, offline = 0;
    for (int code = 0; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        auth += r.auth_result[code], reauth += r.reauth_result[code];
        offline += r.offline_reason[code];
    }
    bool ok = auth == r.auth_total && reauth == r.reauth_total && offline == r.offline_total;
    for (const authmng_range_t &h : r.range) {
        ok = ok && h.count[0] + h.count[1] + h.count[2] == r.auth_result[0];
    }
    return ok;
}

bool all_consistent() {
    authmng::LibraryLock lock;
    uint32_t length = 0;
    authmng::abnormal_list_for_each([&](const authmng_abnormal_node_t &) { ++length; });
    return consistent(g_amg_d1x[0]) && consistent(g_amg_d1x[1]) && consistent(g_amg_d1x_tmp[0]) &&
           consistent(g_amg_d1x_tmp[1]) && length == g_authmng_abnormal_record_num &&
           length <= kListCap;
}

void send_events(unsigned seed) {
    const uint32_t codes[] = {0, 0, 0, 1, 2, 5, 25, 101, 134};
    for (int i = 0; i < 4000; ++i) {
        authmng_auth_info_t info =
            event_record(2 + rand_r(&seed) % 2, rand_r(&seed) % 5, codes[rand_r(&seed) % 9]);
        info.offline_reason = codes[rand_r(&seed) % 9];
        info.online_num = rand_r(&seed) % 100, info.auth_time = rand_r(&seed) % 5000;
        info.rds_srv_time = rand_r(&seed) % 2000, info.rds_time = rand_r(&seed) % 2000;
        info.aaa_timeout = rand_r(&seed) % 2;
        authmng_notify_auth_info(&info);
    }
}

using Dot1xStressTest = AuthmngTest;

TEST_F(Dot1xStressTest, RecordsStayConsistentUnderWritersAndClears) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    g_authmng_abnormal_record_max = kListCap;
    std::atomic<bool> done{false};
    std::atomic<int> inconsistent{0};
    std::thread writer([&] {
        while (!done.load()) {
            authmng_write_dot1x_statistic_to_tmpfile();
            authmng_write_dot1x_statistic_to_flashfile();
            authmng_write_dot1x_abnormal_record_to_file();
        }
    });
    std::thread clearer([&] {
        while (!done.load()) {
            inconsistent += all_consistent() ? 0 : 1;
            authmng::LibraryLock lock;  // the four clears of the clear-statistic command
            for (authmng_dot1x_stat_t *r :
                 {g_amg_d1x, g_amg_d1x + 1, g_amg_d1x_tmp, g_amg_d1x_tmp + 1})
                authmng_dot1x_init(r);
        }
    });
    std::vector<std::thread> intakes;
    for (unsigned t = 0; t < 4; ++t) intakes.emplace_back(send_events, 1234u + t);
    for (std::thread &t : intakes) t.join();
    done.store(true);
    writer.join();
    clearer.join();

    EXPECT_EQ(inconsistent.load(), 0);
    EXPECT_TRUE(all_consistent());
    send_events(99);  // and after a last run without clears
    EXPECT_TRUE(all_consistent());
    EXPECT_GT(g_amg_d1x[0].auth_total + g_amg_d1x[1].auth_total, 0u);
}

}  // namespace
