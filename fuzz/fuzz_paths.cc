// Path building from any TMPDIR, flash home, relative path and size into a
// buffer of exactly size + 1 bytes: a path is built exactly when it fits
// (base + relative <= size) and is then base followed by relative. And the
// directory chains of relative paths under bases padded with slashes up to
// and past the 108-character limit: created exactly when the full path
// fits, every directory of the chain existing afterwards.
#include <sys/stat.h>

#include <string>
#include <vector>

#include "fuzz_support.h"

using namespace authmng_fuzz;

namespace {

constexpr size_t kHomeLimit = AUTHMNG_PATH_MAX;  // the flash home lookup's own buffer

// Builds into a buffer of exactly size + 1 bytes (one byte for a negative
// size), so that a write past it is caught.
void check_build(int (*build)(const char *, char *, int), const char *base,
                 const std::string &relative, int size) {
    std::vector<char> full(size >= 0 ? static_cast<size_t>(size) + 1 : 1, '#');
    const int rc = build(relative.c_str(), full.data(), size);
    const bool fits =
        base != nullptr && size >= 0 && strlen(base) + relative.size() <= static_cast<size_t>(size);
    FUZZ_CHECK(rc == (fits ? 0 : -1));
    if (fits) FUZZ_CHECK(std::string(full.data()) == base + relative);
}

bool is_directory(const std::string &path) {
    struct stat st;
    return stat(path.c_str(), &st) == 0 && S_ISDIR(st.st_mode);
}

// A chain of up to five components named "a" or "b", with runs of slashes
// between them; slashes only are an empty chain.
void check_create(Input &in, bool flash) {
    const std::string area = sandbox() + (flash ? "/flash" : "/tmp");
    const std::string base = area + std::string(in.below(64), '/');
    setenv(flash ? "AUTHMNG_FLASH_HOME" : "TMPDIR", base.c_str(), 1);
    std::string relative, made = area;
    for (uint32_t depth = in.below(6); depth > 0; --depth) {
        const uint8_t bits = in.take<uint8_t>();
        relative += std::string(1 + bits % 3, '/') + ((bits & 4) ? "b" : "a");
        made += (bits & 4) ? "/b" : "/a";
    }
    relative += "/";
    const int rc = authmng_create_dir(relative.c_str(), flash ? 1 : 0);
    const bool fits = base.size() + relative.size() <= AUTHMNG_PATH_MAX;
    FUZZ_CHECK(rc == (fits ? 0 : -1));
    if (fits) FUZZ_CHECK(is_directory(made));
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int *, char ***) {
    start_client(AUTHMNG_CLIENT_CPP);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size) {
    Input in(data, size);
    const uint8_t op = in.take<uint8_t>();
    if (op & 1) {
        check_create(in, (op & 2) != 0);
    } else {
        const std::string tmp = in.line(300), home = in.line(300), relative = in.line(300);
        const int buffer = static_cast<int>(in.below(330)) - 8;
        if (op & 2) {
            unsetenv("TMPDIR");
        } else {
            setenv("TMPDIR", tmp.c_str(), 1);
        }
        setenv("AUTHMNG_FLASH_HOME", home.c_str(), 1);
        check_build(authmng_make_vpupath, (op & 2) ? nullptr : tmp.c_str(), relative, buffer);
        // An empty home falls back to the build's default; one that does not
        // fit the lookup's buffer is no home at all.
        const char *flash = home.empty() || home.size() >= kHomeLimit ? nullptr : home.c_str();
        if (!home.empty()) check_build(authmng_make_flashpath, flash, relative, buffer);
    }
    setenv("TMPDIR", (sandbox() + "/tmp").c_str(), 1);
    setenv("AUTHMNG_FLASH_HOME", (sandbox() + "/flash").c_str(), 1);
    return 0;
}
