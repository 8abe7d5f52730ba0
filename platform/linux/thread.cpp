#include "platform/thread.h"

#include <algorithm>
#include <chrono>
#include <thread>

#include <pthread.h>
#include <unistd.h>

namespace {

constexpr size_t LongestName = 15;

}  // namespace

void threadYield()
{
    std::this_thread::yield();
}

void threadSleep(uint32_t milliseconds)
{
    std::this_thread::sleep_for(std::chrono::milliseconds(milliseconds));
}

void threadWaitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     int64_t deadlineNs)
{
    // A time before the clock's start has no valid form in the system's call.
    const std::chrono::nanoseconds deadline(std::max<int64_t>(deadlineNs, 0));
    condition.wait_until(lock, std::chrono::steady_clock::time_point(deadline));
}

void threadName(const char* name)
{
    if (name == nullptr)
        return;
    char kept[LongestName + 1] = {};
    // The system refuses a longer name whole.
    for (size_t i = 0; i < LongestName && name[i] != 0; i++)
        kept[i] = name[i];
    pthread_setname_np(pthread_self(), kept);
}

uint64_t threadId()
{
    return static_cast<uint64_t>(gettid());
}
