// A sleeping place for one thread: one atomic word, set by the waker, cleared by the sleeper.
#pragma once

#include <atomic>
#include <cstdint>

class thrGate
{
public:
    constexpr thrGate() = default;
    thrGate(const thrGate&) = delete;
    thrGate& operator=(const thrGate&) = delete;

    // Lets one Sleep through: the one that waits, or else the next. Several wakes before a sleep count as
    // one.
    void Wake();

    // Sleeps without limit until a Wake has come since the last Sleep, and uses it up.
    void Sleep();

private:
    std::atomic<uint32_t> Word{0};
};
