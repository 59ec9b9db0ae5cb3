// The web-auth daemon's costs: a successful authentication, a redirect
// report, a station move and the escape-check report, next to the floor of
// one event.
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "authmng.h"
#include "bench/bench_support.h"

using namespace authmng_bench;

namespace {

// A successful web authentication below every abnormal time (threshold
// 3000 ms): twelve histograms and sums, the average and the abnormal test,
// no queueing.
authmng_auth_info_t success_event() {
    authmng_auth_info_t e = blank_event(AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH, 0);
    e.online_num = 830;
    e.reauth_num = 41;
    e.ack_time = 1200;
    e.auth_time = 800;
    e.scc_time = 50;
    e.acct_time = 100;
    e.portal_time = 150;
    e.aaa_time = 700;
    e.rds_time = 600;
    e.rds_srv_time = 500;
    e.acct_aaa_time = 90;
    e.acct_rds_time = 80;
    e.acct_rds_svr_time = 60;
    return e;
}

const authmng_auth_info_t g_success = success_event();
const authmng_rd_info_t g_redirect = {5120, 0, 320, 0};
const authmng_stamove_info_t g_move = {0, 0};

void setup_webauth() {
    authmng_webauth_init();
}

void op_success() {
    authmng_notify_auth_info(&g_success);
}

void op_redirect() {
    authmng_notify_rd_info(&g_redirect);
}

void op_move() {
    authmng_notify_stamove_info(&g_move);
}

// The escape check with user escape on, each report a minute of normal
// traffic: 30 ms redirects, 200 ms authentications, one time-out in ten.
// Every check evaluates a sample and none is abnormal (no log file write).
// The reports are made in advance, so the row measures the check only.
constexpr authmng_check_input_t kMinute = {1, 30, 9, 1800, 1, 830};
constexpr std::size_t kReports = 4096;
authmng_check_input_t g_reports[kReports];
std::size_t g_next_report = 0;

void setup_check() {
    g_authmng_check_open = 1;
    // The totals after 1 to 4096 minutes. After the last report the totals
    // start again from one minute's worth, which the check takes as their
    // increase: the same samples.
    for (std::size_t i = 0; i < kReports; ++i) {
        uint32_t minutes = static_cast<uint32_t>(i + 1);
        g_reports[i] = {
            kMinute.total_redirect_count * minutes,     kMinute.total_redirect_time * minutes,
            kMinute.total_auth_count * minutes,         kMinute.total_auth_time * minutes,
            kMinute.total_auth_timeout_count * minutes, kMinute.max_online_user};
    }
    g_next_report = 0;
    authmng_check_result_t verdict;
    authmng_get_check_result(&g_reports[kReports - 1], &verdict);
}

void op_check() {
    authmng_check_result_t verdict;
    authmng_get_check_result(&g_reports[g_next_report], &verdict);
    g_next_report = (g_next_report + 1) % kReports;
}

void nothing() {}

const Row kRows[] = {
    {"floor/event", nothing, nullptr, floor_event, 0},
    {"webauth/auth_success", setup_webauth, nullptr, op_success, 0},
    {"webauth/redirect", setup_webauth, nullptr, op_redirect, 0},
    {"webauth/station_move", setup_webauth, nullptr, op_move, 0},
    {"webauth/escape_check", setup_check, nullptr, op_check, 0},
};

}  // namespace

int main(int argc, char **argv) {
    start_library(AUTHMNG_CLIENT_WBA);
    return run(argc, argv, kRows, std::size(kRows));
}
