#include "ctrl_reply.h"

#include <gtest/gtest.h>

#include <string>
#include <tuple>

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

TEST(CtrlReply, StationFiguresBoundsAndRefusals) {
    StationInfo info;
    ASSERT_TRUE(parse_station_reply(kStation, sizeof kStation - 1, &info));
    EXPECT_EQ(std::tie(info.authorized, info.user, info.backend_responses, info.timeouts_authing,
                       info.logoff_frames),
              std::make_tuple(true, "alice", 10u, 1u, 2u));

    const std::string unauthorized = "02:00:00:00:01:01\nflags=[AUTH][ASSOC]\n";
    ASSERT_TRUE(parse_station_reply(unauthorized.data(), unauthorized.size(), &info));
    EXPECT_EQ(std::tie(info.authorized, info.user), std::make_tuple(false, ""));

    const std::string hostile =
        "02:00:00:00:01:01\ndot1xAuthSessionUserName=" + std::string(5000, 'u') +
        "\ndot1xAuthBackendResponses=99999999999999999999999\n";
    ASSERT_TRUE(parse_station_reply(hostile.data(), hostile.size(), &info));
    EXPECT_EQ(std::make_tuple(info.user.size(), info.backend_responses),
              std::make_tuple(255u, UINT64_MAX));  // bounded

    for (const std::string reply : {"FAIL\n", "", "flags=[AUTHORIZED]\n"}) {
        EXPECT_FALSE(parse_station_reply(reply.data(), reply.size(), &info)) << reply;
    }
}

TEST(CtrlReply, MibTakesTheFirstServer) {
    const std::string mib =
        "dot1xPaePortNumber=1\n"
        "radiusAuthServerIndex=1\nradiusAuthClientRoundTripTime=100\nradiusAuthClientTimeouts=3\n"
        "radiusAuthServerIndex=2\nradiusAuthClientRoundTripTime=7\nradiusAuthClientTimeouts=9\n";
    MibInfo info;
    ASSERT_TRUE(parse_mib_reply(mib.data(), mib.size(), &info));
    EXPECT_EQ(std::tie(info.round_trip_centis, info.timeouts), std::make_tuple(100u, 3u));
    EXPECT_FALSE(parse_mib_reply("FAIL\n", 5, &info));
}

}  // namespace
}  // namespace authmng_hostapd
