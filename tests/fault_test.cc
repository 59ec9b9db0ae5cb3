// Faults of the device around the library: unusable paths, failing writes,
// a failing clock and failing allocations. Each fault costs at most the
// write it hits; the records, baselines and the abnormal list keep what
// they held, and nothing crashes.
#include <sys/stat.h>
#include <unistd.h>

#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const std::string kDot1xAbnormal = "/security/authmanage/dot1x/dot1x_abnormal.csv";
const std::string kDot1xStatistic = "/security/authmanage/dot1x/dot1x_statistic.csv";

class FaultTest : public AuthmngTest {
protected:
    // A failed 802.1X authentication: counted, and queued as abnormal.
    static void fail_dot1x(const char *user) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 5);
        snprintf(info.username, sizeof info.username, "%s", user);
        authmng_notify_auth_info(&info);
    }
};

// A FIFO where a file belongs, with nobody reading it: the writers cannot
// open it and go on at once. An open that waited for a reader would hold
// the abnormal writer, and with it the library mutex and every intake.
TEST_F(FaultTest, AFifoInPlaceOfAFileIsNotWaitedFor) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    fail_dot1x("alice");
    fail_dot1x("bob");
    ASSERT_EQ(mkfifo(flash_path(kDot1xAbnormal).c_str(), 0600), 0);
    ASSERT_EQ(mkfifo(tmp_path(kDot1xStatistic).c_str(), 0600), 0);
    alarm(20);  // a writer that waits ends the test here
    authmng_write_dot1x_abnormal_record_to_file();
    authmng_write_dot1x_statistic_to_tmpfile();
    alarm(0);
    EXPECT_EQ(g_authmng_abnormal_record_num, 2u);
    EXPECT_EQ(g_amg_d1x_tmp[0].auth_total, 0u);  // the interval is still to be written
    fail_dot1x("carol");
    EXPECT_EQ(g_amg_d1x[0].auth_total, 3u);
}

}  // namespace
