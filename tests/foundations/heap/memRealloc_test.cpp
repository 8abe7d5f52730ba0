#include "tests/foundations/heap/heapTest.h"

#include <algorithm>
#include <cstring>

namespace {

class memReallocTest : public heapTest
{
};

void fill(void* pointer, uint64_t bytes, uint8_t seed)
{
    uint8_t* const target = static_cast<uint8_t*>(pointer);
    for (uint64_t i = 0; i < bytes; ++i)
        target[i] = static_cast<uint8_t>(seed + i * 7);
}

bool filled(const void* pointer, uint64_t bytes, uint8_t seed)
{
    const uint8_t* const source = static_cast<const uint8_t*>(pointer);
    for (uint64_t i = 0; i < bytes; ++i)
        if (source[i] != static_cast<uint8_t>(seed + i * 7))
            return false;
    return true;
}

[[gnu::noinline]] void* reallocateHere(void* pointer, uint64_t size)
{
    void* const result = memRealloc(pointer, size, 0);
    // Work behind the call keeps it from becoming a jump.
    EXPECT_NE(result, nullptr);
    return result;
}

bool isHere(uint64_t site)
{
    const uint64_t function = reinterpret_cast<uint64_t>(&reallocateHere);
    return site > function && site < function + 1000;
}

}  // namespace

TEST_F(memReallocTest, FreesForASizeOfNone)
{
    void* const pointer = memAlloc(1);
    EXPECT_EQ(memRealloc(pointer, 0, 100), nullptr);
    EXPECT_EQ(memHeap.Newest, nullptr);
    EXPECT_EQ(memRealloc(nullptr, 0, 0), nullptr);
}

TEST_F(memReallocTest, IsFatalWhenWhatASizeOfNoneFreesIsFreeAlready)
{
    void* const wall = memAlloc(1);
    void* const pointer = memAlloc(1);
    void* const end = memAlloc(1);
    memFree(pointer);
    EXPECT_THAT(faultOf([&] { memRealloc(pointer, 0, 0); }), testing::HasSubstr(" already freed\r\n"));
    memFree(wall);
    memFree(end);
}

TEST_F(memReallocTest, AllocatesForNull)
{
    void* const pointer = reallocateHere(nullptr, 100);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneSize), 192u);
    EXPECT_TRUE(isHere(peek(zoneOf(pointer) + zoneRetAddr)));
    EXPECT_EQ(peek(zoneOf(pointer) + zoneReallocFrom), 0u);
    memFree(pointer);
}

TEST_F(memReallocTest, KeepsThePointerAndLeavesAFreeTailWhenItShrinks)
{
    void* const pointer = memAlloc(1000);
    void* const wall = memAlloc(1);
    fill(pointer, 1000, 3);
    EXPECT_EQ(memRealloc(pointer, 300, 0), pointer);
    EXPECT_TRUE(filled(pointer, 300, 3));
    const uint64_t tail = zoneOf(pointer) + 384;
    EXPECT_EQ(peek(zoneOf(pointer) + zoneNext), tail);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneReallocFrom), 0u);
    EXPECT_EQ(peek(tail + zoneRetAddr), 0u);
    EXPECT_EQ(peek(tail + zoneSize), 1088u - 384u);
    EXPECT_EQ(peek(tail + zoneNext), zoneOf(wall));
    EXPECT_EQ(peek(tail + zonePrevious), zoneOf(pointer));
    EXPECT_EQ(statisticsNow(), (statistics{1, mebibyte, 2, 384 + 128}));
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
    memFree(wall);
}

TEST_F(memReallocTest, MergesTheTailOfAShrinkWithTheFreeZoneBehind)
{
    void* const pointer = memAlloc(1000);
    EXPECT_EQ(memRealloc(pointer, 1, 0), pointer);
    const uint64_t tail = zoneOf(pointer) + 128;
    EXPECT_EQ(peek(tail + zoneSize), mebibyte - firstZoneOffset - 128);
    EXPECT_EQ(peek(tail + zoneNext), 0u);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, CanLeaveATailThatIsNoMoreThanAHeader)
{
    void* const pointer = memAlloc(128);
    void* const wall = memAlloc(1);
    EXPECT_EQ(memRealloc(pointer, 64, 0), pointer);
    EXPECT_EQ(peek(zoneOf(pointer) + 128 + zoneSize), 64u);
    EXPECT_EQ(heapProblem(), "");
    EXPECT_EQ(memRealloc(pointer, 128, 0), pointer);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneNext), zoneOf(wall));
    memFree(pointer);
    memFree(wall);
}

TEST_F(memReallocTest, ChangesNothingForASizeOfTheSameZone)
{
    fakeClockMove(7'000'000);
    void* const pointer = memAlloc(65);
    fakeClockMove(7'000'000);
    EXPECT_EQ(memRealloc(pointer, 128, 0), pointer);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneTime), 1'007'000u);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneReallocFrom), 0u);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, GrowsInPlaceAndLeavesTheRemainderFree)
{
    void* const pointer = memAlloc(1);
    const uint64_t site = peek(zoneOf(pointer) + zoneRetAddr);
    fill(pointer, 64, 9);
    fakeClockMove(3'000'000);
    EXPECT_EQ(reallocateHere(pointer, 5000), pointer);
    EXPECT_TRUE(filled(pointer, 64, 9));
    EXPECT_EQ(peek(zoneOf(pointer) + zoneSize), 5120u);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneRetAddr), site);
    EXPECT_TRUE(isHere(peek(zoneOf(pointer) + zoneReallocFrom)));
    EXPECT_EQ(peek(zoneOf(pointer) + zoneTime), 1'003'000u);
    const uint64_t rest = zoneOf(pointer) + 5120;
    EXPECT_EQ(peek(zoneOf(pointer) + zoneNext), rest);
    EXPECT_EQ(peek(rest + zoneRetAddr), 0u);
    EXPECT_EQ(peek(rest + zoneSize), mebibyte - firstZoneOffset - 5120);
    EXPECT_EQ(memHeap.Zones.Largest, 5120u);
    EXPECT_EQ(memHeap.Zones.BytesPeak, 5120u);
    EXPECT_EQ(memHeap.Zones.CountPeak, 1u);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, GrowsByLessThanAHeaderOfTheZoneBehind)
{
    void* const pointer = memAlloc(64);
    EXPECT_EQ(memRealloc(pointer, 128, 0), pointer);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneSize), 192u);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, GrowsInPlaceExactly)
{
    void* const pointer = memAlloc(100);
    void* const behind = memAlloc(500);
    void* const wall = memAlloc(1);
    memFree(behind);
    EXPECT_EQ(memRealloc(pointer, 100 + 576, 0), pointer);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneNext), zoneOf(wall));
    EXPECT_EQ(peek(zoneOf(wall) + zonePrevious), zoneOf(pointer));
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
    memFree(wall);
}

TEST_F(memReallocTest, MovesWhenTheZoneBehindIsOneStepTooSmall)
{
    void* const pointer = memAlloc(128);
    void* const behind = memAlloc(500);
    void* const wall = memAlloc(1);
    memFree(behind);
    fill(pointer, 128, 5);
    void* const moved = memRealloc(pointer, 128 + 576 + 1, 128);
    EXPECT_NE(moved, pointer);
    EXPECT_TRUE(filled(moved, 128, 5));
    EXPECT_EQ(heapProblem(), "");
    memFree(moved);
    memFree(wall);
}

TEST_F(memReallocTest, KeepsAsManyBytesAsAskedWhenItMoves)
{
    struct row {
        const char* Name;
        uint64_t Keep, Kept;
    };
    // The old zone owns 320 bytes, whatever was asked for.
    constexpr row Rows[] = {{"fewer", 10, 10}, {"all", 320, 320}, {"more than there are", 100000, 320}};
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Name);
        void* const pointer = memAlloc(300);
        void* const wall = memAlloc(1);
        void* const target = memAlloc(2000);
        std::memset(target, 0xEE, 2000);
        fill(pointer, 320, 11);
        void* const end = memAlloc(1);
        memFree(target);
        void* const moved = memRealloc(pointer, 2000, each.Keep);
        ASSERT_EQ(moved, target);
        EXPECT_TRUE(filled(moved, each.Kept, 11));
        EXPECT_EQ(static_cast<uint8_t*>(moved)[each.Kept], 0xEE);
        EXPECT_EQ(heapProblem(), "");
        for (void* const pointerLeft : {moved, wall, end})
            memFree(pointerLeft);
    }
}

TEST_F(memReallocTest, LosesTheContentWhenItMovesWithNothingToKeep)
{
    void* const pointer = memAlloc(300);
    void* const wall = memAlloc(1);
    void* const target = memAlloc(2000);
    std::memset(target, 0xEE, 2000);
    void* const end = memAlloc(1);
    memFree(target);
    fill(pointer, 300, 11);
    EXPECT_EQ(memRealloc(pointer, 2000, 0), target);
    EXPECT_EQ(static_cast<uint8_t*>(target)[0], 0xEE);
    EXPECT_EQ(heapProblem(), "");
    for (void* const each : {target, wall, end})
        memFree(each);
}

TEST_F(memReallocTest, FreesFirstWhenNothingIsToBeKept)
{
    // Alone in the heap: the block goes and the private heap with it before there is a new one.
    void* const pointer = memAlloc(1);
    fakeClearCalls();
    void* const moved = memRealloc(pointer, 2 * mebibyte, 0);
    EXPECT_THAT(fakeCalls(), testing::ElementsAre("heapFree", "heapDestroy", "heapCreate 1048576",
                                                  "heapAllocate 3145728"));
    fakeClearCalls();
    void* const again = memRealloc(moved, 4 * mebibyte, 1);
    EXPECT_THAT(fakeCalls(), testing::ElementsAre("heapAllocate 5242880", "heapFree"));
    memFree(again);
}

TEST_F(memReallocTest, RecordsTheReallocatingCallAsTheMakerOfAMovedZone)
{
    void* const pointer = memAlloc(1);
    void* const wall = memAlloc(1);
    void* const moved = reallocateHere(pointer, 1000);
    EXPECT_TRUE(isHere(peek(zoneOf(moved) + zoneRetAddr)));
    EXPECT_EQ(peek(zoneOf(moved) + zoneReallocFrom), 0u);
    const memCallSite site(0x99);
    void* const again = memRealloc(moved, 2 * mebibyte, 1);
    EXPECT_EQ(peek(zoneOf(again) + zoneRetAddr), 0x99u);
    memFree(again);
    memFree(wall);
}

TEST_F(memReallocTest, KeepsTheOldZoneWhenMemoryRunsOut)
{
    void* const pointer = memAlloc(100);
    fill(pointer, 100, 1);
    fakeFail("heapAllocate");
    EXPECT_EQ(faultOf([&] { memRealloc(pointer, 2 * mebibyte, 100); }),
              "memAlloc_Int - Could not obtain a new memory block\r\n");
    EXPECT_EQ(failureText(), "Out of memory!");
    EXPECT_TRUE(filled(pointer, 100, 1));
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, GivesNullWhenThePrivateHeapCannotBeMadeAgain)
{
    void* const pointer = memAlloc(100);
    fakeFail("heapCreate");
    EXPECT_EQ(memRealloc(pointer, 2 * mebibyte, 0), nullptr);
    EXPECT_EQ(fakeDebugText(), "");
}

TEST_F(memReallocTest, IsFatalForASizeThatHasNoZone)
{
    struct row {
        uint64_t Bytes;
        const char* Text;
    };
    constexpr row Rows[] = {
        {UINT64_MAX, "memRealloc - Requested size overflow 64 / 18446744073709551615"},
        {UINT64_MAX - 63, "memRealloc - Requested size overflow 0 / 18446744073709551552"},
        {UINT64_MAX - 126, "memRealloc - Requested size overflow 0 / 18446744073709551489"},
    };
    void* const pointer = memAlloc(1000);
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Bytes);
        EXPECT_EQ(faultOf([&] { memRealloc(pointer, each.Bytes, 0); }), std::string(each.Text) + "\r\n");
        EXPECT_EQ(failureText(), each.Text);
    }
    EXPECT_EQ(heapProblem(), "");
    EXPECT_EQ(faultOf([&] { memRealloc(pointer, UINT64_MAX - 127, 1); }),
              "memAlloc_Int - Could not obtain a new memory block\r\n");
    EXPECT_EQ(faultOf([&] { memRealloc(nullptr, UINT64_MAX, 1); }),
              "memAlloc_Int - Requested size overflow - 64\r\n");
    memFree(pointer);
}

TEST_F(memReallocTest, IsFatalForAnAddressThatNoZoneCanHave)
{
    char outside = 0;
    const memCallSite site(0x55);
    void* const pointer = memAlloc(1000);
    char* const inside = static_cast<char*>(pointer);
    for (char* const wrong : {&outside, inside + 1, inside - 64, inside - 128}) {
        EXPECT_EQ(faultOf([&] { memRealloc(wrong, 10, 0); }), "memRealloc - No block for " +
                                                                  hex(addressOf(wrong)) +
                                                                  " in call from 0000000000000055\r\n");
    }
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memReallocTest, GivesNullAndGoesOnWhenADeveloperDoes)
{
    fakeBreakReturns(true);
    void* const pointer = memAlloc(1000);
    char outside = 0;
    EXPECT_EQ(memRealloc(pointer, UINT64_MAX, 0), nullptr);
    EXPECT_EQ(memRealloc(&outside, 1, 0), nullptr);
    fakeFail("heapAllocate");
    EXPECT_EQ(memRealloc(pointer, 2 * mebibyte, 1), nullptr);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}
