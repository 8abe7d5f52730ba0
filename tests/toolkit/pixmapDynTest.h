// What the tests of pixmapDyn share: images made of bytes, and eyes that read what an assignment made of
// them.
#pragma once

#include "foundations/heap/memHeap.h"
#include "tests/fakes/fakes.h"
#include "toolkit/pixmapDyn.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <vector>

using bytes = std::vector<uint8_t>;
using words = std::vector<uint32_t>;

class pixmapDynTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
    void TearDown() override { EXPECT_EQ(memHeap.Newest, nullptr); }
};

// An image with what it is made of, in blocks without slack, so that the sanitizer sees a read beyond them.
struct stored {
    std::unique_ptr<uint8_t[]> Pixels;
    std::unique_ptr<uint32_t[]> Palette;
    pixmap Image;

    stored(uint32_t width, uint32_t height, int32_t bits, const bytes& pixels, const words& palette = {})
        : Pixels(new uint8_t[pixels.size()]), Palette(new uint32_t[palette.size()])
    {
        std::copy(pixels.begin(), pixels.end(), Pixels.get());
        std::copy(palette.begin(), palette.end(), Palette.get());
        Image.Width = width;
        Image.Height = height;
        Image.Bits = bits;
        Image.Pixels = Pixels.get();
        Image.Size = static_cast<uint32_t>(pixels.size());
        Image.Palette = palette.empty() ? nullptr : Palette.get();
        Image.PaletteSize = static_cast<uint32_t>(palette.size());
    }
};

inline bytes pixelsOf(const pixmap& image)
{
    return image.Pixels ? bytes(image.Pixels, image.Pixels + image.Size) : bytes{};
}

inline words paletteOf(const pixmap& image)
{
    return image.Palette ? words(image.Palette, image.Palette + image.PaletteSize) : words{};
}

// The pixels of an image of 32 bits, row by row.
inline words coloursOf(const pixmap& image)
{
    words all;
    const bytes pixels = pixelsOf(image);
    for (size_t i = 0; i + 3 < pixels.size(); i += 4)
        all.push_back(pixels[i] | uint32_t{pixels[i + 1]} << 8 | uint32_t{pixels[i + 2]} << 16 |
                      uint32_t{pixels[i + 3]} << 24);
    return all;
}

inline words coloursAt32(const pixmap& source)
{
    pixmapDyn target;
    target.Bits = 32;
    target = source;
    return coloursOf(target);
}

inline void expectEmpty(const pixmap& image)
{
    EXPECT_EQ(image.Width, 0u);
    EXPECT_EQ(image.Height, 0u);
    EXPECT_EQ(image.Size, 0u);
    EXPECT_EQ(image.Stride, 0u);
    EXPECT_EQ(image.Pixels, nullptr);
    EXPECT_EQ(image.Palette, nullptr);
    EXPECT_EQ(image.PaletteSize, 0u);
}
