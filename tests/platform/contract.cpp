#include "tests/platform/contract.h"

#include <chrono>
#include <thread>

bool contractAwait(const std::function<bool()>& condition)
{
    constexpr int64_t Step = 1'000'000;
    const auto limit = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!condition()) {
        if (std::chrono::steady_clock::now() > limit)
            return false;
        contractPassTime(Step);
        std::this_thread::yield();
    }
    return true;
}
