#include "link_watch.h"

#include <linux/if.h>
#include <linux/netlink.h>
#include <linux/rtnetlink.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>

namespace authmng_hostapd {

int parse_link_messages(const void *data, size_t length,
                        const std::function<void(const std::string &, bool)> &report) {
    int reported = 0;
    const char *base = static_cast<const char *>(data);
    size_t pos = 0;
    while (length - pos >= sizeof(nlmsghdr)) {
        nlmsghdr header;
        memcpy(&header, base + pos, sizeof header);
        if (header.nlmsg_len < sizeof header || header.nlmsg_len > length - pos) break;
        size_t body = NLMSG_LENGTH(sizeof(ifinfomsg));
        if ((header.nlmsg_type == RTM_NEWLINK || header.nlmsg_type == RTM_DELLINK) &&
            header.nlmsg_len >= body) {
            ifinfomsg info;
            memcpy(&info, base + pos + NLMSG_HDRLEN, sizeof info);
            size_t attr = pos + NLMSG_ALIGN(body);
            size_t end = pos + header.nlmsg_len;
            while (attr + sizeof(rtattr) <= end) {
                rtattr a;
                memcpy(&a, base + attr, sizeof a);
                if (a.rta_len < sizeof a || a.rta_len > end - attr) break;
                if (a.rta_type == IFLA_IFNAME) {
                    const char *name = base + attr + RTA_LENGTH(0);
                    size_t name_len = strnlen(name, a.rta_len - RTA_LENGTH(0));
                    bool up = header.nlmsg_type == RTM_NEWLINK && (info.ifi_flags & IFF_LOWER_UP);
                    report(std::string(name, name_len), up);
                    ++reported;
                    break;
                }
                attr += RTA_ALIGN(a.rta_len);
            }
        }
        size_t step = NLMSG_ALIGN(header.nlmsg_len);
        if (step > length - pos) break;
        pos += step;
    }
    return reported;
}

LinkWatch::~LinkWatch() {
    if (fd_ >= 0) close(fd_);
}

bool LinkWatch::open() {
    fd_ = socket(AF_NETLINK, SOCK_RAW | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_ROUTE);
    if (fd_ < 0) return false;
    sockaddr_nl addr;
    memset(&addr, 0, sizeof addr);
    addr.nl_family = AF_NETLINK;
    addr.nl_groups = RTMGRP_LINK;
    if (bind(fd_, reinterpret_cast<sockaddr *>(&addr), sizeof addr) != 0) {
        close(fd_);
        fd_ = -1;
        return false;
    }
    return true;
}

void LinkWatch::drain(const std::function<void(const std::string &, bool)> &report) {
    char buffer[16384];
    for (;;) {
        ssize_t got = recv(fd_, buffer, sizeof buffer, 0);
        if (got <= 0) return;
        parse_link_messages(buffer, static_cast<size_t>(got), report);
    }
}

}  // namespace authmng_hostapd
