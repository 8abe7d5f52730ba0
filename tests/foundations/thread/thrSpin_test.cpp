#include "foundations/thread/thrSpin.h"

#include "tests/await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

namespace {

// Usable before any constructor has run.
constinit thrSpin staticSpin;

TEST(thrSpin, IsFreeFromTheStart)
{
    staticSpin.Lock();
    staticSpin.Unlock();
    staticSpin.Lock();
    staticSpin.Unlock();
}

TEST(thrSpin, IsOneWord)
{
    EXPECT_EQ(sizeof(thrSpin), sizeof(uint32_t));
}

TEST(thrSpin, KeepsOthersOutUntilItIsGivenBack)
{
    thrSpin spin;
    std::atomic<bool> entered{false};
    spin.Lock();
    std::jthread other([&] {
        const thrSpinHold hold(spin);
        entered = true;
    });
    letOthersRun();
    EXPECT_FALSE(entered);
    spin.Unlock();
    EXPECT_TRUE(await([&] { return entered.load(); }));
}

TEST(thrSpin, MayBeGivenBackByAnotherThread)
{
    thrSpin spin;
    spin.Lock();
    std::thread([&] { spin.Unlock(); }).join();
    spin.Lock();
    spin.Unlock();
}

TEST(thrSpin, IsHeldForTheLengthOfAScope)
{
    thrSpin spin;
    for (int round = 0; round < 3; ++round)
        const thrSpinHold hold(spin);
    spin.Lock();
    spin.Unlock();
}

TEST(thrSpin, LetsEveryWaiterIn)
{
    thrSpin spin;
    std::atomic<int> entered{0};
    std::vector<std::jthread> waiters;
    spin.Lock();
    for (int index = 0; index < 5; ++index) {
        waiters.emplace_back([&] {
            const thrSpinHold hold(spin);
            ++entered;
        });
    }
    letOthersRun();
    EXPECT_EQ(entered, 0);
    spin.Unlock();
    EXPECT_TRUE(await([&] { return entered == 5; }));
}

}  // namespace
