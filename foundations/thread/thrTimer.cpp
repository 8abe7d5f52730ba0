#include "foundations/thread/thrTimer.h"

#include "platform/crash.h"
#include "platform/thread.h"

#include <algorithm>

thrTimer::~thrTimer()
{
    Stop();
}

void thrTimer::Start()
{
    Stop();
    // The new thread begins with a wait, which needs the mutex, and so runs no handler before it is stored.
    const std::lock_guard lock(Mutex);
    Thread = std::jthread([this](const std::stop_token& stop) { Run(stop); });
}

void thrTimer::Stop()
{
    if (!Thread.joinable())
        return;
    Thread.request_stop();
    Signal();
    Thread.join();
    // A thread that was not waiting has left the signal behind; the next one's first period is a whole one.
    Signalled = 0;
}

void thrTimer::Run(const std::stop_token& stop)
{
    const crashThreadStack stack;
    threadName("timer");
    while (!stop.stop_requested()) {
        Wait(std::max<uint32_t>(Period, 1));
        if (stop.stop_requested())
            return;
        if (OnTick)
            OnTick();
    }
}
