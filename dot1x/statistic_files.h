// The two 802.1X statistic CSV files of the same name: the interval file in
// the temporary area (activity since the previous interval row) and the
// daily file on flash (totals since the last clear).
#ifndef AUTHMNG_DOT1X_STATISTIC_FILES_H
#define AUTHMNG_DOT1X_STATISTIC_FILES_H

#include <cstdint>

#include "authmng.h"

namespace authmng {

// Either file is emptied and restarted with its header once it has grown
// past this many bytes.
constexpr long kDot1xStatisticFileLimit = 50000;

// Row label of a method.
inline const char *dot1x_method_label(uint32_t method) {
    return method == AUTHMNG_METHOD_DOT1X ? "dot1x" : "mab";
}

}  // namespace authmng

// One interval row of method into buf (kRowBufferSize bytes) from the
// differences current - baseline; buf stays empty when the clock fails.
void authmng_dot1x_tmp_row(uint32_t method, char *buf, const authmng_dot1x_stat_t *baseline,
                           const authmng_dot1x_stat_t *current);

// One daily row of the live record of method into buf (kRowBufferSize
// bytes). Takes g_authmng_mtx while it reads the record.
void authmng_dot1x_flash_row(uint32_t method, char *buf);

#endif
