// The live bridge: attaches to hostapd's control interfaces (re-attaching
// with back-off when hostapd restarts or an interface comes and goes),
// stamps every event on receipt, watches the ports' links, and hands the
// events to the station mapper, whose records go to the library.
#ifndef AUTHMNG_HOSTAPD_BRIDGE_H
#define AUTHMNG_HOSTAPD_BRIDGE_H

#include <csignal>
#include <memory>
#include <string>
#include <vector>

#include "counters.h"
#include "event_log.h"
#include "hostapd_ctrl.h"
#include "link_watch.h"
#include "mono_clock.h"
#include "station_mapper.h"

namespace authmng_hostapd {

// First and longest pause between two attempts to attach an interface.
constexpr int kAttachBackoffFirstMs = 250;
constexpr int kAttachBackoffMaxMs = 8000;
// How often an attached interface is checked (PING, socket file identity),
// and how many PINGs in a row may go unanswered before it counts as lost.
constexpr int kHealthCheckMs = 1000;
constexpr int kPingsMissedForLoss = 5;

class Bridge : public StationSource {
public:
    Bridge(const std::vector<std::string> &ctrl_paths, BridgeCounters *counters);
    ~Bridge() override;

    // Optional recording of the event stream (see event_log.h).
    bool record_to(const std::string &path) { return log_.open(path); }

    // Runs until *stop becomes nonzero.
    void run(const volatile sig_atomic_t *stop);

    bool station(int iface, const uint8_t mac[6], StationInfo *info) override;
    bool mib(int iface, MibInfo *info) override;

private:
    struct Iface {
        std::string path;
        std::string name;  // the port: the control socket's file name
        CtrlSocket events;
        CtrlSocket requests;
        bool attached = false;
        unsigned long long identity = 0;
        int backoff_ms = kAttachBackoffFirstMs;
        int64_t next_attach_us = 0;
        int64_t next_check_us = 0;
        int pings_missed = 0;
        bool link_up = true;
    };

    void try_attach(int index, int64_t now);
    void lose(int index, int64_t now, const char *why);
    void check(int index, int64_t now);
    void read_events(int index);
    void on_link(const std::string &name, bool up);
    void log_malformed(const char *line, size_t length);

    std::vector<std::unique_ptr<Iface>> ifaces_;
    BridgeCounters *counters_;
    StationMapper mapper_;
    LinkWatch links_;
    EventLogWriter log_;
};

}  // namespace authmng_hostapd

#endif
