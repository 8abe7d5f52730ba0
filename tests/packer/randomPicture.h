// Pictures of few colours and no meaning, the same for each width.
#pragma once

#include "toolkit/pixmap.h"
#include "tools/packer/packPicture.h"

#include <random>

inline packPicture randomPicture(uint32_t width, uint32_t height)
{
    packPicture picture{width, height, {}};
    picture.Pixels.resize(pixmapStride(24, width) * height);
    std::mt19937 random(width);
    for (size_t i = 0; i < picture.Pixels.size(); ++i)
        if (i % pixmapStride(24, width) < size_t{3} * width)
            picture.Pixels[i] = static_cast<uint8_t>(random() % 5);
    return picture;
}
