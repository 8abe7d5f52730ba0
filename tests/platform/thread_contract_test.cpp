#include "platform/thread.h"

#include "platform/clock.h"
#include "tests/platform/contract.h"

#include <atomic>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace {

constexpr int64_t Millisecond = 1'000'000;

using threadContract = contractTest;

struct waiting {
    std::mutex Mutex;
    std::condition_variable Condition;
    std::atomic<bool> Holds{false};
    bool Told = false;

    void UntilTold(int64_t deadline)
    {
        std::unique_lock lock(Mutex);
        Holds = true;
        while (!Told)
            threadWaitUntil(Condition, lock, deadline);
    }

    // To one that waits already: until then it holds the lock.
    void Tell()
    {
        ASSERT_TRUE(contractAwait([this] { return Holds.load(); }));
        const std::lock_guard lock(Mutex);
        Told = true;
        Condition.notify_all();
    }
};

TEST_F(threadContract, SleepsAtLeastAsLongAsAsked)
{
    for (const uint32_t milliseconds : {0u, 1u, 10u, 50u}) {
        SCOPED_TRACE(milliseconds);
        const int64_t start = clockSteadyNs();
        threadSleep(milliseconds);
        EXPECT_GE(clockSteadyNs() - start, milliseconds * Millisecond);
    }
}

TEST_F(threadContract, YieldsAndComesBack)
{
    std::atomic<bool> ran{false};
    std::jthread other([&] { ran = true; });
    EXPECT_TRUE(contractAwait([&] {
        threadYield();
        return ran.load();
    }));
}

TEST_F(threadContract, WaitsUntilTheDeadlineOfTheClock)
{
    waiting state;
    std::atomic<bool> ended{false};
    const int64_t deadline = clockSteadyNs() + 30 * Millisecond;
    std::jthread waiter([&] {
        std::unique_lock lock(state.Mutex);
        while (clockSteadyNs() < deadline)
            threadWaitUntil(state.Condition, lock, deadline);
        EXPECT_TRUE(lock.owns_lock());
        ended = true;
    });
    EXPECT_TRUE(contractAwait([&] { return ended.load(); }));
    EXPECT_GE(clockSteadyNs(), deadline);
}

// Had the waiter kept the lock, telling it would last for ever.
TEST_F(threadContract, GivesUpTheLockWhileItWaitsAndWakesLongBeforeTheDeadline)
{
    waiting state;
    std::atomic<bool> ended{false};
    const int64_t deadline = clockSteadyNs() + 3'600'000 * Millisecond;
    std::jthread waiter([&] {
        state.UntilTold(deadline);
        ended = true;
    });
    state.Tell();
    EXPECT_TRUE(contractAwait([&] { return ended.load(); }));
}

TEST_F(threadContract, DoesNotWaitForADeadlineThatIsOver)
{
    waiting state;
    std::unique_lock lock(state.Mutex);
    for (const int64_t deadline : {INT64_MIN, int64_t{-1}, int64_t{0}, clockSteadyNs()}) {
        SCOPED_TRACE(deadline);
        threadWaitUntil(state.Condition, lock, deadline);
        EXPECT_TRUE(lock.owns_lock());
    }
}

TEST_F(threadContract, WaitsForNotificationAloneWithTheLastDeadlineOfAll)
{
    waiting state;
    std::atomic<bool> ended{false};
    std::jthread waiter([&] {
        state.UntilTold(INT64_MAX);
        ended = true;
    });
    state.Tell();
    EXPECT_TRUE(contractAwait([&] { return ended.load(); }));
}

TEST_F(threadContract, TellsLivingThreadsApart)
{
    constexpr size_t Count = 8;
    std::mutex mutex;
    std::multiset<uint64_t> ids{threadId()};
    std::atomic<bool> leave{false};
    {
        std::vector<std::jthread> threads;
        for (size_t i = 0; i < Count; i++) {
            threads.emplace_back([&] {
                {
                    const std::lock_guard lock(mutex);
                    ids.insert(threadId());
                }
                while (!leave)
                    std::this_thread::yield();
            });
        }
        EXPECT_TRUE(contractAwait([&] {
            const std::lock_guard lock(mutex);
            return ids.size() == Count + 1;
        }));
        leave = true;
    }
    EXPECT_EQ(ids.count(0), 0u);
    EXPECT_EQ(std::set<uint64_t>(ids.begin(), ids.end()).size(), Count + 1);
}

TEST_F(threadContract, KeepsItsNumber)
{
    EXPECT_EQ(threadId(), threadId());
}

TEST_F(threadContract, TakesNamesOfAnyLength)
{
    std::jthread named([] {
        for (const std::string& name : {std::string(), std::string("receive"), std::string("fifteen letters"),
                                        std::string("a name of more than fifteen letters")})
            threadName(name.c_str());
    });
}

}  // namespace
