#include "tests/foundations/heap/heapTest.h"

namespace {

class memFreeTest : public heapTest
{
};

std::string noBlock(const void* pointer, uint64_t site)
{
    return "memFree - No block for " + hex(addressOf(pointer)) + " in call from " + hex(site);
}

std::string invalidZone(uint64_t header)
{
    return "memFree_Int - Trying to free an invalid memory zone at " + hex(header);
}

void* at(void* pointer, int64_t offset)
{
    return static_cast<char*>(pointer) + offset;
}

}  // namespace

TEST_F(memFreeTest, DoesNothingForNull)
{
    memFree(nullptr);
    EXPECT_THAT(fakeCalls(), testing::ElementsAre());
}

TEST_F(memFreeTest, DestroysThePrivateHeapWithItsLastZoneAndMakesItAgain)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(mebibyte);
    EXPECT_EQ(fakeHeapRegions(), 2u);
    memFree(first);
    EXPECT_EQ(fakeHeapRegions(), 1u);
    EXPECT_EQ(fakeHeapCount(), 1u);
    memFree(second);
    EXPECT_EQ(fakeHeapCount(), 0u);
    void* const third = memAlloc(1);
    EXPECT_EQ(fakeCallCount("heapCreate"), 2u);
    memFree(third);
    EXPECT_EQ(fakeCallCount("heapDestroy"), 2u);
}

TEST_F(memFreeTest, UnlinksABlockAnywhereInTheList)
{
    for (const size_t order : {0u, 1u, 2u, 3u, 4u, 5u}) {
        SCOPED_TRACE(order);
        void* pointers[] = {memAlloc(nearlyAll), memAlloc(nearlyAll), memAlloc(nearlyAll)};
        constexpr size_t Orders[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 0, 2}, {1, 2, 0}, {2, 0, 1}, {2, 1, 0}};
        for (const size_t which : Orders[order]) {
            memFree(pointers[which]);
            EXPECT_EQ(heapProblem(), "");
        }
        EXPECT_EQ(memHeap.Heap, nullptr);
    }
}

TEST_F(memFreeTest, MergesWithFreeNeighbours)
{
    struct row {
        const char* Name;
        std::vector<size_t> Order;
    };
    const row rows[] = {
        {"none", {2}},       {"the one before", {1, 2}},        {"the one behind", {3, 2}},
        {"both", {1, 3, 2}}, {"the rest of the block", {3, 4}},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Name);
        void* pointers[] = {memAlloc(1), memAlloc(100), memAlloc(200), memAlloc(300), memAlloc(1)};
        for (const size_t which : each.Order) {
            memFree(pointers[which]);
            pointers[which] = nullptr;
            EXPECT_EQ(heapProblem(), "");
        }
        for (void* const pointer : pointers)
            memFree(pointer);
        EXPECT_EQ(memHeap.Newest, nullptr);
    }
}

TEST_F(memFreeTest, LeavesOneZoneOfTheWholeSizeAfterMergingBoth)
{
    void* const first = memAlloc(100);
    void* const second = memAlloc(200);
    void* const third = memAlloc(300);
    void* const wall = memAlloc(1);
    memFree(first);
    memFree(third);
    memFree(second);
    EXPECT_EQ(peek(zoneOf(first) + zoneRetAddr), 0u);
    EXPECT_EQ(peek(zoneOf(first) + zoneSize), 192u + 320u + 384u);
    EXPECT_EQ(peek(zoneOf(first) + zoneNext), zoneOf(wall));
    EXPECT_EQ(peek(zoneOf(wall) + zonePrevious), zoneOf(first));
    memFree(wall);
}

TEST_F(memFreeTest, NamesAPointerThatNoBlockHolds)
{
    char outside = 0;
    const memCallSite site(0xABCDEF);
    EXPECT_EQ(faultOf([&] { memFree(&outside); }), noBlock(&outside, 0xABCDEF) + "\r\n");

    void* const pointer = memAlloc(1);
    void* const behind = at(pointer, static_cast<int64_t>(mebibyte - firstZoneOffset - 64));
    EXPECT_EQ(faultOf([&] { memFree(&outside); }), noBlock(&outside, 0xABCDEF) + "\r\n");
    EXPECT_EQ(faultOf([&] { memFree(behind); }), noBlock(behind, 0xABCDEF) + "\r\n");
    EXPECT_EQ(failureText(), noBlock(behind, 0xABCDEF));
    memFree(pointer);
}

TEST_F(memFreeTest, NamesItsCallerWithAPointerThatNoBlockHolds)
{
    char outside = 0;
    const std::string text = faultOf([&] { memFree(&outside); });
    const std::string beginning = "memFree - No block for " + hex(addressOf(&outside)) + " in call from ";
    ASSERT_EQ(text.size(), beginning.size() + 18);
    EXPECT_EQ(text.substr(0, beginning.size()), beginning);
    EXPECT_NE(text.substr(beginning.size(), 16), hex(0));
}

TEST_F(memFreeTest, NamesAPointerThatIsNoZones)
{
    void* const first = memAlloc(1000);
    void* const second = memAlloc(1);
    for (const int64_t offset : {int64_t{8}, int64_t{1}, int64_t{64}, int64_t{512}, int64_t{-64},
                                 -static_cast<int64_t>(firstZoneOffset) - 64}) {
        SCOPED_TRACE(offset);
        void* const wrong = at(first, offset);
        EXPECT_EQ(faultOf([&] { memFree(wrong); }), invalidZone(zoneOf(wrong)) + "\r\n");
        EXPECT_EQ(failureText(), invalidZone(zoneOf(wrong)));
        EXPECT_EQ(heapProblem(), "");
    }
    memFree(first);
    memFree(second);
}

TEST_F(memFreeTest, TellsOfASecondFreeInFourLines)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(1000);
    void* const third = memAlloc(1);
    memFree(second);
    const std::string text = "memFree_Int - Memory zone at " + hex(zoneOf(second)) +
                             " already freed\r\n"
                             "            - Next zone " +
                             hex(zoneOf(third)) + ", Prev zone " + hex(zoneOf(first)) +
                             "\r\n"
                             "            - Zone size 00000000000000001088\r\n"
                             "            - Block " +
                             hex(blockOf(first)) + ", Size 00000000000001048576";
    EXPECT_EQ(faultOf([&] { memFree(second); }), text + "\r\n");
    EXPECT_EQ(failureText(), text);
    EXPECT_EQ(heapProblem(), "");
    memFree(first);
    memFree(third);
}

TEST_F(memFreeTest, WritesNullNeighboursOfASecondFreeAsZeros)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(1);
    memFree(first);
    const std::string text = faultOf([&] { memFree(first); });
    EXPECT_THAT(text,
                testing::HasSubstr("Next zone " + hex(zoneOf(second)) + ", Prev zone 0000000000000000\r\n"));
    memFree(second);
}

TEST_F(memFreeTest, DoesNotKnowAFreedZoneThatWasMergedAway)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(1);
    void* const third = memAlloc(1);
    memFree(first);
    memFree(second);
    EXPECT_EQ(faultOf([&] { memFree(second); }), invalidZone(zoneOf(second)) + "\r\n");
    memFree(third);
}

TEST_F(memFreeTest, DoesNotKnowAFreedZoneWhoseBlockIsGone)
{
    void* const pointer = memAlloc(1);
    memFree(pointer);
    const memCallSite site(0x42);
    EXPECT_EQ(faultOf([&] { memFree(pointer); }), noBlock(pointer, 0x42) + "\r\n");
}

TEST_F(memFreeTest, IsFatalWhenTheCountsSayThatNothingIsLeft)
{
    void* const pointer = memAlloc(1000);
    memHeap.Zones.Count = 0;
    EXPECT_EQ(faultOf([&] { memFree(pointer); }), "memFree_Int - No more zones to free\r\n");
    memHeap.Zones.Count = 1;
    memHeap.Zones.Bytes = 1024;
    EXPECT_EQ(faultOf([&] { memFree(pointer); }), "memFree_Int - Trying to free too much memory\r\n");
    memHeap.Zones.Bytes = 1088;
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
}

TEST_F(memFreeTest, GoesOnWithAWholeHeapWhenADeveloperDoes)
{
    fakeBreakReturns(true);
    void* const first = memAlloc(1);
    void* const second = memAlloc(1);
    memFree(first);
    memFree(first);
    memFree(at(second, 8));
    char outside = 0;
    memFree(&outside);
    EXPECT_EQ(fakeCallCount("debugBreak"), 3u);
    EXPECT_EQ(heapProblem(), "");
    memFree(second);
}
