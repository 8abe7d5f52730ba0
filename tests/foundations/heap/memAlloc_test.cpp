#include "tests/foundations/heap/heapTest.h"

#include <algorithm>
#include <thread>

using testing::ElementsAre;

namespace {

class memAllocTest : public heapTest
{
};

[[gnu::noinline]] void* allocateHere()
{
    void* const pointer = memAlloc(1);
    // Work behind the call keeps it from becoming a jump.
    EXPECT_NE(pointer, nullptr);
    return pointer;
}

}  // namespace

TEST_F(memAllocTest, GivesNullForNoBytesAndChangesNothing)
{
    EXPECT_EQ(memAlloc(0), nullptr);
    EXPECT_EQ(memAlloc(0, true), nullptr);
    EXPECT_THAT(fakeCalls(), ElementsAre());
    EXPECT_EQ(memHeap.Blocks.CountPeak, 0u);
}

TEST_F(memAllocTest, RoundsEachZoneUpBesideItsHeader)
{
    struct row {
        uint64_t Bytes, Zone;
    };
    constexpr row Rows[] = {{1, 128},   {63, 128},  {64, 128},       {65, 192},
                            {128, 192}, {129, 256}, {100000, 100096}};
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Bytes);
        void* const pointer = memAlloc(each.Bytes);
        EXPECT_EQ(peek(zoneOf(pointer) + zoneSize), each.Zone);
        EXPECT_EQ(addressOf(pointer) % 64, 0u);
        EXPECT_EQ(statisticsNow(), (statistics{1, mebibyte, 1, each.Zone}));
        EXPECT_EQ(heapProblem(), "");
        memFree(pointer);
    }
}

TEST_F(memAllocTest, TakesBlocksInWholeMegabytes)
{
    struct row {
        uint64_t Bytes, Block;
    };
    constexpr row Rows[] = {
        {1, mebibyte},
        {nearlyAll, mebibyte},
        {nearlyAll + 1, 2 * mebibyte},
        {mebibyte, 2 * mebibyte},
        {5 * mebibyte, 6 * mebibyte},
    };
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Bytes);
        fakeClearCalls();
        memFree(memAlloc(each.Bytes));
        EXPECT_THAT(fakeCalls(), ElementsAre("heapCreate 1048576", "heapAllocate " + decimal(each.Block),
                                             "heapFree", "heapDestroy"));
    }
}

TEST_F(memAllocTest, PutsTheFirstZoneAtTheFirstAlignedAddressBehindTheBlockHeader)
{
    void* const pointer = memAlloc(1000);
    const uint64_t block = blockOf(pointer);
    EXPECT_EQ(block, addressOf(memHeap.Newest));
    EXPECT_EQ(peek(block + blockFirstZone), block + firstZoneOffset);
    EXPECT_EQ(zoneOf(pointer), block + firstZoneOffset);
    EXPECT_EQ(peek(block + blockSize), mebibyte);
    EXPECT_EQ(peek(block + blockFree), mebibyte - firstZoneOffset - 1088);
    memFree(pointer);
}

TEST_F(memAllocTest, UsesWhatThePlatformGivesBeyondTheRequest)
{
    fakeHeapSlack(1000);
    void* const pointer = memAlloc(1);
    const uint64_t block = blockOf(pointer);
    EXPECT_EQ(peek(block + blockSize), mebibyte + 1000);
    // 1000 bytes are 15 steps of 64 and a rest that no zone can use.
    EXPECT_EQ(peek(block + blockFree), mebibyte - firstZoneOffset - 128 + 960);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memAllocTest, LetsTheWholeMemoryBeUsed)
{
    void* const pointer = memAlloc(nearlyAll);
    std::fill_n(static_cast<char*>(pointer), nearlyAll, 'x');
    EXPECT_EQ(heapProblem(), "");
    EXPECT_EQ(peek(blockOf(pointer) + blockFree), 64u);
    memFree(pointer);
}

TEST_F(memAllocTest, RemembersItsCallerAndTheTime)
{
    fakeClockMove(41'999);
    void* const pointer = allocateHere();
    const uint64_t site = peek(zoneOf(pointer) + zoneRetAddr);
    const uint64_t function = reinterpret_cast<uint64_t>(&allocateHere);
    EXPECT_GT(site, function);
    EXPECT_LT(site, function + 1000);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneReallocFrom), 0u);
    EXPECT_EQ(peek(zoneOf(pointer) + zoneTime), 1'000'041u);
    memFree(pointer);
}

TEST_F(memAllocTest, RemembersACallSiteThatIsNamedInTheCallersPlace)
{
    void* inner = nullptr;
    void* outer = nullptr;
    {
        const memCallSite first(0x1000);
        {
            const memCallSite second(0x2000);
            inner = memAlloc(1);
        }
        outer = memAlloc(1);
    }
    void* const plain = memAlloc(1);
    EXPECT_EQ(peek(zoneOf(inner) + zoneRetAddr), 0x2000u);
    EXPECT_EQ(peek(zoneOf(outer) + zoneRetAddr), 0x1000u);
    EXPECT_GT(peek(zoneOf(plain) + zoneRetAddr), 0x2000u);
    memFree(inner);
    memFree(outer);
    memFree(plain);
}

TEST_F(memAllocTest, KeepsACallSiteToItsThread)
{
    const memCallSite site(0x1000);
    void* pointer = nullptr;
    std::thread([&] { pointer = memAlloc(1); }).join();
    EXPECT_NE(peek(zoneOf(pointer) + zoneRetAddr), 0x1000u);
    memFree(pointer);
}

TEST_F(memAllocTest, SplitsAFreeZoneAndLeavesItsTailFree)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(100);
    EXPECT_EQ(zoneOf(second), zoneOf(first) + 128);
    const uint64_t tail = zoneOf(second) + 192;
    EXPECT_EQ(peek(zoneOf(second) + zoneNext), tail);
    EXPECT_EQ(peek(tail + zoneRetAddr), 0u);
    EXPECT_EQ(peek(tail + zoneSize), mebibyte - firstZoneOffset - 128 - 192);
    EXPECT_EQ(peek(tail + zonePrevious), zoneOf(second));
    EXPECT_EQ(peek(tail + zoneBlock), blockOf(first));
    EXPECT_EQ(peek(tail + zoneNext), 0u);
    memFree(first);
    memFree(second);
}

TEST_F(memAllocTest, TakesTheSmallestFreeZoneThatIsLargeEnough)
{
    void* const large = memAlloc(1000);
    void* const wall1 = memAlloc(1);
    void* const small = memAlloc(500);
    void* const wall2 = memAlloc(1);
    memFree(large);
    memFree(small);
    void* const found = memAlloc(300);
    EXPECT_EQ(found, small);
    EXPECT_EQ(heapProblem(), "");
    for (void* const each : {wall1, wall2, found})
        memFree(each);
}

TEST_F(memAllocTest, TakesTheFirstOfTwoFreeZonesOfOneSize)
{
    void* const first = memAlloc(1000);
    void* const wall1 = memAlloc(1);
    void* const second = memAlloc(1000);
    void* const wall2 = memAlloc(1);
    memFree(second);
    memFree(first);
    void* const found = memAlloc(300);
    EXPECT_EQ(found, first);
    for (void* const each : {wall1, wall2, found})
        memFree(each);
}

TEST_F(memAllocTest, FindsTheBestFitAcrossBlocks)
{
    void* const old = memAlloc(500);
    void* const oldWall = memAlloc(1);
    void* const recent = memAlloc(nearlyAll);
    ASSERT_NE(blockOf(old), blockOf(recent));
    memFree(old);
    void* const shrunk = memRealloc(recent, nearlyAll - 2000, 0);
    ASSERT_EQ(shrunk, recent);
    // The newest block has room too, but the hole in the oldest is the tighter one.
    void* const found = memAlloc(400);
    EXPECT_EQ(found, old);
    EXPECT_EQ(heapProblem(), "");
    for (void* const each : {oldWall, recent, found})
        memFree(each);
}

TEST_F(memAllocTest, TakesAnExactFitAtOnceWithoutLookingFurther)
{
    void* const exact = memAlloc(300);
    void* const wall1 = memAlloc(1);
    void* const wall2 = memAlloc(1);
    memFree(exact);
    {
        // A search that went on would meet this.
        const damage broken(zoneOf(wall2) + zoneNext, 0x1230);
        EXPECT_EQ(memAlloc(300), exact);
    }
    EXPECT_EQ(heapProblem(), "");
    for (void* const each : {exact, wall1, wall2})
        memFree(each);
}

TEST_F(memAllocTest, TakesAnExactFitOfTheNewestBlockWithoutLookingAtOlderOnes)
{
    void* const old = memAlloc(1);
    void* const recent = memAlloc(nearlyAll);
    void* const exact = memRealloc(recent, nearlyAll - 640, 0);
    ASSERT_EQ(exact, recent);
    {
        const damage broken(blockOf(old) + blockFirstZone, 0);
        void* const found = memAlloc(640);
        EXPECT_EQ(blockOf(found), blockOf(recent));
        EXPECT_EQ(peek(blockOf(found) + blockFree), 0u);
        memFree(found);
    }
    memFree(old);
    memFree(recent);
}

TEST_F(memAllocTest, RenewsAllRecordsOfAZoneItTakesAgain)
{
    void* const wall = memAlloc(1);
    void* const first = memAlloc(1);
    void* const grown = memRealloc(first, 200, 0);
    ASSERT_EQ(grown, first);
    ASSERT_NE(peek(zoneOf(first) + zoneReallocFrom), 0u);
    void* const end = memAlloc(1);
    memFree(first);
    fakeClockMove(5000);
    const memCallSite site(0x77);
    void* const again = memAlloc(200);
    ASSERT_EQ(again, first);
    EXPECT_EQ(peek(zoneOf(again) + zoneReallocFrom), 0u);
    EXPECT_EQ(peek(zoneOf(again) + zoneRetAddr), 0x77u);
    EXPECT_EQ(peek(zoneOf(again) + zoneTime), 1'000'005u);
    for (void* const each : {wall, again, end})
        memFree(each);
}

TEST_F(memAllocTest, SkipsABlockWithoutRoomUnseen)
{
    void* const full = memAlloc(nearlyAll);
    {
        const damage broken(blockOf(full) + blockFirstZone, 0);
        void* const other = memAlloc(1);
        EXPECT_NE(blockOf(other), blockOf(full));
        memFree(other);
    }
    memFree(full);
}

TEST_F(memAllocTest, PutsTheNewestBlockFirst)
{
    void* const first = memAlloc(nearlyAll);
    void* const second = memAlloc(nearlyAll);
    void* const third = memAlloc(nearlyAll);
    EXPECT_EQ(addressOf(memHeap.Newest), blockOf(third));
    EXPECT_EQ(peek(blockOf(third) + blockNext), blockOf(second));
    EXPECT_EQ(peek(blockOf(second) + blockNext), blockOf(first));
    EXPECT_EQ(addressOf(memHeap.Oldest), blockOf(first));
    EXPECT_EQ(heapProblem(), "");
    for (void* const each : {first, second, third})
        memFree(each);
}
