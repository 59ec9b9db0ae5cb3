// The library's log convention.
//
// Debug lines: AUTHMNG_EVENT_DBG / AUTHMNG_ERROR_DBG test their switch at
// the call site and pass the calling function's name and the line number,
// so the line reads "AUTHMNG_LIB_EVENT_DBG: [<function> line:<n>   ] ...".
// Inner steps that log under their own names are real functions with those
// names. Never log from a lambda: __func__ would be "operator()".
//
// Error records (start-up, health monitor) are written unconditionally with
// log_record(tag, ...).
#ifndef AUTHMNG_CORE_LOG_H
#define AUTHMNG_CORE_LOG_H

#include "authmng.h"
#include "authmng_platform.h"
#include "core/relaxed.h"

#define AUTHMNG_DEBUG_LINE_(sw, prefix, fmt, ...)                                           \
    do {                                                                                    \
        if (authmng::load_relaxed(sw))                                                      \
            printk_syslog_ext(7, "UNKNOW_MODULE", "DEBUG", 2, prefix "[%s line:%-4d] " fmt, \
                              __func__, __LINE__, ##__VA_ARGS__);                           \
    } while (0)

#define AUTHMNG_EVENT_DBG(fmt, ...) \
    AUTHMNG_DEBUG_LINE_(g_authmng_lib_event_dbg, "AUTHMNG_LIB_EVENT_DBG: ", fmt, ##__VA_ARGS__)

#define AUTHMNG_ERROR_DBG(fmt, ...) \
    AUTHMNG_DEBUG_LINE_(g_authmng_lib_error_dbg, "AUTHMNG_LIB_ERROR_DBG: ", fmt, ##__VA_ARGS__)

namespace authmng {

// Error record: severity 3, module "AUTHMNG", the tag, class 3.
#define AUTHMNG_LOG_RECORD(tag, fmt, ...) \
    printk_syslog_ext(3, "AUTHMNG", tag, 3, fmt, ##__VA_ARGS__)

}  // namespace authmng

#endif
