// The hand-moved clock of the fake platform.

#include "platform/thread.h"
#include "tests/await.h"
#include "tests/fakes/fakes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <limits>
#include <thread>
#include <vector>

namespace {

constexpr int64_t Second = 1'000'000'000;

class fakeClock : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    struct place {
        std::mutex Mutex;
        std::condition_variable Condition;

        void WaitOnceUntil(int64_t deadline)
        {
            std::unique_lock lock(Mutex);
            threadWaitUntil(Condition, lock, deadline);
        }
    };

    static bool AwaitWaiters(unsigned count)
    {
        return await([=] { return fakeClockWaiters() == count; });
    }
};

TEST_F(fakeClock, StartsAtASecondAndStandsStill)
{
    EXPECT_EQ(clockSteadyNs(), Second);
    EXPECT_EQ(clockSteadyNs(), Second);
    fakeClockMove(5);
    EXPECT_EQ(clockSteadyNs(), Second + 5);
    fakeReset();
    EXPECT_EQ(clockSteadyNs(), Second);
}

TEST_F(fakeClock, ShowsTheDateThatItIsGiven)
{
    EXPECT_EQ(clockTodayUTC().Year, 2026);
    EXPECT_EQ(clockTodayUTC().Month, 11);
    EXPECT_EQ(clockTodayUTC().Day, 20);
    fakeClockToday({2031, 2, 3});
    EXPECT_EQ(clockTodayUTC().Year, 2031);
}

TEST_F(fakeClock, StopsAtTheEndOfTime)
{
    fakeClockMove(std::numeric_limits<int64_t>::max());
    fakeClockMove(std::numeric_limits<int64_t>::max());
    EXPECT_EQ(clockSteadyNs(), std::numeric_limits<int64_t>::max());
}

TEST_F(fakeClock, IsMovedByASleep)
{
    threadSleep(20);
    EXPECT_EQ(clockSteadyNs(), Second + 20'000'000);
}

TEST_F(fakeClock, LetsASleeperWaitForTheHand)
{
    fakeSleepMovesClock(false);
    std::atomic<bool> done{false};
    std::jthread sleeper([&] {
        threadSleep(20);
        done = true;
    });
    ASSERT_TRUE(AwaitWaiters(1));
    fakeClockMove(19'999'999);
    letOthersRun();
    EXPECT_FALSE(done);
    fakeClockMove(1);
    EXPECT_TRUE(await([&] { return done.load(); }));
    EXPECT_EQ(fakeClockWaiters(), 0u);
}

TEST_F(fakeClock, DoesNotWaitForWhatHasPassed)
{
    place here;
    here.WaitOnceUntil(Second);
    here.WaitOnceUntil(-1);
    EXPECT_EQ(fakeClockWaiters(), 0u);
}

TEST_F(fakeClock, CountsThoseWhoseTimeHasNotCome)
{
    std::vector<std::jthread> waiters;
    for (int64_t deadline = 2; deadline <= 4; ++deadline)
        waiters.emplace_back([deadline] { place().WaitOnceUntil(deadline * Second); });
    ASSERT_TRUE(AwaitWaiters(3));
    fakeClockMove(Second);
    EXPECT_EQ(fakeClockWaiters(), 2u);
    fakeClockMove(2 * Second);
    EXPECT_EQ(fakeClockWaiters(), 0u);
}

TEST_F(fakeClock, LetsASleepThatMovesItWakeTheOthers)
{
    place here;
    std::jthread waiter([&] { here.WaitOnceUntil(2 * Second); });
    ASSERT_TRUE(AwaitWaiters(1));
    threadSleep(1000);
    waiter.join();
}

TEST_F(fakeClock, GivesTheLockAwayForAClosureInsideAWait)
{
    place here;
    bool ran = false;
    fakeOnCall("threadWaitUntil", 1, [&] {
        const std::lock_guard lock(here.Mutex);
        ran = true;
    });
    here.WaitOnceUntil(2 * Second);
    EXPECT_TRUE(ran);
    EXPECT_EQ(clockSteadyNs(), Second);
}

TEST_F(fakeClock, WakesEveryWaiterHoweverItIsHurried)
{
    // A mover that runs while waiters come and go, whose conditions die as soon as they return.
    constexpr int Rounds = 300;
    std::atomic<int> left{4};
    std::vector<std::jthread> waiters;
    for (int index = 0; index < 4; ++index) {
        waiters.emplace_back([&left] {
            for (int round = 0; round < Rounds; ++round)
                place().WaitOnceUntil(clockSteadyNs() + 1);
            --left;
        });
    }
    EXPECT_TRUE(await([&] {
        fakeClockMove(1);
        return left == 0;
    }));
    EXPECT_EQ(fakeClockWaiters(), 0u);
}

}  // namespace
