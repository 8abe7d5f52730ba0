#include "tests/foundations/heap/heapTest.h"

#include <array>

namespace {

class memReportTest : public heapTest
{
};

class fixedSink final : public memReportSink
{
public:
    size_t Length = 0;

private:
    bool Write(const char* bytes, size_t count) override
    {
        for (size_t i = 0; i < count && Length < Room.size(); ++i)
            Room[Length++] = bytes[i];
        return true;
    }

    std::array<char, 65536> Room{};
};

// An allocation whose recorded call and time are known.
void* allocateAt(uint64_t site, uint64_t bytes)
{
    const memCallSite named(site);
    fakeClockMove(1'000'000);
    return memAlloc(bytes);
}

std::string usageBlock(uint64_t block, uint64_t size, uint64_t free)
{
    return "  Block at " + hex(block) + " - size " + decimal(size) + " free " + decimal(free);
}

}  // namespace

TEST_F(memReportTest, SaysThatAnEmptyHeapHasNoMemoryInUse)
{
    EXPECT_EQ(report(), reportHead(lines({"Allocated blocks 0 / 0", "Allocated blocks bytes 0 / 0 (0)",
                                          "Allocated zones 0 / 0", "Allocated zones bytes 0 / 0 (0)",
                                          "No memory in use"})));
}

TEST_F(memReportTest, ShowsOneZoneInItsFigures)
{
    void* const pointer = memAlloc(1);
    EXPECT_EQ(
        report(),
        reportHead(lines({"Allocated blocks 1 / 1", "Allocated blocks bytes 1048576 / 1048576 (1048576)",
                          "Allocated zones 1 / 1", "Allocated zones bytes 128 / 128 (128)", "  No errors"})));
    memFree(pointer);
}

TEST_F(memReportTest, KeepsPeaksAndLargestSizesAfterEverythingIsFreed)
{
    void* const first = memAlloc(1000);
    void* const second = memAlloc(3 * mebibyte);
    void* const third = memAlloc(1);
    EXPECT_EQ(report(),
              reportHead(lines({"Allocated blocks 2 / 2",
                                "Allocated blocks bytes 5242880 / 5242880 (4194304)", "Allocated zones 3 / 3",
                                "Allocated zones bytes 3147008 / 3147008 (3145792)", "  No errors"})));
    memFree(second);
    EXPECT_EQ(report(),
              reportHead(lines({"Allocated blocks 1 / 2",
                                "Allocated blocks bytes 1048576 / 5242880 (4194304)", "Allocated zones 2 / 3",
                                "Allocated zones bytes 1216 / 3147008 (3145792)", "  No errors"})));
    memFree(first);
    memFree(third);
    EXPECT_EQ(report(),
              reportHead(lines({"Allocated blocks 0 / 2", "Allocated blocks bytes 0 / 5242880 (4194304)",
                                "Allocated zones 0 / 3", "Allocated zones bytes 0 / 3147008 (3145792)",
                                "No memory in use"})));
}

TEST_F(memReportTest, PutsTheLastFailureBehindTheReference)
{
    EXPECT_THROW(memAlloc(UINT64_MAX), fakeBreak);
    EXPECT_EQ(report(), reportHead(lines({"Allocated blocks 0 / 0", "Allocated blocks bytes 0 / 0 (0)",
                                          "Allocated zones 0 / 0", "Allocated zones bytes 0 / 0 (0)",
                                          "No memory in use"}),
                                   "memAlloc_Int - Requested size overflow - 64"));
    memFree(memAlloc(1));
}

TEST_F(memReportTest, ListsAllZonesInUseAfterAFailure)
{
    void* const first = allocateAt(0x1111, 1);
    void* const gap = allocateAt(0x2222, 1000);
    void* const second = allocateAt(0x3333, 100);
    void* const newer = allocateAt(0x4444, nearlyAll);
    memFree(gap);
    fakeFail("heapAllocate");
    EXPECT_THROW(memAlloc(2 * mebibyte), fakeBreak);

    const std::string expected = lines({
        "Allocated blocks 2 / 2",
        "Allocated blocks bytes 2097152 / 2097152 (1048576)",
        "Allocated zones 3 / 4",
        "Allocated zones bytes 1048768 / 1049856 (1048448)",
        "  No errors",
        "",
        "Memory usage report",
        usageBlock(blockOf(newer), mebibyte, 64),
        "    Zone at " + hex(zoneOf(newer)) + " - RetAddr 0000000000004444 size 1048448 - time 1004000",
        usageBlock(blockOf(first), mebibyte, mebibyte - firstZoneOffset - 128 - 192),
        "    Zone at " + hex(zoneOf(first)) + " - RetAddr 0000000000001111 size 128 - time 1001000",
        "    Zone at " + hex(zoneOf(second)) + " - RetAddr 0000000000003333 size 192 - time 1003000",
    });
    EXPECT_EQ(report(), reportHead(expected, "Out of memory!"));
    for (void* const each : {first, second, newer})
        memFree(each);
}

TEST_F(memReportTest, ShowsTheReallocatingSiteAfterAGrowInPlace)
{
    void* const pointer = allocateAt(0x1111, 1);
    ASSERT_EQ(memRealloc(pointer, 1000, 0), pointer);
    const uint64_t site = peek(zoneOf(pointer) + zoneReallocFrom);
    EXPECT_THROW(memAlloc(UINT64_MAX), fakeBreak);
    EXPECT_THAT(report(), testing::EndsWith("    Zone at " + hex(zoneOf(pointer)) +
                                            " - RetAddr 0000000000001111 size 1088 - reallocated from " +
                                            hex(site) + " - time 1001000\r\n"));
    memFree(pointer);
}

TEST_F(memReportTest, WritesAFailureOfSeveralLinesAsItStands)
{
    void* const first = memAlloc(1);
    void* const second = memAlloc(1);
    memFree(first);
    EXPECT_THROW(memFree(first), fakeBreak);
    const std::string text = report();
    EXPECT_THAT(text, testing::StartsWith(reportHead("", failureText()) + "Allocated blocks 1 / 1\r\n"));
    EXPECT_THAT(text, testing::HasSubstr(" already freed\r\n            - Next zone "));
    memFree(second);
}

TEST_F(memReportTest, AllocatesNothing)
{
    void* const first = memAlloc(1000);
    void* const second = memAlloc(2 * mebibyte);
    EXPECT_THROW(memAlloc(UINT64_MAX), fakeBreak);
    const statistics before = statisticsNow();
    fakeClearCalls();
    fixedSink sink;
    {
        const damage broken(zoneOf(first) + zoneSize, 64);
        const unsigned allocated = allocationCount();
        memReport(sink);
        EXPECT_EQ(allocationCount(), allocated);
    }
    EXPECT_GT(sink.Length, 1000u);
    EXPECT_EQ(statisticsNow(), before);
    EXPECT_THAT(fakeCalls(), testing::ElementsAre());
    memFree(second);
    memFree(first);
}

TEST_F(memReportTest, TakesNoLock)
{
    void* const pointer = memAlloc(1);
    memHeap.HeapLock.Lock();
    EXPECT_THAT(report(), testing::EndsWith("  No errors\r\n"));
    memHeap.HeapLock.Unlock();
    memFree(pointer);
}

TEST_F(memReportTest, CanBeWrittenFromInsideEveryBreakpoint)
{
    void* const pointer = memAlloc(1);
    char outside = 0;
    const std::function<void()> actions[] = {
        [&] { memFree(&outside); },
        [&] { memAlloc(UINT64_MAX); },
        [&] { memRealloc(pointer, UINT64_MAX, 0); },
        [&] { memFree(static_cast<char*>(pointer) + 1); },
    };
    for (const auto& action : actions) {
        std::string text;
        fakeOnCall("debugBreak", 1, [&] {
            // What writes the report may use the heap as well.
            memFree(memAlloc(1));
            text = report();
        });
        EXPECT_THROW(action(), fakeBreak);
        EXPECT_THAT(text, testing::HasSubstr(failureText() + "\r\nAllocated blocks 1 / 1\r\n"));
    }
    memFree(pointer);
}
