// The web-auth interval writer: one row to each of the two interval files
// with what happened since the baseline, then the baseline moves up.
//
// The whole write runs with g_authmng_mtx held. A clear of the records
// (the clear-statistic command on the command-line thread) can therefore
// never fall between taking the figures and replacing the baseline, where
// the replacement would undo the clear for the baseline and the next rows
// would subtract stale figures from the cleared counters; and two interval
// writers (timer and command line) cannot both write the same interval.
// The price is that the daemon's intakes wait for two short appends to the
// temporary area once per interval; the restart rule already writes while
// an intake holds the mutex.
#include <cinttypes>
#include <cstdio>
#include <ctime>

#include "authmng.h"
#include "authmng_platform.h"
#include "core/appended_file.h"
#include "core/local_time.h"
#include "core/lock.h"
#include "core/log.h"
#include "core/memory.h"
#include "core/paths.h"

using namespace authmng;

namespace {

// Size in bytes past which an interval file starts again with its header.
constexpr long kIntervalFileLimit = 50000;

constexpr char kStatisticHeader[] =
    "date,online_user,auth_count,auth_succ_count,rd_user,http_req_count,offline_count,"
    "average_online,abnormal_offline,rd[0-0.5),rd[0.5-1),rd[1-),aggreage_rd_time,auth[0-1),"
    "auth[1-3),auth[3-),aggregate_auth_time,auth_except_svr[0-1),auth_except_svr[1-3),"
    "auth_except_svr[3-),aggregate_auth_except_svr_time,move_count,move_fail_count\n";

constexpr char kSubstatisticHeader[] =
    "date,aaa_reject,aaa_timeout,auth_dev_timeout,set_scc_fail,account_reject,"
    "account_status_timeout,find_user_fail,other_reason,aggregate_account,acc[0-1),acc[1-),"
    "aggregate_aaa,aaa[0-1),aaa[1-),aggregate_rds,rds[0-1),rds[1-),aggregate_rdsvr,rdsvr[0-1),"
    "rdsvr[1-),aggregate_aaa_acc,aaa_acc[0-1),aaa_acc[1-),aggregate_rds_acc,rds_acc[0-1),"
    "rds_acc[1-),aggregate_rdsvr_acc,rdsvr_acc[0-1),rdsvr_acc[1-),aggregate_scc,scc[0-1),"
    "scc[1-),aggregate_portal,portal[0-1),portal[1-)\n";

// Measured quantities by histogram index.
constexpr int kAuth = 0, kAuthExceptServer = 1, kRedirect = 2, kAaa = 4, kRds = 5, kRdsServer = 6,
              kScc = 7, kAccounting = 8, kAaaAccounting = 9, kRdsAccounting = 10,
              kRdsServerAccounting = 11, kPortal = 12;

constexpr uint32_t kPortalTimeout = 6;
constexpr uint32_t kSetFail = 10;

#define U "%" PRIu64
#define DATE "%d.%d %d:%d:%d"
// Live figure minus baseline figure, modulo 2^64.
#define DELTA(field) (now.field - base.field)
// Sum and the two ranges of a quantity with two ranges.
#define SUM_AND_RANGES(q) \
    DELTA(aggregate_time[q]), DELTA(range[q].count[0]), DELTA(range[q].count[1])

int format_statistic_row(char *row, size_t size, const struct tm &t,
                         const authmng_webauth_stat_t &now, const authmng_webauth_stat_t &base) {
    uint64_t abnormal_offline =
        DELTA(offline_reason[kPortalTimeout]) + DELTA(offline_reason[kSetFail]);
    return snprintf(
        row, size,
        DATE ", " U ", " U ", " U ", " U ", " U ", " U ", %umin, " U ", " U ", " U ", " U ", " U
             ", " U ", " U ", " U ", " U ", " U ", " U ", " U ", " U ", " U ", " U "\n",
        t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, now.current_online_number,
        DELTA(auth_total), DELTA(auth_result[0]), now.rd_user, DELTA(http_req_count),
        DELTA(offline_total), now.average_online_time, abnormal_offline,
        DELTA(range[kRedirect].count[0]), DELTA(range[kRedirect].count[1]),
        DELTA(range[kRedirect].count[2]), DELTA(aggregate_time[kRedirect]),
        DELTA(range[kAuth].count[0]), DELTA(range[kAuth].count[1]), DELTA(range[kAuth].count[2]),
        DELTA(aggregate_time[kAuth]), DELTA(range[kAuthExceptServer].count[0]),
        DELTA(range[kAuthExceptServer].count[1]), DELTA(range[kAuthExceptServer].count[2]),
        DELTA(aggregate_time[kAuthExceptServer]), DELTA(move_count), DELTA(move_fail_count));
}

// The sum of the accounting RADIUS server time is in ms like the others;
// the row has always marked it "s".
int format_substatistic_row(char *row, size_t size, const struct tm &t,
                            const authmng_webauth_stat_t &now, const authmng_webauth_stat_t &base) {
    return snprintf(
        row, size,
        DATE ", " U ", " U ", " U ", " U ", " U ", " U ", " U ", " U ", " U "ms, " U ", " U ", " U
             "ms, " U ", " U ", " U "ms, " U ", " U ", " U "ms, " U ", " U ", " U "ms, " U ", " U
             ", " U "ms, " U ", " U ", " U "s, " U ", " U " ," U "ms, " U ", " U ", " U "ms, " U
             ", " U "\n",
        t.tm_mon + 1, t.tm_mday, t.tm_hour, t.tm_min, t.tm_sec, DELTA(auth_result[1]),
        DELTA(auth_result[2]), DELTA(auth_result[3]), DELTA(auth_result[4]), DELTA(auth_result[5]),
        DELTA(auth_result[6]), DELTA(auth_result[7]), DELTA(auth_result[13]),
        SUM_AND_RANGES(kAccounting), SUM_AND_RANGES(kAaa), SUM_AND_RANGES(kRds),
        SUM_AND_RANGES(kRdsServer), SUM_AND_RANGES(kAaaAccounting), SUM_AND_RANGES(kRdsAccounting),
        SUM_AND_RANGES(kRdsServerAccounting), SUM_AND_RANGES(kScc), SUM_AND_RANGES(kPortal));
}

#undef SUM_AND_RANGES
#undef DELTA
#undef DATE
#undef U

using RowFormat = int (*)(char *, size_t, const struct tm &, const authmng_webauth_stat_t &,
                          const authmng_webauth_stat_t &);

// Appends the interval row of one file (the header first when the file is
// new or past its limit). False when the file could not be opened; a
// failing clock leaves the row out.
bool append_interval_row(const char *relative, const char *header, RowFormat format, char *row) {
    char path[kPathBufferSize] = {};
    if (authmng_make_vpupath(relative, path, kPathLimit) != 0) return false;
    AppendedFile file(path, kIntervalFileLimit, header);
    if (!file) return false;
    uint64_t seconds = qx_time_get(QX_TIME_WALL_SECONDS);
    if (seconds == QX_TIME_FAILED) return true;
    struct tm t = local_time(seconds);
    format(row, kRowBufferSize, t, g_authmng_webauth, g_authmng_webauth_tmp);
    file.write(row);
    return true;
}

}  // namespace

extern "C" void authmng_write_webauth_statistic_to_tmp(void) {
    Owned<char> row = alloc_text(kRowBufferSize);
    if (!row) return;
    AUTHMNG_EVENT_DBG("write webauth statistic to tmp.\n");

    LibraryLock lock;
    if (!append_interval_row(kWebauthStatisticCsv, kStatisticHeader, format_statistic_row,
                             row.get()) ||
        !append_interval_row(kWebauthSubstatisticCsv, kSubstatisticHeader, format_substatistic_row,
                             row.get())) {
        // The baseline stays: the next rows cover this interval as well.
        return;
    }
    g_authmng_webauth_tmp = g_authmng_webauth;
}
