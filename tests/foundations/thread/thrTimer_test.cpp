#include "foundations/thread/thrTimer.h"

#include "platform/thread.h"
#include "tests/await.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <atomic>
#include <mutex>
#include <set>
#include <thread>

namespace {

constexpr int64_t Millisecond = 1'000'000;

class thrTimerTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        Timer.OnTick = [this] { Tick(); };
    }

    void Tick()
    {
        const std::lock_guard lock(Mutex);
        Threads.insert(threadId());
        ++Ticks;
    }

    static void Pass(int64_t milliseconds) { fakeClockMove(milliseconds * Millisecond); }

    static bool AwaitWaiting()
    {
        return await([] { return fakeClockWaiters() == 1; });
    }

    // Waits until the timer has ticked so often and waits again, so that the clock may be moved on.
    bool AwaitTicks(int count)
    {
        return await([this, count] { return Ticks == count; }) && AwaitWaiting();
    }

    // Whether the timer waits on through this time.
    bool PassesWithoutTick(int64_t milliseconds)
    {
        const int before = Ticks;
        Pass(milliseconds);
        letOthersRun();
        return Ticks == before && fakeClockWaiters() == 1;
    }

    std::mutex Mutex;
    std::set<uint64_t> Threads;
    std::atomic<int> Ticks{0};

    struct openTimer : public thrTimer {
        bool IsSignalled() const { return Signalled != 0; }
    } Timer;
};

TEST_F(thrTimerTest, HasAPeriodOfASecond)
{
    EXPECT_EQ(Timer.Period, 1000u);
}

TEST_F(thrTimerTest, TicksAfterEachPeriodAndNotBefore)
{
    Timer.Start();
    for (int tick = 1; tick <= 3; ++tick) {
        ASSERT_TRUE(AwaitWaiting());
        EXPECT_TRUE(PassesWithoutTick(999));
        Pass(1);
        ASSERT_TRUE(AwaitTicks(tick));
    }
}

TEST_F(thrTimerTest, TicksOnAThreadOfItsOwnWithAName)
{
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Pass(1000);
    ASSERT_TRUE(AwaitTicks(1));
    Timer.Stop();
    EXPECT_EQ(Threads.size(), 1u);
    EXPECT_FALSE(Threads.contains(threadId()));
    EXPECT_EQ(fakeCallCount("threadName timer"), 1u);
}

TEST_F(thrTimerTest, DoesNothingWhenStoppedBeforeAnyStart)
{
    Timer.Stop();
    Timer.Stop();
    EXPECT_TRUE(fakeCalls().empty());
    EXPECT_FALSE(Timer.Wait(0));
}

TEST_F(thrTimerTest, StopsWithoutATick)
{
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Timer.Stop();
    Pass(10'000);
    EXPECT_EQ(Ticks, 0);
    EXPECT_EQ(fakeClockWaiters(), 0u);
}

TEST_F(thrTimerTest, StopsBeforeItsThreadHasBegun)
{
    Timer.Start();
    Timer.Stop();
    EXPECT_EQ(Ticks, 0);
}

TEST_F(thrTimerTest, LeavesOneThreadWhenStartedTwice)
{
    Timer.Start();
    Timer.Start();
    for (int tick = 1; tick <= 10; ++tick) {
        ASSERT_TRUE(AwaitWaiting());
        Pass(1000);
        ASSERT_TRUE(AwaitTicks(tick));
    }
    Timer.Stop();
    EXPECT_EQ(Threads.size(), 1u);
    EXPECT_EQ(Ticks, 10);
}

TEST_F(thrTimerTest, BeginsThePeriodAnewWhenStartedAgain)
{
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    EXPECT_TRUE(PassesWithoutTick(600));
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    EXPECT_TRUE(PassesWithoutTick(999));
    Pass(1);
    EXPECT_TRUE(AwaitTicks(1));
}

TEST_F(thrTimerTest, StartsAgainAfterAStop)
{
    for (int tick = 1; tick <= 3; ++tick) {
        Timer.Start();
        ASSERT_TRUE(AwaitWaiting());
        Pass(1000);
        ASSERT_TRUE(AwaitTicks(tick));
        Timer.Stop();
    }
}

TEST_F(thrTimerTest, TicksEachMillisecondWithAPeriodOfZero)
{
    Timer.Period = 0;
    Timer.Start();
    for (int tick = 1; tick <= 5; ++tick) {
        ASSERT_TRUE(AwaitWaiting());
        fakeClockMove(Millisecond - 1);
        letOthersRun();
        EXPECT_EQ(Ticks, tick - 1);
        fakeClockMove(1);
        ASSERT_TRUE(AwaitTicks(tick));
    }
}

TEST_F(thrTimerTest, CountsTheNextPeriodFromTheEndOfTheHandler)
{
    Timer.OnTick = [this] {
        Pass(300);
        Tick();
    };
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Pass(1000);
    ASSERT_TRUE(AwaitTicks(1));
    EXPECT_EQ(fakeCallCount("threadWaitUntil 3300000000"), 1u);
    EXPECT_TRUE(PassesWithoutTick(999));
    Pass(1);
    EXPECT_TRUE(AwaitTicks(2));
}

TEST_F(thrTimerTest, TicksAtOnceOnASignalAndShortensOnlyThatPeriod)
{
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    EXPECT_TRUE(PassesWithoutTick(400));
    Timer.Signal();
    ASSERT_TRUE(AwaitTicks(1));
    EXPECT_TRUE(PassesWithoutTick(999));
    Pass(1);
    EXPECT_TRUE(AwaitTicks(2));
}

TEST_F(thrTimerTest, TakesAChangeOfThePeriodAtTheNextWait)
{
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Timer.Period = 10;
    EXPECT_TRUE(PassesWithoutTick(999));
    Pass(1);
    ASSERT_TRUE(AwaitTicks(1));
    EXPECT_TRUE(PassesWithoutTick(9));
    Pass(1);
    EXPECT_TRUE(AwaitTicks(2));
}

TEST_F(thrTimerTest, RunsAndSleepsWithoutAHandler)
{
    Timer.OnTick = nullptr;
    Timer.Start();
    for (size_t wait = 1; wait <= 3; ++wait) {
        ASSERT_TRUE(
            await([=] { return fakeCallCount("threadWaitUntil") == wait && fakeClockWaiters() == 1; }));
        Pass(1000);
    }
}

TEST_F(thrTimerTest, HoldsNoLockWhileTheHandlerRuns)
{
    Timer.OnTick = [this] {
        if (Ticks == 0)
            Timer.Signal();
        Tick();
    };
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Pass(1000);
    EXPECT_TRUE(AwaitTicks(2));
}

TEST_F(thrTimerTest, StopsOnlyWhenTheHandlerHasReturned)
{
    std::atomic<bool> inside{false};
    std::atomic<bool> mayLeave{false};
    std::atomic<bool> stopped{false};
    Timer.OnTick = [&] {
        inside = true;
        EXPECT_TRUE(await([&] { return mayLeave.load(); }));
        Tick();
    };
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Pass(1000);
    ASSERT_TRUE(await([&] { return inside.load(); }));
    std::jthread stopper([&] {
        Timer.Stop();
        EXPECT_EQ(Ticks, 1);
        stopped = true;
    });
    letOthersRun();
    EXPECT_FALSE(stopped);
    mayLeave = true;
    EXPECT_TRUE(await([&] { return stopped.load(); }));
    Pass(10'000);
    EXPECT_EQ(Ticks, 1);
}

TEST_F(thrTimerTest, TicksAtOnceAfterASignalThatNobodySawBeforeTheStart)
{
    Timer.Signal();
    Timer.Start();
    EXPECT_TRUE(AwaitTicks(1));
    EXPECT_TRUE(PassesWithoutTick(999));
}

TEST_F(thrTimerTest, WaitsAWholePeriodAfterARestartThatMetTheHandlerAtWork)
{
    std::atomic<bool> inside{false};
    Timer.OnTick = [&] {
        inside = true;
        // The restart has signalled by the time the handler returns, and finds nobody waiting.
        EXPECT_TRUE(await([this] { return Timer.IsSignalled(); }));
        Tick();
    };
    Timer.Start();
    ASSERT_TRUE(AwaitWaiting());
    Pass(1000);
    ASSERT_TRUE(await([&] { return inside.load(); }));
    Timer.Start();
    ASSERT_TRUE(AwaitTicks(1));
    EXPECT_TRUE(PassesWithoutTick(999));
}

TEST_F(thrTimerTest, EndsItsThreadWhenItGoes)
{
    {
        thrTimer other;
        other.OnTick = [this] { Tick(); };
        other.Start();
        ASSERT_TRUE(AwaitWaiting());
    }
    EXPECT_EQ(fakeClockWaiters(), 0u);
    Pass(10'000);
    EXPECT_EQ(Ticks, 0);
}

void stopFromTheHandler()
{
    thrTimer timer;
    std::atomic<bool> never{false};
    timer.OnTick = [&] { timer.Stop(); };
    timer.Signal();
    timer.Start();
    await([&] { return never.load(); });
}

TEST(thrTimerDeathTest, EndsTheProgramWhenStoppedByItsOwnHandler)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_DEATH(stopFromTheHandler(), "");
}

}  // namespace
