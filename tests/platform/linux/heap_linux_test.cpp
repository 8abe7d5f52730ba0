#include "platform/heap.h"

#include "platform/debug.h"

#include <gtest/gtest.h>

#include <unistd.h>

namespace {

class heapLinux : public testing::Test
{
protected:
    ~heapLinux() override { heapDestroy(Heap); }

    heapHandle* const Heap = heapCreate(0);
    const size_t Page = static_cast<size_t>(sysconf(_SC_PAGESIZE));
};

using heapLinuxDeathTest = heapLinux;

// Keeps the compiler from seeing what is done to a region.
[[gnu::noinline]] void Write(char* region, ptrdiff_t offset)
{
    *static_cast<volatile char*>(region + offset) = 1;
}

TEST_F(heapLinux, GivesWholePages)
{
    char* const region = static_cast<char*>(heapAllocate(Heap, Page + 1));
    EXPECT_EQ(heapSize(Heap, region), 2 * Page);
    EXPECT_EQ(reinterpret_cast<uintptr_t>(region) % Page, 0u);
}

TEST_F(heapLinux, ClosesThePagesBesideARegion)
{
    char* const region = static_cast<char*>(heapAllocate(Heap, 1));
    char target[16];
    EXPECT_TRUE(debugRead(region + Page - 16, target, 16));
    EXPECT_FALSE(debugRead(region + Page - 8, target, 16));
    EXPECT_FALSE(debugRead(region - 8, target, 16));
}

TEST_F(heapLinuxDeathTest, EndsTheProgramThatWritesBesideARegion)
{
    char* const region = static_cast<char*>(heapAllocate(Heap, 1));
    Write(region, 0);
    Write(region, static_cast<ptrdiff_t>(Page) - 1);
    EXPECT_DEATH(Write(region, static_cast<ptrdiff_t>(Page)), "");
    EXPECT_DEATH(Write(region, -1), "");
    EXPECT_DEATH(Write(region, -static_cast<ptrdiff_t>(Page)), "");
}

}  // namespace
