// The checked heap, for long-lived buffers of variable size.
//
// Every allocation remembers who made it and when. Headers are chained, and each operation checks the chain
// it walks, so that damage is found and named; found damage is fatal (foundations/fatal/crashFatal.h) and
// never repaired. An allocation walks all zones of each block with room, and a free those of its block: this
// heap is for a handful of large buffers, not for objects. Every address is aligned to 64. Any thread.
#pragma once

#include <cstddef>
#include <cstdint>

class memReportSink;

// Null for a size of 0, and if no private heap can be made. Without memory: null if `soft`, else a fault.
void* memAlloc(uint64_t size, bool soft = false);

// Gives an allocation back; null is allowed. Any other address than a living allocation's is a fatal fault.
void memFree(void* pointer);

// Changes the size of an allocation; the result is its new address. `keep` is how many bytes must survive
// when it has to move; with 0 its content is then lost. A null `pointer` allocates, a `size` of 0 frees and
// gives null.
void* memRealloc(void* pointer, uint64_t size, uint64_t keep);

// Writes the state of the heap with every damage it finds. Takes no lock and allocates nothing: it is meant
// for a program that is already broken, and may show a change half done if other threads go on.
void memReport(memReportSink& sink);

// Names another caller for the allocations of this thread while it lives: a wrapper gives its own caller's
// address.
class memCallSite
{
public:
    explicit memCallSite(uint64_t address);
    ~memCallSite();
    memCallSite(const memCallSite&) = delete;
    memCallSite& operator=(const memCallSite&) = delete;

private:
    uint64_t Former;
};
