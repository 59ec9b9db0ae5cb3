// Texts of the 802.1X result codes, offline-reason codes and event kinds.
// Each table keeps its own texts; codes without a text read "".
#include <array>
#include <cstddef>
#include <cstdint>

#include "authmng.h"

namespace {

struct CodeText {
    uint32_t code;
    const char *text;
};

constexpr CodeText kAuthReasonTexts[] = {
    {0, "auth success"},
    {1, "request id timeout"},
    {2, "request timeout"},
    {3, "aaa timeout"},
    {4, "other timeout"},
    {5, "aaa reject"},
    {6, "ipam not allowed"},
    {7, "ip band width fall"},
    {8, "set scc fall"},
    {9, "user logoff"},
    {10, "author vlan fail"},
    {11, "vid modify"},
    {12, "port user limit"},
    {13, "total user limit"},
    {14, "acct cache deny"},
    {15, "other security type"},
    {16, "close auth switch"},
    {17, "deny non-qx client"},
    {18, "mab vlan deny"},
    {19, "valid ip"},
    {20, "set acl fail"},
    {21, "port down"},
    {22, "not allow user"},
    {23, "conflict account"},
    {24, "valid ip mab"},
    {61, "sta unassoc"},
    {62, "sta modify"},
    {63, "by debug"},
    {64, "online fail"},
    {65, "no flow timeout"},
    {66, "client-kick"},
    {67, "sta primary down"},
    {68, "assoc ctrl"},
    {69, "hotback"},
    {70, "hb entry invld"},
    {71, "wlan unassoc"},
    {72, "ap down"},
    {73, "ap clear cfg"},
    {74, "radio down"},
    {75, "apag kickall"},
    {76, "ap kick sta"},
    {77, "stachk err"},
    {78, "subif down"},
    {79, "delay expire"},
    {80, "wbs-sta-chk fail"},
    {81, "wbs-timechk fail"},
    {82, "ript sw to stdl"},
    {83, "ript sta backup"},
    {84, "wbs refuse"},
    {85, "ap proc fail"},
    {86, "online ass fail"},
    {87, "snmp kick"},
    {101, "offline"},
    {102, "wlanchg"},
    {103, "disconnect"},
    {104, "kickout"},
    {105, "wapi kickout"},
    {106, "online result"},
    {121, "online normal"},
    {122, "ric offline"},
    {123, "mti down"},
    {124, "roam inout"},
    {125, "other"},
    {126, "stachk fail"},
    {127, "stachk stamng"},
    {128, "stamgchk"},
    {129, "roamchk"},
    {130, "not in nat"},
    {131, "unconnect"},
    {132, "l3 online normal"},
    {134, "other reason"},
};

constexpr CodeText kOfflineReasonTexts[] = {
    {0, "user logoff"},
    {1, "server kickout user"},
    {2, "no flow"},
    {3, "no ip"},
    {4, "session timeout"},
    {5, "flux out"},
    {6, "svr kickout user"},
    {7, "hello timeout"},
    {8, "scc rollback"},
    {9, "mac rollback"},
    {10, "ip bandwith fail"},
    {11, "mng no port control"},
    {12, "mng author change"},
    {13, "mng allow user change"},
    {14, "mng direct vlan change"},
    {15, "mng clear cli"},
    {16, "mng ipam change"},
    {17, "mng staitc mac"},
    {18, "mng filter mac"},
    {19, "mng set mumab"},
    {20, "mng mab vlan change"},
    {21, "mng ip acct change"},
    {22, "mng ctrl mode"},
    {23, "mng vlan change"},
    {24, "port move"},
    {25, "vlan move"},
    {26, "vxlan move"},
    {27, "port-vlan move"},
    {28, "invalid ip"},
    {29, "port down"},
    {30, "vtk fail"},
    {31, "mab to 1x"},
    {32, "mab to guest vlan"},
    {33, "dhcp author fail"},
    {34, "db recover fail"},
    {35, "adb author fail"},
    {36, "recover to scc fail"},
    {37, "ha recover fail"},
    {38, "ip mab unset ip"},
    {39, "s mab change"},
    {40, "single host"},
    {41, "redirect fail"},
    {42, "fail vlan fail"},
    {61, "unassoc"},
    {62, "sta modify"},
    {63, "debug"},
    {64, "online fail"},
    {65, "noflow timeout"},
    {66, "cli kick"},
    {67, "primary down"},
    {68, "assoc ctrl"},
    {69, "hotbackup"},
    {70, "hb entry invld"},
    {71, "wlan unassoc"},
    {72, "ap down"},
    {73, "clear cfg"},
    {74, "radio down"},
    {75, "apag kickall"},
    {76, "ap kick sta"},
    {77, "stachk err"},
    {78, "subif down"},
    {79, "delay expire"},
    {80, "wbs stachk fail"},
    {81, "wbs timechk fail"},
    {82, "ript sw to stdl"},
    {83, "ript sta backup"},
    {84, "wbs refuse"},
    {85, "ap proc fail"},
    {86, "online acc fail"},
    {87, "snmp kick"},
    {101, "offline"},
    {102, "wlanchg"},
    {103, "disconnect"},
    {104, "kickout"},
    {105, "wapi kickout"},
    {106, "online auth"},
    {121, "online normal"},
    {122, "ric offline"},
    {123, "mti down"},
    {124, "roam inout"},
    {125, "other"},
    {126, "stachk fail"},
    {127, "stachk stamg"},
    {128, "stamgchk"},
    {129, "roamchk"},
    {130, "not in nat"},
    {131, "unconnect"},
    {132, "l3 online normal"},
    {134, "other reason"},
};

using TextTable = std::array<const char *, AUTHMNG_D1X_CODE_NUM>;

template <std::size_t N>
constexpr TextTable make_table(const CodeText (&entries)[N]) {
    TextTable table{};
    for (auto &slot : table) slot = "";
    for (const CodeText &entry : entries) table[entry.code] = entry.text;
    return table;
}

constexpr TextTable kAuthReasons = make_table(kAuthReasonTexts);
constexpr TextTable kOfflineReasons = make_table(kOfflineReasonTexts);

constexpr const char *kEventTexts[] = {"D1X_AUTH", "D1X_REAUTH", "D1X_OFFLINE", "D1X_AUTH_START",
                                       "D1X_REAUTH_START"};

}  // namespace

extern "C" const char *authmng_dot1x_auth_reason_str(uint32_t code) {
    return code < kAuthReasons.size() ? kAuthReasons[code] : "";
}

extern "C" const char *authmng_dot1x_offline_reason_str(uint32_t code) {
    return code < kOfflineReasons.size() ? kOfflineReasons[code] : "";
}

extern "C" const char *authmng_dot1x_event_str(uint32_t event) {
    return event < sizeof kEventTexts / sizeof kEventTexts[0] ? kEventTexts[event] : "";
}
