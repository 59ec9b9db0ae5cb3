// The trace format: every kind, every field type, every error, and the
// written form read back.
#include "trace.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <ctime>
#include <string>

namespace authmng_sim {
namespace {

class TraceTest : public ::testing::Test {
protected:
    void SetUp() override {
        setenv("TZ", "UTC", 1);
        tzset();
    }
    ParseResult parse(const std::string &line) {
        return parser_.parse(line.c_str(), &event_, &error_);
    }
    std::string error_message(const std::string &line) {
        EXPECT_EQ(parse(line), ParseResult::Error) << line;
        return error_;
    }

    TraceParser parser_{1773014400};  // 2026-03-09T00:00:00 UTC
    TraceEvent event_;
    std::string error_;
};

TEST_F(TraceTest, EveryKindSetsItsRecordKind) {
    struct Expect {
        const char *kind;
        int32_t client_type;
        uint32_t event;
    } expected[] = {
        {"dot1x-auth", 2, 0},       {"dot1x-reauth", 2, 1},       {"dot1x-offline", 2, 2},
        {"dot1x-start", 2, 3},      {"dot1x-reauth-start", 2, 4}, {"mab-auth", 3, 0},
        {"mab-reauth", 3, 1},       {"mab-offline", 3, 2},        {"mab-start", 3, 3},
        {"mab-reauth-start", 3, 4}, {"wba-auth", 1, 0},           {"wba-offline", 1, 1},
    };
    for (const Expect &e : expected) {
        ASSERT_EQ(parse(std::string("+1 ") + e.kind), ParseResult::Event) << e.kind << error_;
        EXPECT_EQ(event_.info.client_type, e.client_type) << e.kind;
        EXPECT_EQ(event_.info.event, e.event) << e.kind;
    }
    // The other kinds' fields: the read-back test below.
    ASSERT_EQ(parse("+1 cmd  show dot1x authmng statistic "), ParseResult::Event);
    EXPECT_EQ(event_.command, "show dot1x authmng statistic ");
}

TEST_F(TraceTest, FieldValuesOfEveryType) {
    std::string name(256, 'n');
    ASSERT_EQ(parse("+0 dot1x-auth online_num=18446744073709551615 ip=192.0.2.10 rssi=-70 "
                    "aaa_timeout=255 aaa_code=-3 auth_time=0x10 username=" +
                    name),
              ParseResult::Event)
        << error_;
    const authmng_auth_info_t &info = event_.info;
    EXPECT_EQ(info.online_num, UINT64_MAX);
    EXPECT_EQ(info.rssi, -70);
    EXPECT_EQ(info.aaa_timeout, 255);
    EXPECT_EQ(info.aaa_code, -3);
    EXPECT_EQ(info.auth_time, 16u);
    EXPECT_EQ(memcmp(info.username, name.data(), 256), 0) << "filled, no terminator";

    const uint8_t mac[6] = {0x00, 0x1a, 0x2b, 0x3c, 0x4d, 0x5e};
    for (const char *text : {"00:1a:2b:3c:4d:5e", "001a.2b3c.4d5e", "00-1A-2B-3C-4D-5E"}) {
        ASSERT_EQ(parse(std::string("+0 mab-auth mac=") + text), ParseResult::Event);
        EXPECT_EQ(memcmp(event_.info.mac, mac, 6), 0) << text;
    }
}

TEST_F(TraceTest, ErrorsNameTheFieldAndWhatIsWrong) {
    const std::string long_name(257, 'u');
    const struct {
        std::string line, message;
    } cases[] = {
        {"yesterday dot1x-auth", "bad time 'yesterday' (YYYY-MM-DDTHH:MM:SS, @epoch or +seconds)"},
        {"+1 dot1x-login", "unknown kind 'dot1x-login'"},
        {"+1", "missing kind"},
        {"+1 dot1x-auth auth_time", "'auth_time' is not field=value"},
        {"+1 dot1x-auth speed=3", "field 'speed': no such field for dot1x-auth"},
        {"+1 redirect auth_time=3", "field 'auth_time': no such field for redirect"},
        {"+1 dot1x-auth auth_time=12x", "field 'auth_time': not an unsigned 32-bit number: '12x'"},
        {"+1 dot1x-auth auth_time=4294967296",
         "field 'auth_time': not an unsigned 32-bit number: '4294967296'"},
        {"+1 dot1x-auth online_num=-1", "field 'online_num': not an unsigned 64-bit number: '-1'"},
        {"+1 dot1x-auth logoff=256", "field 'logoff': not a number from 0 to 255: '256'"},
        {"+1 dot1x-auth rssi=-2147483649",
         "field 'rssi': not a signed 32-bit number: '-2147483649'"},
        {"+1 dot1x-auth ip=192.0.2", "field 'ip': not an IPv4 address (a.b.c.d): '192.0.2'"},
        {"+1 dot1x-auth mac=00:1a:2b:3c:4d",
         "field 'mac': not a MAC address (aa:bb:cc:dd:ee:ff or aabb.ccdd.eeff): '00:1a:2b:3c:4d'"},
        {"+1 dot1x-auth username=" + long_name,
         "field 'username': longer than 256 characters: '" + long_name + "'"},
        {"+1 cmd", "cmd without a command line"},
        {"@9223372036854775807 dot1x-auth",
         "time '@9223372036854775807' is past 2099-12-31T23:59:59 UTC, the latest the simulator "
         "runs to"},
    };
    for (const auto &c : cases) EXPECT_EQ(error_message(c.line), c.message);
    ASSERT_EQ(parse("2026-03-09T10:00:00 dot1x-auth"), ParseResult::Event);
    EXPECT_EQ(error_message("2026-03-09T09:59:59 dot1x-auth"),
              "time '2026-03-09T09:59:59' goes back before the previous line");
    // A refused line with a valid time moves the time on; one whose time is
    // refused does not.
    EXPECT_EQ(parse("2026-03-09T10:05:00 dot1x-auth speed=3"), ParseResult::Error);
    EXPECT_EQ(parse("2026-03-09T10:00:00 dot1x-auth"), ParseResult::Error);
    ASSERT_EQ(parse("+1 dot1x-auth"), ParseResult::Event);
    EXPECT_EQ(format_time(event_.time), "2026-03-09T10:05:01");
    EXPECT_EQ(error_message("+31622401 dot1x-auth"),
              "time '+31622401' is more than 366 days after the previous line");
    ASSERT_EQ(parse("+31622400 dot1x-auth"), ParseResult::Event);
}

TEST_F(TraceTest, TimesOfEveryFormStopAtTheHorizon) {
    ASSERT_EQ(parse("2026-03-09T14:05:07 dot1x-auth"), ParseResult::Event);
    EXPECT_EQ(event_.time, 1773065107);
    ASSERT_EQ(parse("+60 dot1x-auth"), ParseResult::Event);
    EXPECT_EQ(event_.time, 1773065167);
    ASSERT_EQ(parse("@1773065200 dot1x-auth"), ParseResult::Event);
    EXPECT_EQ(event_.time, 1773065200);
    EXPECT_EQ(parse("   # a comment"), ParseResult::Skipped);
    EXPECT_EQ(parse("\n"), ParseResult::Skipped);

    int64_t epoch = 0;
    EXPECT_TRUE(parse_time("2099-12-31T23:59:59", 0, &epoch));  // the fixture's zone is UTC
    EXPECT_FALSE(parse_time("2100-01-01T00:00:00", 0, &epoch));
    EXPECT_FALSE(parse_time("@4102444800", 0, &epoch));
    EXPECT_FALSE(parse_time("+2147483647", INT64_MAX, &epoch)) << "no overflow";
    TraceParser last(4102444799);
    EXPECT_EQ(last.parse("+1 cmd show", &event_, &error_), ParseResult::Error);
    EXPECT_EQ(last.parse("+0 cmd show", &event_, &error_), ParseResult::Event);
}

TEST_F(TraceTest, WrittenEventsReadBackUnchanged) {
    const char *lines[] = {
        ("2026-03-09T00:00:01 dot1x-auth online_num=3 ip=198.18.0.7 auth_time=1500 "
         "rds_srv_time=200 rssi=-61 aaa_timeout=1 result=5 username=alice mac=00:1a:2b:3c:4d:5e"),
        "2026-03-09T00:00:02 wba-offline offline_reason=11 online_time=600 username=bob",
        "2026-03-09T00:00:03 redirect rd_user=4 rd_time=700 rd_result=2",
        "2026-03-09T00:00:04 stamove move_type=1 move_fail=1",
        "2026-03-09T00:00:05 escape-check total_redirect_count=10 total_auth_timeout_count=2 "
        "max_online_user=9",
        "2026-03-09T00:00:06 cmd authmanage user-escape time 31",
        "2026-03-09T00:00:07 cpp value=9",
    };
    for (const char *line : lines) {
        ASSERT_EQ(parse(line), ParseResult::Event) << line << ": " << error_;
        EXPECT_EQ(format_event(event_), line);
    }
}

}  // namespace
}  // namespace authmng_sim
