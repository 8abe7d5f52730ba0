#include "foundations/thread/thrEvent.h"

#include "platform/clock.h"
#include "platform/thread.h"

#include <algorithm>

namespace {

constexpr int64_t NsPerMs = 1'000'000;
constexpr int64_t LongestStepNs = 86'400'000 * NsPerMs;

}  // namespace

void thrEvent::Signal()
{
    const std::lock_guard lock(Mutex);
    Signalled = 1;
    Condition.notify_all();
}

bool thrEvent::Wait(uint32_t milliseconds)
{
    std::unique_lock lock(Mutex);
    int64_t now = clockSteadyNs();
    const int64_t deadline = now + milliseconds * NsPerMs;
    while (!Signalled && now < deadline) {
        threadWaitUntil(Condition, lock, std::min(deadline, now + LongestStepNs));
        now = clockSteadyNs();
    }
    return Signalled.exchange(0) != 0;
}
