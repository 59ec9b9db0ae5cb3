#include <cstdlib>
#include <string>

#include "escape/check.h"
#include "support/fixture.h"

using namespace authmng_test;

TEST_F(AuthmngTest, EscapeLogSizeLimitAndFailures) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    const std::string log = tmp_path("/security/authmanage/log.txt");
    write_file_of_size(log, 1000);  // at the limit: appended to
    authmng_save_abnormal_log("redirect: 1 2\n");
    EXPECT_EQ(read_file(log).size(), 1000u + 25 + 14);
    write_file_of_size(log, 1001);  // past it: emptied first
    g_authmng_check[2].type = 2;
    authmng_add_check_abnormal_record(&g_authmng_check[2], 4294967295u, 4294967295u);
    EXPECT_EQ(read_file(log), "Mon Mar  9 14:05:07 2026\nauthtimeout: 4294967295 42949");
    g_authmng_lib_error_dbg = 1;
    setenv("TMPDIR", (root_dir() + "/missing").c_str(), 1);
    authmng_save_abnormal_log("auth: 1 2\n");
    EXPECT_NE(take_syslog().find("ERROR_DBG: [authmng_save_abnormal_log line:"), std::string::npos);
}

TEST_F(AuthmngTest, EscapeConfigurationDisplay) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    g_authmng_check[1].avg_value = 123456;
    authmng_show_check_info();
    EXPECT_EQ(take_cli(),
              "authmanage basic information:\n"
              "  user escape .......................disable\n"
              "  timeout ratio .....................10 %\n"
              "  escape time .......................30 min\n"
              "  escape life .......................30 min\n"
              "  redirect threshold value ......... 3000 msec\n"
              "  authentication threshold value ....5000 msec\n"
              "  redirect average value ............0 msec\n"
              "  authentication average value ......1234 msec\n"
              "  authentication statistic ..........enable\n");
}

TEST_F(AuthmngTest, EscapeDebugDumpOfTotalsAndRings) {
    ASSERT_EQ(start(AUTHMNG_CLIENT_WBA), 0);
    g_authmng_info_record = {1, 2, 3, 4, 5, 0};
    authmng_check_t &rd = g_authmng_check[0], &auth = g_authmng_check[1];
    rd.min_value = 11, rd.avg_value = 22, rd.max_value = 33, rd.escape_count = 4, rd.zero_count = 6;
    for (uint32_t i = 1; i <= 12; ++i) authmng_add_check_record(&rd, i);
    for (uint32_t i = 101; i <= 110; ++i) authmng_add_check_record(&auth, i);
    auth.abnormal_value[0] = 7, auth.abnormal_value[1] = 8, auth.abnormal_value[1499] = 9;
    auth.abnormal_pos = 1500;  // slot 1499 newest: slots 1..1499, then 0
    authmng_debug_webauth_check_info();
    const std::string idle =
        "minvalue: 0, avgvalue: 0,  maxvalue: 0.\npre_escape: ratio(0), escape count: 0.\n"
        "total count: 0, zero count: 0.\nabnormal count: 0.\nabnormal value:\n";
    EXPECT_EQ(
        take_cli(),
        "total redirect time: 2.\ntotal redirect count: 1.\ntotal authentication time: 4.\n"
        "total authentication count: 3.\ntotal authentication timeout count: 5.\n"
        "type: redirect.\nminvalue: 11, avgvalue: 22,  maxvalue: 33.\n"
        "pre_escape: ratio(0), escape count: 4.\ntotal count: 0, zero count: 6.\n"
        "abnormal count: 0.\nabnormal value:\n\nrecent value:\n1 2 3 4 5 6 7 8 9 10 \n11 12 \n"
        "type: auth.\n" +
            idle +
            "8 9 7 \nrecent value:\n101 102 103 104 105 106 107 108 109 110 \n\n"
            "type: authtimeout.\n" +
            idle + "\nrecent value:\n\n");
}
