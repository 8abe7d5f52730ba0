#include "toolkit/colour.h"

#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

namespace {

constexpr colour grey(int32_t level)
{
    return level << 16 | level << 8 | level;
}

int32_t channel(colour value, unsigned index)
{
    return value >> (8 * index) & 0xFF;
}

class colourTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

}  // namespace

TEST_F(colourTest, ScalesEachChannel)
{
    struct row {
        const char* Why;
        colour Value;
        uint32_t Num, Den;
        colour Wanted;
    };
    const row rows[] = {
        {"whole", 0x123456, 1, 1, 0x123456},
        {"none", 0x123456, 0, 7, 0x000000},
        {"a lit face", 0x806060, 10, 7, 0xB68989},
        {"a dim face", 0x806060, 6, 7, 0x6D5252},
        {"a face at half", 0x806060, 1, 2, 0x403030},
        {"half truncates", 0x0103FF, 1, 2, 0x00017F},
        {"each channel stops at 255", 0x7F80FF, 2, 1, 0xFEFFFF},
        {"the most that needs no reduction", 0x01FF02, 255, 1, 0xFFFFFF},
        {"den 255", 0xFF8001, 255, 255, 0xFF8001},
        {"den above 255", 0xFF8001, 256, 256, 0xFF8001},
        {"den above 255, and num after it", 0x010203, 2000, 1000, 0x020406},
        {"num above 255 makes den smaller", 0x010203, 510, 255, 0x020406},
        {"a large factor", 0x010002, 255000, 1000, 0xFF00FF},
        {"the largest numbers", 0x102030, 0xFFFFFFFF, 0xFFFFFFFF, 0x102030},
        {"the smallest factor", 0xFFFFFF, 1, 0xFFFFFFFF, 0x000000},
        {"the top byte is no colour", static_cast<colour>(0xFF102030), 1, 1, 0x102030},
        {"the top byte does not carry", static_cast<colour>(0x80102030), 2, 1, 0x204060},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Why);
        EXPECT_EQ(ColourScale(each.Value, each.Num, each.Den), each.Wanted);
    }
}

TEST_F(colourTest, MixesEachChannel)
{
    struct row {
        const char* Why;
        colour From, To;
        uint32_t Den, Num;
        colour Wanted;
    };
    const row rows[] = {
        {"the start", 0x123456, 0xFFFFFF, 3, 0, 0x123456},
        {"the end", 0x123456, 0xFEDCBA, 1, 1, 0xFEDCBA},
        {"half way up truncates", 0x000000, 0x0103FF, 2, 1, 0x00017F},
        {"half way down goes below", 0x0103FF, 0x000000, 2, 1, 0x00017F},
        {"a border two thirds from black", 0x000000, 0xC08080, 3, 2, 0x805555},
        {"a focused border overshoots", 0x000000, 0xC08080, 3, 4, 0xFFAAAA},
        {"more than there is stops at 255", 0x000000, 0xFFFFFF, 3, 4, 0xFFFFFF},
        {"and at 0", 0xFFFFFF, 0x000000, 3, 4, 0x000000},
        {"a whole negative quotient comes out one lower", 0x030303, 0x000000, 3, 1, 0x010101},
        {"a positive one does not", 0x000000, 0x030303, 3, 1, 0x010101},
        {"up and down at once", 0x00FF40, 0xFF0040, 2, 1, 0x7F7F40},
        {"den above 127", 0x000000, 0x404040, 254, 127, 0x1F1F1F},
        {"num above 127", 0x000000, 0x010101, 127, 254, 0x020202},
        {"both large", 0x000000, 0x804020, 1000, 500, 0x3F1F0F},
        {"both top bytes are no colour", 0x7F102030, static_cast<colour>(0x80203040), 1, 1, 0x203040},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Why);
        EXPECT_EQ(ColourMix(each.From, each.To, each.Den, each.Num), each.Wanted);
    }
}

// Against arithmetic of its own: the rounding promised, for all levels and fractions that need no reduction.
TEST_F(colourTest, RoundsEveryScaleAsPromised)
{
    for (int32_t den = 1; den <= 255; ++den)
        for (int32_t num = 0; num <= 255; num += num < 20 ? 1 : 7)
            for (int32_t level = 0; level <= 255; ++level) {
                const double factor = den < 3 ? 1.0 / den : (std::floor(65535.0 / den) + 1) / 65536;
                const double wanted = std::min(255.0, std::floor(level * num * factor));
                ASSERT_EQ(ColourScale(grey(level), static_cast<uint32_t>(num), static_cast<uint32_t>(den)),
                          grey(static_cast<int32_t>(wanted)))
                    << level << " * " << num << " / " << den;
            }
}

TEST_F(colourTest, RoundsEveryMixAsPromised)
{
    for (int32_t den = 1; den <= 127; den += den < 10 ? 1 : 3)
        for (int32_t num = 0; num <= 127; num += num < 10 ? 1 : 5)
            for (int32_t from = 0; from <= 255; from += 5)
                for (int32_t to = 0; to <= 255; to += 3) {
                    const double factor = den < 3 ? 1.0 / den : (std::floor(65535.0 / den) + 1) / 65536;
                    const double wanted =
                        std::clamp(from + std::floor((to - from) * num * factor), 0.0, 255.0);
                    ASSERT_EQ(ColourMix(grey(from), grey(to), static_cast<uint32_t>(den),
                                        static_cast<uint32_t>(num)),
                              grey(static_cast<int32_t>(wanted)))
                        << from << " to " << to << ", " << num << " / " << den;
                }
}

TEST_F(colourTest, KeepsTheChannelsApart)
{
    for (unsigned index = 0; index < 3; ++index) {
        const colour only = 0xFF << (8 * index);
        for (unsigned other = 0; other < 3; ++other) {
            SCOPED_TRACE(testing::Message() << index << " seen in " << other);
            EXPECT_EQ(channel(ColourScale(only, 3, 2), other), other == index ? 255 : 0);
            EXPECT_EQ(channel(ColourMix(0, only, 3, 1), other), other == index ? 85 : 0);
            EXPECT_EQ(channel(ColourMix(only, 0, 3, 1), other), other == index ? 169 : 0);
        }
    }
}

TEST_F(colourTest, IsFatalForADenominatorOfNone)
{
    EXPECT_THROW(ColourScale(1, 1, 0), fakeBreak);
    EXPECT_THROW(ColourScale(1, 0, 0), fakeBreak);
    EXPECT_THROW(ColourMix(1, 2, 0, 1), fakeBreak);
    EXPECT_THAT(fakeDebugText(), testing::HasSubstr("ColourScale - Division by zero\r\n"));
    EXPECT_THAT(fakeDebugText(), testing::HasSubstr("ColourMix - Division by zero\r\n"));
}

TEST_F(colourTest, IsFatalForAFractionThatReducesToADenominatorOfNone)
{
    EXPECT_THROW(ColourScale(1, 256, 1), fakeBreak);
    EXPECT_EQ(ColourScale(1, 255, 1), 0xFF);
    EXPECT_THROW(ColourMix(1, 2, 1, 128), fakeBreak);
    EXPECT_EQ(ColourMix(1, 2, 1, 127), 128);
}

TEST_F(colourTest, LeavesTheColourWhenADeveloperGoesOnAfterTheFault)
{
    fakeBreakReturns(true);
    EXPECT_EQ(ColourScale(0x123456, 1, 0), 0x123456);
    EXPECT_EQ(ColourMix(0x123456, 0x654321, 0, 1), 0x123456);
}
