// What the operations say of a damaged heap, header field by header field.
#include "tests/foundations/heap/heapTest.h"

namespace {

// Four allocations in one block, the third of them free: [first] [second] (gap) [last] (rest).
class memDamageTest : public heapTest
{
protected:
    void SetUp() override
    {
        heapTest::SetUp();
        First = memAlloc(100);
        Second = memAlloc(200);
        Gap = memAlloc(1000);
        Last = memAlloc(300);
        memFree(Gap);
        Block = blockOf(First);
        Rest = peek(zoneOf(Last) + zoneNext);
    }

    void TearDown() override
    {
        EXPECT_EQ(heapProblem(), "");
        memFree(First);
        memFree(Second);
        memFree(Last);
        heapTest::TearDown();
    }

    void* First = nullptr;
    void* Second = nullptr;
    void* Gap = nullptr;
    void* Last = nullptr;
    uint64_t Block = 0;
    uint64_t Rest = 0;
};

std::string atZone(const std::string& reason, uint64_t site)
{
    return "memAlloc_Int - " + reason + "\r\nmemAlloc_Int - Current memory zone allocated in call from " +
           hex(site) + "\r\n";
}

std::string invalidZone(uint64_t header)
{
    return "memFree_Int - Trying to free an invalid memory zone at " + hex(header) + "\r\n";
}

void allocate()
{
    memAlloc(100);
}

}  // namespace

TEST_F(memDamageTest, AnAllocationNoticesAFirstZoneThatCannotBe)
{
    const uint64_t wrong[] = {0,          Block,       Block + 39,           Block + 65,
                              Block - 64, Block + 200, Block + mebibyte - 1, Block + mebibyte,
                              UINT64_MAX, 64,          UINT64_MAX - 63};
    for (const uint64_t value : wrong) {
        SCOPED_TRACE(hex(value));
        const damage broken(Block + blockFirstZone, value);
        EXPECT_EQ(faultOf(allocate), "memAlloc_Int - Corrupted memory block header\r\n");
        EXPECT_EQ(failureText(), "memAlloc_Int - Corrupted memory block header");
    }
}

TEST_F(memDamageTest, AnAllocationNoticesABlockSizeTooSmallForItsFirstZone)
{
    for (const uint64_t value : {uint64_t{0}, uint64_t{63}, uint64_t{64}, uint64_t{127}}) {
        SCOPED_TRACE(value);
        const damage broken(Block + blockSize, value);
        EXPECT_EQ(faultOf(allocate), "memAlloc_Int - Corrupted memory block header\r\n");
    }
}

TEST_F(memDamageTest, AnAllocationNoticesAWrongNextZone)
{
    const uint64_t site = peek(zoneOf(Second) + zoneRetAddr);
    for (const uint64_t value : {uint64_t{8}, zoneOf(First), zoneOf(Second), zoneOf(Last), UINT64_MAX}) {
        SCOPED_TRACE(hex(value));
        const damage broken(zoneOf(Second) + zoneNext, value);
        EXPECT_EQ(faultOf(allocate), atZone("Invalid pointer to next memory zone", site));
    }
}

TEST_F(memDamageTest, AnAllocationNoticesAWrongZoneSize)
{
    const uint64_t site = peek(zoneOf(First) + zoneRetAddr);
    for (const uint64_t value : {uint64_t{0}, uint64_t{64}, uint64_t{193}, UINT64_MAX}) {
        SCOPED_TRACE(value);
        const damage broken(zoneOf(First) + zoneSize, value);
        EXPECT_EQ(faultOf(allocate), atZone("Invalid pointer to next memory zone", site));
    }
}

TEST_F(memDamageTest, AnAllocationNoticesAZoneThatIsItsOwnNext)
{
    const damage next(zoneOf(Second) + zoneNext, zoneOf(Second));
    const damage size(zoneOf(Second) + zoneSize, 0);
    const damage previous(zoneOf(Second) + zonePrevious, zoneOf(Second));
    const damage former(zoneOf(First) + zoneNext, 0);
    const damage first(Block + blockFirstZone, zoneOf(Second));
    EXPECT_THAT(faultOf(allocate),
                testing::StartsWith("memAlloc_Int - Invalid pointer to next memory zone\r\n"));
}

TEST_F(memDamageTest, AnAllocationNoticesAWrongPreviousZoneAtTheZoneBefore)
{
    const uint64_t site = peek(zoneOf(Second) + zoneRetAddr);
    for (const uint64_t value : {uint64_t{0}, zoneOf(First), UINT64_MAX}) {
        SCOPED_TRACE(hex(value));
        const damage broken(zoneOf(Gap) + zonePrevious, value);
        EXPECT_EQ(faultOf(allocate), atZone("Invalid header of the next memory zone", site));
        EXPECT_EQ(failureText() + "\r\n", atZone("Invalid header of the next memory zone", site));
    }
}

TEST_F(memDamageTest, AnAllocationWritesZerosAsTheSiteOfAFreeZone)
{
    const damage broken(zoneOf(Last) + zonePrevious, 0);
    EXPECT_EQ(faultOf(allocate), atZone("Invalid header of the next memory zone", 0));
}

TEST_F(memDamageTest, AnAllocationEndsItsSearchInARingOfBlocks)
{
    const damage ring(Block + blockNext, Block);
    void* const pointer = memAlloc(2 * mebibyte);
    EXPECT_NE(pointer, nullptr);
    // The new block is the newest now, and the one behind it is the only other.
    poke(Block + blockNext, 0);
    EXPECT_EQ(heapProblem(), "");
    memFree(pointer);
    poke(Block + blockNext, Block);
    char outside = 0;
    EXPECT_THAT(faultOf([&] { memFree(&outside); }), testing::StartsWith("memFree - No block for "));
}

TEST_F(memDamageTest, AnAllocationDoesNotNoticeWhatItDoesNotRead)
{
    struct row {
        const char* Name;
        uint64_t Address;
    };
    const row rows[] = {
        {"previous block", Block + blockPrevious},
        {"previous of the first zone", zoneOf(First) + zonePrevious},
        {"block of a zone", zoneOf(First) + zoneBlock},
        {"maker of a zone", zoneOf(First) + zoneRetAddr},
        {"reallocating call", zoneOf(First) + zoneReallocFrom},
        {"time", zoneOf(First) + zoneTime},
        {"the unused field", zoneOf(First) + 56},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Name);
        void* pointer = nullptr;
        {
            const damage broken(each.Address, 0x1234567);
            pointer = memAlloc(100);
        }
        EXPECT_EQ(pointer, Gap);
        EXPECT_EQ(heapProblem(), "");
        memFree(pointer);
    }
}

TEST_F(memDamageTest, AnAllocationDoesNotNoticeAWrongSizeOfTheLastZone)
{
    const damage broken(Rest + zoneSize, 0);
    void* const pointer = memAlloc(100);
    EXPECT_EQ(pointer, Gap);
    memFree(pointer);
}

TEST_F(memDamageTest, AnAllocationTakesABlockWithFewerFreeBytesThanItSaysAsFull)
{
    const uint64_t free = peek(Block + blockFree);
    void* other = nullptr;
    {
        const damage broken(Block + blockFree, 0);
        other = memAlloc(100);
        EXPECT_NE(blockOf(other), Block);
    }
    memFree(other);
    {
        const damage broken(Block + blockFree, UINT64_MAX);
        other = memAlloc(mebibyte);
        EXPECT_NE(blockOf(other), Block);
    }
    memFree(other);
    EXPECT_EQ(peek(Block + blockFree), free);
}

TEST_F(memDamageTest, AFreeNoticesWrongLinksOfItsZone)
{
    struct row {
        const char* Name;
        uint64_t Address, Value;
    };
    const row rows[] = {
        {"next", zoneOf(Second) + zoneNext, 0x1234567},
        {"size", zoneOf(Second) + zoneSize, 64},
        {"previous", zoneOf(Second) + zonePrevious, 0},
        {"previous of the next", zoneOf(Gap) + zonePrevious, zoneOf(First)},
        {"next of one before", zoneOf(First) + zoneNext, zoneOf(Gap)},
        {"size of one before", zoneOf(First) + zoneSize, 0},
        {"first zone", Block + blockFirstZone, 0},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Name);
        const damage broken(each.Address, each.Value);
        EXPECT_EQ(faultOf([&] { memFree(Second); }), invalidZone(zoneOf(Second)));
    }
}

TEST_F(memDamageTest, AFreeTakesAZoneWithoutAMakerAsFreeAlready)
{
    const damage broken(zoneOf(Second) + zoneRetAddr, 0);
    EXPECT_THAT(
        faultOf([&] { memFree(Second); }),
        testing::StartsWith("memFree_Int - Memory zone at " + hex(zoneOf(Second)) + " already freed\r\n"));
}

TEST_F(memDamageTest, AFreeNoticesALastZoneLargerThanAllZones)
{
    void* const end = memAlloc(peek(Rest + zoneSize) - 64);
    ASSERT_EQ(peek(zoneOf(end) + zoneNext), 0u);
    {
        const damage broken(zoneOf(end) + zoneSize, 2 * mebibyte);
        EXPECT_EQ(faultOf([&] { memFree(end); }), "memFree_Int - Trying to free too much memory\r\n");
    }
    EXPECT_EQ(heapProblem(), "");
    memFree(end);
}

TEST_F(memDamageTest, AFreeDoesNotFindABlockThatIsSaidToBeSmaller)
{
    const damage broken(Block + blockSize, 128);
    const memCallSite site(0x31);
    EXPECT_EQ(faultOf([&] { memFree(Last); }),
              "memFree - No block for " + hex(addressOf(Last)) + " in call from 0000000000000031\r\n");
}

TEST_F(memDamageTest, AFreeDoesNotNoticeWhatItDoesNotRead)
{
    struct row {
        const char* Name;
        unsigned Field;
    };
    constexpr row Rows[] = {{"block", zoneBlock},
                            {"maker", zoneRetAddr},
                            {"reallocating call", zoneReallocFrom},
                            {"time", zoneTime}};
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Name);
        void* const pointer = memAlloc(1000);
        ASSERT_EQ(pointer, Gap);
        const uint64_t right = peek(zoneOf(pointer) + zoneBlock);
        poke(zoneOf(pointer) + each.Field, 0x1234567);
        memFree(pointer);
        poke(zoneOf(pointer) + zoneBlock, right);
        EXPECT_EQ(heapProblem(), "");
    }
}

TEST_F(memDamageTest, AReallocationNoticesAWrongNextZone)
{
    for (const auto& [field, value] : {std::pair{zoneNext, uint64_t{8}}, std::pair{zoneSize, uint64_t{64}}}) {
        for (const uint64_t bytes : {uint64_t{1}, uint64_t{200}, uint64_t{100000}}) {
            SCOPED_TRACE(bytes);
            const damage broken(zoneOf(Second) + field, value);
            EXPECT_EQ(faultOf([&] { memRealloc(Second, bytes, 1); }),
                      "memRealloc - Invalid pointer to next memory zone\r\n");
        }
    }
}

TEST_F(memDamageTest, AReallocationNoticesWrongLinksBehindTheZoneItGrowsInto)
{
    struct row {
        const char* Name;
        uint64_t Address, Value;
        const char* Text;
    };
    const row rows[] = {
        {"next of the next", zoneOf(Gap) + zoneNext, 0x1234567, "next/next"},
        {"size of the next", zoneOf(Gap) + zoneSize, 1024, "next/next"},
        {"next of the one behind", zoneOf(Last) + zoneNext, 0x1234567, "next/next/next"},
        {"size of the one behind", zoneOf(Last) + zoneSize, 64, "next/next/next"},
        {"previous of the one behind", zoneOf(Last) + zonePrevious, 0, "next/next/previous"},
    };
    for (const row& each : rows) {
        SCOPED_TRACE(each.Name);
        const damage broken(each.Address, each.Value);
        const std::string text = std::string("memRealloc - Invalid pointer to ") + each.Text + " memory zone";
        EXPECT_EQ(faultOf([&] { memRealloc(Second, 300, 0); }), text + "\r\n");
        EXPECT_EQ(failureText(), text);
    }
}

TEST_F(memDamageTest, AReallocationThatNeedsNoRoomDoesNotLookBehind)
{
    const damage broken(zoneOf(Gap) + zoneNext, 0x1234567);
    EXPECT_EQ(memRealloc(Second, 199, 0), Second);
}

TEST_F(memDamageTest, AFaultLeavesTheHeapUsable)
{
    fakeBreakReturns(true);
    const statistics before = statisticsNow();
    {
        const damage broken(zoneOf(Second) + zoneNext, 8);
        EXPECT_EQ(memAlloc(100), nullptr);
        EXPECT_EQ(memAlloc(100, true), nullptr);
        EXPECT_EQ(memRealloc(Second, 100, 0), nullptr);
        EXPECT_EQ(memRealloc(First, 5000, 1), nullptr);
        memFree(Second);
        EXPECT_EQ(fakeCallCount("debugBreak"), 5u);
    }
    EXPECT_EQ(statisticsNow(), before);
    EXPECT_EQ(heapProblem(), "");
}
