#include "foundations/thread/thrGate.h"

#include "tests/await.h"

#include <gtest/gtest.h>

#include <atomic>
#include <thread>

namespace {

// A thread that goes to sleep once, and tells when it is through.
struct sleeper {
    explicit sleeper(thrGate& gate)
        : Thread([this, &gate] {
              gate.Sleep();
              Through = true;
          })
    {}
    bool AwaitThrough() const
    {
        return await([this] { return Through.load(); });
    }

    std::atomic<bool> Through{false};
    std::jthread Thread;
};

TEST(thrGate, SleepsUntilItIsWoken)
{
    thrGate gate;
    const sleeper one(gate);
    letOthersRun();
    EXPECT_FALSE(one.Through);
    gate.Wake();
    EXPECT_TRUE(one.AwaitThrough());
}

TEST(thrGate, RemembersAWakeForTheNextSleep)
{
    thrGate gate;
    gate.Wake();
    gate.Sleep();
}

TEST(thrGate, CountsSeveralWakesAsOne)
{
    thrGate gate;
    gate.Wake();
    gate.Wake();
    gate.Wake();
    gate.Sleep();

    const sleeper one(gate);
    letOthersRun();
    EXPECT_FALSE(one.Through);
    gate.Wake();
    EXPECT_TRUE(one.AwaitThrough());
}

TEST(thrGate, IsOneWord)
{
    EXPECT_EQ(sizeof(thrGate), sizeof(uint32_t));
}

}  // namespace
