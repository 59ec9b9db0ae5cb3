// Faults of the device around the library: unusable paths, failing writes,
// a failing clock and failing allocations. Each fault costs at most the
// write it hits; the records, baselines and the abnormal list keep what
// they held, and nothing crashes.
#include <sys/resource.h>
#include <sys/stat.h>
#include <unistd.h>

#include <csignal>
#include <cstdlib>
#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const std::string kDot1xDir = "/security/authmanage/dot1x";
const std::string kDot1xStatistic = kDot1xDir + "/dot1x_statistic.csv";
const std::string kWebauthStatistic = "/security/authmanage/webauth/wba_statistic.csv";
const std::string kEscapeLog = "/security/authmanage/log.txt";
constexpr int32_t kDot1x = AUTHMNG_CLIENT_DOT1X, kWebauth = AUTHMNG_CLIENT_WBA;

// Sum of one column over the rows of a CSV file whose second column starts
// with type ("" for every row).
uint64_t column_sum(const std::string &text, int column, const std::string &type = "") {
    uint64_t sum = 0;
    for (size_t row = text.find('\n'); row < text.size() - 1; row = text.find('\n', row + 1)) {
        const char *at = text.c_str() + row + 1, *type_at = strchr(at, ',') + 1;
        for (int c = 0; c < column; ++c) at = strchr(at, ',') + 1;
        if (strncmp(type_at, type.c_str(), type.size()) == 0) sum += strtoull(at, nullptr, 10);
    }
    return sum;
}

class FaultTest : public AuthmngTest {
protected:
    // A failed authentication of the client (counted, queued as abnormal)
    // under the name "user<n>." (the dot keeps user1 from matching user12).
    static void fail(int32_t client, int n) {
        authmng_auth_info_t info = event_record(client, 0, client == kWebauth ? 3 : 5);
        snprintf(info.username, sizeof info.username, "user%d.", n);
        authmng_notify_auth_info(&info);
    }
    // Every event counted so far went into exactly one interval row, every
    // queued user (from user<first> on) into exactly one abnormal row, and
    // none is left queued.
    void expect_everything_written(int32_t client, int events, int first = 0) {
        write_all(client);
        bool web = client == kWebauth;
        std::string rows = read_file(tmp_path(web ? kWebauthStatistic : kDot1xStatistic));
        EXPECT_EQ(column_sum(rows, web ? 2 : 3, web ? "" : "dot1x"), uint64_t(events));
        std::string abnormal = read_file(abnormal_file(client));
        for (int n = 0; n < events; ++n) {
            EXPECT_EQ(occurrences(abnormal, "user" + std::to_string(n) + "."), n < first ? 0u : 1u)
                << n;
        }
        EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    }
    // Rounds of one event and every write with allocations failing from the
    // n-th of the round on; returns the number of rounds.
    static int sweep_allocations(int32_t client) {
        for (int n = 0;; ++n) {
            long before = authmng_host_allocations();
            authmng_host_alloc_fail_after(n);
            fail(client, n);
            write_all(client);
            authmng_host_alloc_fail_after(-1);
            if (authmng_host_allocations() - before <= n) return n + 1;
        }
    }
};

// Files where the client's directories belong, then directories, then FIFOs
// with nobody reading them where its files belong: every write is skipped at
// once, the rows stay queued and the interval unwritten. (An open that
// waited for a reader of a FIFO would hold the abnormal writer, and with it
// the library mutex and every intake.) Once the paths are usable again the
// next writes carry everything.
TEST_F(FaultTest, WrongKindsOfFileInTheWrongPlaces) {
    ASSERT_EQ(start(kDot1x), 0);
    const std::string dirs[] = {flash_path(kDot1xDir), tmp_path(kDot1xDir)};
    const std::string files[] = {abnormal_file(kDot1x), tmp_path(kDot1xStatistic)};
    for (const std::string &dir : dirs) ASSERT_EQ(rmdir(dir.c_str()), 0), write_file(dir, "x\n");
    fail(kDot1x, 0);
    write_all(kDot1x);
    for (const std::string &dir : dirs) remove(dir.c_str()), mkdir(dir.c_str(), 0777);
    for (const std::string &file : files) ASSERT_EQ(mkdir(file.c_str(), 0777), 0);
    fail(kDot1x, 1);
    write_all(kDot1x);
    for (const std::string &file : files) rmdir(file.c_str()), mkfifo(file.c_str(), 0600);
    fail(kDot1x, 2);
    alarm(20);  // a writer that waits ends the test here
    write_all(kDot1x);
    alarm(0);
    // Nothing of the three was lost.
    for (const std::string &file : files) remove(file.c_str());
    expect_everything_written(kDot1x, 3);
}

// A TMPDIR one character too long for the shortest temporary path (the
// trailing slashes name the same directory): the temporary files and the
// escape log are skipped and the baseline stays; once the longest path is
// exactly 108 characters long they are all written again.
TEST_F(FaultTest, OverlongTmpdir) {
    ASSERT_EQ(start(kWebauth), 0);
    const size_t shortest = kEscapeLog.size();
    const size_t longest = std::string("/security/authmanage/webauth/wba_substatistic.csv").size();
    const size_t room = AUTHMNG_PATH_MAX - tmp_dir().size();
    setenv("TMPDIR", (tmp_dir() + std::string(room - shortest + 1, '/')).c_str(), 1);
    fail(kWebauth, 0);
    write_all(kWebauth);
    authmng_save_abnormal_log("auth: 1 2\n");
    EXPECT_FALSE(exists(tmp_path(kWebauthStatistic)) || exists(tmp_path(kEscapeLog)));
    setenv("TMPDIR", std::string(5000, '/').c_str(), 1);  // far beyond any path
    authmng_write_webauth_statistic_to_tmp();
    setenv("TMPDIR", (tmp_dir() + std::string(room - longest, '/')).c_str(), 1);
    fail(kWebauth, 1);
    authmng_save_abnormal_log("auth: 1 2\n");
    EXPECT_EQ(count_lines(read_file(tmp_path(kEscapeLog))), 2u);
    expect_everything_written(kWebauth, 2);
}

// A full disk, made by a file-size limit of 0 bytes (with the signal of an
// oversized write ignored): the opens succeed and the writes are lost.
// That loses the rows of the write that hit it, as unchecked write errors
// do, and nothing more: the next writes go on from there.
TEST_F(FaultTest, WritesIntoAFullDisk) {
    ASSERT_EQ(start(kDot1x), 0);
    fail(kDot1x, 0), fail(kDot1x, 1);
    struct rlimit saved;
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &saved), 0);
    struct rlimit full = {0, saved.rlim_max};
    signal(SIGXFSZ, SIG_IGN);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &full), 0);
    write_all(kDot1x);
    ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &saved), 0);
    remove(abnormal_file(kDot1x).c_str()), remove(tmp_path(kDot1xStatistic).c_str());
    fail(kDot1x, 2);
    write_all(kDot1x);
    std::string rows = read_file(abnormal_file(kDot1x));  // the header and user2 only
    EXPECT_TRUE(count_lines(rows) == 2 && rows.find(",user2.,") != std::string::npos) << rows;
    EXPECT_EQ(column_sum(read_file(tmp_path(kDot1xStatistic)), 3, "dot1x"), 1u);
}

// The clock fails through a whole round of events, reports, displays,
// writes and a tick: the events still count, the abnormal record and the
// escape log entry of that time are lost, the verdict is still given.
TEST_F(FaultTest, FailingClock) {
    ASSERT_EQ(start(kWebauth), 0);
    g_authmng_check_open = 1;
    authmng_host_clock_fail(1);
    fail(kWebauth, 0);
    authmng_check_input_t totals = {10, 100, 4, 400, 0, 0};
    authmng_check_result_t verdict;
    authmng_get_check_result(&totals, &verdict);
    totals.total_auth_count = 8, totals.total_auth_time = 24400;  // 4 in 24000 ms
    authmng_get_check_result(&totals, &verdict);
    EXPECT_EQ(verdict.escape_ratio, 100u);
    authmng_show_webauth_statistic_abnormal();
    authmng_timer_proc();
    write_all(kWebauth);
    authmng_host_clock_fail(0);
    EXPECT_EQ(g_authmng_webauth.auth_total, 1u);
    EXPECT_EQ(g_authmng_check[1].abnormal_count, 1u);
    EXPECT_FALSE(exists(tmp_path(kEscapeLog)));
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    fail(kWebauth, 1);
    authmng_write_webauth_abnormal_record_to_file();
    std::string rows = read_file(abnormal_file(kWebauth));
    EXPECT_EQ(occurrences(rows, ",user0.,") + 2 * occurrences(rows, ",user1.,"), 2u);
}

// Allocations fail from the n-th of a round of one event and every write
// on, for each n until a round runs without a failure: each round loses at
// most what its failed allocations were for, and afterwards every event is
// in exactly one interval row and every queued record in one abnormal row.
// Round 0 fails its first allocation, the abnormal node of user0.
TEST_F(FaultTest, FailingAllocationsDot1x) {
    ASSERT_EQ(start(kDot1x), 0);
    int rounds = sweep_allocations(kDot1x);
    EXPECT_GE(rounds, 5);  // the node and the line buffers of the three writers, and a clean round
    expect_everything_written(kDot1x, rounds, 1);
    std::string daily = read_file(flash_path(kDot1xStatistic));
    std::string last = daily.substr(daily.rfind('\n', daily.size() - 2) + 1);
    EXPECT_EQ(occurrences(last, ","), 58u) << last;
}

TEST_F(FaultTest, FailingAllocationsWebauth) {
    ASSERT_EQ(start(kWebauth), 0);
    expect_everything_written(kWebauth, sweep_allocations(kWebauth), 1);
}

}  // namespace
