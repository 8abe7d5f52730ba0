#include "tests/foundations/text/allocations.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<size_t> Count = 0;

}  // namespace

size_t allocations()
{
    return Count;
}

void* operator new(size_t bytes)
{
    ++Count;
    void* const memory = std::malloc(bytes == 0 ? 1 : bytes);
    if (!memory)
        std::abort();
    return memory;
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}
