#include "platform/clock.h"

#include <chrono>
#include <ctime>

int64_t clockSteadyNs()
{
    // The same clock on which threadWaitUntil waits.
    using namespace std::chrono;
    return duration_cast<nanoseconds>(steady_clock::now().time_since_epoch()).count();
}

int64_t clockThreadNs()
{
    constexpr int64_t nanosecondsPerSecond = 1'000'000'000;
    timespec spent{};
    if (clock_gettime(CLOCK_THREAD_CPUTIME_ID, &spent) != 0)
        return 0;
    return spent.tv_sec * nanosecondsPerSecond + spent.tv_nsec;
}

clockDate clockTodayUTC()
{
    using namespace std::chrono;
    const year_month_day today{floor<days>(system_clock::now())};
    return {static_cast<uint16_t>(static_cast<int>(today.year())),
            static_cast<uint8_t>(static_cast<unsigned>(today.month())),
            static_cast<uint8_t>(static_cast<unsigned>(today.day()))};
}
