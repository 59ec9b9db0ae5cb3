// The one table of web-auth show texts. The texts are written plain and
// padded with dots at compile time.
#include "webauth/code_text.h"

#include <array>

#include "authmng.h"

namespace authmng {
namespace {

template <std::size_t Width>
struct DottedLabel {
    char text[Width + 1];
};

// text followed by dots to Width characters; "" stays empty.
template <std::size_t Width>
constexpr DottedLabel<Width> dotted(const char *text) {
    DottedLabel<Width> label{};
    if (text[0] == '\0') return label;
    std::size_t i = 0;
    for (; text[i] != '\0' && i < Width; ++i) label.text[i] = text[i];
    for (; i < Width; ++i) label.text[i] = '.';
    return label;
}

template <std::size_t Width, std::size_t N>
constexpr std::array<DottedLabel<Width>, N> dotted_table(const char *const (&texts)[N]) {
    std::array<DottedLabel<Width>, N> table{};
    for (std::size_t code = 0; code < N; ++code) table[code] = dotted<Width>(texts[code]);
    return table;
}

constexpr const char *kResultTexts[AUTHMNG_WBA_RESULT_NUM] = {
    "",  // 0 success
    "",  // 1 wrong password, shown as "number of error password"
    "AAA timeout:",
    "authentication status timeout:",
    "fail to set SCC:",
    "accounting reject:",
    "accounting dev timeout:",
    "user unexist:",
    "portal timeout:",
    "DHCPrelease pkt:",
    "sta move:",
    "clear user:",
    "config change:",
    "other:",
};

constexpr const char *kOfflineTexts[AUTHMNG_WBA_OFFLINE_NUM] = {
    "no flow:",
    "kick off:",
    "dhcp release:",
    "STA delete:",
    "STA move:",
    "active offline:",
    "",  // 6 abnormal: portal timeout
    "session timeout:",
    "cli clear:",
    "no control:",
    "",  // 10 abnormal: set fail
    "",  // 11 abnormal: link change
    "interface default:",
    "interface destroy:",
    "interface add ap:",
    "del ap:",
    "dhcp ip check:",
    "vlan change:",
    "intfvlan change:",
    "other:",
};

constexpr auto kResultLabels = dotted_table<kWebauthResultLabelWidth>(kResultTexts);
constexpr auto kOfflineLabels = dotted_table<kWebauthOfflineLabelWidth>(kOfflineTexts);

}  // namespace

const char *webauth_result_label(uint32_t code) {
    return code < kResultLabels.size() ? kResultLabels[code].text : "";
}

const char *webauth_offline_label(uint32_t code) {
    return code < kOfflineLabels.size() ? kOfflineLabels[code].text : "";
}

}  // namespace authmng
