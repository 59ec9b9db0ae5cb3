#include "ctrl_reply.h"

#include <gtest/gtest.h>

#include <string>

namespace authmng_hostapd {
namespace {

// A STA reply of hostapd 2.10 for a wired 802.1X station, shortened.
const char kStation[] =
    "02:00:00:00:01:01\n"
    "flags=[AUTH][ASSOC][AUTHORIZED]\n"
    "aid=0\n"
    "dot1xAuthEapolLogoffFramesRx=2\n"
    "dot1xAuthAuthTimeoutsWhileAuthenticating=1\n"
    "dot1xAuthBackendResponses=10\n"
    "dot1xAuthSessionUserName=alice\n"
    "last_eap_type_as=25 (PEAP)\n";

TEST(CtrlReply, StationFiguresAndRefusals) {
    StationInfo info;
    ASSERT_TRUE(parse_station_reply(kStation, sizeof kStation - 1, &info));
    EXPECT_TRUE(info.authorized);
    EXPECT_EQ(info.user, "alice");
    EXPECT_EQ(info.backend_responses, 10u);
    EXPECT_EQ(info.timeouts_authing, 1u);
    EXPECT_EQ(info.logoff_frames, 2u);

    const std::string unauthorized = "02:00:00:00:01:01\nflags=[AUTH][ASSOC]\n";
    ASSERT_TRUE(parse_station_reply(unauthorized.data(), unauthorized.size(), &info));
    EXPECT_FALSE(info.authorized);
    EXPECT_EQ(info.user, "");

    for (const std::string reply : {"FAIL\n", "", "flags=[AUTHORIZED]\n"}) {
        EXPECT_FALSE(parse_station_reply(reply.data(), reply.size(), &info)) << reply;
    }
}

TEST(CtrlReply, HostileStationValuesStayBounded) {
    std::string reply = "02:00:00:00:01:01\ndot1xAuthSessionUserName=" + std::string(5000, 'u') +
                        "\ndot1xAuthBackendResponses=99999999999999999999999\n";
    StationInfo info;
    ASSERT_TRUE(parse_station_reply(reply.data(), reply.size(), &info));
    EXPECT_EQ(info.user.size(), 255u);
    EXPECT_EQ(info.backend_responses, UINT64_MAX);
}

TEST(CtrlReply, MibTakesTheFirstServer) {
    const std::string mib =
        "dot1xPaePortNumber=1\n"
        "radiusAuthServerIndex=1\nradiusAuthClientRoundTripTime=100\nradiusAuthClientTimeouts=3\n"
        "radiusAuthServerIndex=2\nradiusAuthClientRoundTripTime=7\nradiusAuthClientTimeouts=9\n";
    MibInfo info;
    ASSERT_TRUE(parse_mib_reply(mib.data(), mib.size(), &info));
    EXPECT_EQ(info.round_trip_centis, 100u);
    EXPECT_EQ(info.timeouts, 3u);
    EXPECT_FALSE(parse_mib_reply("FAIL\n", 5, &info));
}

}  // namespace
}  // namespace authmng_hostapd
