#include "platform/clock.h"

#include "platform/thread.h"
#include "tests/platform/contract.h"

#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;
using win32Clock = contractTest;

constexpr int64_t Millisecond = 1'000'000;

TEST_F(win32Clock, RunsAtTheSpeedOfTheLibrarysSteadyClock)
{
    const auto libraryBegin = std::chrono::steady_clock::now();
    const int64_t begin = clockSteadyNs();
    while (clockSteadyNs() - begin < 100 * Millisecond)
        threadYield();
    const int64_t passed = clockSteadyNs() - begin;
    const std::chrono::nanoseconds libraryPassed = std::chrono::steady_clock::now() - libraryBegin;
    // The library's was read before and after ours.
    EXPECT_LE(passed, libraryPassed.count() + Millisecond);
    EXPECT_GE(passed, libraryPassed.count() - 90 * Millisecond);
}

TEST_F(win32Clock, TellsMicrosecondsApart)
{
    const int64_t begin = clockSteadyNs();
    int64_t next = begin;
    while (next == begin)
        next = clockSteadyNs();
    EXPECT_LT(next - begin, Millisecond);
}

TEST_F(win32Clock, NeverSleepsTooShort)
{
    for (const uint32_t milliseconds : {0u, 1u, 2u, 5u, 16u, 30u}) {
        for (int round = 0; round < 3; round++) {
            const int64_t begin = clockSteadyNs();
            threadSleep(milliseconds);
            EXPECT_GE(clockSteadyNs() - begin, milliseconds * Millisecond);
        }
    }
}

TEST_F(win32Clock, WaitsWithoutTurningInCircles)
{
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    const int64_t deadline = clockSteadyNs() + 50 * Millisecond;
    unsigned returns = 0;
    while (clockSteadyNs() < deadline) {
        threadWaitUntil(condition, lock, deadline);
        returns++;
    }
    EXPECT_LE(returns, 5u);
}

TEST_F(win32Clock, ReturnsAtOnceFromADeadlineThatHasPassed)
{
    std::mutex mutex;
    std::condition_variable condition;
    std::unique_lock lock(mutex);
    for (const int64_t deadline : {clockSteadyNs(), int64_t{0}, int64_t{-1}, INT64_MIN}) {
        threadWaitUntil(condition, lock, deadline);
        EXPECT_TRUE(lock.owns_lock());
    }
}

TEST_F(win32Clock, WakesFromADeadlineThatNeverComes)
{
    std::mutex mutex;
    std::condition_variable condition;
    bool notified = false;
    std::unique_lock lock(mutex);
    std::jthread notifier([&] {
        const std::lock_guard guard(mutex);
        notified = true;
        condition.notify_one();
    });
    while (!notified)
        threadWaitUntil(condition, lock, INT64_MAX);
    EXPECT_TRUE(lock.owns_lock());
}

}  // namespace
