#include "platform/linux/screen/windowHints.h"

#include <gtest/gtest.h>

namespace {

constexpr windowEdges Area{-10, 20, 390, 320};
constexpr uint32_t Framed = styleSystemMenu | styleResizable;
constexpr uint32_t Always = 1 | 2 | 512;  // a position and a size of the user's, a gravity
constexpr uint32_t HasMinimum = 16;
constexpr uint32_t HasMaximum = 32;

TEST(hintsOfSize, KeepTheClientAreaWhereItIs)
{
    const windowNormalHints hints = windowHintsOfSize(Framed, Area, {}, {});
    EXPECT_EQ(hints[0], Always);
    EXPECT_EQ(static_cast<int32_t>(hints[1]), -10);
    EXPECT_EQ(hints[2], 20u);
    EXPECT_EQ(hints[3], 400u);
    EXPECT_EQ(hints[4], 300u);
    EXPECT_EQ(hints[17], 10u);
}

TEST(hintsOfSize, AreTheRangeOfAWindowThatCanBeResized)
{
    const windowNormalHints hints = windowHintsOfSize(Framed, Area, {200, 0}, {0, 900});
    EXPECT_EQ(hints[0], Always | HasMinimum | HasMaximum);
    EXPECT_EQ(hints[5], 200u);
    EXPECT_EQ(hints[6], 1u);
    EXPECT_EQ(hints[7], 16384u);
    EXPECT_EQ(hints[8], 900u);
}

TEST(hintsOfSize, AreOneSizeForAWindowThatCannot)
{
    const windowNormalHints hints = windowHintsOfSize(styleSystemMenu, Area, {10, 10}, {});
    EXPECT_EQ(hints[0], Always | HasMinimum | HasMaximum);
    for (const size_t word : {5u, 7u}) {
        EXPECT_EQ(hints[word], 400u);
        EXPECT_EQ(hints[word + 1], 300u);
    }
}

TEST(hintsOfSize, LeaveRoomForAWindowThatCanOnlyBeMaximised)
{
    EXPECT_EQ(windowHintsOfSize(styleSystemMenu | styleMaximiseBox, Area, {}, {})[0], Always);
}

TEST(hintsOfSize, AreNeverOfNoSize)
{
    const windowNormalHints hints = windowHintsOfSize(styleSystemMenu, {5, 5, 5, 5}, {}, {});
    EXPECT_EQ(hints[3], 1u);
    EXPECT_EQ(hints[5], 1u);
}

TEST(hintsOfFrame, FollowTheStyle)
{
    struct frameRow {
        uint32_t Style, Functions, Decorations;
    };
    constexpr frameRow Rows[] = {
        {stylePopup, 0, 0},
        {stylePopup | styleResizable, 0, 0},
        {styleSystemMenu, 4 | 32, 2 | 8 | 16},
        {styleSystemMenu | styleResizable, 2 | 4 | 32, 2 | 4 | 8 | 16},
        {styleSystemMenu | styleMinimiseBox, 4 | 8 | 32, 2 | 8 | 16 | 32},
        {styleSystemMenu | styleMaximiseBox, 4 | 16 | 32, 2 | 8 | 16 | 64},
    };
    for (const frameRow& row : Rows) {
        const windowFrameHints hints = windowHintsOfFrame(row.Style);
        EXPECT_EQ(hints[0], 3u);
        EXPECT_EQ(hints[1], row.Functions) << std::hex << row.Style;
        EXPECT_EQ(hints[2], row.Decorations) << std::hex << row.Style;
    }
}

}  // namespace
