#include "tests/toolkit/bitWriter.h"
#include "tests/toolkit/pixmapDynTest.h"

using testing::ElementsAre;

TEST_F(pixmapDynTest, LeavesZerosForAStreamThatIsWrongOrShortAndCutsALongOne)
{
    const uint32_t black = 0xFF000000;
    EXPECT_THAT(coloursAt32(stored(2, 1, -24, {2, 2, 2}).Image), ElementsAre(black, black));
    EXPECT_THAT(coloursAt32(stored(2, 1, -24, {0, 0, 0x83, 1, 2, 3, 4, 0}).Image), ElementsAre(black, black));
    EXPECT_THAT(coloursAt32(stored(2, 1, -24, {0, 0, 0x83, 1, 2, 3, 4}).Image),
                ElementsAre(0xFF030201, 0xFF000004));
    EXPECT_THAT(coloursAt32(stored(2, 1, -24, {0, 0, 0x7F, 9}).Image), ElementsAre(0xFF090909, 0xFF090909));
    EXPECT_THAT(coloursAt32(stored(2, 1, -32, {}).Image), ElementsAre(0, 0));
}

TEST_F(pixmapDynTest, SeesZerosWherePixelsAreMissing)
{
    EXPECT_THAT(coloursAt32(stored(2, 2, 24, {1, 2, 3, 4}).Image),
                ElementsAre(0xFF030201, 0xFF000004, 0xFF000000, 0xFF000000));
    EXPECT_THAT(coloursAt32(stored(2, 1, 32, {1, 2, 3, 4, 5}).Image), ElementsAre(0x04030201, 5));
    stored none(2, 1, 16, {});
    none.Image.Pixels = nullptr;
    none.Image.Size = 1000;
    EXPECT_THAT(coloursAt32(none.Image), ElementsAre(0xFF000000, 0xFF000000));
    none.Image.Bits = 32;
    EXPECT_THAT(coloursAt32(none.Image), ElementsAre(0, 0));
    none.Image.Bits = -32;
    EXPECT_THAT(coloursAt32(none.Image), ElementsAre(0, 0));
}

TEST_F(pixmapDynTest, SeesZerosForColoursThatThePaletteDoesNotHave)
{
    EXPECT_THAT(coloursAt32(stored(3, 1, 8, {0, 1, 2, 0}, {11, 12}).Image), ElementsAre(11, 12, 0));
    stored none(2, 1, 8, {0, 255, 0, 0});
    none.Image.PaletteSize = 256;
    EXPECT_THAT(coloursAt32(none.Image), ElementsAre(0, 0));
}

TEST_F(pixmapDynTest, ReadsNoMoreOfAPaletteThanColoursCanBeNamed)
{
    stored source(1, 1, 8, {255, 0, 0, 0}, words(256, 0xABCDEF));
    source.Image.PaletteSize = 0xFFFFFFFF;
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(0xABCDEF));
    pixmapDyn same;
    same.Bits = 8;
    same = source.Image;
    EXPECT_EQ(paletteOf(same), words(256, 0xABCDEF));
}

TEST_F(pixmapDynTest, DoesNotAskForTheSourcesStride)
{
    stored source(1, 2, 32, {1, 0, 0, 0, 2, 0, 0, 0});
    source.Image.Stride = 0x7FFFFFFF;
    EXPECT_THAT(coloursAt32(source.Image), ElementsAre(1, 2));
}

TEST_F(pixmapDynTest, IsEmptyForAnImageBeyondTheLimit)
{
    struct row {
        uint32_t Width, Height;
        int32_t Bits;
    };
    const uint32_t largest = 0xFFFFFFFF;
    const row rows[] = {
        {largest, largest, 32}, {largest, largest, 1}, {largest, 1, 32},       {largest, 0, 32},
        {1, largest, 24},       {largest, 1, -24},     {1, largest, -1},       {4097, 4096, 24},
        {4096, 4097, -32},      {0x40000000, 4, 8},    {0x10000, 0x10000, 32},
    };
    for (const row& each : rows)
        for (const int32_t to : {16, 32}) {
            SCOPED_TRACE(testing::Message() << each.Width << " by " << each.Height << " at " << each.Bits);
            const stored source(each.Width, each.Height, each.Bits, {1, 1, 0, 0}, {1, 2});
            pixmapDyn target;
            target.Bits = to;
            target = stored(1, 1, to, {1, 2, 3, 4}).Image;
            target = source.Image;
            expectEmpty(target);
            EXPECT_EQ(target.Bits, to);
        }
    EXPECT_EQ(fakeDebugText(), "");
}

TEST_F(pixmapDynTest, TakesTheLargestImage)
{
    pixmapDyn target;
    target.Bits = 32;
    target = stored(4096, 4096, -1, bitWriter().Run(4096 * 512, 0xFF).Stream(), {0, 0x11223344}).Image;
    ASSERT_EQ(target.Size, pixmapBytesMost);
    const words colours = coloursOf(target);
    EXPECT_EQ(std::count(colours.begin(), colours.end(), 0x11223344), 4096 * 4096);
}

TEST_F(pixmapDynTest, IsEmptyWithoutAFaultWhenMemoryEnds)
{
    const stored source(1000, 1000, -24, bitWriter().Run(3000000, 7).Stream());
    for (unsigned skip = 0; skip < 12; ++skip) {
        SCOPED_TRACE(skip);
        fakeReset();
        pixmapDyn target;
        target.Bits = 16;
        fakeFail("heapAllocate", {.Skip = skip, .Times = 1000});
        target = source.Image;
        EXPECT_EQ(fakeDebugText(), "");
        EXPECT_TRUE(target.Width == 0 || target.Width == 1000);
        EXPECT_EQ(target.Size, target.Width == 0 ? 0u : 2000000u);
        EXPECT_EQ(pixelsOf(target).size(), target.Size);
    }
}

TEST_F(pixmapDynTest, TakesAnImageWithoutPixels)
{
    for (const int32_t bits : {1, 8, 24, 32, -1, -24}) {
        SCOPED_TRACE(bits);
        pixmapDyn target;
        target.Bits = 32;
        target = stored(3, 0, bits, {}).Image;
        EXPECT_EQ(target.Width, 3u);
        EXPECT_EQ(target.Stride, 12u);
        EXPECT_EQ(target.Size, 0u);
        target = stored(0, 3, bits, {}).Image;
        EXPECT_EQ(target.Height, 3u);
        EXPECT_EQ(target.Size, 0u);
    }
}

TEST_F(pixmapDynTest, IsDoneAtOnceWithRowsOfNothing)
{
    for (const int32_t bits : {1, 8, 24, 32, -1, -24})
        for (const int32_t to : {16, 32}) {
            SCOPED_TRACE(testing::Message() << bits << " to " << to);
            pixmapDyn target;
            target.Bits = to;
            target = stored(0, 0xFFFFFFFF, bits, {}).Image;
            EXPECT_EQ(target.Height, 0xFFFFFFFF);
            EXPECT_EQ(target.Size, 0u);
        }
}
