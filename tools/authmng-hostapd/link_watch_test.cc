#include "link_watch.h"

#include <gtest/gtest.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>

#include <cstring>
#include <string>
#include <vector>

namespace authmng_hostapd {
namespace {

// One link message for name (up to 7 bytes) with the given flags, as the
// kernel lays it out: every part is 4-byte aligned, so a struct holds it.
std::string link_message(const char *name, unsigned flags, uint16_t type = RTM_NEWLINK) {
    struct {
        nlmsghdr header;
        ifinfomsg info;
        rtattr attr;
        char name[8];
    } m = {};
    m.header = {sizeof m, type, 0, 0, 0};
    m.info.ifi_flags = flags;
    m.attr = {static_cast<unsigned short>(RTA_LENGTH(strlen(name) + 1)), IFLA_IFNAME};
    strncpy(m.name, name, sizeof m.name - 1);
    return std::string(reinterpret_cast<const char *>(&m), sizeof m);
}

TEST(LinkWatch, CarrierOfEachLinkMessage) {
    std::string datagram = link_message("veth-a", IFF_UP | IFF_LOWER_UP) +
                           link_message("veth-a", IFF_UP) +
                           link_message("veth-b", IFF_UP | IFF_LOWER_UP, RTM_DELLINK);
    using Seen = std::vector<std::pair<std::string, bool>>;
    Seen seen;
    auto report = [&seen](const std::string &name, bool up) { seen.emplace_back(name, up); };
    EXPECT_EQ(parse_link_messages(datagram.data(), datagram.size(), report), 3);
    EXPECT_EQ(seen, (Seen{{"veth-a", true}, {"veth-a", false}, {"veth-b", false}}));
    // Truncated anywhere: never reads past the end, reports the whole messages only.
    for (size_t cut = 0; cut < datagram.size(); ++cut) {
        std::string part = datagram.substr(0, cut);
        EXPECT_EQ(parse_link_messages(part.data(), cut, report), int(cut / (datagram.size() / 3)));
    }
}

}  // namespace
}  // namespace authmng_hostapd
