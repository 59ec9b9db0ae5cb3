// Full paths in the temporary and flash areas, and directory chains.
#include <sys/stat.h>
#include <unistd.h>

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

bool trusted_owner(uid_t owner) {
    return owner == 0 || owner == geteuid();
}

// 0 when the existing directory may hold the library's files, otherwise
// the error number its creation fails with: ENOTDIR for anything but a
// directory, EPERM for a directory another account owns or may fill
// (writable by others and not sticky). A symbolic link counts as the
// directory it names only when root or this user made it: one another
// account left in a shared area is refused.
int untrusted_directory(const char *chain) {
    // Without its trailing "/", which would make lstat follow a link.
    char path[kPathBufferSize];
    size_t length = strnlen(chain, kPathLimit);
    while (length > 1 && chain[length - 1] == '/') --length;
    memcpy(path, chain, length);
    path[length] = '\0';
    struct stat st;
    if (lstat(path, &st) != 0) return errno;
    if (S_ISLNK(st.st_mode)) {
        if (!trusted_owner(st.st_uid)) return EPERM;
        if (stat(path, &st) != 0) return errno;
    }
    if (!S_ISDIR(st.st_mode)) return ENOTDIR;
    if (!trusted_owner(st.st_uid)) return EPERM;
    if ((st.st_mode & S_IWOTH) != 0 && (st.st_mode & S_ISVTX) == 0) return EPERM;
    return 0;
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
        if (mkdir(chain, 0777) == 0) continue;
        if (errno != EEXIST) return errno;
        int refused = untrusted_directory(chain);
        if (refused != 0) return refused;
    }
    return 0;
}
