// What the heap's tests share: a heap that is empty before and after each of them, eyes that look at the
// headers by their published offsets, and hands that damage them for a while.
#pragma once

#include "foundations/heap/mem.h"
#include "foundations/heap/memHeap.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

constexpr uint64_t mebibyte = 0x100000;

// Where the fake platform's regions put their first zone.
constexpr uint64_t firstZoneOffset = 64;

// An allocation that fills a block of one mebibyte, but for a rest of no more than a header.
constexpr uint64_t nearlyAll = 0xFFF80 - 64;

enum blockField : unsigned {
    blockNext = 0,
    blockPrevious = 8,
    blockFirstZone = 16,
    blockSize = 24,
    blockFree = 32,
};

enum zoneField : unsigned {
    zoneNext = 0,
    zonePrevious = 8,
    zoneBlock = 16,
    zoneRetAddr = 24,
    zoneReallocFrom = 32,
    zoneSize = 40,
    zoneTime = 48,
};

class heapTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;
};

// The eight bytes at an address.
uint64_t peek(uint64_t address);
void poke(uint64_t address, uint64_t value);

inline uint64_t addressOf(const void* pointer)
{
    return reinterpret_cast<uint64_t>(pointer);
}
inline uint64_t zoneOf(const void* pointer)
{
    return addressOf(pointer) - 64;
}
inline uint64_t blockOf(const void* pointer)
{
    return peek(zoneOf(pointer) + zoneBlock);
}

// Puts a wrong value somewhere, and the right one back at the end of the scope.
class damage
{
public:
    damage(uint64_t address, uint64_t value) : Address(address), Former(peek(address))
    {
        poke(address, value);
    }
    ~damage() { poke(Address, Former); }
    damage(const damage&) = delete;
    damage& operator=(const damage&) = delete;

private:
    uint64_t Address;
    uint64_t Former;
};

// The first inconsistency of the heap in words; empty when there is none. Shares no code with the heap.
std::string heapProblem();

struct statistics {
    uint64_t Blocks, BlockBytes, Zones, ZoneBytes;
    bool operator==(const statistics&) const = default;
};
statistics statisticsNow();
void PrintTo(const statistics& figures, std::ostream* out);

// Runs what must end in a breakpoint and gives what the debugger was told meanwhile.
std::string faultOf(const std::function<void()>& action);

// Sixteen digits; decimal digits; lines, each with its CR LF.
std::string hex(uint64_t value);
std::string decimal(uint64_t value, unsigned digits = 1);
std::string lines(const std::vector<std::string>& texts);

// What a dump of readable memory looks like.
std::string dumpText(const std::string& title, uint64_t address, unsigned words);

std::string failureText();
std::string report();

// What a report says before its findings: the reference, a failure text if there is one, and the figures.
std::string reportHead(const std::string& figures, const std::string& failure = {});

// How often this thread has asked the run-time library for memory.
unsigned allocationCount();

class textSink final : public memReportSink
{
public:
    std::string Out;

private:
    bool Write(const char* bytes, size_t count) override
    {
        Out.append(bytes, count);
        return true;
    }
};
