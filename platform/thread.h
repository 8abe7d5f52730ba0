// What threads need of the system beyond the standard library: to sleep and to wait by the program's own
// clock (platform/clock.h), and to be told apart by people.
#pragma once

#include <condition_variable>
#include <cstdint>
#include <mutex>

// Lets another thread run if one is ready. Any thread.
void threadYield();

// Puts the calling thread to sleep for at least `milliseconds`, usually a few milliseconds longer.
void threadSleep(uint32_t milliseconds);

// Waits on `condition` until it is notified or until clockSteadyNs() has reached `deadlineNs`, whichever is
// first. `lock` is held on entry and on return. Returns may be spurious: callers check their state and the
// clock, and wait again.
void threadWaitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     int64_t deadlineNs);

// Gives the calling thread a name (ASCII) that debuggers and the system's tools show; at most 15 bytes are
// kept.
void threadName(const char* name);

// The system's own number of the calling thread: never 0, unlike that of any other living thread.
uint64_t threadId();
