// Full paths in the temporary and flash areas, and directory chains.
#include <sys/stat.h>

#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/paths.h"

namespace authmng {
namespace {

// base + relative into full (size + 1 bytes); a total of exactly size
// characters is accepted.
int join_path(const char *base, const char *relative, char *full, int size) {
    if (base == nullptr || relative == nullptr || full == nullptr || size < 0) return -1;
    size_t base_len = strlen(base);
    size_t relative_len = strlen(relative);
    if (base_len + relative_len > static_cast<size_t>(size)) return -1;
    memcpy(full, base, base_len);
    memcpy(full + base_len, relative, relative_len);
    full[base_len + relative_len] = '\0';
    return 0;
}

// Appends text to chain without letting it hold more than kPathLimit
// characters.
void append_bounded(char *chain, const char *text) {
    size_t used = strlen(chain);
    if (used >= static_cast<size_t>(kPathLimit)) return;
    strncat(chain, text, static_cast<size_t>(kPathLimit) - used);
}

}  // namespace
}  // namespace authmng

using namespace authmng;

extern "C" int authmng_make_vpupath(const char *relative, char *full, int size) {
    return join_path(getenv("TMPDIR"), relative, full, size);
}

extern "C" int authmng_make_flashpath(const char *relative, char *full, int size) {
    char home[kPathBufferSize];
    memset(home, 0, sizeof home);
    if (fs_get_flash_home(home, kPathLimit) != 0) return -1;
    home[kPathLimit] = '\0';
    return join_path(home, relative, full, size);
}

extern "C" int authmng_create_dir(const char *relative, unsigned char flash) {
    char full[kPathBufferSize];
    memset(full, 0, sizeof full);
    int built = flash == 1 ? authmng_make_flashpath(relative, full, kPathLimit)
                           : authmng_make_vpupath(relative, full, kPathLimit);
    if (built != 0) return -1;

    char chain[kPathBufferSize] = "/";
    char *saved = nullptr;
    for (char *part = strtok_r(full, "/", &saved); part != nullptr;
         part = strtok_r(nullptr, "/", &saved)) {
        append_bounded(chain, part);
        append_bounded(chain, "/");
        if (mkdir(chain, 0777) != 0 && errno != EEXIST) return errno;
    }
    return 0;
}
