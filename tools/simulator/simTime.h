// Time as receivers tell it: UTC by the calendar, GPS by week and second.
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

constexpr int64_t simSecond = 1'000'000'000;  // nanoseconds
constexpr int64_t simMillisecond = 1'000'000;
constexpr int simLeapSeconds = 18;  // GPS minus UTC since 2017

struct simDate {
    int Year = 1970;
    int Month = 1;
    int Day = 1;
    int Hour = 0;
    int Minute = 0;
    int Second = 0;
    int Nanosecond = 0;
};

// Of nanoseconds since 1970.
simDate simDateOf(int64_t utcNs);

struct simGpsTime {
    int Week = 0;       // since 1980-01-06, without rollover
    int64_t TowNs = 0;  // nanoseconds since the week began
};

simGpsTime simGpsOf(int64_t utcNs);

// Reads "2026-11-21T09:15:00", with or without a Z behind it, or a date alone.
std::optional<int64_t> simUtcOfText(std::string_view text);
