// A user name as the library prints it. Names come from supplicants and
// portal forms, so every output that shows one takes it through here:
//
// - terminal and syslog (displays, summaries, debug lines): control bytes
//   (below 0x20, and 0x7f) are written as \xNN, so a name cannot move the
//   operator's cursor, clear the screen or start a new log line;
// - CSV: a name holding ',', '"', CR, LF or a control byte is written as
//   one quoted field (quotes doubled, control bytes as \xNN), and a name a
//   spreadsheet would take for a formula (starting with '=', '@', TAB, or
//   '+' or '-' not followed by a digit) gets a leading '\''.
//
// A name of letters, digits and ordinary punctuation is written as it is.
// Only outputs use this; the intakes copy names untouched.
#ifndef AUTHMNG_CORE_USER_NAME_H
#define AUTHMNG_CORE_USER_NAME_H

#include "authmng.h"

namespace authmng {

enum class NameSink { kTerminal, kCsv };

// The name in the field (read up to its terminator, at most the whole
// field) as the sink prints it. The text lives in a buffer of the calling
// thread that its next call reuses.
const char *printable_name(const char (&field)[AUTHMNG_USERNAME_LEN], NameSink sink);

}  // namespace authmng

#endif
