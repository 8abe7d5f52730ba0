#include "foundations/heap/memHeap.h"

namespace {

void RaiseInvalid(uint64_t address)
{
    memFault fault("memFree_Int - Trying to free an invalid memory zone at ");
    fault.Hex(address);
    fault.Raise();
}

void RaiseFreed(const memBlock& block, const memZone& zone)
{
    constexpr unsigned SizeDigits = 20;
    memFault fault("memFree_Int - Memory zone at ");
    fault.Hex(memAddress(&zone));
    fault.Text(" already freed\r\n            - Next zone ");
    fault.Hex(memAddress(zone.Next));
    fault.Text(", Prev zone ");
    fault.Hex(memAddress(zone.Previous));
    fault.Text("\r\n            - Zone size ");
    fault.Number(zone.Size, 10, SizeDigits);
    fault.Text("\r\n            - Block ");
    fault.Hex(memAddress(&block));
    fault.Text(", Size ");
    fault.Number(block.Size, 10, SizeDigits);
    fault.Raise();
}

// Joins a zone that became free with its free neighbours. Gives the zone that holds it then.
memZone& Merge(memZone& zone)
{
    memZone* whole = &zone;
    if (memIsFree(whole->Previous)) {
        whole = whole->Previous;
        memAbsorbNext(*whole);
    }
    if (memIsFree(whole->Next))
        memAbsorbNext(*whole);
    return *whole;
}

}  // namespace

bool memFree_Int(void* pointer, uint64_t caller)
{
    memBlock* const block = memFindBlock(pointer);
    if (!block) {
        memRaiseNoBlock("memFree", pointer, caller);
        return false;
    }
    const uint64_t address = memAddress(pointer) - sizeof(memZone);
    memZone* const zone = memFindZone(*block, address);
    if (!zone) {
        RaiseInvalid(address);
        return false;
    }
    if (memIsFree(zone)) {
        RaiseFreed(*block, *zone);
        return false;
    }
    if (memHeap.Zones.Count.load(std::memory_order_relaxed) == 0) {
        memFault("memFree_Int - No more zones to free").Raise();
        return false;
    }
    if (zone->Size > memHeap.Zones.Bytes.load(std::memory_order_relaxed)) {
        memFault("memFree_Int - Trying to free too much memory").Raise();
        return false;
    }

    memHeap.Zones.Leave(zone->Size);
    zone->RetAddr = 0;
    block->Free += zone->Size;
    const memZone& whole = Merge(*zone);
    if (!whole.Previous && !whole.Next)
        memReleaseBlock(*block);
    return true;
}
