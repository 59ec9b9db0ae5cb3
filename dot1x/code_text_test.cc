// The three code tables at their edges and where they differ.
#include <string>

#include "support/fixture.h"

namespace authmng_test {
namespace {

TEST(CodeTextTest, AuthenticationResultTexts) {
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(0), "auth success");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(24), "valid ip mab");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(25), "");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(60), "");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(61), "sta unassoc");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(87), "snmp kick");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(106), "online result");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(127), "stachk stamng");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(133), "");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(134), "other reason");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(135), "");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(0xFFFFFFFFu), "");
    int with_text = 0;
    for (uint32_t code = 0; code < 135; ++code)
        with_text += authmng_dot1x_auth_reason_str(code)[0] != 0;
    EXPECT_EQ(with_text, 71);
}

TEST(CodeTextTest, OfflineReasonTextsKeepTheirOwnWording) {
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(0), "user logoff");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(42), "fail vlan fail");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(43), "");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(61), "unassoc");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(101), "offline");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(106), "online auth");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(127), "stachk stamg");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(133), "");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(134), "other reason");
    EXPECT_STREQ(authmng_dot1x_offline_reason_str(1000), "");
    int with_text = 0;
    for (uint32_t code = 0; code < 135; ++code)
        with_text += authmng_dot1x_offline_reason_str(code)[0] != 0;
    EXPECT_EQ(with_text, 89);
}

TEST(CodeTextTest, EventKindTexts) {
    EXPECT_STREQ(authmng_dot1x_event_str(0), "D1X_AUTH");
    EXPECT_STREQ(authmng_dot1x_event_str(2), "D1X_OFFLINE");
    EXPECT_STREQ(authmng_dot1x_event_str(4), "D1X_REAUTH_START");
    EXPECT_STREQ(authmng_dot1x_event_str(5), "");
}

}  // namespace
}  // namespace authmng_test
