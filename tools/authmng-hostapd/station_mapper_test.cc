#include "station_mapper.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <tuple>
#include <vector>

namespace authmng_hostapd {
namespace {

const uint8_t kMac[6] = {0x02, 0x00, 0x00, 0x00, 0x01, 0x01};
const uint8_t kOther[6] = {0x02, 0x00, 0x00, 0x00, 0x01, 0x02};

// hostapd as the mapper's polls see it: what the test set last.
class FakeSource : public StationSource {
public:
    bool station(int, const uint8_t mac[6], StationInfo *info) override {
        auto it = stations.find(mac[5]);
        if (it == stations.end()) return false;
        *info = it->second;
        return true;
    }
    bool mib(int, MibInfo *info) override {
        *info = mib_info;
        return true;
    }
    std::map<uint8_t, StationInfo> stations;  // by the MAC's last byte
    MibInfo mib_info;
};

// Records as (event, result or offline reason) pairs.
using Kinds = std::vector<std::pair<uint32_t, uint32_t>>;

class MapperTest : public ::testing::Test {
protected:
    MapperTest()
        : mapper_(&source_, [this](const authmng_auth_info_t &r) { records_.push_back(r); }) {
        source_.stations[kMac[5]].user = "alice";
        source_.stations[kOther[5]].user = "bob";
    }
    void event(EventKind kind, int64_t ms, const uint8_t *mac = kMac, int iface = 0) {
        HostapdEvent e;
        e.kind = kind;
        memcpy(e.mac, mac, 6);
        mapper_.on_event(iface, e, ms * 1000);
    }
    void authenticate(int64_t ms, const uint8_t *mac = kMac, int iface = 0) {
        event(EventKind::EapStarted, ms, mac, iface);
        event(EventKind::EapSuccess, ms + 10, mac, iface);
    }
    Kinds kinds() const {
        Kinds out;
        for (const auto &r : records_) {
            out.emplace_back(r.event, r.event == D1X_OFFLINE ? r.offline_reason : r.result);
        }
        return out;
    }
    FakeSource source_;
    std::vector<authmng_auth_info_t> records_;
    StationMapper mapper_;
};

TEST_F(MapperTest, OutcomesOfFirstAuthentications) {
    struct Case {
        EventKind outcome;
        uint32_t result;
        bool id_timeout, request_timeout;
    } const cases[] = {
        {EventKind::EapSuccess, kResultSuccess, false, false},
        {EventKind::EapFailure, kResultAaaReject, false, false},
        {EventKind::EapTimeoutNoId, kResultRequestIdTimeout, true, false},
        {EventKind::EapTimeoutMethod, kResultRequestTimeout, false, true},
    };
    source_.mib_info.round_trip_centis = 1;  // 10 ms
    for (const Case &c : cases) {
        records_.clear();
        event(EventKind::EapStarted, 1000);
        event(c.outcome, 1042);
        ASSERT_EQ(kinds(), (Kinds{{D1X_AUTH_START, 0}, {D1X_AUTH, c.result}}));
        const authmng_auth_info_t &r = records_[1];
        EXPECT_EQ(
            std::tie(r.client_type, r.auth_time, r.rds_time, r.aaa_time, r.online_num,
                     r.requestid_timeout, r.request_timeout),
            std::make_tuple(AUTHMNG_CLIENT_DOT1X, 42u, 10u, 10u,
                            c.result == kResultSuccess ? 1u : 0u, c.id_timeout, c.request_timeout));
        EXPECT_STREQ(r.username, "alice");
        EXPECT_EQ(memcmp(r.mac, kMac, 6), 0);
        if (c.result == kResultSuccess) event(EventKind::StaDisconnected, 2000);
    }
}

TEST_F(MapperTest, ReauthenticationAndItsFailureTakeTheUserOffline) {
    authenticate(0);
    authenticate(5000);
    event(EventKind::EapStarted, 9000);
    event(EventKind::EapFailure, 9500);
    EXPECT_EQ(kinds(), (Kinds{{D1X_AUTH_START, 0},
                              {D1X_AUTH, 0},
                              {D1X_REAUTH_START, 0},
                              {D1X_REAUTH, 0},
                              {D1X_REAUTH_START, 0},
                              {D1X_REAUTH, kResultAaaReject},
                              {D1X_OFFLINE, kOfflineServerKickout}}));
    EXPECT_EQ(records_[4].reauth_num, 2u);
    EXPECT_EQ(records_[6].online_num, 1u);  // the intake subtracts the leaving user
    EXPECT_EQ(mapper_.online(), 0u);
}

TEST_F(MapperTest, RestartAfterServerTimeoutIsAnAaaTimeout) {
    event(EventKind::EapStarted, 0);
    event(EventKind::EapStarted, 2000);  // the supplicant started again: not a time-out
    source_.stations[kMac[5]].timeouts_authing = 1;
    event(EventKind::EapStarted, 32000);
    ASSERT_EQ(kinds(), (Kinds{{D1X_AUTH_START, 0},
                              {D1X_AUTH_START, 0},
                              {D1X_AUTH, kResultAaaTimeout},
                              {D1X_AUTH_START, 0}}));
    EXPECT_EQ(std::tie(records_[2].auth_time, records_[2].aaa_timeout, records_[2].rds_time),
              std::make_tuple(30000u, 1, 0u));
}

TEST_F(MapperTest, DisconnectIsALogoffOnlyWhenTheStationSentOne) {
    authenticate(0);
    authenticate(0, kOther);
    records_.clear();
    source_.stations[kMac[5]].logoff_frames = 1;
    event(EventKind::StaDisconnected, 100);
    event(EventKind::StaDisconnected, 100, kOther);
    event(EventKind::StaDisconnected, 100, kOther);  // again: already offline
    ASSERT_EQ(kinds(), (Kinds{{D1X_OFFLINE, kOfflineUserLogoff}, {D1X_OFFLINE, kOfflineOther}}));
    EXPECT_EQ(records_[0].logoff, 1);
    EXPECT_STREQ(records_[1].username, "bob");
}

TEST_F(MapperTest, LinkDownAndLostInterfaceEndOnlyTheirOwnStations) {
    authenticate(0);                           // online on port 0
    event(EventKind::EapStarted, 20, kOther);  // in progress on port 0
    authenticate(0, kMac, 1);                  // port 1
    records_.clear();
    mapper_.on_link_down(0, 520 * 1000);
    EXPECT_EQ(kinds(), (Kinds{{D1X_OFFLINE, kOfflinePortDown}, {D1X_AUTH, kResultPortDown}}));
    EXPECT_EQ(records_[1].auth_time, 500u);
    records_.clear();
    mapper_.on_iface_lost(1);
    EXPECT_EQ(kinds(), (Kinds{{D1X_OFFLINE, kOfflineNoPortControl}}));
    EXPECT_EQ(mapper_.online(), 0u);
    records_.clear();
    mapper_.on_link_down(0, 600);  // nothing left there
    EXPECT_TRUE(records_.empty());
}

TEST_F(MapperTest, EventsOfUnknownStationsNeitherCrashNorGoOffline) {
    event(EventKind::StaDisconnected, 0);
    event(EventKind::StaConnected, 0);
    event(EventKind::Ignored, 0);
    EXPECT_TRUE(records_.empty());
    source_.stations.clear();  // hostapd no longer answers polls
    event(EventKind::EapSuccess, 5);
    ASSERT_EQ(kinds(), (Kinds{{D1X_AUTH, 0}}));
    EXPECT_EQ(records_[0].auth_time, 0u);  // no start seen: not measured
    EXPECT_STREQ(records_[0].username, "");
}

}  // namespace
}  // namespace authmng_hostapd
