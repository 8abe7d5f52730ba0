#include "gnss/gnssTSIP.h"
#include "gnss/julianDay.h"
#include "gnss/tsipModel.h"
#include "platform/clock.h"

#include <cmath>

namespace {

constexpr uint32_t DaysPerWeek = 7;
constexpr uint32_t DaysPerRollover = 1024 * DaysPerWeek;
constexpr uint32_t FirstDayOfGPS = 2444245;  // 1980-01-06
constexpr double SecondsPerDay = 86400;

uint32_t julianDayOf(const clockDate& date)
{
    return julianDay({date.Year, date.Month, date.Day});
}

// Unsigned on purpose: a date later than today jumps to one of the last 1024 weeks.
uint32_t unroll(uint32_t day, uint32_t today)
{
    return day + (today - day) / DaysPerRollover * DaysPerRollover;
}

uint32_t wholeDays(double seconds)
{
    constexpr double limit = 0x1p62;
    const double days = std::floor(seconds / SecondsPerDay);
    return std::fabs(days) < limit ? static_cast<uint32_t>(static_cast<int64_t>(days)) : 0;
}

}  // namespace

void gnssTSIP::SetDate(uint32_t julian)
{
    const julianDate date = julianToDate(unroll(julian, julianDayOf(Today())));
    Year = date.Year;
    Month = date.Month;
    Day = date.Day;
}

void gnssTSIP::SetDate(uint8_t day, uint8_t month, uint16_t year)
{
    SetDate(julianDay({year, month, day}));
}

// The receiver counts weeks to 1023. The day within the week is the one that was last told, so this comes
// before the new time of week is stored.
void gnssTSIP::SetWeek(uint16_t week)
{
    const uint32_t begin = week * DaysPerWeek + FirstDayOfGPS;
    const uint32_t today = julianDayOf(Today());
    const uint32_t rollovers = (today - wholeDays(double{WeekTime}) - begin) / DaysPerRollover;
    Week = static_cast<uint16_t>(rollovers % 65536 * 1024 + week);
}

// To UTC. When the offset reaches back over the beginning of the week, one day is lent, not a week.
void gnssTSIP::SetWeekTime(double timeOfWeek)
{
    if (timeOfWeek < double{UTCOffset}) {
        timeOfWeek += SecondsPerDay;
        --Week;
    }
    WeekTime = static_cast<float>(timeOfWeek - double{UTCOffset});
}

void gnssTSIP::SetFixTime(float seconds)
{
    WeekTime = seconds;
    TimeOfDay = std::fmod(double{seconds}, SecondsPerDay);
    Valid |= ValidTime;
}

void gnssTSIP::SetValidTimeByStatus()
{
    constexpr uint8_t unknown = 0xFF;
    constexpr uint8_t noTime = 0x01;
    if (DecodeStatus != unknown && DecodeStatus != noTime)
        Valid |= ValidTime;
}

// 0x41, GPS time: 0 time of week (r4), 4 week (u2), 6 offset to UTC (r4).
void gnssTSIP::DecodeTime(bytesBig data)
{
    SetWeek(data.u2(4));
    UTCOffset = data.r4(6);
    SetWeekTime(double{data.r4(0)});
    if (Model != ModelLassen)
        return;
    SetDate(FirstDayOfGPS + wholeDays(double{WeekTime}) + Week * DaysPerWeek);
    Valid |= ValidTime;
    RaiseNewData();
}

// 8F-0B, comprehensive time: 2 time of week (r8), 10 day, 11 month, 12 year (u2), 15 offset to UTC (u2),
// 41 latitude, 49 longitude, 57 altitude (r8).
void gnssTSIP::DecodeComprehensiveTime(bytesBig data)
{
    WeekTime = static_cast<float>(data.r8(2));
    SetDate(data.u1(10), data.u1(11), data.u2(12));
    UTCOffset = data.u2(15);
    SetPosition(data.Behind(41));
    RaiseNewData();
}

// 8F-AB, primary timing: 0 time of week (u4), 4 week (u2), 6 offset to UTC (u2), 8 flags, 9 seconds,
// 10 minutes, 11 hours, 12 day, 13 month, 14 year (u2).
void gnssTSIP::DecodePrimaryTiming(bytesBig data)
{
    SetWeek(data.u2(4));
    UTCOffset = data.u2(6);
    SetWeekTime(data.u4(0));

    constexpr uint8_t isUTC = 1;
    TimeFlags = data.u1(8);
    if ((TimeFlags & isUTC) == 0)
        AskForUTC();

    TimeOfDay = data.u1(9) + data.u1(10) * 60 + data.u1(11) * 3600;
    SetDate(data.u1(12), data.u1(13), data.u2(14));
    SetValidTimeByStatus();
    Poll();
    RaiseNewData();
}

// 8F-AD, primary UTC time: 2 fraction of a second (r8), 10 hours, 11 minutes, 12 seconds, 13 day, 14 month,
// 15 year (u2).
void gnssTSIP::DecodePrimaryUTC(bytesBig data)
{
    TimeOfDay = data.u1(10) * 3600 + data.u1(11) * 60 + data.u1(12) + data.r8(2);
    SetDate(data.u1(13), data.u1(14), data.u2(15));
    SetValidTimeByStatus();
    Identified(ModelAcutime);
    RaiseNewData();
}
