// The settings of a terminal line. They are apart because the kernel's header of any baud rate and that of
// the C library cannot be read together.
#pragma once

#include "platform/comm.h"

// Whether the descriptor is a terminal. It then passes every byte as it is and knows no special characters,
// at the rate that it had.
bool commLineMakeRaw(int descriptor);

// As commGetControl; `flags` are those that were last set, for some cannot be read back.
bool commLineGet(int descriptor, uint32_t flags, commControl& control);

// As commSetControl; `flags` are those of the settings that the system can do.
bool commLineSet(int descriptor, const commControl& control, uint32_t& flags);

// Drops what was received, and what waits to be sent as well.
void commLineFlush(int descriptor, bool unsentToo);

// How many bytes wait each way. A line that has gone answers no question.
bool commLineLevel(int descriptor, commLevel& level);

// As commModemStatus.
bool commLineModem(int descriptor, uint32_t& status);

// Whether what waits to be sent will have left in a tenth of a second: there is little of it, and the other
// side holds nothing back.
bool commLineDrainsSoon(int descriptor);
