/* Shared between the two files of the minimal port. */
#ifndef PORT_MINIMAL_H
#define PORT_MINIMAL_H

#include <stdio.h>

/* Where syslog lines go; NULL: stderr. */
void port_log_output(FILE *out);

#endif
