#include "tools/simulator/simTime.h"

#include <charconv>
#include <chrono>

namespace {

constexpr int64_t GpsEpoch = 315'964'800;  // 1980-01-06 in seconds since 1970
constexpr int64_t SecondsPerWeek = 604'800;

// Takes a number of exactly `width` digits off the front.
std::optional<int> TakeNumber(std::string_view& text, size_t width)
{
    if (text.size() < width)
        return std::nullopt;
    int value = 0;
    const char* const end = text.data() + width;
    const std::from_chars_result read = std::from_chars(text.data(), end, value);
    if (read.ec != std::errc() || read.ptr != end || value < 0)
        return std::nullopt;
    text.remove_prefix(width);
    return value;
}

bool TakeSign(std::string_view& text, char sign)
{
    if (!text.starts_with(sign))
        return false;
    text.remove_prefix(1);
    return true;
}

std::optional<std::chrono::sys_days> TakeDate(std::string_view& text)
{
    const std::optional<int> year = TakeNumber(text, 4);
    if (!year || !TakeSign(text, '-'))
        return std::nullopt;
    const std::optional<int> month = TakeNumber(text, 2);
    if (!month || !TakeSign(text, '-'))
        return std::nullopt;
    const std::optional<int> day = TakeNumber(text, 2);
    if (!day)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    // Nothing was sent before the first week, and time in nanoseconds ends in 2262.
    if (!date.ok() || *year < 1981 || *year > 2200)
        return std::nullopt;
    return std::chrono::sys_days(date);
}

std::optional<int> TakeTimeOfDay(std::string_view& text)
{
    const std::optional<int> hour = TakeNumber(text, 2);
    if (!hour || *hour > 23 || !TakeSign(text, ':'))
        return std::nullopt;
    const std::optional<int> minute = TakeNumber(text, 2);
    if (!minute || *minute > 59 || !TakeSign(text, ':'))
        return std::nullopt;
    const std::optional<int> second = TakeNumber(text, 2);
    if (!second || *second > 59)
        return std::nullopt;
    return (*hour * 60 + *minute) * 60 + *second;
}

}  // namespace

simDate simDateOf(int64_t utcNs)
{
    using namespace std::chrono;
    const sys_time<nanoseconds> moment{nanoseconds(utcNs)};
    const sys_days day = floor<days>(moment);
    const year_month_day date{day};
    const hh_mm_ss<nanoseconds> time{moment - day};
    return {static_cast<int>(date.year()),
            static_cast<int>(static_cast<unsigned>(date.month())),
            static_cast<int>(static_cast<unsigned>(date.day())),
            static_cast<int>(time.hours().count()),
            static_cast<int>(time.minutes().count()),
            static_cast<int>(time.seconds().count()),
            static_cast<int>(time.subseconds().count())};
}

simGpsTime simGpsOf(int64_t utcNs)
{
    const int64_t gps = utcNs - GpsEpoch * simSecond + simLeapSeconds * simSecond;
    constexpr int64_t week = SecondsPerWeek * simSecond;
    int64_t number = gps / week;
    int64_t rest = gps % week;
    if (rest < 0) {
        rest += week;
        --number;
    }
    return {static_cast<int>(number), rest};
}

std::optional<int64_t> simUtcOfText(std::string_view text)
{
    const std::optional<std::chrono::sys_days> date = TakeDate(text);
    if (!date)
        return std::nullopt;
    int64_t seconds = std::chrono::sys_seconds(*date).time_since_epoch().count();
    if (TakeSign(text, 'T')) {
        const std::optional<int> time = TakeTimeOfDay(text);
        if (!time)
            return std::nullopt;
        seconds += *time;
        TakeSign(text, 'Z');
    }
    if (!text.empty())
        return std::nullopt;
    return seconds * simSecond;
}
