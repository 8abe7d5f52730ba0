// The checksum of UBX: an 8-bit Fletcher sum over class, id, length and payload.
#pragma once

#include <cstddef>
#include <cstdint>

struct ubxChecksum {
    uint8_t A = 0;  // CK_A: the sum of the bytes
    uint8_t B = 0;  // CK_B: the sum of all values that CK_A went through

    bool operator==(const ubxChecksum&) const = default;
};

ubxChecksum ubxChecksumOf(const uint8_t* bytes, size_t count);
