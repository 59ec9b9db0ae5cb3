#include "link_watch.h"

#include <gtest/gtest.h>
#include <linux/if.h>
#include <linux/rtnetlink.h>

#include <cstring>
#include <string>
#include <vector>

namespace authmng_hostapd {
namespace {

// One RTM_NEWLINK message for name with the given flags, as the kernel
// lays it out.
std::string link_message(const char *name, unsigned flags, uint16_t type = RTM_NEWLINK) {
    size_t name_len = strlen(name) + 1;
    size_t attr_len = RTA_LENGTH(name_len);
    size_t total = NLMSG_LENGTH(sizeof(ifinfomsg)) + RTA_ALIGN(attr_len);
    std::string out(NLMSG_ALIGN(total), '\0');
    nlmsghdr header = {};
    header.nlmsg_len = static_cast<uint32_t>(total);
    header.nlmsg_type = type;
    memcpy(&out[0], &header, sizeof header);
    ifinfomsg info = {};
    info.ifi_flags = flags;
    memcpy(&out[NLMSG_HDRLEN], &info, sizeof info);
    rtattr attr = {static_cast<unsigned short>(attr_len), IFLA_IFNAME};
    size_t at = NLMSG_ALIGN(NLMSG_LENGTH(sizeof(ifinfomsg)));
    memcpy(&out[at], &attr, sizeof attr);
    memcpy(&out[at + RTA_LENGTH(0)], name, name_len);
    return out;
}

TEST(LinkWatch, CarrierOfEachLinkMessage) {
    std::string datagram = link_message("veth-a", IFF_UP | IFF_LOWER_UP) +
                           link_message("veth-a", IFF_UP) +
                           link_message("veth-b", IFF_UP | IFF_LOWER_UP, RTM_DELLINK);
    std::vector<std::pair<std::string, bool>> seen;
    auto report = [&seen](const std::string &name, bool up) { seen.emplace_back(name, up); };
    EXPECT_EQ(parse_link_messages(datagram.data(), datagram.size(), report), 3);
    const std::vector<std::pair<std::string, bool>> expected = {
        {"veth-a", true}, {"veth-a", false}, {"veth-b", false}};
    EXPECT_EQ(seen, expected);

    // Truncated anywhere: never reads past the end, reports whole messages only.
    for (size_t cut = 0; cut < datagram.size(); ++cut) {
        seen.clear();
        std::string part = datagram.substr(0, cut);
        EXPECT_LE(parse_link_messages(part.data(), part.size(), report), 3);
    }
}

}  // namespace
}  // namespace authmng_hostapd
