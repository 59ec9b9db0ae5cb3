// The server-delay check's inner steps. The web-auth daemon's report
// (authmng_get_check_result) runs them; the displays read the state they
// keep and the configuration command clears the previous totals.
//
// Every function here runs with g_authmng_mtx held by its caller, except
// escape_clear_previous_totals, which takes it itself. The per-check steps
// are plain functions at global scope: their debug lines carry their names.
#ifndef AUTHMNG_ESCAPE_CHECK_H
#define AUTHMNG_ESCAPE_CHECK_H

#include <cstdint>

#include "authmng.h"

namespace authmng {

// Check types: the index of g_authmng_check and of g_authmng_type_str.
constexpr uint32_t kCheckRedirect = 0;
constexpr uint32_t kCheckAuth = 1;
constexpr uint32_t kCheckAuthTimeout = 2;
constexpr uint32_t kCheckTypes = AUTHMNG_CHECK_TYPE_NUM;

// Slots of each sample ring.
constexpr uint32_t kRingSize = AUTHMNG_CHECK_RING_SIZE;

// Ratio of an escape, percent of the users that escape.
constexpr uint32_t kEscapeAll = 100;

// Empty the previous totals and the wrapped flag under g_authmng_mtx, so
// that the next report only sets a new baseline. Used when user escape is
// switched off.
void escape_clear_previous_totals();

// Runs the checks of one report in order (redirect, auth, authtimeout) on
// their values and counts, stopping after the first that decides; a check
// that does not run because an earlier one decided keeps the escape it
// holds, and the verdict carries it. Call with g_authmng_mtx held.
void escape_run_checks(const uint32_t (&values)[kCheckTypes], const uint32_t (&counts)[kCheckTypes],
                       authmng_check_result_t &verdict);

}  // namespace authmng

// Runs check `type` on one report: counts the evaluation, evaluates the
// sample and, when that did not decide, continues the check's escape.
// 0 when the check did not decide, -1 when its sample was abnormal. An
// unknown type decides nothing.
int authmng_get_result_by_type(uint32_t type, uint32_t value, uint32_t count,
                               authmng_check_result_t *result);

// Evaluates the sample (value * 100) / count of check `type`: statistics,
// recent ring, threshold test, and for an abnormal sample the verdict, the
// escape log and the abnormal ring. 0 or -1 as above.
int authmng_get_current_result(uint32_t type, uint32_t value, uint32_t count,
                               authmng_check_result_t *result);

// Threshold test of the check's own type. true when the sample is
// abnormal; then *ratio is 100 for the checks that escape and stays as it
// is for redirect. A normal sample moves avg_value instead.
bool authmng_is_abnormal(authmng_check_t *check, uint32_t sample, uint32_t *ratio);

// Continues (or ends) an escape the check holds. The verdict carries the
// largest ratio of the checks: this never lowers a ratio another check
// already wrote into *result, and a check that holds no escape adds
// nothing.
void authmng_compare_with_pre_result(authmng_check_t *check, authmng_check_result_t *result);

// Appends a sample to the check's recent ring.
void authmng_add_check_record(authmng_check_t *check, uint32_t sample);

// Logs an abnormal sample to the escape log and appends it to the check's
// abnormal ring.
void authmng_add_check_abnormal_record(authmng_check_t *check, uint32_t avg, uint32_t sample);

#endif
