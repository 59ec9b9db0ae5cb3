// The charts of one device: which series each view draws from the model.
#ifndef AUTHMNG_REPORT_VIEWS_H
#define AUTHMNG_REPORT_VIEWS_H

#include <string>
#include <vector>

#include "chart.h"
#include "model.h"

namespace authmng_report {

// Causes drawn by name in a failures chart; the rest are summed as "other".
constexpr size_t kTopCauses = 6;

// Every chart of the device that has something to draw, in page order:
// authentications, success rate, failures by cause (per client), time by
// step (per client), online users, cpp, escapes.
// id_prefix makes the element ids unique on the page.
std::vector<Chart> device_charts(const Device &device, const Settings &settings,
                                 const std::string &id_prefix);

// The readable name of a client of the files ("dot1x" -> "802.1X").
std::string client_title(const std::string &client);

}  // namespace authmng_report

#endif
