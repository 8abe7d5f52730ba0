// Time, as the rest of the program is allowed to know it.
#pragma once

#include <cstdint>

// Nanoseconds of a clock that never goes back, from an arbitrary start. Any thread; never fails.
int64_t clockSteadyNs();

// Nanoseconds that processors have spent on the calling thread. Steps may be as long as 16 ms. 0 when the
// system does not tell.
int64_t clockThreadNs();

struct clockDate {
    uint16_t Year;  // full, 2026
    uint8_t Month;  // 1 to 12
    uint8_t Day;    // 1 to 31
};

// Today's date in UTC. Any thread. A machine whose clock was never set gives what it has.
clockDate clockTodayUTC();
