#include "platform/clock.h"

#include "platform/thread.h"
#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <algorithm>
#include <atomic>
#include <limits>
#include <list>
#include <thread>

namespace {

constexpr int64_t StartOfTime = 1'000'000'000;
constexpr clockDate StartOfDate{2026, 11, 20};
constexpr int64_t NsPerMs = 1'000'000;

// A thread in a timed wait. While a mover has pinned it, it stays in the list and in its wait function, so
// its condition and its mutex live.
struct waiter {
    std::condition_variable* Condition;
    std::mutex* Mutex;
    int64_t Deadline;
    unsigned Pins = 0;
};

struct clockState {
    int64_t Now = StartOfTime;
    clockDate Today = StartOfDate;
    bool SleepMoves = true;
    std::list<waiter> Waiters;
    std::condition_variable Unpinned;
};

clockState& state()
{
    static clockState& only = *new clockState;
    return only;
}

int64_t later(int64_t time, int64_t distance)
{
    constexpr int64_t end = std::numeric_limits<int64_t>::max();
    return distance > end - time ? end : time + distance;
}

int64_t now()
{
    const std::lock_guard lock(fakes::stateMutex());
    return state().Now;
}

std::vector<waiter*> pinTheDue()
{
    std::vector<waiter*> due;
    for (waiter& each : state().Waiters) {
        if (each.Deadline > state().Now)
            continue;
        ++each.Pins;
        due.push_back(&each);
    }
    return due;
}

// The waiter's mutex is taken once, for a waiter that still holds it has looked at the clock but does not
// wait yet and would miss the notification.
void wake(waiter& due)
{
    {
        const std::lock_guard passed(*due.Mutex);
    }
    due.Condition->notify_all();
    const std::lock_guard lock(fakes::stateMutex());
    --due.Pins;
    state().Unpinned.notify_all();
}

void moveClock(int64_t nanoseconds)
{
    std::vector<waiter*> due;
    {
        const std::lock_guard lock(fakes::stateMutex());
        state().Now = later(state().Now, nanoseconds);
        due = pinTheDue();
    }
    for (waiter* each : due)
        wake(*each);
}

// Takes a waiter off the list. Its own mutex is given up meanwhile, because a mover that has pinned it may be
// waiting for that.
void leave(std::list<waiter>::iterator self, std::unique_lock<std::mutex>& lock)
{
    {
        const std::lock_guard hold(fakes::stateMutex());
        if (self->Pins == 0) {
            state().Waiters.erase(self);
            return;
        }
    }
    lock.unlock();
    {
        std::unique_lock hold(fakes::stateMutex());
        state().Unpinned.wait(hold, [&] { return self->Pins == 0; });
        state().Waiters.erase(self);
    }
    lock.lock();
}

void waitOnce(std::condition_variable& condition, std::unique_lock<std::mutex>& lock, int64_t deadline)
{
    std::list<waiter>::iterator self;
    {
        const std::lock_guard hold(fakes::stateMutex());
        if (state().Now >= deadline)
            return;
        self = state().Waiters.insert(state().Waiters.end(), waiter{&condition, lock.mutex(), deadline});
    }
    condition.wait(lock);
    leave(self, lock);
}

}  // namespace

void fakes::resetClock()
{
    // Threads that wait now stay on the list: it is theirs.
    state().Now = StartOfTime;
    state().Today = StartOfDate;
    state().SleepMoves = true;
}

fakes::clockView fakes::clockNow()
{
    return {state().Now, state().SleepMoves};
}

int64_t clockSteadyNs()
{
    fakes::ask("clockSteadyNs");
    return now();
}

// A thread of the fake costs nothing.
int64_t clockThreadNs()
{
    return 0;
}

clockDate clockTodayUTC()
{
    fakes::ask("clockTodayUTC");
    const std::lock_guard lock(fakes::stateMutex());
    return state().Today;
}

void threadYield()
{
    fakes::ask("threadYield");
    std::this_thread::yield();
}

void threadSleep(uint32_t milliseconds)
{
    fakes::enter("threadSleep", std::to_string(milliseconds));
    const int64_t length = milliseconds * NsPerMs;
    int64_t deadline = 0;
    bool moves = false;
    {
        const std::lock_guard lock(fakes::stateMutex());
        deadline = later(state().Now, length);
        moves = state().SleepMoves;
    }
    if (moves)
        return moveClock(length);

    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    while (now() < deadline)
        waitOnce(condition, lock, deadline);
}

void threadWaitUntil(std::condition_variable& condition, std::unique_lock<std::mutex>& lock,
                     int64_t deadlineNs)
{
    fakes::record("threadWaitUntil", std::to_string(deadlineNs));
    const std::vector<std::function<void()>> closures = fakes::takeClosures("threadWaitUntil");
    if (closures.empty())
        return waitOnce(condition, lock, deadlineNs);

    // A closure may notify this very waiter, which needs its lock. What it changed is for the caller to see,
    // so this return is one of the spurious ones.
    lock.unlock();
    for (const std::function<void()>& closure : closures)
        closure();
    lock.lock();
}

void threadName(const char* name)
{
    fakes::enter("threadName", name);
}

uint64_t threadId()
{
    static std::atomic<uint64_t> last{0};
    thread_local const uint64_t mine = ++last;
    return mine;
}

void fakeClockMove(int64_t nanoseconds)
{
    if (nanoseconds < 0)
        fakes::misuse("the steady clock never goes back");
    moveClock(nanoseconds);
}

void fakeClockToday(const clockDate& today)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Today = today;
}

void fakeSleepMovesClock(bool moves)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().SleepMoves = moves;
}

unsigned fakeClockWaiters()
{
    // One whose time has come waits no longer, though it may not have left yet.
    const std::lock_guard lock(fakes::stateMutex());
    const auto waits = [](const waiter& each) { return each.Deadline > state().Now; };
    return static_cast<unsigned>(std::count_if(state().Waiters.begin(), state().Waiters.end(), waits));
}
