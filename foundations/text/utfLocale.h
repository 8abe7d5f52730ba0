// The texts of the user's locale, filled once during static initialisation and only read from then on, by any
// thread.
#pragma once

#include <string>

struct utfLocaleTexts {
    std::string DateSeparator;
    std::string DecimalPoint;
    std::string ListSeparator;
    std::string MonthFull[12];
    std::string MonthShort[12];
    std::string TimeSeparator;
    std::string DayFull[7];   // Sunday first
    std::string DayShort[7];  // Sunday first
    // Monday first, unless it had to be made from DayShort, whose order it then has.
    std::string DayShortest[7];
};

extern utfLocaleTexts utfLocale;

// Fills the record anew from the system, with the fallbacks for what the system leaves empty. For start-up
// and tests: no other thread may be reading it.
void utfLocaleFill();
