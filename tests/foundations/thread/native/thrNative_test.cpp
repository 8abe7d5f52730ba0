// The tools for threads with real threads and the real clock.

#include "foundations/thread/thrEvent.h"
#include "foundations/thread/thrGate.h"
#include "foundations/thread/thrSpin.h"
#include "foundations/thread/thrTimer.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <set>
#include <thread>
#include <vector>

namespace {

constexpr int64_t Millisecond = 1'000'000;

void onThreads(int count, const std::function<void(int)>& body)
{
    std::vector<std::jthread> threads;
    for (int index = 0; index < count; ++index)
        threads.emplace_back([&body, index] { body(index); });
}

TEST(thrSpinNative, GuardsPlainDataAgainstManyThreads)
{
    constexpr int Threads = 8;
    constexpr int Rounds = 20'000;
    thrSpin spin;
    uint64_t sum = 0;
    std::vector<int> last;
    onThreads(Threads, [&](int index) {
        for (int round = 0; round < Rounds; ++round) {
            const thrSpinHold hold(spin);
            ++sum;
            last.assign(3, index);
        }
    });
    EXPECT_EQ(sum, uint64_t{Threads} * Rounds);
}

TEST(thrSpinNative, LosesNoWaiterWhenTheHolderIsSlow)
{
    thrSpin spin;
    int entries = 0;
    onThreads(6, [&](int) {
        for (int round = 0; round < 40; ++round) {
            const thrSpinHold hold(spin);
            ++entries;
            threadYield();
        }
    });
    EXPECT_EQ(entries, 6 * 40);
}

TEST(thrSpinNative, MayGoWhileAnotherIsStillOnItsWayOutOfUnlock)
{
    for (int round = 0; round < 2000; ++round) {
        auto spin = std::make_unique<thrSpin>();
        bool other = false;
        std::jthread thread([&] {
            const thrSpinHold hold(*spin);
            other = true;
        });
        for (bool seen = false; !seen;) {
            const thrSpinHold hold(*spin);
            seen = other;
        }
        spin.reset();
    }
}

TEST(thrGateNative, PlaysPingPong)
{
    constexpr int Rounds = 500;
    thrGate ping;
    thrGate pong;
    int ball = 0;
    std::jthread other([&] {
        for (int round = 0; round < Rounds; ++round) {
            ping.Sleep();
            ++ball;
            pong.Wake();
        }
    });
    for (int round = 0; round < Rounds; ++round) {
        ping.Wake();
        pong.Sleep();
        EXPECT_EQ(ball, round + 1);
    }
}

TEST(thrGateNative, LosesNoWakeOfManyWakers)
{
    constexpr int Wakers = 4;
    constexpr int Rounds = 500;
    thrGate gate;
    std::atomic<int> given{0};
    int taken = 0;
    std::vector<std::jthread> wakers;
    for (int index = 0; index < Wakers; ++index) {
        wakers.emplace_back([&] {
            for (int round = 0; round < Rounds; ++round) {
                ++given;
                gate.Wake();
            }
        });
    }
    while (taken < Wakers * Rounds) {
        gate.Sleep();
        taken = given;
    }
    EXPECT_EQ(taken, Wakers * Rounds);
}

TEST(thrEventNative, LosesNoSignalAmongManyWaiters)
{
    constexpr int Waiters = 8;
    constexpr int Signals = 2'000;
    thrEvent event;
    std::atomic<int> seen{0};
    std::atomic<int> gone{0};
    std::atomic<bool> over{false};
    std::vector<std::jthread> waiters;
    for (int index = 0; index < Waiters; ++index) {
        waiters.emplace_back([&] {
            while (!over) {
                if (event.Wait(60'000))
                    ++seen;
            }
            ++gone;
        });
    }
    // Whatever is lost, the waiters must be let go.
    for (int signal = 1; signal <= Signals && !HasFailure(); ++signal) {
        event.Signal();
        EXPECT_TRUE(await([&] { return seen == signal; })) << signal;
    }
    over = true;
    ASSERT_TRUE(await([&] {
        event.Signal();
        return gone == Waiters;
    }));
}

TEST(thrEventNative, WaitsAtLeastItsTime)
{
    thrEvent event;
    for (const uint32_t milliseconds : {0u, 1u, 30u}) {
        SCOPED_TRACE(milliseconds);
        const int64_t start = clockSteadyNs();
        EXPECT_FALSE(event.Wait(milliseconds));
        EXPECT_GE(clockSteadyNs() - start, milliseconds * Millisecond);
    }
}

TEST(thrTimerNative, MayBeStartedAndStoppedThousandsOfTimes)
{
    thrTimer timer;
    timer.Period = 0;
    int ticks = 0;
    timer.OnTick = [&] { ++ticks; };
    for (int round = 0; round < 2'000; ++round) {
        timer.Start();
        if (round % 3 == 0)
            timer.Signal();
        if (round % 50 == 0)
            threadSleep(3);
        timer.Stop();
        ++ticks;
    }
    const int last = ticks;
    EXPECT_GE(last, 2'000);
    threadSleep(5);
    EXPECT_EQ(ticks, last);
}

TEST(thrTimerNative, TicksNoFasterThanItsPeriod)
{
    thrTimer timer;
    std::atomic<int> ticks{0};
    std::atomic<int64_t> end{0};
    timer.Period = 5;
    timer.OnTick = [&] {
        if (++ticks == 10)
            end = clockSteadyNs();
    };
    const int64_t start = clockSteadyNs();
    timer.Start();
    ASSERT_TRUE(await([&] { return end != 0; }));
    timer.Stop();
    EXPECT_GE(end - start, 10 * 5 * Millisecond);
}

TEST(thrTimerNative, LeavesOneThreadHoweverOftenItIsStarted)
{
    thrTimer timer;
    std::set<uint64_t> threads;
    std::atomic<int> ticks{0};
    timer.Period = 1;
    timer.OnTick = [&] {
        threads.insert(threadId());
        ++ticks;
    };
    for (int round = 0; round < 20; ++round)
        timer.Start();
    timer.Stop();
    threads.clear();
    ticks = 0;
    timer.Start();
    ASSERT_TRUE(await([&] { return ticks >= 20; }));
    timer.Stop();
    EXPECT_EQ(threads.size(), 1u);
}

TEST(thrTimerNative, EndsWhileItTicks)
{
    for (int round = 0; round < 200; ++round) {
        int ticks = 0;
        {
            thrTimer timer;
            timer.Period = 0;
            timer.OnTick = [&] { ++ticks; };
            timer.Start();
            timer.Signal();
        }
        const int last = ticks;
        threadYield();
        EXPECT_EQ(ticks, last);
    }
}

}  // namespace
