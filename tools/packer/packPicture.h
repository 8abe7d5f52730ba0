// A picture on its way from a drawing program into the program's data.
#pragma once

#include <cstdint>
#include <vector>

struct packPicture {
    static constexpr uint32_t Bits = 24;

    uint32_t Width = 0;
    uint32_t Height = 0;

    // As a pixmap of 24 bits has them: rows from the top, blue first, each of pixmapStride bytes with zeros
    // behind its last pixel.
    std::vector<uint8_t> Pixels;

    bool operator==(const packPicture&) const = default;
};
