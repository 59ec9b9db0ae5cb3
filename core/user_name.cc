#include "core/user_name.h"

#include <cstddef>
#include <cstring>

namespace authmng {
namespace {

bool is_control(unsigned char c) {
    return c < 0x20 || c == 0x7f;
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

// Whether a spreadsheet would read the field as a formula. A sign before
// a digit is a number (a phone number such as +8613800000000).
bool looks_like_formula(const char *name, std::size_t length) {
    if (length == 0) return false;
    char first = name[0];
    if (first == '=' || first == '@' || first == '\t') return true;
    return (first == '+' || first == '-') && (length == 1 || !is_digit(name[1]));
}

bool needs_quotes(const char *name, std::size_t length) {
    for (std::size_t i = 0; i < length; ++i) {
        unsigned char c = static_cast<unsigned char>(name[i]);
        if (c == ',' || c == '"' || is_control(c)) return true;
    }
    return false;
}

// Appends name to out at *at, control bytes as \xNN and, when doubling,
// every '"' twice. out has room for the worst case.
void append_escaped(const char *name, std::size_t length, bool double_quotes, char *out,
                    std::size_t &at) {
    static const char kHex[] = "0123456789abcdef";
    for (std::size_t i = 0; i < length; ++i) {
        unsigned char c = static_cast<unsigned char>(name[i]);
        if (is_control(c)) {
            out[at++] = '\\';
            out[at++] = 'x';
            out[at++] = kHex[c >> 4];
            out[at++] = kHex[c & 0xf];
            continue;
        }
        if (c == '"' && double_quotes) out[at++] = '"';
        out[at++] = static_cast<char>(c);
    }
}

}  // namespace

const char *printable_name(const char (&field)[AUTHMNG_USERNAME_LEN], NameSink sink) {
    // Every byte as \xNN, the two quotes, the leading '\'' and the terminator.
    thread_local char text[4 * AUTHMNG_USERNAME_LEN + 4];
    std::size_t length = strnlen(field, sizeof field);
    std::size_t at = 0;
    if (sink == NameSink::kTerminal) {
        append_escaped(field, length, false, text, at);
    } else {
        bool quoted = needs_quotes(field, length);
        if (quoted) text[at++] = '"';
        if (looks_like_formula(field, length)) text[at++] = '\'';
        append_escaped(field, length, quoted, text, at);
        if (quoted) text[at++] = '"';
    }
    text[at] = '\0';
    return text;
}

}  // namespace authmng
