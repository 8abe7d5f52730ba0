#include "platform/word.h"

void wordWait(const std::atomic<uint32_t>& word, uint32_t value)
{
    word.wait(value);
}

void wordWake(const std::atomic<uint32_t>& word)
{
    // The notification changes nothing in the word, though the standard's signature asks for leave to.
    const_cast<std::atomic<uint32_t>&>(word).notify_one();
}
