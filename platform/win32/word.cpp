#include "platform/word.h"

#include <windows.h>

// The run-time library's own wait on an atomic can miss a notification here: it looks at the value before it
// takes the lock that guards its condition.

void wordWait(const std::atomic<uint32_t>& word, uint32_t value)
{
    static_assert(sizeof(word) == sizeof(value));
    WaitOnAddress(const_cast<std::atomic<uint32_t>*>(&word), &value, sizeof(value), INFINITE);
}

void wordWake(const std::atomic<uint32_t>& word)
{
    WakeByAddressSingle(const_cast<std::atomic<uint32_t>*>(&word));
}
