#include "platform/heap.h"

#include <cstdint>
#include <new>

#include <sys/mman.h>
#include <unistd.h>

// Every region is a mapping of its own:
//
//     | bookkeeping page | closed page | region ... | closed page |
//
// The closed pages let a write before the region or behind it fail at once instead of reaching the
// bookkeeping or a neighbour.

namespace {

struct regionPage {
    regionPage* Previous;
    regionPage* Next;
    size_t Bytes;  // of the region
};

constexpr size_t PagesBefore = 2;
constexpr size_t PagesBehind = 1;

size_t PageSize()
{
    static const size_t size = static_cast<size_t>(sysconf(_SC_PAGESIZE));
    return size;
}

regionPage* BookkeepingOf(const void* region)
{
    const uintptr_t address = reinterpret_cast<uintptr_t>(region) - PagesBefore * PageSize();
    return reinterpret_cast<regionPage*>(address);
}

void* RegionOf(regionPage* page)
{
    return reinterpret_cast<std::byte*>(page) + PagesBefore * PageSize();
}

size_t MappingBytes(size_t regionBytes)
{
    return regionBytes + (PagesBefore + PagesBehind) * PageSize();
}

// Null when the system refuses.
regionPage* MapRegion(size_t bytes)
{
    void* const mapping = mmap(nullptr, MappingBytes(bytes), PROT_NONE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (mapping == MAP_FAILED)
        return nullptr;
    std::byte* const region = static_cast<std::byte*>(mapping) + PagesBefore * PageSize();
    if (mprotect(mapping, PageSize(), PROT_READ | PROT_WRITE) != 0 ||
        mprotect(region, bytes, PROT_READ | PROT_WRITE) != 0) {
        munmap(mapping, MappingBytes(bytes));
        return nullptr;
    }
    return new (mapping) regionPage{nullptr, nullptr, bytes};
}

}  // namespace

struct heapHandle {
    regionPage* First = nullptr;
};

heapHandle* heapCreate(size_t)
{
    // Regions are mapped one by one, so there is nothing to set aside.
    void* const page = mmap(nullptr, PageSize(), PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    return page == MAP_FAILED ? nullptr : new (page) heapHandle;
}

void* heapAllocate(heapHandle* heap, size_t bytes)
{
    const size_t largest = SIZE_MAX - MappingBytes(PageSize());
    if (bytes > largest)
        return nullptr;
    const size_t pages = bytes == 0 ? 1 : (bytes + PageSize() - 1) / PageSize();
    regionPage* const page = MapRegion(pages * PageSize());
    if (page == nullptr)
        return nullptr;
    page->Next = heap->First;
    if (heap->First != nullptr)
        heap->First->Previous = page;
    heap->First = page;
    return RegionOf(page);
}

size_t heapSize(heapHandle*, const void* region)
{
    return BookkeepingOf(region)->Bytes;
}

void heapFree(heapHandle* heap, void* region)
{
    if (region == nullptr)
        return;
    regionPage* const page = BookkeepingOf(region);
    if (page->Previous != nullptr)
        page->Previous->Next = page->Next;
    else
        heap->First = page->Next;
    if (page->Next != nullptr)
        page->Next->Previous = page->Previous;
    munmap(page, MappingBytes(page->Bytes));
}

void heapDestroy(heapHandle* heap)
{
    if (heap == nullptr)
        return;
    for (regionPage* page = heap->First; page != nullptr;) {
        regionPage* const next = page->Next;
        munmap(page, MappingBytes(page->Bytes));
        page = next;
    }
    munmap(heap, PageSize());
}
