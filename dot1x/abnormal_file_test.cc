// The abnormal list, its 802.1X table and its 802.1X file: cap and
// eviction, independent stamped copies, every field in the table and in the
// file, the filter by event kind, the drain, and the 600000-byte rule.
#include <arpa/inet.h>

#include <cstring>
#include <vector>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const char kHeader[] =
    "date,username,mac,ip,auth_time,aaa timeout,requestid_timeout,request_timeout,rsna_notify,"
    "start_notify,Type,Reason,Rssi,StaT,SelfT,AaaT,RdsT,RdsST,Acode,Rcode,DisMatchId,LogOff\n";

class AbnormalTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_DOT1X), 0);
    }
    static void queue(uint32_t result) {
        authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, result);
        authmng_record_abnormal_auth(&info);
    }
    // Results of the queued records, oldest first; checks links and count.
    static std::vector<uint32_t> queued() {
        std::vector<uint32_t> results;
        authmng_list_head_t *head = &g_authmng_auth_abnormal_record_list;
        for (authmng_list_head_t *link = head->next; link != head; link = link->next) {
            EXPECT_EQ(link->next->prev, link);
            results.push_back(reinterpret_cast<authmng_abnormal_node_t *>(link)->info.result);
        }
        EXPECT_EQ(results.size(), g_authmng_abnormal_record_num);
        return results;
    }
    std::string file() const { return flash_path("/security/authmanage/dot1x/dot1x_abnormal.csv"); }
};

TEST_F(AbnormalTest, CapEvictsOneOldestPerEvent) {
    g_authmng_abnormal_record_max = 3;
    for (uint32_t result = 1; result <= 6; ++result) queue(result);
    EXPECT_EQ(queued(), (std::vector<uint32_t>{4, 5, 6}));
    g_authmng_abnormal_record_max = 2;  // lowered below the length: still one out, one in
    queue(7);
    EXPECT_EQ(queued(), (std::vector<uint32_t>{5, 6, 7}));
}

// A record with every field set and one with none, of both methods: the
// table shows them oldest first, filtered by event kind; the drain writes
// them with their queueing time and empties the list.
TEST_F(AbnormalTest, EveryFieldInTheTableAndInTheFile) {
    authmng_write_dot1x_abnormal_record_to_file();  // empty list, no file: header only
    EXPECT_EQ(read_file(file()), kHeader);

    authmng_auth_info_t info = event_record(AUTHMNG_CLIENT_DOT1X, D1X_AUTH, 3);
    const uint8_t mac[6] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    memcpy(info.mac, mac, sizeof mac);
    info.ip = htonl(0xC0A80114), info.auth_time = 1500, info.aaa_timeout = 1;
    info.requestid_timeout = 2, info.request_timeout = 3, info.rsna_notify = 4;
    info.start_notify = 5, info.rssi = -70, info.sta_time = 11, info.self_time = 12;
    info.aaa_time = 13, info.rds_time = 14, info.rds_srv_time = 15, info.aaa_code = -16;
    info.rds_code = 17, info.dismatch_id = 18, info.logoff = 19;
    strcpy(info.username, "alice");
    authmng_record_abnormal_auth(&info);
    strcpy(info.username, "eve");  // the queued copy is the list's own
    authmng_host_clock_set(kMonday140507 + 60);
    authmng_auth_info_t offline = event_record(AUTHMNG_CLIENT_MAB, D1X_OFFLINE, 3);
    authmng_record_abnormal_auth(&offline);

    const std::string offline_row =
        "03.09 14:06:07 0000.0000.0000 0          0     0      0       0    0    D1X_OFFLINE "
        "user logoff        0  dBm 0     0     0     0     0     0     0     0     0     "
        "          \n";
    authmng_show_dot1x_statistic_abnormal(AUTHMNG_ABNORMAL_FILTER_ALL);
    EXPECT_EQ(take_cli(),
              golden("dot1x_abnormal_empty.txt") +
                  "03.09 14:05:07 001a.2b3c.4d5e 1500       1     2      3       4    5    "
                  "D1X_AUTH    aaa timeout        -70dBm 11    12    13    14    15    -16   "
                  "17    18    19    alice     \n" +
                  offline_row);
    authmng_show_dot1x_statistic_abnormal(D1X_OFFLINE);
    EXPECT_EQ(take_cli(), golden("dot1x_abnormal_empty.txt") + offline_row);

    authmng_write_dot1x_abnormal_record_to_file();
    EXPECT_EQ(read_file(file()),
              std::string(kHeader) +
                  "03.09 14:05:07,alice,001a.2b3c.4d5e,192.168.1.20,1500,1,2,3,4,5,D1X_AUTH,"
                  "aaa timeout,-70,11,12,13,14,15,-16,17,18,19\n"
                  "03.09 14:06:07,,0000.0000.0000,0.0.0.0,0,0,0,0,0,0,D1X_OFFLINE,user "
                  "logoff,0,0,0,0,0,0,0,0,0,0\n");
    queue(3);  // the drained list starts again from empty
    EXPECT_EQ(queued(), (std::vector<uint32_t>{3}));
}

TEST_F(AbnormalTest, FileRestartsOnlyPastSixHundredThousandBytes) {
    write_file_of_size(file(), 600000);  // 7500 lines of 80 bytes
    queue(5);
    authmng_write_dot1x_abnormal_record_to_file();
    EXPECT_EQ(count_lines(read_file(file())), 7500u + 1);  // kept, no header
    write_file_of_size(file(), 600001);
    queue(5);
    authmng_write_dot1x_abnormal_record_to_file();
    EXPECT_EQ(read_file(file()).rfind(kHeader, 0), 0u);
    EXPECT_EQ(count_lines(read_file(file())), 2u);
}

}  // namespace
