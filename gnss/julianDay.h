// Dates as Julian day numbers, in the Gregorian calendar also before it began.
#pragma once

#include <cstdint>

struct julianDate {
    uint16_t Year;
    uint8_t Month;
    uint8_t Day;
};

// A month or a day outside the calendar counts on from the last that is inside. Never fails.
uint32_t julianDay(const julianDate& date);

// The date of a day from 1721060 (the year 0) to 25657591 (the year 65535); of others a date without meaning.
julianDate julianToDate(uint32_t day);
