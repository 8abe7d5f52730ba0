// Dates as Julian day numbers, in the Gregorian calendar also before it began. Any thread; never fails.
#pragma once

#include <cstdint>

constexpr uint32_t editLastDay = 5'373'484;  // 31 December 9999

struct editDate {
    int32_t Year = 1;
    uint32_t Month = 1;
    uint32_t Day = 1;
};

// A month or a day beyond its end counts on into the next. From 1 January of the year 0 to editLastDay.
uint32_t editDayOf(const editDate& date);

editDate editDateOf(uint32_t day);
