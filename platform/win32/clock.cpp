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

clockDate clockTodayUTC()
{
    SYSTEMTIME now;
    GetSystemTime(&now);
    return {now.wYear, static_cast<uint8_t>(now.wMonth), static_cast<uint8_t>(now.wDay)};
}
