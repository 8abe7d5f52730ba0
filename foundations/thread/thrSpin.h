// The lock for short sections: one atomic word, zero when free.
#pragma once

#include <atomic>
#include <cstdint>

class thrSpin
{
public:
    constexpr thrSpin() = default;
    thrSpin(const thrSpin&) = delete;
    thrSpin& operator=(const thrSpin&) = delete;

    // Takes the lock and sleeps, without limit, while another holds it. Not recursive: a thread that locks
    // twice waits for ever. Waiters are let in in no particular order.
    void Lock();

    // Gives the lock back and wakes one waiter. Any thread may do so.
    void Unlock();

private:
    std::atomic<uint32_t> Word{0};
};

// Holds a thrSpin for the length of a scope.
class thrSpinHold
{
public:
    explicit thrSpinHold(thrSpin& spin) : Spin(spin) { Spin.Lock(); }
    ~thrSpinHold() { Spin.Unlock(); }
    thrSpinHold(const thrSpinHold&) = delete;
    thrSpinHold& operator=(const thrSpinHold&) = delete;

private:
    thrSpin& Spin;
};
