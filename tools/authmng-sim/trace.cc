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
};

#define AUTH_FIELD(name, type) \
    { #name, offsetof(authmng_auth_info_t, name), FieldType::type }
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
    {"rd_user", offsetof(authmng_rd_info_t, rd_user), FieldType::U64},
    {"rd_time", offsetof(authmng_rd_info_t, rd_time), FieldType::U32},
    {"rd_result", offsetof(authmng_rd_info_t, rd_result), FieldType::U32},
};

constexpr Field kCppFields[] = {
    {"value", offsetof(CppReport, value), FieldType::U32},
};

constexpr Field kMoveFields[] = {
    {"move_type", offsetof(authmng_stamove_info_t, move_type), FieldType::U32},
    {"move_fail", offsetof(authmng_stamove_info_t, move_fail), FieldType::U8},
};

#define CHECK_FIELD(name) \
    { #name, offsetof(authmng_check_input_t, name), FieldType::U32 }
constexpr Field kCheckFields[] = {
    CHECK_FIELD(total_redirect_count),     CHECK_FIELD(total_redirect_time),
    CHECK_FIELD(total_auth_count),         CHECK_FIELD(total_auth_time),
    CHECK_FIELD(total_auth_timeout_count), CHECK_FIELD(max_online_user),
};
#undef CHECK_FIELD

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

bool parse_time(const std::string &text, int64_t previous, int64_t *epoch) {
    uint64_t number = 0;
    if (!text.empty() && text[0] == '+') {
        if (!parse_unsigned(text.c_str() + 1, INT32_MAX, &number)) return false;
        *epoch = previous + static_cast<int64_t>(number);
        return true;
    }
    if (!text.empty() && text[0] == '@') {
        if (!parse_unsigned(text.c_str() + 1, INT64_MAX, &number)) return false;
        *epoch = static_cast<int64_t>(number);
        return true;
    }
    struct tm tm;
    memset(&tm, 0, sizeof tm);
    const char *end = strptime(text.c_str(), "%Y-%m-%dT%H:%M:%S", &tm);
    if (end == nullptr || *end != '\0') return false;
    tm.tm_isdst = -1;
    time_t t = mktime(&tm);
    if (t == static_cast<time_t>(-1)) return false;
    *epoch = static_cast<int64_t>(t);
    return true;
}

ParseResult TraceParser::parse(const char *line, TraceEvent *event, std::string *error) {
    const char *p = line;
    while (*p == ' ' || *p == '\t') ++p;
    if (*p == '\0' || *p == '\n' || *p == '\r' || *p == '#') return ParseResult::Skipped;

    // Words of the line, without the line end.
    std::string text(p);
    while (!text.empty() && (text.back() == '\n' || text.back() == '\r')) text.pop_back();
    std::size_t pos = 0;
    auto next_word = [&text, &pos]() {
        while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
        std::size_t start = pos;
        while (pos < text.size() && text[pos] != ' ' && text[pos] != '\t') ++pos;
        return text.substr(start, pos - start);
    };

    std::string time_word = next_word();
    int64_t when = 0;
    if (!parse_time(time_word, previous_, &when)) {
        *error = "bad time '" + time_word + "' (YYYY-MM-DDTHH:MM:SS, @epoch or +seconds)";
        return ParseResult::Error;
    }
    if (when < previous_) {
        *error = "time '" + time_word + "' goes back before the previous line";
        return ParseResult::Error;
    }

    std::string kind_word = next_word();
    std::size_t kind = kKindCount;
    for (std::size_t i = 0; i < kKindCount; ++i) {
        if (kind_word == kKinds[i].name) kind = i;
    }
    if (kind == kKindCount) {
        *error = kind_word.empty() ? "missing kind" : "unknown kind '" + kind_word + "'";
        return ParseResult::Error;
    }

    const KindInfo &info = kKinds[kind];
    event->time = when;
    event->kind = kind;
    if (info.category == Category::Command) {
        while (pos < text.size() && (text[pos] == ' ' || text[pos] == '\t')) ++pos;
        event->command = text.substr(pos);
        if (event->command.empty()) {
            *error = "cmd without a command line";
            return ParseResult::Error;
        }
        previous_ = when;
        return ParseResult::Event;
    }

    memset(&event->info, 0, sizeof event->info);
    memset(&event->redirect, 0, sizeof event->redirect);
    memset(&event->move, 0, sizeof event->move);
    memset(&event->totals, 0, sizeof event->totals);
    memset(&event->cpp, 0, sizeof event->cpp);
    event->info.client_type = info.client_type;
    event->info.event = info.event;
    FieldSet set = fields_of(info.category);
    unsigned char *record = record_of(event, info.category);
    for (std::string word = next_word(); !word.empty(); word = next_word()) {
        std::size_t eq = word.find('=');
        if (eq == std::string::npos || eq == 0) {
            *error = "'" + word + "' is not field=value";
            return ParseResult::Error;
        }
        std::string name = word.substr(0, eq);
        const Field *field = nullptr;
        for (std::size_t i = 0; i < set.count; ++i) {
            if (name == set.fields[i].name) field = &set.fields[i];
        }
        if (field == nullptr) {
            *error = "field '" + name + "': no such field for " + info.name;
            return ParseResult::Error;
        }
        const char *why = store_field(*field, word.c_str() + eq + 1, record);
        if (why != nullptr) {
            *error = "field '" + name + "': " + why + ": '" + word.substr(eq + 1) + "'";
            return ParseResult::Error;
        }
    }
    previous_ = when;
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
