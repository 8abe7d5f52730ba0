// An event that stays signalled until one waiter has seen it, with a timed wait. Any thread, several at once.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>

class thrEvent
{
public:
    thrEvent() = default;
    thrEvent(const thrEvent&) = delete;
    thrEvent& operator=(const thrEvent&) = delete;

    // Sets the event and wakes all that wait. The first of them to return clears it; the others go on waiting
    // for what is left of their time.
    void Signal();

    // Waits until the event is signalled or `milliseconds` of the steady clock have passed, then clears it.
    // True if it was signalled; a wait of 0 asks without waiting.
    bool Wait(uint32_t milliseconds);

protected:
    std::condition_variable Condition;
    std::mutex Mutex;
    std::atomic<uint8_t> Signalled{0};
};
