// Sleeping on a word of memory: what locks are made of.
#pragma once

#include <atomic>
#include <cstdint>

// Puts the calling thread to sleep while `word` holds `value`, until wordWake is called for it. It may return
// for no reason: callers look at the word and wait again. A change, sequentially consistent as atomics are by
// themselves, that is followed by wordWake is never missed, also one between the caller's last look and this
// call.
void wordWait(const std::atomic<uint32_t>& word, uint32_t value);

// Wakes one thread that sleeps on the word, if there is one. Only the address is used, so the word may be
// gone by now. Any thread; never blocks for long.
void wordWake(const std::atomic<uint32_t>& word);
