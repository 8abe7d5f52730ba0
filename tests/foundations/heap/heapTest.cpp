#include "tests/foundations/heap/heapTest.h"

#include <algorithm>
#include <cinttypes>
#include <cstdio>
#include <cstring>
#include <ostream>

namespace {

void clearTally(memTally& tally)
{
    tally.Count = tally.CountPeak = tally.Bytes = tally.BytesPeak = tally.Largest = 0;
}

// Adds up one block while it looks for what cannot be.
struct blockWalk {
    uint64_t Block;
    uint64_t FreeBytes = 0;
    uint64_t UsedBytes = 0;
    uint64_t Used = 0;
    std::string Problem{};

    void Fail(const std::string& what, uint64_t zone)
    {
        if (Problem.empty())
            Problem = what + ", block " + hex(Block) + ", zone " + hex(zone);
    }

    void Visit(uint64_t zone, uint64_t former)
    {
        const uint64_t size = peek(zone + zoneSize);
        const bool isFree = peek(zone + zoneRetAddr) == 0;
        if (zone % 64 != 0 || size % 64 != 0 || size < 64)
            Fail("alignment", zone);
        if (peek(zone + zonePrevious) != former)
            Fail("previous zone", zone);
        if (peek(zone + zoneBlock) != Block)
            Fail("block of zone", zone);
        if (isFree && former != 0 && peek(former + zoneRetAddr) == 0)
            Fail("two free neighbours", zone);
        Used += isFree ? 0 : 1;
        (isFree ? FreeBytes : UsedBytes) += size;
    }

    void Run()
    {
        const uint64_t end = Block + peek(Block + blockSize);
        uint64_t zone = peek(Block + blockFirstZone);
        if (zone < Block + 40 || zone > Block + 40 + 63)
            Fail("first zone", zone);
        uint64_t former = 0;
        while (Problem.empty()) {
            Visit(zone, former);
            const uint64_t next = zone + peek(zone + zoneSize);
            if (next > end)
                Fail("zone beyond the block", zone);
            former = zone;
            zone = peek(zone + zoneNext);
            if (zone == 0 && end - next >= 64)
                Fail("room behind the last zone", former);
            if (zone == 0)
                break;
            if (zone != next)
                Fail("gap", former);
        }
        if (peek(Block + blockFree) != FreeBytes)
            Fail("free bytes", 0);
        if (Used == 0)
            Fail("an empty block", 0);
    }
};

}  // namespace

void heapTest::SetUp()
{
    fakeReset();
    ASSERT_EQ(memHeap.Newest, nullptr);
    ASSERT_EQ(memHeap.Heap, nullptr);
    clearTally(memHeap.Blocks);
    clearTally(memHeap.Zones);
    memHeap.Failure[0] = '\0';
}

void heapTest::TearDown()
{
    EXPECT_EQ(heapProblem(), "");
    EXPECT_EQ(statisticsNow(), (statistics{}));
    EXPECT_EQ(memHeap.Newest, nullptr);
    EXPECT_EQ(memHeap.Oldest, nullptr);
    EXPECT_EQ(memHeap.Heap, nullptr);
    EXPECT_EQ(fakeHeapCount(), 0u);
    EXPECT_EQ(fakeHeapRegions(), 0u);
}

uint64_t peek(uint64_t address)
{
    uint64_t value = 0;
    std::memcpy(&value, reinterpret_cast<const void*>(address), sizeof(value));
    return value;
}

void poke(uint64_t address, uint64_t value)
{
    std::memcpy(reinterpret_cast<void*>(address), &value, sizeof(value));
}

std::string heapProblem()
{
    statistics found{};
    uint64_t former = 0;
    for (uint64_t block = addressOf(memHeap.Newest); block != 0; block = peek(block + blockNext)) {
        if (peek(block + blockPrevious) != former)
            return "previous block of " + hex(block);
        blockWalk walk{block};
        walk.Run();
        if (!walk.Problem.empty())
            return walk.Problem;
        ++found.Blocks;
        found.BlockBytes += peek(block + blockSize);
        found.Zones += walk.Used;
        found.ZoneBytes += walk.UsedBytes;
        former = block;
    }
    if (addressOf(memHeap.Oldest) != former)
        return "oldest block";
    return found == statisticsNow() ? "" : "statistics";
}

statistics statisticsNow()
{
    return {memHeap.Blocks.Count, memHeap.Blocks.Bytes, memHeap.Zones.Count, memHeap.Zones.Bytes};
}

void PrintTo(const statistics& figures, std::ostream* out)
{
    *out << figures.Blocks << " blocks of " << figures.BlockBytes << ", " << figures.Zones << " zones of "
         << figures.ZoneBytes;
}

std::string faultOf(const std::function<void()>& action)
{
    const size_t before = fakeDebugText().size();
    EXPECT_THROW(action(), fakeBreak);
    return fakeDebugText().substr(before);
}

std::string hex(uint64_t value)
{
    char text[17];
    std::snprintf(text, sizeof(text), "%016" PRIX64, value);
    return text;
}

std::string decimal(uint64_t value, unsigned digits)
{
    std::string text = std::to_string(value);
    return std::string(digits - std::min<size_t>(digits, text.size()), '0') + text;
}

std::string lines(const std::vector<std::string>& texts)
{
    std::string all;
    for (const std::string& text : texts)
        all += text + "\r\n";
    return all;
}

std::string dumpText(const std::string& title, uint64_t address, unsigned words)
{
    std::string text = title + hex(address);
    for (unsigned i = 0; i < words; ++i)
        text += (i % 4 == 0 ? "\r\n      " : "  ") + hex(peek(address + i * 8));
    return text + "\r\n";
}

std::string failureText()
{
    std::string text;
    for (const std::atomic<char>& letter : memHeap.Failure) {
        if (letter == '\0')
            break;
        text += letter;
    }
    return text;
}

std::string report()
{
    textSink sink;
    memReport(sink);
    return sink.Out;
}

std::string reportHead(const std::string& figures, const std::string& failure)
{
    return "Reference address " + hex(reinterpret_cast<uint64_t>(&memAlloc_Int)) + "\r\n" +
           (failure.empty() ? "" : failure + "\r\n") + figures;
}
