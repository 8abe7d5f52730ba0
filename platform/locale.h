// The user's language: texts for dates and numbers, and the system's words for its errors.
#pragma once

#include <cstdint>
#include <string>

enum class localeItem : uint8_t {
    DateSeparator,
    DecimalPoint,
    ListSeparator,
    TimeSeparator,
    MonthFull,    // index 0 to 11, January first
    MonthShort,   // index 0 to 11, January first
    DayFull,      // index 0 to 6, Sunday first
    DayShort,     // index 0 to 6, Sunday first
    DayShortest,  // index 0 to 6, Monday first
};

// One text of the user's locale as UTF-8. Empty when the system has none, for an index out of range, and when
// the user's locale cannot be used. Any thread; the locale of the process stays as it is.
std::string localeText(localeItem item, unsigned index = 0);

// The system's text for one of its own error codes, as UTF-8, in the user's language where the system speaks
// it. It may end in line ends. Empty when the system knows no such code. Any thread.
std::string localeErrorText(uint32_t code);
