// A periodic timer with a thread of its own while it runs. One thread at a time starts, stops and ends it.
#pragma once

#include "foundations/thread/thrEvent.h"

#include <functional>
#include <thread>

class thrTimer : public thrEvent
{
public:
    thrTimer() = default;

    // Stops the timer first; see Stop.
    ~thrTimer();

    // Starts the thread, ending a running one first as Stop does, so that the period begins anew. The first
    // tick comes one period later, or at once after a Signal that nobody has waited for since.
    void Start();

    // Asks the thread to stop and waits until it has: no tick is under way or to come afterwards. Without a
    // thread nothing happens. Not under a lock that OnTick takes; from OnTick it ends the program, for no
    // thread can wait for itself.
    void Stop();

    // Called on the timer's own thread with no lock held. The next period counts from its return. Signal()
    // calls it at once. Assign it while the timer is stopped.
    std::function<void()> OnTick;

    // Milliseconds; 0 counts as 1. A change takes effect at the next wait. Any thread.
    std::atomic<uint32_t> Period{1000};

private:
    void Run(const std::stop_token& stop);

    std::jthread Thread;
};
