#include "toolkit/pixmapBytes.h"

#include "foundations/heap/memHeap.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <vector>

namespace {

class pixmapBytesTest : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
    void TearDown() override { EXPECT_EQ(memHeap.Newest, nullptr); }
};

std::vector<uint8_t> held(const pixmapBytes& bytes)
{
    return {bytes.Held().begin(), bytes.Held().end()};
}

}  // namespace

TEST_F(pixmapBytesTest, GivesZeroedBlocksAndNoneForNothing)
{
    const pixmapBlock block = pixmapZeroed(70);
    for (size_t i = 0; i < 70; ++i)
        ASSERT_EQ(block[i], 0);
    EXPECT_EQ(pixmapZeroed(0), nullptr);
}

TEST_F(pixmapBytesTest, KeepsWhatWasAppendedWhileItGrows)
{
    pixmapBytes bytes(100000);
    std::vector<uint8_t> wanted;
    for (unsigned i = 0; wanted.size() < 90000; ++i) {
        const std::array<uint8_t, 3> some = {static_cast<uint8_t>(i), 1, 2};
        bytes.Append(some);
        wanted.insert(wanted.end(), some.begin(), some.end());
        bytes.AppendRun(i % 5, 9);
        wanted.insert(wanted.end(), i % 5, 9);
        ASSERT_EQ(bytes.Count(), wanted.size());
    }
    EXPECT_EQ(held(bytes), wanted);
}

TEST_F(pixmapBytesTest, CopiesFromItsOwnEndAsFarAsItReaches)
{
    pixmapBytes bytes(100);
    bytes.Append(std::array<uint8_t, 3>{1, 2, 3});
    EXPECT_TRUE(bytes.AppendCopy(2, 3));
    EXPECT_TRUE(bytes.AppendCopy(5, 2));
    EXPECT_THAT(held(bytes), testing::ElementsAre(1, 2, 3, 1, 2, 1, 2, 1, 2, 1));
    EXPECT_FALSE(bytes.AppendCopy(1, 0));
    EXPECT_FALSE(bytes.AppendCopy(1, 11));
    EXPECT_EQ(bytes.Count(), 10u);
}

TEST_F(pixmapBytesTest, HoldsTheMostAndIsDroppedForGoodByOneByteMore)
{
    pixmapBytes bytes(3000);
    bytes.AppendRun(3000, 5);
    EXPECT_EQ(held(bytes), std::vector<uint8_t>(3000, 5));
    bytes.AppendRun(1, 5);
    EXPECT_TRUE(bytes.Held().empty());
    bytes.Append(std::array<uint8_t, 2>{1, 2});
    EXPECT_TRUE(bytes.AppendCopy(4, 3003));
    EXPECT_FALSE(bytes.AppendCopy(4, 3008));
    EXPECT_TRUE(bytes.Held().empty());
    EXPECT_EQ(bytes.Count(), 3007u);
}

TEST_F(pixmapBytesTest, IsDroppedAtOnceByACountThatNobodyHasMemoryFor)
{
    pixmapBytes bytes(100);
    bytes.AppendRun(uint64_t{1} << 32, 5);
    EXPECT_TRUE(bytes.Held().empty());
    EXPECT_EQ(bytes.Count(), uint64_t{1} << 32);
    EXPECT_EQ(fakeCallCount("heapAllocate"), 0u);
}

TEST_F(pixmapBytesTest, IsDroppedWithoutAFaultWhenMemoryEnds)
{
    pixmapBytes bytes(uint64_t{1} << 30);
    bytes.AppendRun(500000, 5);
    fakeFail("heapAllocate", {.Times = 100});
    bytes.AppendRun(5000000, 6);
    EXPECT_TRUE(bytes.Held().empty());
    EXPECT_EQ(bytes.Count(), 5500000u);
    EXPECT_EQ(fakeDebugText(), "");
}

TEST_F(pixmapBytesTest, BeginsAnewWhenCleared)
{
    pixmapBytes bytes(10);
    bytes.AppendRun(11, 1);
    bytes.Clear();
    EXPECT_EQ(bytes.Count(), 0u);
    bytes.AppendRun(2, 7);
    EXPECT_THAT(held(bytes), testing::ElementsAre(7, 7));
}
