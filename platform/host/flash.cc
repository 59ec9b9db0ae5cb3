// Host flash home: $AUTHMNG_FLASH_HOME, else the directory chosen when the
// library was configured (AUTHMNG_DEFAULT_FLASH_HOME).
#include <cstdio>
#include <cstdlib>

#include "authmng_platform.h"

#ifndef AUTHMNG_DEFAULT_FLASH_HOME
#define AUTHMNG_DEFAULT_FLASH_HOME "/var/lib/authmng/flash"
#endif

extern "C" int fs_get_flash_home(char *buf, int size) {
    if (buf == nullptr || size <= 0) return -1;
    const char *home = getenv("AUTHMNG_FLASH_HOME");
    if (home == nullptr || home[0] == '\0') home = AUTHMNG_DEFAULT_FLASH_HOME;
    int n = snprintf(buf, static_cast<size_t>(size), "%s", home);
    if (n < 0 || n >= size) {
        buf[0] = '\0';
        return -1;
    }
    return 0;
}
