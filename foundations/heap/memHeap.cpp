#include "foundations/heap/memHeap.h"

#include "platform/heap.h"

#include <new>

constinit memHeapState memHeap;

static_assert(std::is_trivially_destructible_v<memHeapState>);

namespace {

// Regions come in whole megabytes. Beside the zone one holds its header and up to 62 bytes of alignment.
constexpr uint64_t BlockOverhead = sizeof(memBlock) + memAlignment - 2;
constexpr uint64_t Megabyte = 0x100000;

constexpr uint64_t RoundDown(uint64_t value, uint64_t step)
{
    return value & ~(step - 1);
}

void Lift(std::atomic<uint64_t>& figure, uint64_t value)
{
    if (figure.load(std::memory_order_relaxed) < value)
        figure.store(value, std::memory_order_relaxed);
}

// Only the holder of HeapLock changes a figure, so it needs no read-modify-write operation.
uint64_t Add(std::atomic<uint64_t>& figure, uint64_t difference)
{
    const uint64_t value = figure.load(std::memory_order_relaxed) + difference;
    figure.store(value, std::memory_order_relaxed);
    return value;
}

}  // namespace

void memTally::Enter(uint64_t size)
{
    Lift(CountPeak, Add(Count, 1));
    Grow(size, size);
}

void memTally::Leave(uint64_t size)
{
    Add(Count, uint64_t{0} - 1);
    Shrink(size);
}

void memTally::Grow(uint64_t bytes, uint64_t size)
{
    Lift(BytesPeak, Add(Bytes, bytes));
    Lift(Largest, size);
}

void memTally::Shrink(uint64_t bytes)
{
    Add(Bytes, uint64_t{0} - bytes);
}

uint64_t memZoneSize(uint64_t request)
{
    return RoundDown(request + sizeof(memZone) + memAlignment - 1, memAlignment);
}

bool memFirstZoneFits(uint64_t address, const memBlock& block)
{
    const uint64_t first = memAddress(block.FirstZone);
    if (first < address || first % memAlignment != 0 || block.Size < sizeof(memZone))
        return false;
    const uint64_t offset = first - address;
    return offset >= sizeof(memBlock) && offset <= block.Size - sizeof(memZone);
}

bool memNextFits(uint64_t address, const memZone& zone)
{
    // A next zone that is not above this one would send every walk in a circle.
    const uint64_t next = memAddress(zone.Next);
    return next == 0 || (next == address + zone.Size && next > address);
}

memBlock* memFindBlock(const void* pointer)
{
    // The count bounds the walk, because a damaged list may have become a ring.
    memBlock* block = memHeap.Newest.load(std::memory_order_relaxed);
    uint64_t left = memHeap.Blocks.Count.load(std::memory_order_relaxed);
    for (; block && left > 0; --left) {
        if (memAddress(pointer) - memAddress(block) < block->Size)
            return block;
        block = block->Next;
    }
    return nullptr;
}

memZone* memFindZone(const memBlock& block, uint64_t address)
{
    if (!memFirstZoneFits(memAddress(&block), block))
        return nullptr;
    memZone* previous = nullptr;
    for (memZone* zone = block.FirstZone; zone && memNextFits(memAddress(zone), *zone); zone = zone->Next) {
        if (memAddress(zone) == address) {
            // Merging with a neighbour that does not know this zone would spread the damage.
            const bool linked = zone->Previous == previous && (!zone->Next || zone->Next->Previous == zone);
            return linked ? zone : nullptr;
        }
        previous = zone;
    }
    return nullptr;
}

void memSplit(memZone& zone, uint64_t size)
{
    void* const place = reinterpret_cast<char*>(&zone) + size;
    memZone* const tail = new (place) memZone{.Next = zone.Next,
                                              .Previous = &zone,
                                              .Block = zone.Block,
                                              .RetAddr = 0,
                                              .ReallocFrom = 0,
                                              .Size = zone.Size - size,
                                              .Time = 0,
                                              .Unused = 0};
    if (tail->Next)
        tail->Next->Previous = tail;
    zone.Next = tail;
    zone.Size = size;
}

void memAbsorbNext(memZone& zone)
{
    const memZone* const gone = zone.Next;
    zone.Size += gone->Size;
    zone.Next = gone->Next;
    if (zone.Next)
        zone.Next->Previous = &zone;
}

memZone* memNewBlock(uint64_t zoneSize)
{
    const uint64_t wanted = RoundDown(zoneSize + BlockOverhead + Megabyte, Megabyte);
    if (wanted < zoneSize)
        return nullptr;
    void* const region = heapAllocate(memHeap.Heap, wanted);
    if (!region)
        return nullptr;

    const uint64_t start = memAddress(region);
    const uint64_t first = RoundDown(start + sizeof(memBlock) + memAlignment - 1, memAlignment);
    const uint64_t size = heapSize(memHeap.Heap, region);
    const uint64_t free = RoundDown(start + size - first - zoneSize, memAlignment);

    memBlock* const newest = memHeap.Newest.load(std::memory_order_relaxed);
    void* const place = static_cast<char*>(region) + (first - start);
    memBlock* const block = new (region)
        memBlock{.Next = newest, .Previous = nullptr, .FirstZone = nullptr, .Size = size, .Free = free};
    block->FirstZone = new (place) memZone{.Next = nullptr,
                                           .Previous = nullptr,
                                           .Block = block,
                                           .RetAddr = 0,
                                           .ReallocFrom = 0,
                                           .Size = zoneSize + free,
                                           .Time = 0,
                                           .Unused = 0};
    if (free > 0)
        memSplit(*block->FirstZone, zoneSize);

    if (newest)
        newest->Previous = block;
    else
        memHeap.Oldest.store(block, std::memory_order_relaxed);
    memHeap.Newest.store(block, std::memory_order_relaxed);
    memHeap.Blocks.Enter(size);
    return block->FirstZone;
}

void memReleaseBlock(memBlock& block)
{
    if (block.Previous)
        block.Previous->Next = block.Next;
    else
        memHeap.Newest.store(block.Next, std::memory_order_relaxed);
    if (block.Next)
        block.Next->Previous = block.Previous;
    else
        memHeap.Oldest.store(block.Previous, std::memory_order_relaxed);
    memHeap.Blocks.Leave(block.Size);
    heapFree(memHeap.Heap, &block);
    if (memHeap.Newest.load(std::memory_order_relaxed))
        return;
    heapDestroy(memHeap.Heap);
    memHeap.Heap = nullptr;
}
