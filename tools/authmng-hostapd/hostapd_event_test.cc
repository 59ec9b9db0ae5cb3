#include "hostapd_event.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace authmng_hostapd {
namespace {

using namespace std::string_literals;

TEST(HostapdEvent, LinesAsHostapdSendsThemAndBrokenOnes) {
    const uint8_t station[6] = {0x02, 0x00, 0x00, 0x00, 0x01, 0x0a}, none[6] = {};
    struct Case {
        const char *line;
        EventKind kind;  // the kinds before Terminating carry the station's MAC
    } const cases[] = {
        {"<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a", EventKind::EapStarted},
        {"<3>CTRL-EVENT-EAP-SUCCESS2 02:00:00:00:01:0A\n", EventKind::EapSuccess},
        {"<3>CTRL-EVENT-EAP-SUCCESS 02:00:00:00:01:0a", EventKind::EapSuccess},
        {"<3>CTRL-EVENT-EAP-FAILURE2 02:00:00:00:01:0a", EventKind::EapFailure},
        {"<3>CTRL-EVENT-EAP-TIMEOUT-FAILURE 02:00:00:00:01:0a", EventKind::EapTimeoutNoId},
        {"<3>CTRL-EVENT-EAP-TIMEOUT-FAILURE2 02:00:00:00:01:0a", EventKind::EapTimeoutMethod},
        {"<3>AP-STA-DISCONNECTED 02:00:00:00:01:0a", EventKind::StaDisconnected},
        {"<3>AP-STA-CONNECTED 02:00:00:00:01:0a extra=1", EventKind::StaConnected},
        {"<3>CTRL-EVENT-EAP-PROPOSED-METHOD 02:00:00:00:01:0a method=25", EventKind::Ignored},
        {"<3>CTRL-EVENT-TERMINATING", EventKind::Terminating},
        {"<2>SOMETHING-NEW with words", EventKind::Unknown},
    };
    HostapdEvent event;
    for (const Case &c : cases) {
        ASSERT_TRUE(parse_event(c.line, strlen(c.line), &event)) << c.line;
        EXPECT_EQ(event.kind, c.kind) << c.line;
        EXPECT_EQ(memcmp(event.mac, c.kind < EventKind::Terminating ? station : none, 6), 0)
            << c.line;
    }
    // No level, a broken level, no name, a bad or missing MAC, a control
    // byte, an embedded NUL, over-long.
    for (const std::string &line :
         {"CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a"s,
          "<3CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a"s, "<12345>X"s, "<3>"s,
          "<3> 02:00:00:00:01:0a"s, "<3>CTRL-EVENT-EAP-STARTED"s,
          "<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01"s,
          "<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0g"s,
          "<3>CTRL-EVENT-EAP-STARTED 02-00-00-00-01-0a"s,
          "<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0ab"s, "<3>CTRL\x01-EVENT 02:00:00:00:01:0a"s,
          "<3>AP-STA-CONNECTED 02:00\0:00:00:01:0a"s,
          "<3>AP-STA-CONNECTED 02:00:00:00:01:0a " + std::string(kEventLineMax, 'x')}) {
        EXPECT_FALSE(parse_event(line.data(), line.size(), &event)) << line;
    }
}

}  // namespace
}  // namespace authmng_hostapd
