// An image that belongs to someone else, such as one that is stored in the program.
#pragma once

#include <cstdint>

struct pixmap {
    uint32_t Width = 0;   // pixels
    uint32_t Height = 0;  // pixels

    // Bits per pixel: 1, 4, 8, 16, 24 or 32. Negative when the pixels are compressed (pixmapDecode.h); they
    // then decode to minus this many.
    int32_t Bits = 0;

    uint32_t PaletteSize = 0;           // entries
    const uint32_t* Palette = nullptr;  // for 1, 4 and 8 bits: 0xAARRGGBB
    const uint8_t* Pixels = nullptr;    // rows from the top, blue before green before red
    uint32_t Size = 0;                  // bytes at Pixels
    uint32_t RowMultiple = 1;           // of how many rows a pixmapDyn keeps a multiple
    uint32_t Stride = 0;                // bytes from row to row, a multiple of 4
};

// The most bytes that the pixels of one image may take: 4096 by 4096 at 32 bits. An image that tells more,
// or whose pixels would decode to more, is damaged or an attack.
constexpr uint64_t pixmapBytesMost = uint64_t{64} << 20;

// What Stride is for a depth that is not compressed. The result of a width and depth out of a damaged image
// may be more than Stride can hold.
constexpr uint64_t pixmapStride(uint32_t bits, uint32_t width)
{
    return (uint64_t{bits} * width + 31) / 32 * 4;
}
