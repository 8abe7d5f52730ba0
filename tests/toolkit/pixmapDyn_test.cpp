#include "toolkit/pixmapDyn.h"

#include "tests/toolkit/bitWriter.h"
#include "tests/toolkit/pixmapDynTest.h"

#include <limits>
#include <type_traits>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;

constexpr int32_t depths[] = {1, 4, 8, 16, 24, 32};
constexpr int32_t lowest = std::numeric_limits<int32_t>::min();

// Two by two pixels of a depth: rows of 4 or 8 bytes.
bytes patternOf(int32_t bits)
{
    bytes pattern(2 * pixmapStride(static_cast<uint32_t>(bits), 2));
    for (size_t i = 0; i < pattern.size(); ++i)
        pattern[i] = static_cast<uint8_t>(0x1B + 45 * i);
    return pattern;
}

const words palette16 = {0xFF000000, 0xFF0000FF, 0xFF00FF00, 0x80FF0000, 4,  5,  6,  7,
                         8,          9,          10,         11,         12, 13, 14, 15};

}  // namespace

TEST_F(pixmapDynTest, BeginsWithNothing)
{
    const pixmapDyn image;
    expectEmpty(image);
    EXPECT_EQ(image.Bits, 0);
    EXPECT_EQ(image.RowMultiple, 1u);
    static_assert(!std::is_copy_constructible_v<pixmapDyn>);
}

TEST_F(pixmapDynTest, HasRowsOfAMultipleOfFourBytes)
{
    struct row {
        uint32_t Bits, Width;
        uint64_t Stride;
    };
    const row rows[] = {
        {1, 0, 0},
        {1, 1, 4},
        {1, 9, 4},
        {1, 32, 4},
        {1, 33, 8},
        {4, 8, 4},
        {4, 9, 8},
        {8, 4, 4},
        {8, 5, 8},
        {16, 1, 4},
        {16, 3, 8},
        {24, 1, 4},
        {24, 142, 428},
        {32, 1, 4},
        {32, 7, 28},
        {24, 4, 12},
        {32, 0xFFFFFFFF, 0x3FFFFFFFC},
    };
    for (const row& each : rows)
        EXPECT_EQ(pixmapStride(each.Bits, each.Width), each.Stride) << each.Bits << " x " << each.Width;
}

TEST_F(pixmapDynTest, ConvertsTheseDepthsAndNoOthers)
{
    const auto exists = [](int32_t from, int32_t to) { return from == to || to == 32 || to == 16; };
    for (const int32_t from : depths)
        for (const int32_t to : depths) {
            SCOPED_TRACE(testing::Message() << from << " to " << to);
            fakeReset();
            const stored source(2, 2, from, patternOf(from), palette16);
            pixmapDyn target;
            target.Bits = to;
            if (exists(from, to)) {
                target = source.Image;
                EXPECT_EQ(fakeDebugText(), "");
            } else {
                fakeBreakReturns(true);
                target = source.Image;
                EXPECT_THAT(fakeDebugText(), HasSubstr("pixmapDyn - No conversion between these depths\r\n"));
                EXPECT_EQ(pixelsOf(target), bytes(target.Size, 0));
            }
            EXPECT_EQ(target.Bits, to);
            EXPECT_EQ(target.Width, 2u);
            EXPECT_EQ(target.Height, 2u);
            EXPECT_EQ(target.Stride, pixmapStride(static_cast<uint32_t>(to), 2));
            EXPECT_EQ(target.Size, 2 * target.Stride);
        }
}

TEST_F(pixmapDynTest, IsFatalBetweenDepthsThatCannotBe)
{
    struct row {
        int32_t From, To;
    };
    const row rows[] = {{24, 0},   {0, 32},  {2, 32},      {5, 16},      {33, 32},     {-5, 32},
                        {24, -24}, {-24, 8}, {lowest, 32}, {lowest, 16}, {32, lowest}, {-16, -24}};
    for (const row& each : rows) {
        SCOPED_TRACE(testing::Message() << each.From << " to " << each.To);
        const stored source(2, 2, each.From, bytes(64, 1));
        pixmapDyn target;
        target.Bits = each.To;
        EXPECT_THROW(target = source.Image, fakeBreak);
        // The fault came before anything was changed.
        EXPECT_EQ(target.Width, 0u);
    }
}

TEST_F(pixmapDynTest, CopiesTheSameDepthByteByByte)
{
    for (const int32_t bits : depths) {
        SCOPED_TRACE(bits);
        const stored source(2, 2, bits, patternOf(bits), {1, 2, 3});
        pixmapDyn target;
        target.Bits = bits;
        target = source.Image;
        EXPECT_EQ(pixelsOf(target), patternOf(bits));
        EXPECT_THAT(paletteOf(target), ElementsAre(1, 2, 3));
        EXPECT_NE(target.Pixels, source.Image.Pixels);
        EXPECT_NE(target.Palette, source.Image.Palette);
    }
}

TEST_F(pixmapDynTest, CopiesACompressedImageAsItStands)
{
    const stored source(300, 200, -24, {1, 1, 0x55}, {7});
    pixmapDyn target;
    target.Bits = -24;
    target = source.Image;
    EXPECT_THAT(pixelsOf(target), ElementsAre(1, 1, 0x55));
    EXPECT_THAT(paletteOf(target), ElementsAre(7));
    EXPECT_EQ(target.Width, 300u);
    EXPECT_EQ(target.Stride, 0u);
}

TEST_F(pixmapDynTest, ReadsOneBitHighestFirst)
{
    // Nine pixels: two bytes of a row of four. What is behind them must not be seen.
    const stored source(9, 2, 1, {0xA5, 0x80, 0xFF, 0xFF, 0x01, 0x7F, 0xFF, 0xFF}, {0xFF000000, 0xFFABCDEF});
    const uint32_t o = 0xFF000000;
    const uint32_t l = 0xFFABCDEF;
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(l, o, l, o, o, l, o, l, l,  //
                                                       o, o, o, o, o, o, o, l, o));
}

TEST_F(pixmapDynTest, ReadsFourBitsHighNibbleFirst)
{
    const stored source(3, 2, 4, {0x12, 0x3F, 9, 9, 0xF0, 0x4F, 9, 9}, palette16);
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(palette16[1], palette16[2], palette16[3],
                                                       palette16[15], palette16[0], palette16[4]));
}

TEST_F(pixmapDynTest, ReadsEightBitsThroughThePalette)
{
    words palette(256);
    for (uint32_t i = 0; i < 256; ++i)
        palette[i] = 0x01010101 * (255 - i);
    const stored source(2, 2, 8, {0, 255, 9, 9, 128, 1, 9, 9}, palette);
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(0xFFFFFFFF, 0, 0x7F7F7F7F, 0xFEFEFEFE));
}

TEST_F(pixmapDynTest, ReadsSixteenBitsWithoutFillingTheLowOnes)
{
    struct row {
        uint16_t Pixel;
        uint32_t Wanted;
    };
    const row rows[] = {
        {0x0000, 0xFF000000}, {0xFFFF, 0xFFF8FCF8}, {0xF800, 0xFFF80000}, {0x07E0, 0xFF00FC00},
        {0x001F, 0xFF0000F8}, {0x0800, 0xFF080000}, {0x0020, 0xFF000400}, {0x0001, 0xFF000008},
        {0x0100, 0xFF002000}, {0x00E0, 0xFF001C00}, {0x1234, 0xFF1044A0},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Pixel);
        const stored source(1, 1, 16,
                            {static_cast<uint8_t>(each.Pixel), static_cast<uint8_t>(each.Pixel >> 8), 9, 9});
        EXPECT_THAT(coloursAt32(source.Image), ElementsAre(each.Wanted));
    }
}

TEST_F(pixmapDynTest, ReadsTwentyFourBitsBlueFirst)
{
    const stored source(1, 2, 24, {0x11, 0x22, 0x33, 9, 0x44, 0x55, 0x66, 9});
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(0xFF332211, 0xFF665544));
}

TEST_F(pixmapDynTest, KeepsFiveSixAndFiveBitsForSixteen)
{
    struct row {
        uint32_t Pixel;
        uint16_t Wanted;
    };
    const row rows[] = {
        {0x00000000, 0x0000}, {0xFFFFFFFF, 0xFFFF}, {0xFF000000, 0x0000}, {0x00FF0000, 0xF800},
        {0x0000FF00, 0x07E0}, {0x000000FF, 0x001F}, {0x00070307, 0x0000}, {0x00080408, 0x0821},
        {0x00F8FCF8, 0xFFFF}, {0x12345678, 0x32AF},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Pixel);
        bytes pixel;
        for (unsigned i = 0; i < 4; ++i)
            pixel.push_back(static_cast<uint8_t>(each.Pixel >> (8 * i)));
        pixmapDyn target;
        target.Bits = 16;
        target = stored(1, 1, 32, pixel).Image;
        EXPECT_THAT(pixelsOf(target), ElementsAre(each.Wanted & 0xFF, each.Wanted >> 8, 0, 0));
    }
}

TEST_F(pixmapDynTest, BringsEveryDepthToSixteenThroughThirtyTwo)
{
    for (const int32_t bits : {1, 4, 8, 24}) {
        SCOPED_TRACE(bits);
        const stored source(2, 2, bits, patternOf(bits), palette16);
        pixmapDyn direct;
        direct.Bits = 16;
        direct = source.Image;
        pixmapDyn between;
        between.Bits = 32;
        between = source.Image;
        pixmapDyn after;
        after.Bits = 16;
        after = between;
        EXPECT_EQ(pixelsOf(direct), pixelsOf(after));
        EXPECT_EQ(direct.PaletteSize, 0u);
    }
}

TEST_F(pixmapDynTest, UnpacksACompressedImageOfEveryDepth)
{
    for (const int32_t bits : depths)
        for (const int32_t to : {bits, 16, 32}) {
            SCOPED_TRACE(testing::Message() << -bits << " to " << to);
            const stored packed(2, 2, -bits, bitWriter().Literals(patternOf(bits)).End().Stream(), palette16);
            const stored plain(2, 2, bits, patternOf(bits), palette16);
            pixmapDyn fromPacked;
            fromPacked.Bits = to;
            fromPacked = packed.Image;
            pixmapDyn fromPlain;
            fromPlain.Bits = to;
            fromPlain = plain.Image;
            EXPECT_EQ(pixelsOf(fromPacked), pixelsOf(fromPlain));
            EXPECT_EQ(paletteOf(fromPacked), paletteOf(fromPlain));
            EXPECT_FALSE(pixelsOf(fromPacked).empty());
        }
}

TEST_F(pixmapDynTest, UnpacksTheOtherFormsToo)
{
    EXPECT_THAT(coloursAt32(stored(1, 1, -24, {0, 0, 0x02, 0x41}).Image), ElementsAre(0xFF414141));
    EXPECT_THAT(coloursAt32(stored(1, 1, -24, {5, 6, 7, 1, 2, 3}).Image), ElementsAre(0xFF030201));
}

TEST_F(pixmapDynTest, KeepsRowsInItsMultiple)
{
    struct row {
        uint32_t Multiple, Height;
        uint64_t Rows;
    };
    for (const row& each : {row{1, 3, 3}, {4, 3, 4}, {4, 4, 4}, {4, 5, 8}, {0, 3, 3}, {4, 0, 0}}) {
        SCOPED_TRACE(testing::Message() << each.Height << " in " << each.Multiple);
        const stored source(2, each.Height, 32, bytes(each.Height * 8, 6));
        pixmapDyn target;
        target.Bits = 32;
        target.RowMultiple = each.Multiple;
        target = source.Image;
        EXPECT_EQ(target.RowMultiple, each.Multiple);
        EXPECT_EQ(pixelsOf(target), bytes(each.Height * 8, 6));
        for (uint64_t i = target.Size; i < each.Rows * 8; ++i)
            EXPECT_EQ(target.Pixels[i], 0);
    }
    pixmapDyn target;
    target.Bits = 32;
    target.RowMultiple = 0xFFFFFFFF;
    target = stored(1, 1, 32, {1, 2, 3, 4}).Image;
    expectEmpty(target);
}

TEST_F(pixmapDynTest, FreesWhatItHadBefore)
{
    pixmapDyn target;
    target.Bits = 8;
    target = stored(4, 4, 8, bytes(16, 1), {1, 2, 3}).Image;
    EXPECT_EQ(memHeap.Zones.Count, 2u);
    target = stored(4, 2, 8, bytes(8, 2)).Image;
    EXPECT_EQ(memHeap.Zones.Count, 1u);
    EXPECT_EQ(target.Palette, nullptr);
    EXPECT_EQ(target.PaletteSize, 0u);
}

TEST_F(pixmapDynTest, TakesItselfAndPartsOfItself)
{
    pixmapDyn target;
    target.Bits = 32;
    target = stored(1, 3, 32, {1, 0, 0, 0, 2, 0, 0, 0, 3, 0, 0, 0}).Image;
    const pixmapDyn& itself = target;
    target = itself;
    EXPECT_THAT(coloursOf(target), ElementsAre(1, 2, 3));
    pixmap part = target;
    part.Pixels += 4;
    part.Size -= 4;
    part.Height = 2;
    target = part;
    EXPECT_THAT(coloursOf(target), ElementsAre(2, 3));
}

TEST_F(pixmapDynTest, TakesAnotherOfItsKindByItsPixels)
{
    pixmapDyn one;
    one.Bits = 24;
    one = stored(1, 1, 24, {1, 2, 3, 0}).Image;
    pixmapDyn other;
    other.Bits = 32;
    other.RowMultiple = 2;
    other = one;
    EXPECT_EQ(other.Bits, 32);
    EXPECT_EQ(other.RowMultiple, 2u);
    EXPECT_THAT(coloursOf(other), ElementsAre(0xFF030201));
    EXPECT_THAT(pixelsOf(one), ElementsAre(1, 2, 3, 0));
}
