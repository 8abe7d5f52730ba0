#include "foundations/thread/thrEvent.h"

#include "tests/await.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <atomic>
#include <thread>

namespace {

using testing::ElementsAre;

constexpr int64_t Millisecond = 1'000'000;
constexpr int64_t Day = 86'400'000 * Millisecond;

class thrEventTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }

    static bool AwaitWaiters(unsigned count)
    {
        return await([=] { return fakeClockWaiters() == count; });
    }

    // A wait on a thread of its own.
    struct waiter {
        waiter(thrEvent& event, uint32_t milliseconds)
            : Event(event), Thread([this, &event, milliseconds] {
                  Signalled = event.Wait(milliseconds);
                  Done = true;
              })
        {}
        // A test that has failed leaves nobody waiting.
        ~waiter()
        {
            await([this] {
                if (!Done)
                    Event.Signal();
                return Done.load();
            });
        }
        bool AwaitDone() const
        {
            return await([this] { return Done.load(); });
        }

        thrEvent& Event;
        std::atomic<bool> Signalled{false};
        std::atomic<bool> Done{false};
        std::jthread Thread;
    };

    thrEvent Event;
};

TEST_F(thrEventTest, IsNotSignalledAtFirst)
{
    EXPECT_FALSE(Event.Wait(0));
}

TEST_F(thrEventTest, AsksWithoutWaitingAndClears)
{
    Event.Signal();
    EXPECT_TRUE(Event.Wait(0));
    EXPECT_FALSE(Event.Wait(0));
    EXPECT_EQ(fakeCallCount("threadWaitUntil"), 0u);
}

TEST_F(thrEventTest, StaysSignalledUntilTheNextWaitWhichReturnsAtOnce)
{
    Event.Signal();
    Event.Signal();
    fakeClockMove(Day);
    EXPECT_TRUE(Event.Wait(1000));
    EXPECT_FALSE(Event.Wait(0));
    EXPECT_EQ(fakeCallCount("threadWaitUntil"), 0u);
}

TEST_F(thrEventTest, GivesUpAtTheDeadlineAndNotBefore)
{
    const waiter one(Event, 100);
    ASSERT_TRUE(AwaitWaiters(1));
    fakeClockMove(100 * Millisecond - 1);
    letOthersRun();
    EXPECT_FALSE(one.Done);
    EXPECT_EQ(fakeClockWaiters(), 1u);
    fakeClockMove(1);
    ASSERT_TRUE(one.AwaitDone());
    EXPECT_FALSE(one.Signalled);
}

TEST_F(thrEventTest, EndsAWaitBeforeItsTime)
{
    const waiter one(Event, 100);
    ASSERT_TRUE(AwaitWaiters(1));
    fakeClockMove(50 * Millisecond);
    Event.Signal();
    ASSERT_TRUE(one.AwaitDone());
    EXPECT_TRUE(one.Signalled);
    EXPECT_FALSE(Event.Wait(0));
}

TEST_F(thrEventTest, LetsOneWaiterSeeASignalAndTheOthersWaitOn)
{
    const waiter one(Event, 100);
    const waiter other(Event, 100);
    ASSERT_TRUE(AwaitWaiters(2));
    Event.Signal();
    ASSERT_TRUE(await([&] { return one.Done || other.Done; }));
    letOthersRun();
    EXPECT_NE(one.Done, other.Done);
    fakeClockMove(100 * Millisecond);
    ASSERT_TRUE(one.AwaitDone());
    ASSERT_TRUE(other.AwaitDone());
    EXPECT_NE(one.Signalled, other.Signalled);
}

TEST_F(thrEventTest, WaitsOnWhenItWakesForNoReason)
{
    for (unsigned wake = 1; wake <= 3; ++wake)
        fakeOnCall("threadWaitUntil", wake, [] { fakeClockMove(10 * Millisecond); });
    const waiter one(Event, 100);
    ASSERT_TRUE(AwaitWaiters(1));
    EXPECT_THAT(fakeCalls(), ElementsAre("threadWaitUntil 1100000000", "threadWaitUntil 1100000000",
                                         "threadWaitUntil 1100000000", "threadWaitUntil 1100000000"));
    fakeClockMove(70 * Millisecond);
    ASSERT_TRUE(one.AwaitDone());
    EXPECT_FALSE(one.Signalled);
}

TEST_F(thrEventTest, MissesNoSignalBetweenItsLookAndItsSleep)
{
    fakeOnCall("threadWaitUntil", 1, [this] { Event.Signal(); });
    EXPECT_TRUE(Event.Wait(100));
}

TEST_F(thrEventTest, PrefersASignalToATimeOut)
{
    fakeOnCall("threadWaitUntil", 1, [this] {
        Event.Signal();
        fakeClockMove(Day);
    });
    EXPECT_TRUE(Event.Wait(100));
}

TEST_F(thrEventTest, WaitsInStepsOfADayAtMost)
{
    const waiter one(Event, 200'000'000);
    for (const size_t step : {1u, 2u}) {
        ASSERT_TRUE(
            await([=] { return fakeCallCount("threadWaitUntil") == step && fakeClockWaiters() == 1; }));
        fakeClockMove(Day);
    }
    ASSERT_TRUE(await([] { return fakeCallCount("threadWaitUntil") == 3 && fakeClockWaiters() == 1; }));
    EXPECT_FALSE(one.Done);
    EXPECT_THAT(fakeCalls(), ElementsAre("threadWaitUntil 86401000000000", "threadWaitUntil 172801000000000",
                                         "threadWaitUntil 200001000000000"));
    fakeClockMove(200'000'000 * Millisecond - 2 * Day);
    ASSERT_TRUE(one.AwaitDone());
    EXPECT_FALSE(one.Signalled);
}

TEST_F(thrEventTest, TakesTheLongestTime)
{
    const waiter one(Event, UINT32_MAX);
    ASSERT_TRUE(AwaitWaiters(1));
    Event.Signal();
    ASSERT_TRUE(one.AwaitDone());
    EXPECT_TRUE(one.Signalled);
}

}  // namespace
