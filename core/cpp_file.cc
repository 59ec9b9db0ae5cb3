// The cpp client's counter: its sampling callback and the cpp.csv rows.
#include <cstdio>
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/log.h"
#include "core/paths.h"
#include "core/relaxed.h"

using namespace authmng;

namespace {
constexpr long kCppFileLimit = 1000;
constexpr char kCppHeader[] = "time,cpp\n";
constexpr size_t kCppRowSize = 100;
}  // namespace

extern "C" int authmng_reg_cpp_callback(uint32_t (*callback)(int)) {
    store_relaxed(g_authmng_cpp_handler, callback);
    return 0;
}

extern "C" void authmng_write_cpp_to_file(void) {
    char path[kPathBufferSize];
    memset(path, 0, sizeof path);
    if (authmng_make_vpupath(kCppCsv, path, kPathLimit) != 0) path[0] = '\0';
    AppendedFile file(path, kCppFileLimit, kCppHeader);
    if (!file) {
        AUTHMNG_ERROR_DBG("Failed to open file(%s).\n", path);
        return;
    }
    struct tm now = local_time(qx_time_get(QX_TIME_WALL_SECONDS));
    char row[kCppRowSize];
    snprintf(row, sizeof row, "%d.%d %d:%d:%d,%d\n", now.tm_mon + 1, now.tm_mday, now.tm_hour,
             now.tm_min, now.tm_sec, static_cast<int>(g_authmng_max_cpp));
    file.write(row);
}
