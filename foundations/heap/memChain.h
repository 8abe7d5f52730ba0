// The list of blocks as it can be followed from outside, whatever its headers hold. For the report alone.
#pragma once

#include "foundations/heap/memHeap.h"

// More blocks than any heap has. Threads that go on may change the list under a walk, so its own checks are
// not enough to end it.
constexpr unsigned memMostBlocks = 1u << 20;

// One way through the list.
struct memDirection {
    memBlock* memBlock::*Along;
    memBlock* memBlock::*Back;
    std::string_view BackDamaged;  // in the words of the report
};

constexpr memDirection memFromNewest{&memBlock::Next, &memBlock::Previous,
                                     "  Pointer to previous memory block corrupted - "};
constexpr memDirection memFromOldest{&memBlock::Previous, &memBlock::Next,
                                     "  Pointer to next memory block corrupted - "};

// The addresses of the two ends, 0 for an empty list.
uint64_t memNewest();
uint64_t memOldest();

// The blocks from one end, as long as each can be read and points back to the one before it.
class memChain
{
public:
    memChain(uint64_t first, const memDirection& way) : Way(way), Address(first) { Look(); }

    explicit operator bool() const { return Held; }

    void Advance()
    {
        Former = Address;
        Address = memAddress(Header.*Way.Along);
        --Left;
        Look();
    }

    const memDirection& Way;
    uint64_t Address;
    uint64_t Former = 0;
    memBlock Header{};

private:
    void Look()
    {
        Held = Left > 0 && Address != 0 && memPeek(Address, Header) && memAddress(Header.*Way.Back) == Former;
    }

    unsigned Left = memMostBlocks;
    bool Held = false;
};

// Checks all blocks with their zones, and writes the damage that it finds; true when there is none.
bool memCheckBlocks(memReportSink& sink);
