#include "day.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <queue>
#include <random>
#include <vector>

namespace authmng_sim {
namespace {

constexpr int64_t kMinute = 60;

std::size_t kind_index(const char *name) {
    for (std::size_t i = 0; i < kind_count(); ++i) {
        if (strcmp(kind_info(i).name, name) == 0) return i;
    }
    return 0;
}

struct Weighted {
    uint32_t code;
    double weight;
};

// Shares of 802.1X failure causes and offline reasons.
constexpr Weighted kDot1xFailures[] = {
    {1, 25}, {2, 15}, {3, 8}, {5, 30}, {9, 4}, {12, 4}, {61, 6}, {103, 4}, {124, 4},
};
constexpr Weighted kDot1xOfflines[] = {
    {0, 55}, {101, 15}, {2, 10}, {4, 5}, {24, 5}, {61, 4}, {7, 3}, {29, 3},
};
// AAA time-outs (code 2) come from the server slowdown only.
constexpr Weighted kWebauthFailures[] = {{1, 70}, {3, 8}, {7, 15}, {13, 7}};
constexpr Weighted kWebauthOfflines[] = {
    {0, 35}, {5, 25}, {7, 15}, {1, 5}, {2, 5}, {6, 5}, {10, 3}, {11, 4}, {19, 3},
};

class Day {
public:
    Day(const DayOptions &options, const std::function<void(const TraceEvent &)> &emit)
        : options_(options), emit_(emit), random_(options.seed) {}

    uint64_t run() {
        int64_t end = options_.start + static_cast<int64_t>(options_.hours * 3600.0);
        if (options_.client == AUTHMNG_CLIENT_WBA) {
            TraceEvent enable = blank("cmd", options_.start);
            enable.command = "authmanage user-escape enable";
            push(enable);
        }
        for (int64_t minute = options_.start; minute < end; minute += kMinute) {
            generate_minute(minute);
            flush_before(minute + kMinute);
        }
        flush_before(INT64_MAX);
        return emitted_;
    }

private:
    struct Pending {
        uint64_t order;
        TraceEvent event;
        bool operator>(const Pending &other) const {
            return event.time != other.event.time ? event.time > other.event.time
                                                  : order > other.order;
        }
    };

    // --- randomness -----------------------------------------------------
    double uniform(double low, double high) {
        return std::uniform_real_distribution<double>(low, high)(random_);
    }
    uint32_t between(uint32_t low, uint32_t high) {
        return std::uniform_int_distribution<uint32_t>(low, high)(random_);
    }
    bool chance(double p) { return uniform(0.0, 1.0) < p; }
    uint32_t poisson(double mean) {
        return mean <= 0 ? 0 : std::poisson_distribution<uint32_t>(mean)(random_);
    }
    template <std::size_t N>
    uint32_t pick(const Weighted (&table)[N]) {
        double total = 0;
        for (const Weighted &w : table) total += w.weight;
        double x = uniform(0.0, total);
        for (const Weighted &w : table) {
            if (x < w.weight) return w.code;
            x -= w.weight;
        }
        return table[N - 1].code;
    }

    // Share of the users active at a local hour: morning and afternoon peaks.
    double load(int64_t when) const {
        time_t t = static_cast<time_t>(when);
        struct tm tm;
        localtime_r(&t, &tm);
        double h = tm.tm_hour + tm.tm_min / 60.0;
        double peaks =
            std::exp(-(h - 9.5) * (h - 9.5) / 4.0) + 0.8 * std::exp(-(h - 14.0) * (h - 14.0) / 5.0);
        return 0.08 + 0.92 * std::min(1.0, peaks);
    }
    bool in_window(int64_t when, int from_hour, int from_minute, int minutes) const {
        time_t t = static_cast<time_t>(when);
        struct tm tm;
        localtime_r(&t, &tm);
        int at = tm.tm_hour * 60 + tm.tm_min;
        int from = from_hour * 60 + from_minute;
        return at >= from && at < from + minutes;
    }

    // --- events -----------------------------------------------------------
    TraceEvent blank(const char *kind, int64_t when) {
        TraceEvent event;
        memset(&event.info, 0, sizeof event.info);
        memset(&event.redirect, 0, sizeof event.redirect);
        memset(&event.move, 0, sizeof event.move);
        memset(&event.totals, 0, sizeof event.totals);
        memset(&event.cpp, 0, sizeof event.cpp);
        event.time = when;
        event.kind = kind_index(kind);
        event.info.client_type = kind_info(event.kind).client_type;
        event.info.event = kind_info(event.kind).event;
        return event;
    }
    void identify(TraceEvent *event, uint32_t user, bool mab) {
        authmng_auth_info_t &info = event->info;
        uint8_t mac[6] = {0x00,
                          0x1a,
                          0x2b,
                          static_cast<uint8_t>(user >> 16),
                          static_cast<uint8_t>(user >> 8),
                          static_cast<uint8_t>(user)};
        memcpy(info.mac, mac, sizeof mac);
        if (mab) {
            snprintf(info.username, sizeof info.username, "%02x%02x%02x%02x%02x%02x", mac[0],
                     mac[1], mac[2], mac[3], mac[4], mac[5]);
        } else {
            snprintf(info.username, sizeof info.username, "user%04u", user);
        }
        // 198.18.0.0/15: addresses set aside for tests.
        info.ip = htonl_(0xC6120000u | (user & 0x1FFFFu));
        info.online_num = online_;
    }
    static uint32_t htonl_(uint32_t v) {
        const uint8_t bytes[4] = {static_cast<uint8_t>(v >> 24), static_cast<uint8_t>(v >> 16),
                                  static_cast<uint8_t>(v >> 8), static_cast<uint8_t>(v)};
        uint32_t out;
        memcpy(&out, bytes, sizeof out);
        return out;
    }
    // Events wait in time order until their minute is complete.
    void push(const TraceEvent &event) { queue_.push(Pending{order_++, event}); }
    void flush_before(int64_t limit) {
        while (!queue_.empty() && queue_.top().event.time < limit) {
            emit_(queue_.top().event);
            ++emitted_;
            queue_.pop();
        }
    }

    void generate_minute(int64_t minute) {
        switch (options_.client) {
            case AUTHMNG_CLIENT_DOT1X:
                dot1x_minute(minute);
                break;
            case AUTHMNG_CLIENT_WBA:
                webauth_minute(minute);
                break;
            default:
                cpp_minute(minute);
                break;
        }
    }

    void dot1x_minute(int64_t minute) {
        double rate = options_.users * load(minute) / 20.0;
        bool slow_radius = in_window(minute, 10, 0, 25);
        for (uint32_t n = poisson(rate); n > 0; --n) {
            uint32_t user = between(1, options_.users * 5);
            bool mab = chance(0.3);
            int64_t when = minute + between(0, 59);
            TraceEvent start = blank(mab ? "mab-start" : "dot1x-start", when);
            identify(&start, user, mab);
            push(start);

            TraceEvent result = blank(mab ? "mab-auth" : "dot1x-auth", when);
            identify(&result, user, mab);
            authmng_auth_info_t &info = result.info;
            info.sta_time = mab ? between(0, 20) : between(30, 400);
            info.self_time = between(3, 30);
            info.rds_srv_time = slow_radius ? between(700, 4200) : between(15, 180);
            info.rds_time = info.rds_srv_time + between(2, 25);
            info.aaa_time = info.rds_time + between(2, 15);
            info.rssi = -static_cast<int32_t>(between(38, 86));
            info.aaa_timeout = slow_radius && chance(0.25);
            info.requestid_timeout = !mab && chance(0.03);
            info.request_timeout = !mab && chance(0.02);
            bool failed = chance(slow_radius ? 0.25 : 0.08);
            info.result = failed ? (slow_radius && chance(0.6) ? 3 : pick(kDot1xFailures)) : 0;
            if (info.requestid_timeout && failed) info.result = 1;
            info.auth_time = info.sta_time + info.self_time + info.aaa_time;
            info.aaa_code = info.result == 0 ? 0 : -static_cast<int32_t>(info.result);
            info.rds_code = info.result == 5 ? 3 : (info.result == 0 ? 2 : 0);
            result.time = when + info.auth_time / 1000;
            if (info.result == 0) ++online_;
            info.online_num = online_;
            push(result);
        }
        // Re-authentications of users already online.
        for (uint32_t n = poisson(online_ / 240.0); n > 0; --n) {
            bool mab = chance(0.3);
            TraceEvent reauth = blank(mab ? "mab-reauth" : "dot1x-reauth", minute + between(0, 59));
            identify(&reauth, between(1, options_.users * 5), mab);
            reauth.info.auth_time = between(80, slow_radius ? 3500 : 900);
            reauth.info.result = chance(0.96) ? 0 : pick(kDot1xFailures);
            reauth.info.rssi = -static_cast<int32_t>(between(38, 86));
            push(reauth);
        }
        // Offlines keep the online count near the load of the hour.
        double target = options_.users * load(minute);
        double leave =
            online_ > target ? (online_ - target) / 6.0 + online_ / 400.0 : online_ / 400.0;
        for (uint32_t n = poisson(leave); n > 0 && online_ > 0; --n) {
            bool mab = chance(0.3);
            TraceEvent off = blank(mab ? "mab-offline" : "dot1x-offline", minute + between(0, 59));
            identify(&off, between(1, options_.users * 5), mab);
            off.info.offline_reason = pick(kDot1xOfflines);
            off.info.rssi = -static_cast<int32_t>(between(45, 90));
            off.info.logoff = off.info.offline_reason == 0;
            --online_;
            push(off);
        }
    }

    void webauth_minute(int64_t minute) {
        bool slow = in_window(minute, 13, 0, 20);
        double rate = options_.users * load(minute) / 15.0;
        for (uint32_t n = poisson(rate * 1.6); n > 0; --n) {
            TraceEvent rd = blank("redirect", minute + between(0, 59));
            uint32_t time = slow ? between(400, 2600) : between(40, 700);
            rd.redirect.rd_time = time;
            rd.redirect.rd_result = chance(0.97) ? 0 : between(1, 2);
            rd.redirect.rd_user = ++redirected_;
            totals_.total_redirect_count += 1;
            totals_.total_redirect_time += time;
            push(rd);
        }
        for (uint32_t n = poisson(rate); n > 0; --n) {
            TraceEvent auth = blank("wba-auth", minute + between(0, 59));
            identify(&auth, between(1, options_.users * 5), false);
            authmng_auth_info_t &info = auth.info;
            info.rds_srv_time = slow ? between(4000, 9000) : between(20, 250);
            info.rds_time = info.rds_srv_time + between(2, 30);
            info.aaa_time = info.rds_time + between(2, 20);
            info.auth_time = info.aaa_time + between(5, 40);
            info.scc_time = between(5, 60);
            info.acct_rds_svr_time = between(10, slow ? 3000 : 150);
            info.acct_rds_time = info.acct_rds_svr_time + between(2, 20);
            info.acct_aaa_time = info.acct_rds_time + between(2, 10);
            info.acct_time = info.acct_aaa_time + between(2, 10);
            info.portal_time = between(20, 300);
            info.ack_time = info.auth_time + info.scc_time + info.acct_time + info.portal_time;
            info.wba_state = between(1, 6);
            info.wba_event = between(1, 12);
            bool timed_out = slow && chance(0.2);
            info.result = timed_out ? 2 : (chance(0.1) ? pick(kWebauthFailures) : 0);
            info.reauth_num = reauths_;
            if (info.result == 0) ++online_;
            info.online_num = online_;
            totals_.total_auth_count += 1;
            totals_.total_auth_time += info.ack_time;
            totals_.total_auth_timeout_count += info.result == 2;
            if (online_ > totals_.max_online_user) totals_.max_online_user = online_;
            push(auth);
        }
        double target = options_.users * load(minute);
        double leave =
            online_ > target ? (online_ - target) / 6.0 + online_ / 400.0 : online_ / 400.0;
        for (uint32_t n = poisson(leave); n > 0 && online_ > 0; --n) {
            TraceEvent off = blank("wba-offline", minute + between(0, 59));
            identify(&off, between(1, options_.users * 5), false);
            off.info.offline_reason = pick(kWebauthOfflines);
            off.info.online_time = between(120, 4 * 3600);
            --online_;
            off.info.online_num = online_;
            push(off);
        }
        for (uint32_t n = poisson(options_.users / 400.0); n > 0; --n) {
            TraceEvent move = blank("stamove", minute + between(0, 59));
            move.move.move_type = between(0, 1);
            move.move.move_fail = chance(0.05);
            push(move);
        }
        // The daemon's once-a-minute report of its running totals.
        TraceEvent check = blank("escape-check", minute + 59);
        check.totals = totals_;
        push(check);
        if (chance(0.3)) ++reauths_;
    }

    void cpp_minute(int64_t minute) {
        cpp_ = std::max(0.0, cpp_ + uniform(-8.0, 8.0) + (load(minute) * 100.0 - cpp_) * 0.05);
        TraceEvent sample = blank("cpp", minute + between(0, 59));
        sample.cpp.value = static_cast<uint32_t>(cpp_);
        push(sample);
    }

    const DayOptions &options_;
    const std::function<void(const TraceEvent &)> &emit_;
    std::mt19937_64 random_;
    std::priority_queue<Pending, std::vector<Pending>, std::greater<Pending>> queue_;
    uint64_t order_ = 0;
    uint64_t emitted_ = 0;
    uint64_t online_ = 0;
    uint64_t redirected_ = 0;
    uint64_t reauths_ = 0;
    double cpp_ = 20.0;
    authmng_check_input_t totals_ = {};
};

}  // namespace

uint64_t generate_day(const DayOptions &options,
                      const std::function<void(const TraceEvent &)> &emit) {
    return Day(options, emit).run();
}

}  // namespace authmng_sim
