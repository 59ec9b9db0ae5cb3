// Entries of the web-auth pipeline that the event entry and the timer
// already call; they do nothing until the intake and the writers are built.
#include "authmng.h"

extern "C" void authmng_notify_webauth_info(const authmng_auth_info_t *) {}
extern "C" void authmng_write_webauth_statistic_to_tmp(void) {}
extern "C" void authmng_write_webauth_abnormal_record_to_file(void) {}
