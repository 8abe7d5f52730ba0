#include "platform/clock.h"

#include <windows.h>

namespace {

constexpr int64_t nanosecondsPerSecond = 1'000'000'000;

int64_t ticksPerSecond()
{
    LARGE_INTEGER frequency;
    QueryPerformanceFrequency(&frequency);
    return frequency.QuadPart;
}

}  // namespace

int64_t clockSteadyNs()
{
    static const int64_t frequency = ticksPerSecond();
    LARGE_INTEGER counter;
    QueryPerformanceCounter(&counter);
    // Whole seconds apart: the product of the counter itself would overflow within minutes.
    const int64_t seconds = counter.QuadPart / frequency;
    const int64_t ticks = counter.QuadPart % frequency;
    return seconds * nanosecondsPerSecond + ticks * nanosecondsPerSecond / frequency;
}

int64_t clockThreadNs()
{
    constexpr int64_t nanosecondsPerUnit = 100;
    FILETIME made;
    FILETIME ended;
    FILETIME kernel;
    FILETIME user;
    if (!GetThreadTimes(GetCurrentThread(), &made, &ended, &kernel, &user))
        return 0;
    const auto units = [](const FILETIME& time) {
        return static_cast<int64_t>(uint64_t{time.dwHighDateTime} << 32 | time.dwLowDateTime);
    };
    return (units(kernel) + units(user)) * nanosecondsPerUnit;
}

clockDate clockTodayUTC()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {now.wYear, static_cast<uint8_t>(now.wMonth), static_cast<uint8_t>(now.wDay)};
}
