// Entries of the 802.1X pipeline that start-up and the timer already call;
// they do nothing until the intake and the writers are built.
#include "authmng.h"

extern "C" void authmng_notify_dot1x_info(authmng_auth_info_t *) {}
extern "C" void authmng_write_dot1x_statistic_to_tmpfile(void) {}
extern "C" void authmng_write_dot1x_statistic_to_flashfile(void) {}
extern "C" void authmng_write_dot1x_abnormal_record_to_file(void) {}
