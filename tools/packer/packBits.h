// Packs bytes into the stream of bits that toolkit/pixmapDecode.h describes.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

// A stream that decodes to exactly these bytes, with its first two bytes and an end. Of equal bytes it is
// always the same. At most 2^32 - 1 bytes.
std::vector<uint8_t> packBits(std::span<const uint8_t> bytes);
