// Show texts of the web-auth result codes and offline reasons: each text
// followed by dots to its fixed width, so that the counters of the full
// display line up.
#ifndef AUTHMNG_WEBAUTH_CODE_TEXT_H
#define AUTHMNG_WEBAUTH_CODE_TEXT_H

#include <cstddef>
#include <cstdint>

namespace authmng {

// The abnormal offline reasons: portal timeout, set fail, link change.
// They have no dotted label; the displays give them lines of their own.
constexpr uint32_t kWebauthPortalTimeout = 6;
constexpr uint32_t kWebauthSetFail = 10;
constexpr uint32_t kWebauthLinkChange = 11;

// Widths of the dotted labels.
constexpr std::size_t kWebauthResultLabelWidth = 54;
constexpr std::size_t kWebauthOfflineLabelWidth = 55;

// The dotted label of a result code ("AAA timeout:....."), or "" for the
// codes without a show text of their own (0 success, 1 wrong password) and
// codes out of range. Static, never null.
const char *webauth_result_label(uint32_t code);

// The dotted label of an offline reason ("no flow:....."), or "" for the
// abnormal reasons 6, 10 and 11 (which have lines of their own) and codes
// out of range. Static, never null.
const char *webauth_offline_label(uint32_t code);

}  // namespace authmng

#endif
