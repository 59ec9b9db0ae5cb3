// Abnormal web authentications: the file row and the display line carry
// every field of a record, stamped with the time it was queued.
#include <arpa/inet.h>
#include <sys/stat.h>

#include <cstring>
#include <string>

#include "support/fixture.h"

using namespace authmng_test;

namespace {

const std::string kHeader =
    "date,username,mac,ip,ack_time,auth_time,scc_time,acct_time,portal_time,auth_aaa_time,"
    "auth_rds_time,auth_rds_svr_time,acct_aaa_time,acct_rds_time,acct_rds_svr_time,wba_code,"
    "wba_state,wba_event,aaa_auth_code,rds_auth_code,aaa_acct_code,rds_acct_code\n";

class WebauthAbnormalFileTest : public AuthmngTest {
protected:
    void SetUp() override {
        AuthmngTest::SetUp();
        ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
        path = flash_path("/security/authmanage/webauth/wba_abnormal.csv");
    }
    std::string path;
};

TEST_F(WebauthAbnormalFileTest, RowsAndDisplayCarryEveryFieldAndTheQueueTime) {
    authmng_write_webauth_abnormal_record_to_file();  // empty list: header only
    EXPECT_EQ(read_file(path), kHeader);

    authmng_auth_info_t e = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 9);
    const uint8_t mac[6] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    memcpy(e.mac, mac, sizeof mac);
    e.ip = htonl(0xC0A80114);
    e.ack_time = 105, e.auth_time = 106, e.scc_time = 107, e.acct_time = 108;
    e.portal_time = 109, e.aaa_time = 110, e.rds_time = 111, e.rds_srv_time = 112;
    e.acct_aaa_time = 113, e.acct_rds_time = 114, e.acct_rds_svr_time = 115, e.wba_state = 117;
    e.wba_event = 118, e.aaa_code = -119, e.rds_code = 120, e.aaa_acct_code = -121;
    e.rds_acct_code = 122;
    strcpy(e.username, "alice");
    authmng_record_abnormal_auth(&e);
    authmng_host_clock_set(kMonday140507 + 3600 + 60 + 1);
    strcpy(e.username, "bob");
    authmng_record_abnormal_auth(&e);
    authmng_show_webauth_statistic_abnormal();
    const std::string shown =
        "),mac(001a.2b3c.4d5e),ip(192.168.1.20),ack_time(105),auth_time(106),scc_time(107),"
        "acct_time(108),portal_time(109),auth_aaa_time(110),auth_rds_time(111),"
        "auth_rds_svr_time(112),acct_aaa_time(113),acct_rds_time(114),acct_rds_svr_time(115),"
        "wba_code(9),wba_state(117),wba_event(118),aaa_auth_code(-119),rds_auth_code(120),"
        "aaa_acct_code(-121),rds_acct_code(122).\n";
    EXPECT_EQ(take_cli(),
              "\nrecord num:2, value:3000, max-num:1000, clock:1\n"
              "\nMon Mar  9 14:05:07 2026\nusername(alice" +
                  shown + "\nMon Mar  9 15:06:08 2026\nusername(bob" + shown);

    authmng_host_clock_set(kMonday140507 + 86400);  // written a day later
    authmng_write_webauth_abnormal_record_to_file();
    const std::string row =
        ",001a.2b3c.4d5e,192.168.1.20,105,106,107,108,109,110,111,112,113,114,115,9,117,118,"
        "-119,120,-121,122\n";
    EXPECT_EQ(read_file(path), kHeader + "3.9 14:5:7,alice" + row + "3.9 15:6:8,bob" + row);
    EXPECT_EQ(g_authmng_abnormal_record_num, 0u);
    EXPECT_EQ(g_authmng_auth_abnormal_record_list.next, &g_authmng_auth_abnormal_record_list);
}

TEST_F(WebauthAbnormalFileTest, SizeLimitAndUnopenableFile) {
    authmng_auth_info_t e = event_record(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 1);
    const std::string row =
        "3.9 14:5:7,,0000.0000.0000,0.0.0.0,0,0,0,0,0,0,0,0,0,0,0,1,0,0,0,0,0,0\n";
    for (size_t size : {600000, 600001}) {  // at the limit: appended to; past it: emptied first
        write_file_of_size(path, size);
        authmng_record_abnormal_auth(&e);
        authmng_write_webauth_abnormal_record_to_file();
        EXPECT_EQ(read_file(path).substr(size == 600000 ? size : 0),
                  size == 600000 ? row : kHeader + row);
    }
    remove(path.c_str());
    ASSERT_EQ(mkdir(path.c_str(), 0777), 0);
    authmng_record_abnormal_auth(&e);
    authmng_write_webauth_abnormal_record_to_file();  // records wait for the next write
    EXPECT_EQ(g_authmng_abnormal_record_num, 1u);
}

}  // namespace
