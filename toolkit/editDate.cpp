#include "toolkit/editDate.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr int64_t unixDay = 2'440'588;  // of 1 January 1970
constexpr int64_t firstDay = 1'721'060;
constexpr uint32_t monthsPerYear = 12;
constexpr int32_t lastYear = 9999;

}  // namespace

uint32_t editDayOf(const editDate& date)
{
    using namespace std::chrono;
    const uint32_t months = std::max(date.Month, 1U) - 1;
    const int64_t fullYear = int64_t{date.Year} + months / monthsPerYear;
    if (fullYear > lastYear)
        return editLastDay;
    const year_month_day first =
        year{static_cast<int>(std::max(fullYear, int64_t{0}))} / month{months % monthsPerYear + 1} / day{1};
    const int64_t days = sys_days{first}.time_since_epoch().count() + int64_t{date.Day} - 1;
    return static_cast<uint32_t>(std::clamp(days + unixDay, firstDay, int64_t{editLastDay}));
}

editDate editDateOf(uint32_t day)
{
    using namespace std::chrono;
    const int64_t days = int64_t{std::min(day, editLastDay)} - unixDay;
    const year_month_day date{sys_days{std::chrono::days{days}}};
    return {static_cast<int>(date.year()), static_cast<unsigned>(date.month()),
            static_cast<unsigned>(date.day())};
}
