// The code texts that no display or file shows: the golden failure list
// holds every other result code and every offline code from 0 to 134.
#include "support/fixture.h"

namespace {

TEST(CodeTextTest, EventKindsAndCodesPastTheTables) {
    EXPECT_STREQ(authmng_dot1x_event_str(D1X_AUTH_START), "D1X_AUTH_START");
    EXPECT_STREQ(authmng_dot1x_event_str(D1X_REAUTH_START), "D1X_REAUTH_START");
    EXPECT_STREQ(authmng_dot1x_event_str(5), "");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(0), "auth success");
    EXPECT_STREQ(authmng_dot1x_auth_reason_str(AUTHMNG_D1X_CODE_NUM), "");
}

}  // namespace
