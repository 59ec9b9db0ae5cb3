#include "code_page.h"

#include <cstdint>
#include <cstring>
#include <string>

#include "authmng.h"
#include "webauth/code_text.h"

namespace code_page {
namespace {

constexpr const char kRegenerate[] =
    "build/tools/authmng-code-page/authmng-code-page docs/code-tables.md";

// A web-auth display label without its dots and colon.
std::string plain_label(const char *label) {
    std::string text = label;
    while (!text.empty() && (text.back() == '.' || text.back() == ':')) text.pop_back();
    return text.empty() ? "*(no label: counted on a display line of its own)*" : text;
}

void write_dot1x_codes(FILE *out, const char *title, const char *accessor,
                       const char *(*text_of)(uint32_t)) {
    fprintf(out,
            "\n## %s\n\nCodes 0 to %d; codes not listed have no text. The text is what `%s` "
            "returns and what the displays and files print.\n\n| code | text |\n|---:|---|\n",
            title, AUTHMNG_D1X_CODE_NUM - 1, accessor);
    for (uint32_t code = 0; code < AUTHMNG_D1X_CODE_NUM; ++code) {
        const char *text = text_of(code);
        if (text[0] != '\0') fprintf(out, "| %u | %s |\n", code, text);
    }
}

void write_webauth_codes(FILE *out, const char *title, uint32_t count,
                         const char *(*label_of)(uint32_t)) {
    fprintf(out,
            "\n## %s\n\nCodes 0 to %u, with the label the web-auth statistic display gives "
            "each.\n\n| code | label |\n|---:|---|\n",
            title, count - 1);
    for (uint32_t code = 0; code < count; ++code) {
        fprintf(out, "| %u | %s |\n", code, plain_label(label_of(code)).c_str());
    }
}

struct EventKind {
    uint32_t value;
    const char *name;
    const char *meaning;
};

constexpr EventKind kWebauthEvents[] = {
    {WBA_EVENT_AUTH, "WBA_EVENT_AUTH", "authentication result"},
    {WBA_EVENT_OFFLINE, "WBA_EVENT_OFFLINE", "user offline"},
};

void write_event_kinds(FILE *out) {
    fprintf(out,
            "\n## Event kinds\n\n`authmng_auth_info_t.event`. In an 802.1X daemon (names as "
            "`authmng_dot1x_event_str` returns them):\n\n| value | name |\n|---:|---|\n");
    for (uint32_t event = 0;; ++event) {
        const char *name = authmng_dot1x_event_str(event);
        if (name[0] == '\0') break;
        fprintf(out, "| %u | %s |\n", event, name);
    }
    fprintf(out, "\nIn a web-auth daemon:\n\n| value | name | meaning |\n|---:|---|---|\n");
    for (const EventKind &kind : kWebauthEvents) {
        fprintf(out, "| %u | %s | %s |\n", kind.value, kind.name, kind.meaning);
    }
}

}  // namespace

void write_page(FILE *out) {
    fprintf(out,
            "# Code tables\n\nThe codes a daemon reports in `authmng_auth_info_t` and the texts "
            "the library shows for them. Written by `authmng-code-page` from the library's own "
            "tables; a test fails when this page and the tables differ. To regenerate:\n\n"
            "```sh\n%s\n```\n",
            kRegenerate);
    write_dot1x_codes(out, "802.1X result codes (`result`)", "authmng_dot1x_auth_reason_str",
                      authmng_dot1x_auth_reason_str);
    write_dot1x_codes(out, "802.1X offline reasons (`offline_reason`)",
                      "authmng_dot1x_offline_reason_str", authmng_dot1x_offline_reason_str);
    write_webauth_codes(out, "Web-auth result codes (`result`)", AUTHMNG_WBA_RESULT_NUM,
                        authmng::webauth_result_label);
    write_webauth_codes(out, "Web-auth offline reasons (`offline_reason`)", AUTHMNG_WBA_OFFLINE_NUM,
                        authmng::webauth_offline_label);
    write_event_kinds(out);
}

}  // namespace code_page
