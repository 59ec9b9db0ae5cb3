#include "core/local_time.h"

#include <cstdio>
#include <cstring>

namespace authmng {

struct tm local_time(uint64_t seconds) {
    struct tm result;
    std::memset(&result, 0, sizeof result);
    time_t t = static_cast<time_t>(seconds);
    if (localtime_r(&t, &result) == nullptr) std::memset(&result, 0, sizeof result);
    return result;
}

void ctime_text(uint64_t seconds, char *buf, std::size_t size) {
    if (buf == nullptr || size == 0) return;
    buf[0] = '\0';
    time_t t = static_cast<time_t>(seconds);
    char text[64];
    if (size < 26 || ctime_r(&t, text) == nullptr) return;
    std::snprintf(buf, size, "%s", text);
}

}  // namespace authmng
