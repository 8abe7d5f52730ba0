// Waiting for something to come true, with a limit, so that a broken promise fails a test instead of hanging
// it.
#pragma once

#include <chrono>
#include <thread>

template <typename condition>
bool await(const condition& isTrue)
{
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!isTrue()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        std::this_thread::yield();
    }
    return true;
}

// Gives other threads many chances to do what they must not do.
inline void letOthersRun()
{
    for (int turn = 0; turn < 100; ++turn)
        std::this_thread::yield();
}
