// What a command line typed at authmng-cli runs in the daemon: the
// library's show, debug and configuration lines through the command-line
// framework, and the daemon's own "bridge ..." lines.
#ifndef AUTHMNG_HOSTAPD_DAEMON_COMMANDS_H
#define AUTHMNG_HOSTAPD_DAEMON_COMMANDS_H

#include <string>

#include "command_protocol.h"
#include "counters.h"

namespace authmng_hostapd {

// Attachment points of the daemon's own show and debug groups, reached as
// "show dot1x authmng ..." and "debug dot1x authmng ...".
constexpr int kDebugPoint = 100;
constexpr int kShowPoint = 200;

// Binds the words of the two points; call before authmng_init.
void bind_command_words();

// Runs one line on the command thread, its output into *output.
//   bridge status          the bridge's counters
//   bridge write-interval  write the interval rows now (as the timer would)
//   bridge complete LINE   the keywords that may complete the partly typed
//                          LINE, one a line (authmng-cli's tab key)
authmng_cmd::Status run_daemon_command(const std::string &line, const BridgeCounters &counters,
                                       std::string *output);

}  // namespace authmng_hostapd

#endif
