#include "platform/heap.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakes.h"

#include <atomic>
#include <memory>
#include <new>
#include <set>

namespace {

constexpr std::align_val_t RegionAlignment{64};

// Beyond this the address sanitizer ends the program rather than to give null.
constexpr size_t MostBytes = size_t{1} << 34;

struct regionFree {
    void operator()(void* region) const { ::operator delete(region, RegionAlignment); }
};

struct heapRegion {
    std::unique_ptr<void, regionFree> Memory;
    size_t Bytes;
};

}  // namespace

struct heapHandle {
    std::map<const void*, heapRegion> Regions;
    std::atomic<bool> Busy{false};
    bool Forgotten = false;
};

namespace {

struct heapState {
    size_t Slack = 0;
    std::map<const heapHandle*, std::unique_ptr<heapHandle>> Heaps;
};

heapState& state()
{
    static heapState& only = *new heapState;
    return only;
}

// Finds two threads inside one heap.
class visit
{
public:
    explicit visit(heapHandle* heap) : Heap(heap)
    {
        {
            const std::lock_guard lock(fakes::stateMutex());
            if (!state().Heaps.contains(heap))
                fakes::misuse("no such heap");
        }
        if (Heap->Busy.exchange(true))
            fakes::misuse("two threads are inside one private heap");
    }
    ~visit() { Heap->Busy = false; }
    visit(const visit&) = delete;
    visit& operator=(const visit&) = delete;

private:
    heapHandle* Heap;
};

}  // namespace

void fakes::resetHeap()
{
    // Static objects may hold on to theirs, so what was taken stays usable; it only counts no more.
    state().Slack = 0;
    for (const auto& [key, heap] : state().Heaps)
        heap->Forgotten = true;
}

heapHandle* heapCreate(size_t initial)
{
    if (fakes::enter("heapCreate", std::to_string(initial)).Scripted)
        return nullptr;
    auto heap = std::make_unique<heapHandle>();
    heapHandle* const key = heap.get();
    const std::lock_guard lock(fakes::stateMutex());
    state().Heaps[key] = std::move(heap);
    return key;
}

void* heapAllocate(heapHandle* heap, size_t bytes)
{
    if (fakes::enter("heapAllocate", std::to_string(bytes)).Scripted || bytes > MostBytes)
        return nullptr;
    const visit alone(heap);
    const std::lock_guard lock(fakes::stateMutex());
    const size_t whole = bytes + state().Slack;
    void* const memory = ::operator new(whole, RegionAlignment, std::nothrow);
    if (memory)
        heap->Regions[memory] = {std::unique_ptr<void, regionFree>(memory), whole};
    return memory;
}

size_t heapSize(heapHandle* heap, const void* region)
{
    fakes::ask("heapSize");
    const visit alone(heap);
    const std::lock_guard lock(fakes::stateMutex());
    const auto found = heap->Regions.find(region);
    if (found == heap->Regions.end())
        fakes::misuse("heapSize of a region that is not this heap's");
    return found->second.Bytes;
}

void heapFree(heapHandle* heap, void* region)
{
    fakes::enter("heapFree");
    const visit alone(heap);
    const std::lock_guard lock(fakes::stateMutex());
    if (heap->Regions.erase(region) == 0)
        fakes::misuse("heapFree of a region that is not this heap's");
}

void heapDestroy(heapHandle* heap)
{
    fakes::enter("heapDestroy");
    const std::lock_guard lock(fakes::stateMutex());
    if (state().Heaps.erase(heap) == 0)
        fakes::misuse("heapDestroy of what is no heap");
}

void fakeHeapSlack(size_t bytes)
{
    const std::lock_guard lock(fakes::stateMutex());
    state().Slack = bytes;
}

unsigned fakeHeapCount()
{
    const std::lock_guard lock(fakes::stateMutex());
    unsigned count = 0;
    for (const auto& [key, heap] : state().Heaps)
        count += heap->Forgotten ? 0u : 1u;
    return count;
}

unsigned fakeHeapRegions()
{
    const std::lock_guard lock(fakes::stateMutex());
    size_t count = 0;
    for (const auto& [key, heap] : state().Heaps)
        count += heap->Forgotten ? 0 : heap->Regions.size();
    return static_cast<unsigned>(count);
}
