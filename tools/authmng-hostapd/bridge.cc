#include "bridge.h"

#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstring>

namespace authmng_hostapd {
namespace {

// Events read from one interface before the others get their turn.
constexpr int kEventsPerTurn = 256;

std::string base_name(const std::string &path) {
    size_t slash = path.find_last_of('/');
    return slash == std::string::npos ? path : path.substr(slash + 1);
}

}  // namespace

Bridge::Bridge(const std::vector<std::string> &ctrl_paths, BridgeCounters *counters)
    : counters_(counters), mapper_(this, [counters](const authmng_auth_info_t &record) {
          authmng_notify_auth_info(&record);
          bump(counters->records);
      }) {
    for (const std::string &path : ctrl_paths) {
        ifaces_.emplace_back(new Iface());
        ifaces_.back()->path = path;
        ifaces_.back()->name = base_name(path);
    }
    counters_->interfaces = static_cast<uint32_t>(ifaces_.size());
    if (!links_.open()) fprintf(stderr, "authmng-hostapd: no link watch: %s\n", strerror(errno));
}

Bridge::~Bridge() = default;

void Bridge::try_attach(int index, int64_t now) {
    Iface &in = *ifaces_[index];
    char local[108];
    snprintf(local, sizeof local, "/tmp/authmng-hostapd-%d-%d-ev", static_cast<int>(getpid()),
             index);
    std::string reply;
    bool ok = in.events.open(in.path, local) &&
              in.events.request("ATTACH", &reply) == Answer::Given &&
              reply.compare(0, 2, "OK") == 0;
    snprintf(local, sizeof local, "/tmp/authmng-hostapd-%d-%d-rq", static_cast<int>(getpid()),
             index);
    ok = ok && in.requests.open(in.path, local);
    in.events.stamp_arrivals();
    if (!ok) {
        in.events.close();
        in.requests.close();
        in.next_attach_us = now + in.backoff_ms * 1000LL;
        in.backoff_ms =
            in.backoff_ms * 2 > kAttachBackoffMaxMs ? kAttachBackoffMaxMs : in.backoff_ms * 2;
        return;
    }
    in.attached = true;
    in.identity = socket_identity(in.path);
    in.backoff_ms = kAttachBackoffFirstMs;
    in.pings_missed = 0;
    in.next_check_us = now + kHealthCheckMs * 1000LL;
    bump(counters_->attaches);
    counters_->attached.fetch_add(1, std::memory_order_relaxed);
    fprintf(stderr, "authmng-hostapd: attached to %s\n", in.path.c_str());
}

void Bridge::lose(int index, int64_t now, const char *why) {
    Iface &in = *ifaces_[index];
    if (!in.attached) return;
    fprintf(stderr, "authmng-hostapd: lost %s (%s); attaching again\n", in.path.c_str(), why);
    in.attached = false;
    in.events.close();
    in.requests.close();
    in.next_attach_us = now + in.backoff_ms * 1000LL;
    log_.mark(now, index, 'X');
    mapper_.on_iface_lost(index);
    bump(counters_->detaches);
    counters_->attached.fetch_sub(1, std::memory_order_relaxed);
}

void Bridge::check(int index, int64_t now) {
    Iface &in = *ifaces_[index];
    in.next_check_us = now + kHealthCheckMs * 1000LL;
    if (socket_identity(in.path) != in.identity) {
        lose(index, now, "control socket replaced");
        return;
    }
    std::string reply;
    Answer answer = in.requests.request("PING", &reply);
    if (answer == Answer::Refused) {
        lose(index, now, "control socket refused PING");
    } else if (answer == Answer::Given && reply.compare(0, 4, "PONG") == 0) {
        in.pings_missed = 0;
    } else if (++in.pings_missed >= kPingsMissedForLoss) {
        // A hostapd busy with a burst answers late; one that stays silent
        // this long has hung.
        lose(index, now, "no answer to PING");
    }
}

void Bridge::log_malformed(const char *line, size_t length) {
    uint64_t seen = counters_->malformed.fetch_add(1, std::memory_order_relaxed) + 1;
    if (seen > 10 && seen % 1000 != 0) return;  // the count keeps the rest
    char shown[81];
    size_t n = length < sizeof shown - 1 ? length : sizeof shown - 1;
    for (size_t i = 0; i < n; ++i) {
        unsigned char c = static_cast<unsigned char>(line[i]);
        shown[i] = c >= 0x20 && c < 0x7f ? static_cast<char>(c) : '?';
    }
    shown[n] = '\0';
    fprintf(stderr, "authmng-hostapd: malformed event line (%llu so far): %s\n",
            static_cast<unsigned long long>(seen), shown);
}

void Bridge::read_events(int index) {
    Iface &in = *ifaces_[index];
    // Read everything waiting before acting on any of it; each event keeps
    // the kernel's arrival stamp, however long the mapper's polls take.
    struct Received {
        int64_t us;
        HostapdEvent event;
        bool ok;
        std::string line;
    };
    std::vector<Received> batch;
    char buffer[kCtrlBufferSize];
    for (int i = 0; i < kEventsPerTurn; ++i) {
        Received r;
        ssize_t got = in.events.receive(buffer, sizeof buffer - 1, &r.us);
        if (got == 0) break;
        if (got < 0) {
            lose(index, monotonic_us(), strerror(errno));
            return;
        }
        r.ok = parse_event(buffer, static_cast<size_t>(got), &r.event);
        r.line.assign(buffer, static_cast<size_t>(got));
        batch.push_back(std::move(r));
    }
    for (const Received &r : batch) {
        bump(counters_->lines);
        log_.event(r.us, index, r.line.data(), r.line.size());
        if (!r.ok) {
            log_malformed(r.line.data(), r.line.size());
            continue;
        }
        if (r.event.kind == EventKind::Unknown) bump(counters_->unknown);
        mapper_.on_event(index, r.event, r.us);
        if (r.event.kind == EventKind::Terminating) {
            lose(index, r.us, "hostapd terminating");
            return;
        }
    }
}

void Bridge::on_link(const std::string &name, bool up) {
    for (size_t i = 0; i < ifaces_.size(); ++i) {
        Iface &in = *ifaces_[i];
        if (in.name != name || in.link_up == up) continue;
        in.link_up = up;
        if (up) continue;
        int64_t now = monotonic_us();
        bump(counters_->link_downs);
        log_.mark(now, static_cast<int>(i), 'L');
        mapper_.on_link_down(static_cast<int>(i), now);
    }
}

bool Bridge::station(int iface, const uint8_t mac[6], StationInfo *info) {
    Iface &in = *ifaces_[iface];
    char command[32];
    snprintf(command, sizeof command, "STA %02x:%02x:%02x:%02x:%02x:%02x", mac[0], mac[1], mac[2],
             mac[3], mac[4], mac[5]);
    std::string reply;
    if (!in.attached || in.requests.request(command, &reply) != Answer::Given) {
        bump(counters_->poll_failures);
        return false;
    }
    if (!parse_station_reply(reply.data(), reply.size(), info)) return false;
    log_.station(monotonic_us(), iface, mac, *info);
    return true;
}

bool Bridge::mib(int iface, MibInfo *info) {
    Iface &in = *ifaces_[iface];
    std::string reply;
    if (!in.attached || in.requests.request("MIB", &reply) != Answer::Given) {
        bump(counters_->poll_failures);
        return false;
    }
    if (!parse_mib_reply(reply.data(), reply.size(), info)) return false;
    log_.mib(monotonic_us(), iface, *info);
    return true;
}

void Bridge::run(const volatile sig_atomic_t *stop) {
    std::vector<pollfd> fds;
    std::vector<int> owner;  // interface of each pollfd, -1 for the link watch
    while (*stop == 0) {
        int64_t now = monotonic_us();
        int64_t wake = now + 200000;  // the stop flag is looked at every 0.2 s
        fds.clear();
        owner.clear();
        for (size_t i = 0; i < ifaces_.size(); ++i) {
            Iface &in = *ifaces_[i];
            if (!in.attached && now >= in.next_attach_us) try_attach(static_cast<int>(i), now);
            if (in.attached && now >= in.next_check_us) check(static_cast<int>(i), now);
            if (in.attached) {
                fds.push_back({in.events.fd(), POLLIN, 0});
                owner.push_back(static_cast<int>(i));
                if (in.next_check_us < wake) wake = in.next_check_us;
            } else if (in.next_attach_us < wake) {
                wake = in.next_attach_us;
            }
        }
        if (links_.fd() >= 0) {
            fds.push_back({links_.fd(), POLLIN, 0});
            owner.push_back(-1);
        }
        int timeout_ms = wake > now ? static_cast<int>((wake - now + 999) / 1000) : 0;
        if (poll(fds.data(), fds.size(), timeout_ms) <= 0) continue;
        for (size_t k = 0; k < fds.size(); ++k) {
            if (fds[k].revents == 0) continue;
            if (owner[k] < 0) {
                links_.drain([this](const std::string &name, bool up) { on_link(name, up); });
            } else if (ifaces_[owner[k]]->attached) {
                read_events(owner[k]);
            }
        }
    }
    for (size_t i = 0; i < ifaces_.size(); ++i) {
        if (ifaces_[i]->attached) {
            std::string reply;
            ifaces_[i]->events.request("DETACH", &reply, 100);
        }
        ifaces_[i]->events.close();
        ifaces_[i]->requests.close();
    }
}

}  // namespace authmng_hostapd
