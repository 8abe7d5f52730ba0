// Rows of pixels from one depth to another.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

// All colours that 8 bits can name; those that an image does not have are 0.
using pixmapColours = std::array<uint32_t, 256>;

// Writes `width` pixels of 32 bits. The row holds the stride of its depth.
using pixmapRowConverter = void (*)(const uint8_t* row, size_t width, const pixmapColours& colours,
                                    uint8_t* out);

// The way from this depth to 32 bits; null where there is none.
pixmapRowConverter pixmapRowTo32(int32_t bits);

// Writes `width` pixels of 16 bits, 5 of red, 6 of green, 5 of blue, from as many of 32.
void pixmapRow32To16(const uint8_t* row, size_t width, uint8_t* out);
