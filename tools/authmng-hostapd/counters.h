// The bridge's own counters: written by the event loop, read by the
// metrics server and the "bridge status" command on their threads.
#ifndef AUTHMNG_HOSTAPD_COUNTERS_H
#define AUTHMNG_HOSTAPD_COUNTERS_H

#include <atomic>
#include <cstdint>

namespace authmng_hostapd {

struct BridgeCounters {
    std::atomic<uint64_t> lines{0};          // event lines received
    std::atomic<uint64_t> malformed{0};      // lines that did not parse
    std::atomic<uint64_t> unknown{0};        // well-formed lines of unknown events
    std::atomic<uint64_t> records{0};        // event records handed to the library
    std::atomic<uint64_t> attaches{0};       // successful ATTACHes, re-attaches included
    std::atomic<uint64_t> detaches{0};       // control interfaces lost
    std::atomic<uint64_t> poll_failures{0};  // STA / MIB requests without a reply
    std::atomic<uint64_t> link_downs{0};     // ports seen losing their link
    std::atomic<uint32_t> attached{0};       // interfaces attached now
    std::atomic<uint32_t> interfaces{0};     // interfaces configured
};

inline void bump(std::atomic<uint64_t> &counter) {
    counter.fetch_add(1, std::memory_order_relaxed);
}

}  // namespace authmng_hostapd

#endif
