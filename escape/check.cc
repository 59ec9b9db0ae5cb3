// One server-delay check: its sample, its threshold test, its rings and
// the continuation of the escape it holds.
#include "escape/check.h"

#include <cstdint>
#include <cstdio>

#include "authmng.h"
#include "core/log.h"
#include "core/relaxed.h"

using namespace authmng;

namespace {

// Samples are value * 100 / count: hundredths of a millisecond for the two
// time checks, percent for the time-out check.
constexpr uint32_t kSampleScale = 100;

// The check line of the escape log: at most 29 characters are kept.
constexpr size_t kCheckLineSize = 30;

const char *type_name(uint32_t type) {
    const char *name = type < kCheckTypes ? g_authmng_type_str[type] : nullptr;
    return name != nullptr ? name : "";
}

// Puts a value into a ring; pos is the slot after the newest value, 1500
// meaning slot 0.
void ring_append(uint32_t *ring, uint16_t &pos, uint32_t value) {
    if (pos > kRingSize - 1) {
        ring[0] = value;
        pos = 1;
    } else {
        ring[pos] = value;
        pos = static_cast<uint16_t>(pos + 1);
    }
}

// (value * 100) / count in 64 bits, unsigned and truncating, so that a
// login storm (value * 100 past 2^31) is neither turned negative nor
// wrapped; capped at the largest sample a ring holds. 0 (no sample) for a
// count of 0.
uint32_t sample_of(uint32_t value, uint32_t count) {
    if (count == 0) return 0;
    uint64_t sample = uint64_t{value} * kSampleScale / count;
    return sample > UINT32_MAX ? UINT32_MAX : static_cast<uint32_t>(sample);
}

uint32_t halfway(uint32_t avg, uint32_t sample) {
    return static_cast<uint32_t>((uint64_t{avg} + sample) / 2);
}

}  // namespace

int authmng_get_result_by_type(uint32_t type, uint32_t value, uint32_t count,
                               authmng_check_result_t *result) {
    if (type >= kCheckTypes || result == nullptr) return 0;
    authmng_check_t *check = &g_authmng_check[type];
    check->total_count += 1;
    int decided = authmng_get_current_result(type, value, count, result);
    if (decided == 0) authmng_compare_with_pre_result(check, result);
    return decided;
}

int authmng_get_current_result(uint32_t type, uint32_t value, uint32_t count,
                               authmng_check_result_t *result) {
    if (type >= kCheckTypes || result == nullptr) return 0;
    authmng_check_t *check = &g_authmng_check[type];
    check->type = type;

    uint32_t sample = sample_of(value, count);
    if (sample == 0) {
        AUTHMNG_EVENT_DBG("type:%s, param1: %d, param2: %d.\n", type_name(type),
                          static_cast<int>(value), static_cast<int>(count));
        check->zero_count += 1;
        return 0;
    }

    if (check->avg_value == 0 && check->min_value == 0 && check->max_value == 0) {
        check->avg_value = sample;
        check->min_value = sample;
        check->max_value = sample;
    } else {
        if (sample > check->max_value) check->max_value = sample;
        if (sample < check->min_value) check->min_value = sample;
    }
    authmng_add_check_record(check, sample);

    uint32_t ratio = 0;
    if (!authmng_is_abnormal(check, sample, &ratio)) return 0;

    if (ratio == 0) {
        result->reboot_enable = 1;
    } else {
        result->escape_time = load_relaxed(g_authmng_escape_time);
        result->escape_ratio = kEscapeAll;
        check->pre_escape_ratio = kEscapeAll;
    }
    authmng_add_check_abnormal_record(check, check->avg_value, sample);
    return -1;
}

bool authmng_is_abnormal(authmng_check_t *check, uint32_t sample, uint32_t *ratio) {
    if (check == nullptr) return false;
    switch (check->type) {
        case kCheckRedirect:
            if (sample > load_relaxed(g_authmng_check_redirect_threshold) * kSampleScale) {
                return true;
            }
            check->avg_value = halfway(check->avg_value, sample);
            return false;
        case kCheckAuth:
            if (sample > load_relaxed(g_authmng_check_auth_threshold) * kSampleScale) {
                if (ratio != nullptr) *ratio = kEscapeAll;
                return true;
            }
            check->avg_value = halfway(check->avg_value, sample);
            return false;
        case kCheckAuthTimeout:
            if (sample > load_relaxed(g_authmng_check_ratio)) {
                if (ratio != nullptr) *ratio = kEscapeAll;
                return true;
            }
            check->avg_value = sample;
            return false;
        default:
            return false;
    }
}

void authmng_compare_with_pre_result(authmng_check_t *check, authmng_check_result_t *result) {
    if (check == nullptr || result == nullptr) return;
    // Holding no escape, the check asks for none; the verdict started at
    // ratio 0 and keeps what an earlier check of this report wrote.
    if (check->pre_escape_ratio == 0) return;

    uint32_t held = check->pre_escape_ratio;
    check->escape_count += 1;
    uint32_t ratio = kEscapeAll;
    if (check->escape_count >= load_relaxed(g_authmng_escape_life)) {
        ratio = 0;
        check->escape_count = 0;
    }
    if (ratio > result->escape_ratio) result->escape_ratio = ratio;
    result->escape_time = load_relaxed(g_authmng_escape_time);
    AUTHMNG_EVENT_DBG("restore escape from(%u) to(%u).\n", held, ratio);
    check->pre_escape_ratio = ratio;
}

void authmng_add_check_record(authmng_check_t *check, uint32_t sample) {
    if (check == nullptr) return;
    ring_append(check->recent_value, check->recent_pos, sample);
}

void authmng_add_check_abnormal_record(authmng_check_t *check, uint32_t avg, uint32_t sample) {
    if (check == nullptr) return;
    char line[kCheckLineSize];
    snprintf(line, sizeof line, "%s: %u %u\n", type_name(check->type), avg, sample);
    authmng_save_abnormal_log(line);
    ring_append(check->abnormal_value, check->abnormal_pos, sample);
    check->abnormal_count += 1;
}

namespace authmng {
namespace {

// A check that did not run because an earlier one decided keeps the escape
// it holds, unchanged; the verdict still carries it.
void carry_held_escapes(uint32_t first_skipped, authmng_check_result_t &verdict) {
    for (uint32_t type = first_skipped; type < kCheckTypes; ++type) {
        uint32_t held = g_authmng_check[type].pre_escape_ratio;
        if (held == 0) continue;
        verdict.escape_time = load_relaxed(g_authmng_escape_time);
        if (held > verdict.escape_ratio) verdict.escape_ratio = held;
    }
}

}  // namespace

// In the same unit as the checks and flattened: the three checks run
// inline, each on its own check record at a constant address.
__attribute__((flatten)) void escape_run_checks(const uint32_t (&values)[kCheckTypes],
                                                const uint32_t (&counts)[kCheckTypes],
                                                authmng_check_result_t &verdict) {
#pragma GCC unroll 3
    for (uint32_t type = 0; type < kCheckTypes; ++type) {
        if (authmng_get_result_by_type(type, values[type], counts[type], &verdict) != 0) {
            carry_held_escapes(type + 1, verdict);
            return;
        }
    }
}

}  // namespace authmng
