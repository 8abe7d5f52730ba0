#include "foundations/heap/mem.h"

#include "foundations/heap/memHeap.h"

#include <utility>

namespace {

// 0 means that none is named.
constinit thread_local uint64_t CallSite = 0;

}  // namespace

// Not to be inlined: the return address is what an allocation is remembered by.
[[gnu::noinline]] void* memAlloc(uint64_t size, bool soft)
{
    const uint64_t caller = memAddress(__builtin_return_address(0));
    if (size == 0)
        return nullptr;
    memHeap.HeapLock.Lock();
    const std::optional<void*> pointer = memAlloc_Int(size, caller, soft);
    if (!pointer)
        return nullptr;
    memHeap.HeapLock.Unlock();
    return *pointer;
}

[[gnu::noinline]] void memFree(void* pointer)
{
    const uint64_t caller = memAddress(__builtin_return_address(0));
    if (!pointer)
        return;
    memHeap.HeapLock.Lock();
    if (memFree_Int(pointer, caller))
        memHeap.HeapLock.Unlock();
}

uint64_t memSite(uint64_t caller)
{
    return CallSite != 0 ? CallSite : caller;
}

memCallSite::memCallSite(uint64_t address) : Former(std::exchange(CallSite, address)) {}

memCallSite::~memCallSite()
{
    CallSite = Former;
}
