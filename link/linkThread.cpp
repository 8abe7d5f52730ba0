#include "link/linkThread.h"

#include "foundations/fatal/crashFatal.h"
#include "platform/crash.h"
#include "platform/thread.h"

#include <system_error>

linkThread::~linkThread()
{
    Join();
}

void linkThread::Start(const char* name, std::function<void()> body)
{
    Join();
    const std::lock_guard lock(Mutex);
    try {
        Thread = std::thread([this, name, run = std::move(body)] {
            const crashThreadStack stack;
            Id = threadId();
            threadName(name);
            run();
            Id = 0;
        });
    } catch (const std::system_error&) {
        crashFatal("A thread cannot be started!");
    }
}

void linkThread::Join()
{
    if (IsCaller())
        return;
    const std::lock_guard lock(Mutex);
    if (Thread.joinable())
        Thread.join();
}

bool linkThread::IsCaller() const
{
    return Id == threadId();
}
