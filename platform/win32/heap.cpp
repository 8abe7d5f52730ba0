#include "platform/heap.h"

#include <windows.h>

namespace {

HANDLE systemHeap(heapHandle* heap)
{
    return reinterpret_cast<HANDLE>(heap);
}

}  // namespace

heapHandle* heapCreate(size_t initial)
{
    return static_cast<heapHandle*>(HeapCreate(HEAP_NO_SERIALIZE, initial, 0));
}

void* heapAllocate(heapHandle* heap, size_t bytes)
{
    return HeapAlloc(systemHeap(heap), 0, bytes);
}

size_t heapSize(heapHandle* heap, const void* region)
{
    return HeapSize(systemHeap(heap), 0, region);
}

void heapFree(heapHandle* heap, void* region)
{
    HeapFree(systemHeap(heap), 0, region);
}

void heapDestroy(heapHandle* heap)
{
    HeapDestroy(systemHeap(heap));
}
