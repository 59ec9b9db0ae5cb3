// Daemon threads report events while the timer's writers, the displays,
// the clears and the tuning commands run. Afterwards the records keep their
// invariants, and every abnormal record that was queued is in the abnormal
// file exactly once, in the order of its thread. Also run under
// ThreadSanitizer.
#include <atomic>
#include <cstdio>
#include <string>
#include <thread>
#include <vector>

#include "core/lock.h"
#include "support/fixture.h"
#include "support/invariants.h"

using namespace authmng_test;

namespace {

constexpr int kIntakes = 3;
constexpr int kEvents = 1200;  // per intake thread; fewer abnormal ones
// "abnormal-value" moves between these: times up to the lower bound are
// never abnormal, times above the upper one always are.
constexpr uint32_t kThresholdLow = 3000, kThresholdHigh = 10000;
// "record-num" stays above what can be queued at all (a fifth to a half of
// the events), so nothing is evicted and every queued record is accounted.
constexpr uint32_t kCapLow = 5000;

// Records, baselines and the list, under the library lock.
bool consistent(int32_t client) {
    authmng::LibraryLock lock;
    bool ok = abnormal_list_length() == g_authmng_abnormal_record_num;
    if (client == AUTHMNG_CLIENT_WBA) {
        return ok && webauth_consistent(g_authmng_webauth) &&
               webauth_consistent(g_authmng_webauth_tmp);
    }
    for (int m = 0; m < AUTHMNG_D1X_METHOD_NUM; ++m) {
        ok = ok && dot1x_consistent(g_amg_d1x[m]) && dot1x_consistent(g_amg_d1x_tmp[m]);
    }
    return ok;
}

// One daemon thread: events of its client, the abnormal ones each under a
// name of their own, kept in sent order as they appear in a row (",t-i,").
// A web-auth daemon also reports its totals to the escape check.
void report(int32_t client, int thread, std::vector<std::string> *abnormal) {
    unsigned seed = 77u + thread;
    authmng_check_input_t totals = {0, 0, 0, 0, 0, 0};
    for (uint32_t i = 0; i < kEvents; ++i) {
        uint32_t pick = rand_r(&seed) % 10, kind = rand_r(&seed) % 5;
        bool bad = pick >= 6, slow = pick == 9;
        authmng_auth_info_t info = event_record(client, 0, bad && !slow ? 1 + pick : 0);
        info.online_num = rand_r(&seed) % 500;
        uint32_t time = rand_r(&seed) % (kThresholdLow + 1);  // never above the threshold
        uint32_t slow_time = kThresholdHigh + 1 + time;       // always above it
        if (client == AUTHMNG_CLIENT_DOT1X) {
            info.client_type = AUTHMNG_CLIENT_DOT1X + rand_r(&seed) % 2;  // 802.1X or MAB
            info.event = kind;  // auth, reauth, offline, and the two starts
            if (kind == D1X_OFFLINE) info.offline_reason = bad ? 1 + pick : 101 * (pick % 2);
            bad = bad && kind <= D1X_OFFLINE;
            info.auth_time = slow ? slow_time : time;
            info.rds_srv_time = time / 3, info.rds_time = time / 2, info.sta_time = time / 4;
            info.aaa_timeout = pick % 2, info.request_timeout = pick % 3 == 0;
        } else {
            info.event = kind == 4 ? WBA_EVENT_OFFLINE : WBA_EVENT_AUTH;
            if (kind == 4) info.offline_reason = pick * 2, bad = false;
            info.ack_time = time, info.auth_time = time / 2, info.aaa_time = time / 3;
            info.rds_time = time / 4, info.portal_time = time, info.online_time = time;
            info.acct_rds_time = slow ? slow_time : 0;
            authmng_rd_info_t rd = {info.online_num, 0, time, pick % 3};
            authmng_notify_rd_info(&rd);
            authmng_stamove_info_t move = {kind % 2, static_cast<uint8_t>(pick == 4)};
            authmng_notify_stamove_info(&move);
            totals.total_redirect_count += 10, totals.total_redirect_time += 100 * i;
            totals.total_auth_count += 4, totals.total_auth_time += 6001 * (i % 7);
            authmng_check_result_t verdict;
            authmng_get_check_result(&totals, &verdict);
        }
        snprintf(info.username, sizeof info.username, "%d-%u", thread, i);
        authmng_notify_auth_info(&info);
        if (bad) abnormal->push_back(std::string(",") + info.username + ",");
    }
}

class StressTest : public AuthmngTest {
protected:
    void run(int32_t client, const std::vector<const char *> &commands) {
        ASSERT_EQ(authmng_host_cli_bind(200, "show authmng") |
                      authmng_host_cli_bind(100, "debug authmng") | start(client, 100, 200),
                  0);
        // Tuned first: the intakes queue far faster than a drain writes, and
        // would reach the default cap of 1000 before the first command ran.
        auto tune = [](const char *what, uint32_t value) {
            std::string line = "debug authmng " + std::string(what) + " " + std::to_string(value);
            return authmng_host_cli_exec(line.c_str());
        };
        ASSERT_EQ(tune("record-num", kCapLow) | tune("abnormal-value", kThresholdLow), 0);
        std::atomic<bool> done{false};
        std::atomic<int> inconsistent{0};

        std::thread timer([&] {  // the timer's writers, as often as they can
            while (!done.load()) write_all(client);
        });
        std::thread command_line([&] {  // displays, clears and tuning
            unsigned seed = 5;
            for (int round = 0; !done.load(); ++round) {
                inconsistent += consistent(client) ? 0 : 1;
                for (const char *command : commands) authmng_host_cli_exec(command);
                tune("abnormal-value",
                     kThresholdLow + rand_r(&seed) % (kThresholdHigh - kThresholdLow + 1));
                tune("record-num", kCapLow + rand_r(&seed) % 5001);
                if (round % 4 == 0) authmng_host_cli_exec("debug authmng clear-statistic");
            }
        });
        std::vector<std::string> abnormal[kIntakes];
        std::thread intakes[kIntakes];
        for (int t = 0; t < kIntakes; ++t)
            intakes[t] = std::thread(report, client, t, &abnormal[t]);
        for (std::thread &t : intakes) t.join();
        done.store(true);
        timer.join();
        command_line.join();

        EXPECT_EQ(inconsistent.load(), 0);
        EXPECT_TRUE(consistent(client));
        write_all(client);
        EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
        std::string rows = read_file(abnormal_file(client));
        size_t queued = 0;
        for (const std::vector<std::string> &names : abnormal) {
            size_t last = 0;
            for (const std::string &name : names) {  // once, and after the earlier ones
                size_t at = rows.find(name);
                ASSERT_NE(at, std::string::npos) << name;
                EXPECT_EQ(rows.find(name, at + 1), std::string::npos) << name;
                EXPECT_GT(at, last) << name;
                last = at;
            }
            queued += names.size();
        }
        EXPECT_GT(queued, size_t{kIntakes * kEvents / 5});
        EXPECT_EQ(count_lines(rows), queued + 1);  // and nothing else: the header only
    }
};

TEST_F(StressTest, Dot1xDaemon) {
    run(AUTHMNG_CLIENT_DOT1X,
        {"show authmng statistic", "show authmng mab statistic fail",
         "show authmng statistic telnet", "show authmng mab statistic auth-detail",
         "show authmng abnormal", "show authmng abnormal offline", "debug authmng summary"});
}

TEST_F(StressTest, WebauthDaemon) {
    run(AUTHMNG_CLIENT_WBA,
        {"show authmng statistic", "show authmng statistic telnet", "show authmng abnormal",
         "show authmng statistic tmp", "show authmanage user-escape", "debug authmanage show",
         "authmanage user-escape enable", "no authmanage user-escape enable",
         "authmanage user-escape enable", "authmanage user-escape when authentication-time 3000",
         "debug authmng summary"});
}

}  // namespace
