// The link state of the ports hostapd controls, from the kernel's routing
// netlink: hostapd says nothing when a wired port loses its link, so the
// bridge watches it itself.
#ifndef AUTHMNG_HOSTAPD_LINK_WATCH_H
#define AUTHMNG_HOSTAPD_LINK_WATCH_H

#include <cstddef>
#include <functional>
#include <string>

namespace authmng_hostapd {

// Calls report(name, up) for every link message in a netlink datagram; up
// is whether the link has carrier (IFF_LOWER_UP). Truncated or malformed
// messages end the walk. Returns the number of link messages reported.
int parse_link_messages(const void *data, size_t length,
                        const std::function<void(const std::string &, bool)> &report);

class LinkWatch {
public:
    ~LinkWatch();
    // Subscribes to link changes; false when netlink is not available.
    bool open();
    int fd() const { return fd_; }
    // Reads what is waiting and reports it as parse_link_messages does.
    void drain(const std::function<void(const std::string &, bool)> &report);

private:
    int fd_ = -1;
};

}  // namespace authmng_hostapd

#endif
