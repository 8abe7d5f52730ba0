// Reads a stream of bits, the highest bit of each byte first.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

class pixmapBits
{
public:
    explicit pixmapBits(std::span<const uint8_t> bytes) : Bytes(bytes) {}

    bool IsEmpty() const { return Left() == 0; }

    // The value of the next `count` bits, at most 32. At the end that of the bits that are left.
    uint32_t Take(unsigned count);

    // A number in the form of pixmapDecode.h, at most 2^32.
    uint64_t Number();

private:
    uint64_t Left() const { return uint64_t{Bytes.size()} * 8 - Position; }

    std::span<const uint8_t> Bytes;
    uint64_t Position = 0;  // bits
};
