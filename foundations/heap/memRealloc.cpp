#include "foundations/heap/mem.h"
#include "foundations/heap/memHeap.h"
#include "platform/clock.h"

#include <algorithm>
#include <cstring>

namespace {

// One call of memRealloc on a living zone.
struct request {
    memBlock& Block;
    memZone& Zone;
    uint64_t Size;
    uint64_t ZoneSize;
    uint64_t Keep;
    uint64_t Caller;
};

// Whether a zone's header has room between the block's header and this address.
bool CanBeZone(const memBlock& block, const void* pointer)
{
    const uint64_t address = memAddress(pointer);
    return address % memAlignment == 0 && address - memAddress(&block) >= sizeof(memBlock) + sizeof(memZone);
}

void RaiseOverflow(uint64_t zoneSize, uint64_t size)
{
    memFault fault("memRealloc - Requested size overflow ");
    fault.Number(zoneSize);
    fault.Text(" / ");
    fault.Number(size);
    fault.Raise();
}

void Shrink(const request& ask)
{
    const uint64_t cut = ask.Zone.Size - ask.ZoneSize;
    memSplit(ask.Zone, ask.ZoneSize);
    memZone* const tail = ask.Zone.Next;
    if (memIsFree(tail->Next))
        memAbsorbNext(*tail);
    ask.Block.Free += cut;
    memHeap.Zones.Shrink(cut);
}

bool CanGrow(const request& ask)
{
    const memZone* const next = ask.Zone.Next;
    return memIsFree(next) && next->Size >= ask.ZoneSize - ask.Zone.Size;
}

// The zones behind the one that is about to vanish. False after a fault.
bool CheckBehind(const memZone& next)
{
    if (!memNextFits(memAddress(&next), next)) {
        memFault("memRealloc - Invalid pointer to next/next memory zone").Raise();
        return false;
    }
    const memZone* const behind = next.Next;
    if (!behind)
        return true;
    if (!memNextFits(memAddress(behind), *behind)) {
        memFault("memRealloc - Invalid pointer to next/next/next memory zone").Raise();
        return false;
    }
    if (behind->Previous != &next) {
        memFault("memRealloc - Invalid pointer to next/next/previous memory zone").Raise();
        return false;
    }
    return true;
}

void Grow(const request& ask)
{
    const uint64_t more = ask.ZoneSize - ask.Zone.Size;
    ask.Block.Free -= more;
    memHeap.Zones.Grow(more, ask.ZoneSize);
    memAbsorbNext(ask.Zone);
    if (ask.Zone.Size > ask.ZoneSize)
        memSplit(ask.Zone, ask.ZoneSize);
    ask.Zone.ReallocFrom = ask.Caller;
    ask.Zone.Time = static_cast<uint64_t>(clockSteadyNs() / 1000);
}

std::optional<void*> Move(const request& ask)
{
    void* const old = &ask.Zone + 1;
    if (ask.Keep == 0) {
        if (!memFree_Int(old, ask.Caller))
            return std::nullopt;
        return memAlloc_Int(ask.Size, ask.Caller, false);
    }
    const std::optional<void*> moved = memAlloc_Int(ask.Size, ask.Caller, false);
    if (!moved || !*moved)
        return moved;
    std::memcpy(*moved, old, std::min({ask.Keep, ask.Zone.Size - sizeof(memZone), ask.Size}));
    if (!memFree_Int(old, ask.Caller))
        return std::nullopt;
    return moved;
}

std::optional<void*> Resize(void* pointer, uint64_t size, uint64_t keep, uint64_t caller)
{
    memBlock* const block = memFindBlock(pointer);
    if (!block || !CanBeZone(*block, pointer)) {
        memRaiseNoBlock("memRealloc", pointer, caller);
        return std::nullopt;
    }
    memZone& zone = *(static_cast<memZone*>(pointer) - 1);
    if (zone.Next && !memNextFits(memAddress(&zone), zone)) {
        memFault("memRealloc - Invalid pointer to next memory zone").Raise();
        return std::nullopt;
    }
    const request ask{*block, zone, size, memZoneSize(size), keep, caller};
    if (ask.ZoneSize <= size) {
        RaiseOverflow(ask.ZoneSize, size);
        return std::nullopt;
    }
    if (ask.ZoneSize < zone.Size)
        Shrink(ask);
    if (ask.ZoneSize <= zone.Size)
        return pointer;
    if (!CanGrow(ask))
        return Move(ask);
    if (!CheckBehind(*zone.Next))
        return std::nullopt;
    Grow(ask);
    return pointer;
}

// Like memAlloc_Int and memFree_Int: under HeapLock, which a fault releases and nothing else.
std::optional<void*> Reallocate(void* pointer, uint64_t size, uint64_t keep, uint64_t caller)
{
    if (size > 0)
        return pointer ? Resize(pointer, size, keep, caller) : memAlloc_Int(size, caller, false);
    if (pointer && !memFree_Int(pointer, caller))
        return std::nullopt;
    return std::optional<void*>(nullptr);
}

}  // namespace

// Not to be inlined: the return address is what an allocation is remembered by.
[[gnu::noinline]] void* memRealloc(void* pointer, uint64_t size, uint64_t keep)
{
    const uint64_t caller = memAddress(__builtin_return_address(0));
    memHeap.HeapLock.Lock();
    const std::optional<void*> result = Reallocate(pointer, size, keep, caller);
    if (!result)
        return nullptr;
    memHeap.HeapLock.Unlock();
    return *result;
}
