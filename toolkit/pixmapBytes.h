// Bytes in a block of the checked heap, as pixels are kept and as decoders append them. One thread at a time.
#pragma once

#include "foundations/heap/mem.h"

#include <cstdint>
#include <memory>
#include <span>

struct pixmapFree {
    void operator()(void* pointer) const { memFree(pointer); }
};

// Null when there is no memory, or for a count of 0; all bytes are 0.
using pixmapBlock = std::unique_ptr<uint8_t[], pixmapFree>;
pixmapBlock pixmapZeroed(uint64_t count);

// Output that grows. When it cannot, it is dropped once and for all: it then holds nothing and goes on
// counting, so that whoever appends needs no second road.
class pixmapBytes
{
public:
    // More than `most` bytes cannot be had.
    explicit pixmapBytes(uint64_t most);

    // How many bytes were appended, also when they were dropped.
    uint64_t Count() const { return Count_; }

    // What is held: all that was appended, or nothing.
    std::span<const uint8_t> Held() const;

    void Append(std::span<const uint8_t> bytes);
    void AppendRun(uint64_t count, uint8_t value);

    // Appends bytes from `distance` back, one at a time, so that it may reach into what it appends. False,
    // with nothing done, when that is before the first byte or not behind the end.
    bool AppendCopy(uint64_t count, uint64_t distance);

    void Clear();

private:
    uint8_t* Extend(uint64_t more);
    bool Grow(uint64_t needed);
    void Drop();

    uint64_t Most;
    uint64_t Count_ = 0;
    uint64_t Capacity = 0;
    pixmapBlock Block;
    bool Dropped = false;
};
