// Local calendar time of a wall-clock reading (seconds since the epoch).
#ifndef AUTHMNG_CORE_LOCAL_TIME_H
#define AUTHMNG_CORE_LOCAL_TIME_H

#include <cstdint>
#include <ctime>

namespace authmng {

// All fields zero when the value cannot be converted.
struct tm local_time(uint64_t seconds);

// "Www Mmm dd hh:mm:ss yyyy\n" of the value (the ctime form) into buf,
// which holds at least 26 bytes; an empty text when it cannot be converted.
void ctime_text(uint64_t seconds, char *buf, std::size_t size);

}  // namespace authmng

#endif
