// The daily file on flash: once a day one "dot1x" and one "mab" row of the
// totals since the last clear, with the time analysis (histograms,
// over-threshold blocks, long-time reasons). Nothing is cleared or advanced.
#include <cinttypes>
#include <cstdio>
#include <cstring>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/memory.h"
#include "core/paths.h"
#include "dot1x/statistic_files.h"

using namespace authmng;

namespace {

constexpr char kDailyHeader[] =
    "date,type,auth total number,auth success,reauth number,reauth success,offline,auth[0-1),"
    "auth[1-3),auth[3-),auth average,OverOneSec total,OverOneSec sta,sta average,OverOneSec "
    "self,self average,OverOneSec aaa,aaa average,OverOneSec rds,rds average,OverOneSec "
    "rdsSrv,rdsSrv average,OverThiSec total,OverThiSec sta,sta average,OverThiSec self,self "
    "average,OverThiSec aaa,aaa average,OverThiSec rds,rds average,OverThiSec rdsSrv,rdsSrv "
    "average,authExSrv[0-1),authExSrv[1-3),authExSrv[3-),sta[0-1),sta[1-3),sta[3-),self[0-1),"
    "self[1-3),self[3-),aaa[0-1),aaa[1-3),aaa[3-),rds[0-1),rds[1-3),rds[3-),rdsSrv[0-1),rdsSrv["
    "1-3),rdsSrv[3-),[1-3)sta timeout,[1-3)aaa timeout,[1-3)all timeout,[1-3)other,[3-)sta "
    "timeout,[3-)aaa timeout,[3-)all timeout,[3-)other\n";

// Appends values to one row.
class RowAppender {
public:
    explicit RowAppender(char *row) : row_(row) {}

    void value(uint64_t v) { authmng_compose_inter_str(row_, kRowBufferSize, v); }

    // The counters of a histogram that are in use.
    void histogram(const authmng_range_t &range) {
        uint32_t used = range.num < AUTHMNG_RANGE_SLOTS ? range.num : AUTHMNG_RANGE_SLOTS;
        for (uint32_t i = 0; i < used; ++i) value(range.count[i]);
    }

    // A block's component sum and its average over count authentications.
    void sum_and_average(uint64_t sum, uint64_t count) {
        value(sum);
        value(count == 0 ? 0 : sum / count);
    }

private:
    char *row_;
};

}  // namespace

namespace {

// Writes "," and the decimal digits of value so that they end just before
// end; returns where the text starts. Values that fit in 32 bits (nearly
// every counter) are converted in 32-bit arithmetic, which a 32-bit CPU
// does without a library call per digit.
char *comma_and_decimal(uint64_t value, char *end) {
    char *p = end;
    if (value <= UINT32_MAX) {
        uint32_t v = static_cast<uint32_t>(value);
        do {
            *--p = static_cast<char>('0' + v % 10);
            v /= 10;
        } while (v != 0);
    } else {
        do {
            *--p = static_cast<char>('0' + value % 10);
            value /= 10;
        } while (value != 0);
    }
    *--p = ',';
    return p;
}

}  // namespace

// The daily row appends 52 values one by one: the value is converted in a
// small buffer of the stack, with no allocation and no formatting call, and
// copied once. Same text as ",%" PRIu64, cut at size - 1 characters.
extern "C" void authmng_compose_inter_str(char *dst, int32_t size, uint64_t value) {
    if (dst == nullptr || size <= 0) return;
    size_t limit = static_cast<size_t>(size) - 1;
    size_t used = strnlen(dst, limit);
    if (used >= limit) return;
    char text[24];  // "," and at most 20 digits
    char *end = text + sizeof text;
    char *start = comma_and_decimal(value, end);
    size_t length = static_cast<size_t>(end - start);
    if (length > limit - used) length = limit - used;
    memcpy(dst + used, start, length);
    dst[used + length] = '\0';
}

void authmng_dot1x_flash_row(uint32_t method, char *buf) {
    if (buf == nullptr) return;
    buf[0] = '\0';
    if (method >= AUTHMNG_D1X_METHOD_NUM) return;
    struct tm t = local_time(qx_time_get(QX_TIME_WALL_SECONDS));

    LibraryLock lock;
    const authmng_dot1x_stat_t &r = g_amg_d1x[method];
    snprintf(buf, kRowBufferSize,
             "%02d.%02d %02d:%02d:%02d,%s,%" PRIu64 ",%" PRIu64 ",%" PRIu64 ",%" PRIu64 ",%" PRIu64,
             t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, dot1x_method_label(method),
             r.auth_total, r.auth_result[0], r.reauth_total, r.reauth_result[0], r.offline_total);

    RowAppender row(buf);
    const authmng_range_t &auth = r.range[AUTHMNG_RANGE_AUTH];
    row.histogram(auth);
    row.value(r.auth_avg_time);

    row.value(r.over1s_total);
    row.sum_and_average(r.over1s_sta, auth.count[1]);
    row.sum_and_average(r.over1s_self, auth.count[1]);
    row.sum_and_average(r.over1s_aaa, auth.count[1]);
    row.sum_and_average(r.over1s_rds, auth.count[1]);
    row.sum_and_average(r.over1s_rds_srv, auth.count[1]);

    row.value(r.over3s_total);
    row.sum_and_average(r.over3s_sta, auth.count[2]);
    row.sum_and_average(r.over3s_self, auth.count[2]);
    row.sum_and_average(r.over3s_aaa, auth.count[2]);
    row.sum_and_average(r.over3s_rds, auth.count[2]);
    row.sum_and_average(r.over3s_rds_srv, auth.count[2]);

    for (uint32_t i = AUTHMNG_RANGE_AUTH_EX_SRV; i < AUTHMNG_D1X_RANGE_NUM; ++i) {
        row.histogram(r.range[i]);
    }
    for (uint64_t counter : g_authmng_sec_range_reason) row.value(counter);
    for (uint64_t counter : g_authmng_thi_range_reason) row.value(counter);

    size_t length = strnlen(buf, kRowBufferSize - 1);
    if (length < kRowBufferSize - 1) {
        buf[length] = '\n';
        buf[length + 1] = '\0';
    }
}

extern "C" void authmng_write_dot1x_statistic_to_flashfile(void) {
    AUTHMNG_EVENT_DBG("write dot1x statistic to file.\n");
    Owned<char> line = alloc_text(kRowBufferSize);
    if (!line) return;
    char path[kPathBufferSize];
    memset(path, 0, sizeof path);
    if (authmng_make_flashpath(kDot1xStatisticCsv, path, kPathLimit) != 0) path[0] = '\0';

    AppendedFile file(path, kDot1xStatisticFileLimit, kDailyHeader);
    if (!file) return;
    for (uint32_t method = 0; method < AUTHMNG_D1X_METHOD_NUM; ++method) {
        memset(line.get(), 0, kRowBufferSize);
        authmng_dot1x_flash_row(method, line.get());
        file.write(line.get());
    }
}
