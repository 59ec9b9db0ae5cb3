// The three code tables: the last code before each gap, the gaps, the
// texts that differ between the two reason tables, and how many codes of
// each table have a text at all.
#include <cstdlib>
#include <initializer_list>

#include "support/fixture.h"

namespace {

// Each case reads "<code> <text>"; nothing after the blank: no text.
void expect_texts(const char *(*text)(uint32_t), std::initializer_list<const char *> cases) {
    for (const char *c : cases) {
        char *rest;
        uint32_t code = static_cast<uint32_t>(strtoul(c, &rest, 10));
        EXPECT_STREQ(text(code), rest + 1) << c;
    }
}

TEST(CodeTextTest, EdgesGapsAndTheTextsThatDiffer) {
    expect_texts(authmng_dot1x_auth_reason_str,
                 {"0 auth success", "24 valid ip mab", "25 ", "61 sta unassoc", "87 snmp kick",
                  "106 online result", "127 stachk stamng", "132 l3 online normal", "133 ",
                  "134 other reason", "135 "});
    expect_texts(
        authmng_dot1x_offline_reason_str,
        {"0 user logoff", "42 fail vlan fail", "43 ", "61 unassoc", "87 snmp kick",
         "106 online auth", "127 stachk stamg", "132 l3 online normal", "134 other reason"});
    expect_texts(authmng_dot1x_event_str, {"0 D1X_AUTH", "4 D1X_REAUTH_START", "5 "});
    int auth_texts = 0, offline_texts = 0;
    for (uint32_t code = 0; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        auth_texts += authmng_dot1x_auth_reason_str(code)[0] != 0;
        offline_texts += authmng_dot1x_offline_reason_str(code)[0] != 0;
    }
    EXPECT_EQ(auth_texts, 71);
    EXPECT_EQ(offline_texts, 89);
}

}  // namespace
