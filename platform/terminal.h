// The terminal behind standard output, if there is one.
#pragma once

#include <cstdint>

struct terminalSize {
    uint16_t Columns = 80;
    uint16_t Rows = 24;
};

// Whether standard output is a terminal that obeys the usual escape sequences (ECMA-48); it is prepared to do
// so where that has to be asked for. Any thread.
bool terminalReady();

// The size as it is now; 80 by 24 when it cannot be told.
terminalSize terminalNow();
