#include "gnss/julianDay.h"

namespace {

// Years begin in March here, so that the leap day is the last of its year, and the count of years begins
// 4800 years before the first, so that nothing is negative.
constexpr int64_t FirstYear = -4800;
constexpr int64_t DaysBeforeFirstYear = 32045;

constexpr int64_t DaysPerYear = 365;
constexpr int64_t DaysPer4Years = 1461;
constexpr int64_t DaysPer400Years = 146097;

// March to July, or August to December, have this many days; so have five months from January.
constexpr int64_t DaysPer5Months = 153;

}  // namespace

uint32_t julianDay(const julianDate& date)
{
    const int64_t january = (14 - int64_t{date.Month}) / 12;
    const int64_t year = int64_t{date.Year} - FirstYear - january;
    const int64_t month = int64_t{date.Month} + 12 * january - 3;
    const int64_t leapDays = year / 4 - year / 100 + year / 400;
    const int64_t daysInYear = (DaysPer5Months * month + 2) / 5 + date.Day;
    return static_cast<uint32_t>(daysInYear + DaysPerYear * year + leapDays - DaysBeforeFirstYear);
}

julianDate julianToDate(uint32_t day)
{
    const int64_t days = int64_t{day} + DaysBeforeFirstYear - 1;
    const int64_t era = (4 * days + 3) / DaysPer400Years;
    const int64_t inEra = days - DaysPer400Years * era / 4;
    const int64_t yearOfEra = (4 * inEra + 3) / DaysPer4Years;
    const int64_t inYear = inEra - DaysPer4Years * yearOfEra / 4;
    const int64_t month = (5 * inYear + 2) / DaysPer5Months;
    const int64_t january = month / 10;
    return {static_cast<uint16_t>(100 * era + yearOfEra + FirstYear + january),
            static_cast<uint8_t>(month + 3 - 12 * january),
            static_cast<uint8_t>(inYear - (DaysPer5Months * month + 2) / 5 + 1)};
}
