// Waiting for something to come true, with a limit, so that a broken promise fails a test instead of hanging
// it. What takes long is not slowed down by the one who waits.
#pragma once

#include <chrono>
#include <thread>

template <typename condition>
bool await(const condition& isTrue)
{
    const auto begin = std::chrono::steady_clock::now();
    while (!isTrue()) {
        const auto waited = std::chrono::steady_clock::now() - begin;
        if (waited > std::chrono::seconds(60))
            return false;
        if (waited < std::chrono::milliseconds(2))
            std::this_thread::yield();
        else
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
    }
    return true;
}

// Gives other threads many chances to do what they must not do.
inline void letOthersRun()
{
    for (int turn = 0; turn < 100; ++turn)
        std::this_thread::yield();
}
