#include "platform/thread.h"

#include "platform/clock.h"

#include <algorithm>
#include <chrono>
#include <windows.h>

// The system and the import library have it; the compiler's headers do not.
extern "C" __declspec(dllimport) HRESULT WINAPI SetThreadDescription(HANDLE thread, PCWSTR description);

namespace {

constexpr int64_t nanosecondsPerMillisecond = 1'000'000;

// The longest single wait. It keeps sums of times from overflowing; whoever waits longer waits again.
constexpr int64_t longestWaitMs = 60LL * 60 * 1000;

// Whole milliseconds from `now` until a later deadline, rounded up, since the system rounds its waits down.
int64_t millisecondsUntil(int64_t deadlineNs, int64_t nowNs)
{
    constexpr int64_t longestWaitNs = longestWaitMs * nanosecondsPerMillisecond;
    if (deadlineNs > nowNs + longestWaitNs)
        return longestWaitMs;
    return (deadlineNs - nowNs + nanosecondsPerMillisecond - 1) / nanosecondsPerMillisecond;
}

}  // namespace

void threadYield()
{
    SwitchToThread();
}

void threadSleep(uint32_t milliseconds)
{
    int64_t now = clockSteadyNs();
    const int64_t deadline = now + milliseconds * nanosecondsPerMillisecond;
    // The system's timer may end a sleep a little early.
    while (now < deadline) {
        Sleep(static_cast<DWORD>(millisecondsUntil(deadline, now)));
        now = clockSteadyNs();
    }
}

void threadWaitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     int64_t deadlineNs)
{
    const int64_t now = clockSteadyNs();
    if (deadlineNs <= now)
        return;
    // One millisecond more: the library waits by the time of day in whole milliseconds and drops the rest,
    // and the caller would spend the last one turning in its loop.
    condition.wait_for(lock, std::chrono::milliseconds(millisecondsUntil(deadlineNs, now) + 1));
}

void threadName(const char* name)
{
    constexpr size_t longestName = 15;
    wchar_t units[longestName + 1] = {};
    for (size_t at = 0; at < longestName && name[at] != '\0'; ++at)
        units[at] = static_cast<unsigned char>(name[at]);
    SetThreadDescription(GetCurrentThread(), units);
}

uint64_t threadId()
{
    return GetCurrentThreadId();
}
