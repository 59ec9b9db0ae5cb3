// The web-auth daemon's costs: a successful authentication, a redirect
// report, a station move and the escape-check report, next to the floor of
// one event.
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
authmng_check_input_t g_totals;
constexpr authmng_check_input_t kMinute = {1, 30, 9, 1800, 1, 830};

void setup_check() {
    g_authmng_check_open = 1;
    g_totals = kMinute;
    authmng_check_result_t verdict;
    authmng_get_check_result(&g_totals, &verdict);
}

void op_check() {
    // Totals that would pass 2^32 start again from one minute's worth: the
    // check then counts the new totals as the increase, the same samples.
    if (g_totals.total_auth_time > UINT32_MAX - kMinute.total_auth_time) g_totals = {};
    g_totals.total_redirect_count += kMinute.total_redirect_count;
    g_totals.total_redirect_time += kMinute.total_redirect_time;
    g_totals.total_auth_count += kMinute.total_auth_count;
    g_totals.total_auth_time += kMinute.total_auth_time;
    g_totals.total_auth_timeout_count += kMinute.total_auth_timeout_count;
    authmng_check_result_t verdict;
    authmng_get_check_result(&g_totals, &verdict);
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
