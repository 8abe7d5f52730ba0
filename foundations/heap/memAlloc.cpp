#include "foundations/heap/memHeap.h"
#include "platform/clock.h"
#include "platform/heap.h"

namespace {

// What the system may set aside for the private heap at once.
constexpr size_t InitialHeap = 0x100000;

struct fit {
    memBlock* Block = nullptr;
    memZone* Zone = nullptr;
};

void RaiseAtZone(std::string_view reason, const memZone& zone)
{
    memFault fault("memAlloc_Int - ");
    fault.Text(reason);
    fault.Text("\r\nmemAlloc_Int - Current memory zone allocated in call from ");
    fault.Hex(zone.RetAddr);
    fault.Raise();
}

bool CheckZone(const memZone& zone)
{
    if (!memNextFits(memAddress(&zone), zone)) {
        RaiseAtZone("Invalid pointer to next memory zone", zone);
        return false;
    }
    if (zone.Next && zone.Next->Previous != &zone) {
        RaiseAtZone("Invalid header of the next memory zone", zone);
        return false;
    }
    return true;
}

// Looks in one block for a better fit; an exact one ends the search. False after a fault.
bool SearchBlock(memBlock& block, uint64_t size, fit& best)
{
    if (!memFirstZoneFits(memAddress(&block), block)) {
        memFault("memAlloc_Int - Corrupted memory block header").Raise();
        return false;
    }
    for (memZone* zone = block.FirstZone; zone; zone = zone->Next) {
        if (!CheckZone(*zone))
            return false;
        if (!memIsFree(zone) || zone->Size < size)
            continue;
        if (!best.Zone || zone->Size < best.Zone->Size)
            best = {&block, zone};
        if (zone->Size == size)
            return true;
    }
    return true;
}

// Finds the smallest free zone of at least this size, or none. False after a fault.
bool SearchAll(uint64_t size, fit& best)
{
    // The count bounds the walk, because a damaged list may have become a ring.
    memBlock* block = memHeap.Newest.load(std::memory_order_relaxed);
    uint64_t left = memHeap.Blocks.Count.load(std::memory_order_relaxed);
    for (; block && left > 0; --left, block = block->Next) {
        if (block->Free < size)
            continue;
        if (!SearchBlock(*block, size, best))
            return false;
        if (best.Zone && best.Zone->Size == size)
            return true;
    }
    return true;
}

void TakeFrom(const fit& found, uint64_t size)
{
    found.Block->Free -= size;
    if (found.Zone->Size > size)
        memSplit(*found.Zone, size);
}

}  // namespace

std::optional<void*> memAlloc_Int(uint64_t size, uint64_t caller, bool soft)
{
    if (!memHeap.Heap)
        memHeap.Heap = heapCreate(InitialHeap);
    if (!memHeap.Heap)
        return std::optional<void*>(nullptr);

    const uint64_t zoneSize = memZoneSize(size);
    if (zoneSize <= size) {
        memFault fault("memAlloc_Int - Requested size overflow - ");
        fault.Number(zoneSize);
        fault.Raise();
        return std::nullopt;
    }

    fit found;
    if (!SearchAll(zoneSize, found))
        return std::nullopt;
    if (found.Zone)
        TakeFrom(found, zoneSize);
    else
        found.Zone = memNewBlock(zoneSize);
    if (!found.Zone) {
        if (soft)
            return std::optional<void*>(nullptr);
        memFault("Out of memory!").Raise("memAlloc_Int - Could not obtain a new memory block");
        return std::nullopt;
    }

    found.Zone->RetAddr = memSite(caller);
    found.Zone->ReallocFrom = 0;
    found.Zone->Time = static_cast<uint64_t>(clockSteadyNs() / 1000);
    memHeap.Zones.Enter(zoneSize);
    return found.Zone + 1;
}
