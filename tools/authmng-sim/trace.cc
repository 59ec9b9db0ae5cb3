#include "trace.h"

#include <arpa/inet.h>

#include <cctype>
#include <cerrno>
#include <cinttypes>
#include <climits>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <ctime>

namespace authmng_sim {
namespace {

constexpr KindInfo kKinds[kKindCount] = {
    {"dot1x-auth", Category::Auth, AUTHMNG_CLIENT_DOT1X, D1X_AUTH},
    {"dot1x-reauth", Category::Auth, AUTHMNG_CLIENT_DOT1X, D1X_REAUTH},
    {"dot1x-offline", Category::Auth, AUTHMNG_CLIENT_DOT1X, D1X_OFFLINE},
    {"dot1x-start", Category::Auth, AUTHMNG_CLIENT_DOT1X, D1X_AUTH_START},
    {"dot1x-reauth-start", Category::Auth, AUTHMNG_CLIENT_DOT1X, D1X_REAUTH_START},
    {"mab-auth", Category::Auth, AUTHMNG_CLIENT_MAB, D1X_AUTH},
    {"mab-reauth", Category::Auth, AUTHMNG_CLIENT_MAB, D1X_REAUTH},
    {"mab-offline", Category::Auth, AUTHMNG_CLIENT_MAB, D1X_OFFLINE},
    {"mab-start", Category::Auth, AUTHMNG_CLIENT_MAB, D1X_AUTH_START},
    {"mab-reauth-start", Category::Auth, AUTHMNG_CLIENT_MAB, D1X_REAUTH_START},
    {"wba-auth", Category::Auth, AUTHMNG_CLIENT_WBA, WBA_EVENT_AUTH},
    {"wba-offline", Category::Auth, AUTHMNG_CLIENT_WBA, WBA_EVENT_OFFLINE},
    {"redirect", Category::Redirect, 0, 0},
    {"stamove", Category::StationMove, 0, 0},
    {"escape-check", Category::EscapeCheck, 0, 0},
    {"cmd", Category::Command, 0, 0},
    {"cpp", Category::CppSample, 0, 0},
};

enum class FieldType { U64, U32, I32, U8, Ip, Mac, Name };

struct Field {
    const char *name;
    std::size_t offset;
    FieldType type;
    std::size_t length;  // of name
};

// A field of a record, by its name in the record.
#define FIELD_OF(record, name, type) \
    { #name, offsetof(record, name), FieldType::type, sizeof #name - 1 }

#define AUTH_FIELD(name, type) FIELD_OF(authmng_auth_info_t, name, type)
constexpr Field kAuthFields[] = {
    AUTH_FIELD(online_num, U64),
    AUTH_FIELD(reauth_num, U64),
    AUTH_FIELD(ip, Ip),
    AUTH_FIELD(auth_time, U32),
    AUTH_FIELD(scc_time, U32),
    AUTH_FIELD(acct_time, U32),
    AUTH_FIELD(ack_time, U32),
    AUTH_FIELD(portal_time, U32),
    AUTH_FIELD(wba_state, U32),
    AUTH_FIELD(wba_event, U32),
    AUTH_FIELD(aaa_time, U32),
    AUTH_FIELD(aaa_code, I32),
    AUTH_FIELD(rds_srv_time, U32),
    AUTH_FIELD(rds_time, U32),
    AUTH_FIELD(rds_code, I32),
    AUTH_FIELD(acct_aaa_time, U32),
    AUTH_FIELD(aaa_acct_code, I32),
    AUTH_FIELD(acct_rds_svr_time, U32),
    AUTH_FIELD(acct_rds_time, U32),
    AUTH_FIELD(rds_acct_code, I32),
    AUTH_FIELD(sta_time, U32),
    AUTH_FIELD(self_time, U32),
    AUTH_FIELD(rssi, I32),
    AUTH_FIELD(aaa_timeout, U8),
    AUTH_FIELD(requestid_timeout, U8),
    AUTH_FIELD(request_timeout, U8),
    AUTH_FIELD(rsna_notify, U8),
    AUTH_FIELD(start_notify, U8),
    AUTH_FIELD(dismatch_id, U8),
    AUTH_FIELD(logoff, U8),
    AUTH_FIELD(result, U32),
    AUTH_FIELD(offline_reason, U32),
    AUTH_FIELD(online_time, U32),
    AUTH_FIELD(username, Name),
    AUTH_FIELD(mac, Mac),
};
#undef AUTH_FIELD

constexpr Field kRedirectFields[] = {
    FIELD_OF(authmng_rd_info_t, rd_user, U64),
    FIELD_OF(authmng_rd_info_t, rd_time, U32),
    FIELD_OF(authmng_rd_info_t, rd_result, U32),
};

constexpr Field kCppFields[] = {
    FIELD_OF(CppReport, value, U32),
};

constexpr Field kMoveFields[] = {
    FIELD_OF(authmng_stamove_info_t, move_type, U32),
    FIELD_OF(authmng_stamove_info_t, move_fail, U8),
};

#define CHECK_FIELD(name) FIELD_OF(authmng_check_input_t, name, U32)
constexpr Field kCheckFields[] = {
    CHECK_FIELD(total_redirect_count),     CHECK_FIELD(total_redirect_time),
    CHECK_FIELD(total_auth_count),         CHECK_FIELD(total_auth_time),
    CHECK_FIELD(total_auth_timeout_count), CHECK_FIELD(max_online_user),
};
#undef CHECK_FIELD
#undef FIELD_OF

struct FieldSet {
    const Field *fields;
    std::size_t count;
};

template <std::size_t N>
constexpr FieldSet set_of(const Field (&fields)[N]) {
    return {fields, N};
}

FieldSet fields_of(Category category) {
    switch (category) {
        case Category::Auth:
            return set_of(kAuthFields);
        case Category::Redirect:
            return set_of(kRedirectFields);
        case Category::StationMove:
            return set_of(kMoveFields);
        case Category::EscapeCheck:
            return set_of(kCheckFields);
        case Category::CppSample:
            return set_of(kCppFields);
        case Category::Command:
            break;
    }
    return {nullptr, 0};
}

unsigned char *record_of(TraceEvent *event, Category category) {
    switch (category) {
        case Category::Auth:
            return reinterpret_cast<unsigned char *>(&event->info);
        case Category::Redirect:
            return reinterpret_cast<unsigned char *>(&event->redirect);
        case Category::StationMove:
            return reinterpret_cast<unsigned char *>(&event->move);
        case Category::EscapeCheck:
            return reinterpret_cast<unsigned char *>(&event->totals);
        case Category::CppSample:
            return reinterpret_cast<unsigned char *>(&event->cpp);
        case Category::Command:
            break;
    }
    return nullptr;
}

const unsigned char *record_of(const TraceEvent &event, Category category) {
    return record_of(const_cast<TraceEvent *>(&event), category);
}

// Name lookups compare the length first: most names differ in it.
bool same_name(const char *name, std::size_t name_length, const char *word, std::size_t length) {
    return name_length == length && memcmp(name, word, length) == 0;
}

bool parse_unsigned(const char *text, uint64_t limit, uint64_t *value) {
    if (*text == '\0' || *text == '-' || *text == '+' || isspace(static_cast<unsigned char>(*text)))
        return false;
    errno = 0;
    char *end = nullptr;
    unsigned long long v = strtoull(text, &end, 0);
    if (errno != 0 || *end != '\0' || v > limit) return false;
    *value = v;
    return true;
}

bool parse_signed32(const char *text, int32_t *value) {
    if (*text == '\0' || isspace(static_cast<unsigned char>(*text))) return false;
    errno = 0;
    char *end = nullptr;
    long long v = strtoll(text, &end, 0);
    if (errno != 0 || *end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
    *value = static_cast<int32_t>(v);
    return true;
}

int hex_digit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// aa:bb:cc:dd:ee:ff, aa-bb-cc-dd-ee-ff or aabb.ccdd.eeff.
bool parse_mac(const char *text, uint8_t mac[AUTHMNG_MAC_LEN]) {
    std::size_t len = strlen(text);
    if (len == 17) {
        char sep = text[2];
        if (sep != ':' && sep != '-') return false;
        for (int i = 0; i < 6; ++i) {
            int hi = hex_digit(text[i * 3]);
            int lo = hex_digit(text[i * 3 + 1]);
            if (hi < 0 || lo < 0 || (i < 5 && text[i * 3 + 2] != sep)) return false;
            mac[i] = static_cast<uint8_t>(hi * 16 + lo);
        }
        return true;
    }
    if (len == 14) {
        int byte = 0;
        for (std::size_t i = 0; i < 14; i += 5) {
            if (i > 0 && text[i - 1] != '.') return false;
            for (int j = 0; j < 4; j += 2) {
                int hi = hex_digit(text[i + j]);
                int lo = hex_digit(text[i + j + 1]);
                if (hi < 0 || lo < 0) return false;
                mac[byte++] = static_cast<uint8_t>(hi * 16 + lo);
            }
        }
        return true;
    }
    return false;
}

// Stores the text of one field=value into the record; the reason on failure.
const char *store_field(const Field &field, const char *value, unsigned char *record) {
    unsigned char *at = record + field.offset;
    uint64_t number = 0;
    switch (field.type) {
        case FieldType::U64:
            if (!parse_unsigned(value, UINT64_MAX, &number)) return "not an unsigned 64-bit number";
            memcpy(at, &number, sizeof(uint64_t));
            return nullptr;
        case FieldType::U32: {
            if (!parse_unsigned(value, UINT32_MAX, &number)) return "not an unsigned 32-bit number";
            uint32_t v = static_cast<uint32_t>(number);
            memcpy(at, &v, sizeof v);
            return nullptr;
        }
        case FieldType::U8: {
            if (!parse_unsigned(value, UINT8_MAX, &number)) return "not a number from 0 to 255";
            *at = static_cast<uint8_t>(number);
            return nullptr;
        }
        case FieldType::I32: {
            int32_t v = 0;
            if (!parse_signed32(value, &v)) return "not a signed 32-bit number";
            memcpy(at, &v, sizeof v);
            return nullptr;
        }
        case FieldType::Ip: {
            struct in_addr addr;
            if (inet_pton(AF_INET, value, &addr) != 1) return "not an IPv4 address (a.b.c.d)";
            memcpy(at, &addr.s_addr, sizeof addr.s_addr);
            return nullptr;
        }
        case FieldType::Mac:
            if (!parse_mac(value, at))
                return "not a MAC address (aa:bb:cc:dd:ee:ff or aabb.ccdd.eeff)";
            return nullptr;
        case FieldType::Name: {
            std::size_t len = strlen(value);
            if (len > AUTHMNG_USERNAME_LEN) return "longer than 256 characters";
            // A name of exactly 256 characters fills the field without a
            // terminator, as a careless daemon would send it.
            memset(at, 0, AUTHMNG_USERNAME_LEN);
            memcpy(at, value, len);
            return nullptr;
        }
    }
    return "unknown field type";
}

void append_field(std::string *out, const Field &field, const unsigned char *record) {
    const unsigned char *at = record + field.offset;
    char text[320];
    text[0] = '\0';
    switch (field.type) {
        case FieldType::U64: {
            uint64_t v;
            memcpy(&v, at, sizeof v);
            if (v != 0) snprintf(text, sizeof text, "%" PRIu64, v);
            break;
        }
        case FieldType::U32: {
            uint32_t v;
            memcpy(&v, at, sizeof v);
            if (v != 0) snprintf(text, sizeof text, "%" PRIu32, v);
            break;
        }
        case FieldType::U8:
            if (*at != 0) snprintf(text, sizeof text, "%u", *at);
            break;
        case FieldType::I32: {
            int32_t v;
            memcpy(&v, at, sizeof v);
            if (v != 0) snprintf(text, sizeof text, "%" PRId32, v);
            break;
        }
        case FieldType::Ip: {
            uint32_t v;
            memcpy(&v, at, sizeof v);
            struct in_addr addr;
            addr.s_addr = v;
            if (v != 0) inet_ntop(AF_INET, &addr, text, sizeof text);
            break;
        }
        case FieldType::Mac:
            if (memcmp(at, "\0\0\0\0\0\0", 6) != 0) {
                snprintf(text, sizeof text, "%02x:%02x:%02x:%02x:%02x:%02x", at[0], at[1], at[2],
                         at[3], at[4], at[5]);
            }
            break;
        case FieldType::Name: {
            std::size_t len = strnlen(reinterpret_cast<const char *>(at), AUTHMNG_USERNAME_LEN);
            memcpy(text, at, len);
            text[len] = '\0';
            break;
        }
    }
    if (text[0] == '\0') return;
    out->push_back(' ');
    out->append(field.name);
    out->push_back('=');
    out->append(text);
}

}  // namespace

const KindInfo &kind_info(std::size_t index) {
    return kKinds[index < kKindCount ? index : 0];
}
std::size_t kind_count() {
    return kKindCount;
}

std::string format_time(int64_t epoch) {
    time_t t = static_cast<time_t>(epoch);
    struct tm tm;
    char text[32] = "";
    if (localtime_r(&t, &tm) != nullptr) strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%S", &tm);
    return text;
}

namespace {

// The time a time word names, not yet held to the horizon (a step past the
// largest time gives the largest time); false when the word is no time.
bool read_time(const char *text, int64_t previous, int64_t *epoch) {
    if (text == nullptr) return false;
    std::size_t size = strlen(text);
    uint64_t number = 0;
    if (text[0] == '+') {
        if (!parse_unsigned(text + 1, INT32_MAX, &number)) return false;
        if (__builtin_add_overflow(previous, static_cast<int64_t>(number), epoch)) {
            *epoch = INT64_MAX;
        }
        return true;
    }
    if (text[0] == '@') {
        if (!parse_unsigned(text + 1, INT64_MAX, &number)) return false;
        *epoch = static_cast<int64_t>(number);
        return true;
    }
    // YYYY-MM-DDTHH:MM:SS, digits at fixed places.
    static const char kShape[] = "dddd-dd-ddTdd:dd:dd";
    if (size != sizeof kShape - 1) return false;
    int digits[14];
    int n = 0;
    for (std::size_t i = 0; i < size; ++i) {
        if (kShape[i] == 'd') {
            if (text[i] < '0' || text[i] > '9') return false;
            digits[n++] = text[i] - '0';
        } else if (text[i] != kShape[i]) {
            return false;
        }
    }
    int year = digits[0] * 1000 + digits[1] * 100 + digits[2] * 10 + digits[3];
    int month = digits[4] * 10 + digits[5];
    int day = digits[6] * 10 + digits[7];
    int hour = digits[8] * 10 + digits[9];
    int minute = digits[10] * 10 + digits[11];
    int second = digits[12] * 10 + digits[13];
    if (month < 1 || month > 12 || day < 1 || day > 31 || hour > 23 || minute > 59 || second > 60) {
        return false;
    }
    // The local time of each whole hour is converted once: traces have many
    // lines per hour, and the conversion reads the time-zone rules.
    static thread_local int64_t cached_key = -1;
    static thread_local int64_t cached_hour = 0;
    int64_t key = ((static_cast<int64_t>(year) * 13 + month) * 32 + day) * 24 + hour;
    if (key != cached_key) {
        struct tm tm;
        memset(&tm, 0, sizeof tm);
        tm.tm_year = year - 1900;
        tm.tm_mon = month - 1;
        tm.tm_mday = day;
        tm.tm_hour = hour;
        tm.tm_isdst = -1;
        time_t t = mktime(&tm);
        if (t == static_cast<time_t>(-1) || tm.tm_mday != day) return false;
        cached_key = key;
        cached_hour = static_cast<int64_t>(t);
    }
    *epoch = cached_hour + minute * 60 + second;
    return true;
}

}  // namespace

bool parse_time(const char *text, int64_t previous, int64_t *epoch) {
    return read_time(text, previous, epoch) && *epoch <= kLatestTime;
}

ParseResult TraceParser::parse(const char *line, TraceEvent *event, std::string *error) {
    const char *p = line;
    while (*p == ' ' || *p == '\t') ++p;
    if (*p == '\0' || *p == '\n' || *p == '\r' || *p == '#') return ParseResult::Skipped;

    // The words of the line, split in place in a buffer kept between lines.
    words_.assign(p);
    while (!words_.empty() && (words_.back() == '\n' || words_.back() == '\r')) words_.pop_back();
    char *cursor = &words_[0];
    auto next_word = [&cursor](std::size_t *length) -> char * {
        while (*cursor == ' ' || *cursor == '\t') ++cursor;
        char *word = cursor;
        while (*cursor != '\0' && *cursor != ' ' && *cursor != '\t') ++cursor;
        *length = static_cast<std::size_t>(cursor - word);
        if (*cursor != '\0') *cursor++ = '\0';
        return word;
    };

    std::size_t length = 0;
    const char *time_word = next_word(&length);
    int64_t when = 0;
    if (!read_time(time_word, previous_, &when)) {
        *error =
            std::string("bad time '") + time_word + "' (YYYY-MM-DDTHH:MM:SS, @epoch or +seconds)";
        return ParseResult::Error;
    }
    if (when > kLatestTime) {
        *error = std::string("time '") + time_word +
                 "' is past 2099-12-31T23:59:59 UTC, the latest the simulator runs to";
        return ParseResult::Error;
    }
    if (previous_ != 0 && when - previous_ > kLongestStep) {
        *error =
            std::string("time '") + time_word + "' is more than 366 days after the previous line";
        return ParseResult::Error;
    }
    if (when < previous_) {
        *error = std::string("time '") + time_word + "' goes back before the previous line";
        return ParseResult::Error;
    }
    // A valid time counts even when the rest of the line is refused: a "+N"
    // on the next line counts from it.
    previous_ = when;

    const char *kind_word = next_word(&length);
    std::size_t kind = kKindCount;
    for (std::size_t i = 0; i < kKindCount && kind == kKindCount; ++i) {
        if (same_name(kKinds[i].name, strlen(kKinds[i].name), kind_word, length)) kind = i;
    }
    if (kind == kKindCount) {
        *error = length == 0 ? std::string("missing kind")
                             : std::string("unknown kind '") + kind_word + "'";
        return ParseResult::Error;
    }

    const KindInfo &info = kKinds[kind];
    event->time = when;
    event->kind = kind;
    if (info.category == Category::Command) {
        while (*cursor == ' ' || *cursor == '\t') ++cursor;
        // The rest of the line as typed, the blank after the kind included.
        std::size_t rest = static_cast<std::size_t>(cursor - &words_[0]);
        event->command = std::string(p).substr(rest);
        while (!event->command.empty() &&
               (event->command.back() == '\n' || event->command.back() == '\r')) {
            event->command.pop_back();
        }
        if (event->command.empty()) {
            *error = "cmd without a command line";
            return ParseResult::Error;
        }
        return ParseResult::Event;
    }

    FieldSet set = fields_of(info.category);
    unsigned char *record = record_of(event, info.category);
    if (info.category == Category::Auth) {
        memset(&event->info, 0, sizeof event->info);
        event->info.client_type = info.client_type;
        event->info.event = info.event;
    } else {
        memset(&event->redirect, 0, sizeof event->redirect);
        memset(&event->move, 0, sizeof event->move);
        memset(&event->totals, 0, sizeof event->totals);
        memset(&event->cpp, 0, sizeof event->cpp);
    }
    for (char *word = next_word(&length); length > 0; word = next_word(&length)) {
        char *eq = static_cast<char *>(memchr(word, '=', length));
        if (eq == nullptr || eq == word) {
            *error = std::string("'") + word + "' is not field=value";
            return ParseResult::Error;
        }
        std::size_t name_length = static_cast<std::size_t>(eq - word);
        *eq = '\0';
        const Field *field = nullptr;
        for (std::size_t i = 0; i < set.count && field == nullptr; ++i) {
            const Field &candidate = set.fields[i];
            if (same_name(candidate.name, candidate.length, word, name_length)) field = &candidate;
        }
        if (field == nullptr) {
            *error = std::string("field '") + word + "': no such field for " + info.name;
            return ParseResult::Error;
        }
        const char *why = store_field(*field, eq + 1, record);
        if (why != nullptr) {
            *error = std::string("field '") + word + "': " + why + ": '" + (eq + 1) + "'";
            return ParseResult::Error;
        }
    }
    return ParseResult::Event;
}

std::string format_event(const TraceEvent &event) {
    const KindInfo &info = kind_info(event.kind);
    std::string out = format_time(event.time);
    out.push_back(' ');
    out.append(info.name);
    if (info.category == Category::Command) {
        out.push_back(' ');
        out.append(event.command);
        return out;
    }
    FieldSet set = fields_of(info.category);
    const unsigned char *record = record_of(event, info.category);
    for (std::size_t i = 0; i < set.count; ++i) append_field(&out, set.fields[i], record);
    return out;
}

}  // namespace authmng_sim
