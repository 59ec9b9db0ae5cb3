#include "metrics.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>

#include "metrics_server.h"

namespace authmng_hostapd {
namespace {

// A record with a few of everything: 3 successes (2 under 1 s, 1 of 1-3 s),
// 1 reject, 1 re-authentication, 2 offlines, online 4 (max 6).
StatsSnapshot sample() {
    StatsSnapshot s = {};
    for (auto &method : s.d1x) authmng_dot1x_init(&method);
    authmng_dot1x_stat_t &d = s.d1x[0];
    d.auth_result[0] = 3;
    d.auth_result[5] = 1;
    d.reauth_result[0] = 1;
    d.offline_reason[0] = 1;
    d.offline_reason[29] = 1;
    d.range[0].count[0] = 2;
    d.range[0].count[1] = 1;
    d.current_online_number = 4;
    d.max_online_number = 6;
    s.abnormal_queued = 2;
    s.abnormal_cap = 1000;
    return s;
}

TEST(Metrics, FamiliesCarryTheCountsByCodeText) {
    BridgeCounters counters;
    counters.malformed = 7;
    std::string text = render_metrics(sample(), &counters);
    for (const char *line : {
             "authmng_authentications_total{method=\"dot1x\",code=\"0\",result=\"auth success\"} 3",
             "authmng_authentications_total{method=\"dot1x\",code=\"5\",result=\"aaa reject\"} 1",
             "authmng_authentications_total{method=\"mab\",code=\"0\",result=\"auth success\"} 0",
             "authmng_reauthentications_total{method=\"dot1x\",code=\"0\",result=\"auth success\"} "
             "1",
             "authmng_offlines_total{method=\"dot1x\",code=\"29\",reason=\"port down\"} 1",
             "authmng_step_duration_seconds_bucket{method=\"dot1x\",step=\"auth\",le=\"1\"} 2",
             "authmng_step_duration_seconds_bucket{method=\"dot1x\",step=\"auth\",le=\"3\"} 3",
             "authmng_step_duration_seconds_bucket{method=\"dot1x\",step=\"auth\",le=\"+Inf\"} 3",
             "authmng_step_duration_seconds_count{method=\"dot1x\",step=\"rdsSrv\"} 0",
             "authmng_online_users{method=\"dot1x\"} 4",
             "authmng_online_users_max{method=\"dot1x\"} 6",
             "authmng_abnormal_records_queued 2",
             "authmng_abnormal_records_cap 1000",
             "authmng_hostapd_malformed_lines_total 7",
         }) {
        EXPECT_NE(text.find("\n" + std::string(line) + "\n"), std::string::npos) << line;
    }
    // Codes never seen are left out; the success line always stands.
    EXPECT_EQ(text.find("code=\"1\""), std::string::npos);
}

TEST(Metrics, PromtoolAcceptsTheText) {
    if (system("command -v promtool >/dev/null 2>&1") != 0) {
        GTEST_SKIP() << "promtool not installed (Debian package prometheus): text not validated";
    }
    BridgeCounters counters;
    const std::string text = render_metrics(sample(), &counters);
    FILE *promtool = popen("promtool check metrics 2>&1", "w");  // says why on failure
    ASSERT_NE(promtool, nullptr);
    EXPECT_EQ(fwrite(text.data(), 1, text.size(), promtool), text.size());
    EXPECT_EQ(pclose(promtool), 0);
}

TEST(MetricsServer, AddressesAndResponses) {
    struct Case {
        const char *text;
        bool ok;
        const char *host, *port;
    } const cases[] = {
        {"9469", true, "127.0.0.1", "9469"},
        {"0.0.0.0:9469", true, "0.0.0.0", "9469"},
        {"[::1]:9469", true, "::1", "9469"},
        {"host:", false, "", ""},
        {":9469", false, "", ""},
        {"127.0.0.1:94690", false, "", ""},
        {"127.0.0.1:http", false, "", ""},
    };
    for (const Case &c : cases) {
        std::string host, port;
        ASSERT_EQ(split_listen_address(c.text, &host, &port), c.ok) << c.text;
        if (c.ok) {
            EXPECT_EQ(host + " " + port, std::string(c.host) + " " + c.port);
        }
    }
    auto body = [] { return std::string("m 1\n"); };
    std::string ok = http_response("GET /metrics HTTP/1.1\r\nHost: x\r\n\r\n", body);
    EXPECT_EQ(ok.compare(0, 17, "HTTP/1.0 200 OK\r\n"), 0);
    EXPECT_NE(ok.find("Content-Length: 4\r\n"), std::string::npos);
    EXPECT_EQ(ok.substr(ok.size() - 4), "m 1\n");
    EXPECT_EQ(http_response("GET /other HTTP/1.1\r\n\r\n", body).compare(0, 13, "HTTP/1.0 404 "),
              0);
}

}  // namespace
}  // namespace authmng_hostapd
