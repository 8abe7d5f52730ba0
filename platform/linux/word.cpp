#include "platform/word.h"

#include <linux/futex.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr size_t PlaceBits = 8;
constexpr size_t AddressBits = 64;

// How many threads are about to sleep, or do, on words that share a place. To wake is a call of the system,
// and nearly always nobody sleeps; the library's own count, of few places, is seldom zero where threads sleep
// for long.
std::atomic<uint32_t> SleepersAt[size_t{1} << PlaceBits];

std::atomic<uint32_t>& Sleepers(const std::atomic<uint32_t>& word)
{
    constexpr uint64_t Spread = 0x9E3779B97F4A7C15;  // 2^64 divided by the golden ratio
    return SleepersAt[reinterpret_cast<uintptr_t>(&word) * Spread >> (AddressBits - PlaceBits)];
}

void Futex(const std::atomic<uint32_t>& word, int operation, uint32_t value)
{
    static_assert(sizeof(word) == sizeof(uint32_t));
    syscall(SYS_futex, &word, operation | FUTEX_PRIVATE_FLAG, value, nullptr);
}

}  // namespace

void wordWait(const std::atomic<uint32_t>& word, uint32_t value)
{
    std::atomic<uint32_t>& sleepers = Sleepers(word);
    // Told before the system looks at the word: whoever changes it later sees that somebody may sleep.
    ++sleepers;
    if (word.load() == value)
        Futex(word, FUTEX_WAIT, value);
    --sleepers;
}

void wordWake(const std::atomic<uint32_t>& word)
{
    if (Sleepers(word).load() != 0)
        Futex(word, FUTEX_WAKE, 1);
}
