// The escape log: a small text file in the temporary area with one entry
// (ctime line and check line) per abnormal sample, emptied once it has
// grown past 1000 bytes.
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/log.h"
#include "core/paths.h"

using namespace authmng;

namespace {
constexpr long kEscapeLogLimit = 1000;
constexpr size_t kCtimeSize = 32;
}  // namespace

// Runs inside the check's hold of g_authmng_mtx; takes no lock itself.
extern "C" void authmng_save_abnormal_log(const char *line) {
    if (line == nullptr) return;
    uint64_t now = qx_time_get(QX_TIME_WALL_SECONDS);
    // Without a clock the entry would carry a made-up time: it is lost.
    if (now == QX_TIME_FAILED) return;

    char path[kPathBufferSize];
    std::memset(path, 0, sizeof path);
    if (authmng_make_vpupath(kEscapeLog, path, kPathLimit) != 0) path[0] = '\0';
    AppendedFile file(path, kEscapeLogLimit, nullptr);
    if (!file) {
        AUTHMNG_ERROR_DBG("open log file fail");
        return;
    }
    char stamp[kCtimeSize];
    ctime_text(now, stamp, sizeof stamp);
    file.write(stamp);
    file.write(line);
}
