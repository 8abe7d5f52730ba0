#include "foundations/heap/memHeap.h"

#include "foundations/fatal/crashFatal.h"

#include <algorithm>

void memFault::Raise()
{
    Raise({Bytes, Length});
}

void memFault::Raise(std::string_view told)
{
    for (size_t i = 0; i < Length; ++i)
        memHeap.Failure[i].store(Bytes[i], std::memory_order_relaxed);
    memHeap.Failure[Length].store('\0', std::memory_order_relaxed);

    // The report that follows from the breakpoint walks the heap, and other threads may go on for a while.
    memHeap.HeapLock.Unlock();
    crashFatal(told);
}

bool memFault::Write(const char* bytes, size_t count)
{
    const size_t taken = std::min(count, memFailureSize - 1 - Length);
    std::copy_n(bytes, taken, Bytes + Length);
    Length += taken;
    return taken == count;
}

void memRaiseNoBlock(std::string_view operation, const void* pointer, uint64_t caller)
{
    memFault fault(operation);
    fault.Text(" - No block for ");
    fault.Hex(memAddress(pointer));
    fault.Text(" in call from ");
    fault.Hex(memSite(caller));
    fault.Raise();
}
