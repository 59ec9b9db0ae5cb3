// The simulated daemon on virtual time: ticks at the right minutes across
// an hour and across idle days, and a replayed trace whose file rows are
// written out by hand from the file formats.
#include "simulator.h"

#include <string>

#include "support/fixture.h"

namespace authmng_sim {
namespace {

using authmng_test::count_lines;
using authmng_test::read_file;

// The fixture's fresh folders and pinned time zone; the simulator points
// TMPDIR and the flash home under <root>/out itself.
class SimulatorTest : public authmng_test::AuthmngTest {
protected:
    int64_t at(const char *text) {
        int64_t epoch = 0;
        EXPECT_TRUE(parse_time(text, 0, &epoch)) << text;
        return epoch;
    }
    std::string out() { return root_dir() + "/out"; }
    std::string tmp_file(const char *relative) { return read_file(out() + "/tmp" + relative); }
    std::string flash_file(const char *relative) { return read_file(out() + "/flash" + relative); }

    Simulator sim_;
};

constexpr char kStatistic[] = "/security/authmanage/dot1x/dot1x_statistic.csv";
constexpr char kAbnormal[] = "/security/authmanage/dot1x/dot1x_abnormal.csv";
constexpr char kIntervalHeader[] =
    "date,type,current_online_user,auth_count,auth_succ_count,authfail_reason_most,reauth_count,"
    "reauth_fail_count,offline_count,offline_reason_most,auth[0-1),auth[1-3),auth[3-)\n";
constexpr char kAbnormalHeader[] =
    "date,username,mac,ip,auth_time,aaa timeout,requestid_timeout,request_timeout,rsna_notify,"
    "start_notify,Type,Reason,Rssi,StaT,SelfT,AaaT,RdsT,RdsST,Acode,Rcode,DisMatchId,LogOff\n";

TEST_F(SimulatorTest, TicksFallOnTheVirtualMinutesAcrossAnHour) {
    std::string error;
    ASSERT_TRUE(sim_.start(AUTHMNG_CLIENT_DOT1X, out(), at("2026-03-09T00:45:00"), &error))
        << error;
    sim_.advance_to(at("2026-03-09T00:59:59"));
    EXPECT_EQ(sim_.ticks(), 14);
    EXPECT_EQ(flash_file(kStatistic), "");
    sim_.advance_to(at("2026-03-09T01:00:00"));  // tick 15: the daily write
    EXPECT_EQ(sim_.ticks(), 15);
    EXPECT_NE(flash_file(kStatistic).find("\n03.09 01:00:00,dot1x,"), std::string::npos);
    sim_.advance_to(at("2026-03-09T01:14:59"));
    EXPECT_EQ(tmp_file(kStatistic), "");
    sim_.advance_to(at("2026-03-09T01:15:00"));  // tick 30: the interval write
    EXPECT_EQ(tmp_file(kStatistic), std::string(kIntervalHeader) +
                                        "03.09 01:15:00,dot1x,0, 0, 0, ,0, 0, 0, , 0, 0, 0\n"
                                        "03.09 01:15:00,mab,0, 0, 0, ,0, 0, 0, , 0, 0, 0\n");
}

// Days of idle minutes pass at once, yet every daily window and interval
// write falls on its minute, also where the clock goes forward an hour
// (Berlin, 2026-03-29 02:00 CET -> 03:00 CEST: write hour 3 comes an hour
// after hour 1).
TEST_F(SimulatorTest, IdleDaysKeepEveryWriteOnItsMinute) {
    setenv("TZ", "CET-1CEST,M3.5.0,M10.5.0/3", 1);
    tzset();
    std::string error;
    ASSERT_TRUE(sim_.start(AUTHMNG_CLIENT_DOT1X, out(), at("2026-03-27T12:00:00"), &error));
    ASSERT_EQ(sim_.run_command("debug dot1x authmng write-clock 3"), 0);
    sim_.advance_to(at("2026-03-30T12:00:00"));  // 72 hours, one of them skipped by the clock
    EXPECT_EQ(sim_.ticks(), 71 * 60);
    std::string daily = flash_file(kStatistic);
    EXPECT_EQ(count_lines(daily), 1u + 3 * 2) << daily;
    for (const char *day :
         {"\n03.28 03:00:00,mab,", "\n03.29 03:00:00,mab,", "\n03.30 03:00:00,mab,"}) {
        EXPECT_NE(daily.find(day), std::string::npos) << day << daily;
    }
    std::string interval = tmp_file(kStatistic);
    EXPECT_EQ(count_lines(interval), 1u + 71 * 2 * 2);
    EXPECT_NE(interval.find("\n03.29 01:30:00,mab,"), std::string::npos);
    EXPECT_NE(interval.find("\n03.29 03:00:00,mab,"), std::string::npos);
    const std::string last = "\n03.30 12:00:00,mab,0, 0, 0, ,0, 0, 0, , 0, 0, 0\n";
    EXPECT_EQ(interval.substr(interval.size() - last.size()), last);
}

TEST_F(SimulatorTest, ReplayedTraceGivesTheRowsWrittenOutByHand) {
    const char *trace[] = {
        "2026-03-09T00:59:30 dot1x-auth online_num=4 auth_time=400 sta_time=100 self_time=20 "
        "aaa_time=250 rds_time=200 rds_srv_time=150 username=alice",
        "2026-03-09T00:59:40 dot1x-auth online_num=5 result=5 auth_time=60 username=bob "
        "mac=00:1a:2b:3c:4d:5e ip=192.0.2.10 aaa_code=-3 rds_code=3",
        "2026-03-09T00:59:50 mab-auth online_num=2 auth_time=1500 sta_time=10 self_time=40 "
        "aaa_time=1400 rds_time=1350 rds_srv_time=1200 rssi=-60 aaa_timeout=1 "
        "username=001a2b000001",
        "2026-03-09T00:59:55 dot1x-offline online_num=5 offline_reason=1 rssi=-70 username=carol",
    };
    std::string error;
    ASSERT_TRUE(sim_.start(AUTHMNG_CLIENT_DOT1X, out(), at("2026-03-09T00:59:30"), &error));
    TraceParser parser(0);
    TraceEvent event;
    for (const char *line : trace) {
        ASSERT_EQ(parser.parse(line, &event, &error), ParseResult::Event) << error;
        sim_.deliver(event);
    }
    sim_.advance_to(at("2026-03-09T01:29:30"));  // daily write at 01:00:30, interval at 01:29:30
    std::string daily = flash_file(kStatistic);
    size_t rows = daily.find('\n') + 1;
    EXPECT_EQ(daily.substr(rows),
              // 7 leading columns, the 3 auth ranges, average 400, the two blocks (22
              // zeros), histograms 1-6 each (1,0,0), the 8 long-time reasons.
              "03.09 01:00:30,dot1x,2,1,0,0,1,1,0,0,400,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,0,"
              "0,1,0,0,1,0,0,1,0,0,1,0,0,1,0,0,1,0,0,0,1,0,0,0,0,0,0\n"
              "03.09 01:00:30,mab,1,1,0,0,0,0,1,0,1500,1450,10,10,40,40,50,50,150,150,1200,1200,0,"
              "0,0,0,0,0,0,0,0,0,0,1,0,0,1,0,0,1,0,0,1,0,0,1,0,0,0,1,0,0,1,0,0,0,0,0,0\n");
    EXPECT_EQ(flash_file(kAbnormal),
              std::string(kAbnormalHeader) +
                  "03.09 00:59:40,bob,001a.2b3c.4d5e,192.0.2.10,60,0,0,0,0,0,D1X_AUTH,aaa reject,0,"
                  "0,0,0,0,0,-3,3,0,0\n"
                  "03.09 00:59:50,001a2b000001,0000.0000.0000,0.0.0.0,1500,1,0,0,0,0,D1X_AUTH,"
                  "auth success,-60,10,40,1400,1350,1200,0,0,0,0\n"
                  "03.09 00:59:55,carol,0000.0000.0000,0.0.0.0,0,0,0,0,0,0,D1X_OFFLINE,"
                  "server kickout user,-70,0,0,0,0,0,0,0,0,0\n");
    EXPECT_EQ(tmp_file(kStatistic),
              std::string(kIntervalHeader) +
                  "03.09 01:29:30,dot1x,4, 2, 1, aaa reject,0, 0, 1, server kickout user, 1, 0, 0\n"
                  "03.09 01:29:30,mab,2, 1, 1, ,0, 0, 0, , 0, 1, 0\n");
}

}  // namespace
}  // namespace authmng_sim
