#include "hostapd_event.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>

namespace authmng_hostapd {
namespace {

TEST(HostapdEvent, LinesAsHostapdSendsThemAndBrokenOnes) {
    const uint8_t station[6] = {0x02, 0x00, 0x00, 0x00, 0x01, 0x0a};
    struct Case {
        const char *line;
        bool ok;
        EventKind kind;
        bool has_mac;
    } const cases[] = {
        {"<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a", true, EventKind::EapStarted, true},
        {"<3>CTRL-EVENT-EAP-SUCCESS2 02:00:00:00:01:0A\n", true, EventKind::EapSuccess, true},
        {"<3>CTRL-EVENT-EAP-SUCCESS 02:00:00:00:01:0a", true, EventKind::EapSuccess, true},
        {"<3>CTRL-EVENT-EAP-FAILURE2 02:00:00:00:01:0a", true, EventKind::EapFailure, true},
        {"<3>CTRL-EVENT-EAP-TIMEOUT-FAILURE 02:00:00:00:01:0a", true, EventKind::EapTimeoutNoId,
         true},
        {"<3>CTRL-EVENT-EAP-TIMEOUT-FAILURE2 02:00:00:00:01:0a", true, EventKind::EapTimeoutMethod,
         true},
        {"<3>AP-STA-DISCONNECTED 02:00:00:00:01:0a", true, EventKind::StaDisconnected, true},
        {"<3>AP-STA-CONNECTED 02:00:00:00:01:0a extra=1", true, EventKind::StaConnected, true},
        {"<3>CTRL-EVENT-EAP-PROPOSED-METHOD 02:00:00:00:01:0a vendor=0 method=25", true,
         EventKind::Ignored, false},
        {"<3>CTRL-EVENT-TERMINATING", true, EventKind::Terminating, false},
        {"<2>SOMETHING-NEW with words", true, EventKind::Unknown, false},
        // Malformed: no level, a broken level, no name, a bad or missing MAC.
        {"CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a", false, EventKind::Unknown, false},
        {"<3CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0a", false, EventKind::Unknown, false},
        {"<12345>X", false, EventKind::Unknown, false},
        {"<3>", false, EventKind::Unknown, false},
        {"<3> 02:00:00:00:01:0a", false, EventKind::Unknown, false},
        {"<3>CTRL-EVENT-EAP-STARTED", false, EventKind::Unknown, false},
        {"<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01", false, EventKind::Unknown, false},
        {"<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0g", false, EventKind::Unknown, false},
        {"<3>CTRL-EVENT-EAP-STARTED 02-00-00-00-01-0a", false, EventKind::Unknown, false},
        {"<3>CTRL-EVENT-EAP-STARTED 02:00:00:00:01:0ab", false, EventKind::Unknown, false},
        {"<3>CTRL\x01-EVENT 02:00:00:00:01:0a", false, EventKind::Unknown, false},
    };
    for (const Case &c : cases) {
        HostapdEvent event;
        ASSERT_EQ(parse_event(c.line, strlen(c.line), &event), c.ok) << c.line;
        if (!c.ok) continue;
        EXPECT_EQ(event.kind, c.kind) << c.line;
        if (c.has_mac) {
            EXPECT_EQ(memcmp(event.mac, station, 6), 0) << c.line;
        }
    }
}

TEST(HostapdEvent, OverLongAndEmbeddedNulLinesAreRefused) {
    std::string longer = "<3>AP-STA-CONNECTED 02:00:00:00:01:0a " + std::string(kEventLineMax, 'x');
    HostapdEvent event;
    EXPECT_FALSE(parse_event(longer.data(), longer.size(), &event));
    const char nul[] = "<3>AP-STA-CONNECTED 02:00\0:00:00:01:0a";
    EXPECT_FALSE(parse_event(nul, sizeof nul - 1, &event));
}

}  // namespace
}  // namespace authmng_hostapd
