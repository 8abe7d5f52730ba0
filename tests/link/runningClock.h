// A fake platform whose clock runs by itself, faster than the real one, so that threads which poll and sleep
// live as they do in the program.
#pragma once

#include "tests/await.h"
#include "tests/fakes/fakeLinks.h"
#include "tests/fakes/fakes.h"

#include <atomic>
#include <chrono>
#include <gtest/gtest.h>
#include <thread>

class runningClock
{
public:
    runningClock()
    {
        fakeReset();
        fakeSleepMovesClock(false);
        Mover = std::jthread([this](const std::stop_token& stop) { Run(stop); });
    }

    // The clock stands still until the other one is called.
    void Hold() { Held = true; }
    void Release() { Held = false; }

private:
    // Twenty times the real one. Some systems take a sleep of less than a millisecond for none, and this
    // thread must not keep the others from running.
    static constexpr int64_t StepNs = 20'000'000;
    static constexpr std::chrono::milliseconds RealStep{1};

    void Run(const std::stop_token& stop)
    {
        while (!stop.stop_requested()) {
            if (!Held)
                fakeClockMove(StepNs);
            std::this_thread::sleep_for(RealStep);
        }
        // Whoever still sleeps is let go.
        fakeSleepMovesClock(true);
        fakeClockMove(int64_t{3600} * 1'000'000'000);
    }

    std::atomic<bool> Held{false};
    std::jthread Mover;
};

// Each test begins with a fake platform in its first state and a clock that runs.
class linkTest : public testing::Test
{
protected:
    runningClock Clock;
};
