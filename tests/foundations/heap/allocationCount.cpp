// This test program counts what the run-time library is asked for, to prove that a report asks for nothing.
// The functions stand in a file of their own, so that the compiler sees no pair of them at once.
#include "tests/foundations/heap/heapTest.h"

#include <cstdlib>
#include <new>

namespace {

constinit thread_local unsigned count = 0;

void* take(size_t bytes)
{
    ++count;
    return std::malloc(bytes > 0 ? bytes : 1);
}

}  // namespace

unsigned allocationCount()
{
    return count;
}

void* operator new(size_t bytes)
{
    void* const memory = take(bytes);
    if (!memory)
        throw std::bad_alloc();
    return memory;
}

void* operator new[](size_t bytes)
{
    return operator new(bytes);
}

void* operator new(size_t bytes, const std::nothrow_t&) noexcept
{
    return take(bytes);
}

void* operator new[](size_t bytes, const std::nothrow_t&) noexcept
{
    return take(bytes);
}

void operator delete(void* memory) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, size_t) noexcept
{
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}

void operator delete[](void* memory, const std::nothrow_t&) noexcept
{
    std::free(memory);
}
