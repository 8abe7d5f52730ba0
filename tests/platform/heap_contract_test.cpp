#include "platform/heap.h"

#include "tests/platform/contract.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

namespace {

constexpr size_t Sizes[] = {1, 15, 16, 100, 4095, 4096, 4097, 65536, 1'000'000, 16u << 20};

class heapContract : public contractTest
{
protected:
    void SetUp() override
    {
        contractTest::SetUp();
        Heap = heapCreate(65536);
        ASSERT_NE(Heap, nullptr);
    }

    void TearDown() override
    {
        if (Heap != nullptr)
            heapDestroy(Heap);
    }

    heapHandle* Heap = nullptr;
};

bool HoldsOnly(const void* region, size_t bytes, unsigned char expected)
{
    const unsigned char* const first = static_cast<const unsigned char*>(region);
    return std::all_of(first, first + bytes, [=](unsigned char byte) { return byte == expected; });
}

TEST_F(heapContract, GivesAlignedRegionsOfAtLeastTheSizeAskedFor)
{
    for (const size_t bytes : Sizes) {
        SCOPED_TRACE(bytes);
        void* const region = heapAllocate(Heap, bytes);
        ASSERT_NE(region, nullptr);
        EXPECT_EQ(reinterpret_cast<uintptr_t>(region) % 16, 0u);
        EXPECT_GE(heapSize(Heap, region), bytes);
        heapFree(Heap, region);
    }
}

TEST_F(heapContract, LetsAllOfARegionsRealSizeBeUsed)
{
    std::vector<void*> regions;
    for (const size_t bytes : Sizes) {
        regions.push_back(heapAllocate(Heap, bytes));
        ASSERT_NE(regions.back(), nullptr);
    }
    for (size_t i = 0; i < regions.size(); i++)
        std::memset(regions[i], static_cast<int>(i + 1), heapSize(Heap, regions[i]));
    for (size_t i = 0; i < regions.size(); i++)
        EXPECT_TRUE(HoldsOnly(regions[i], heapSize(Heap, regions[i]), static_cast<unsigned char>(i + 1)));
}

TEST_F(heapContract, GivesARegionForNoBytesAtAll)
{
    void* const region = heapAllocate(Heap, 0);
    ASSERT_NE(region, nullptr);
    heapFree(Heap, region);
}

TEST_F(heapContract, RefusesWhatNoMachineHasAndLivesOn)
{
    for (const size_t bytes : {SIZE_MAX, SIZE_MAX - 4096, SIZE_MAX / 2, SIZE_MAX / 4}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(heapAllocate(Heap, bytes), nullptr);
    }
    void* const region = heapAllocate(Heap, 4096);
    ASSERT_NE(region, nullptr);
    std::memset(region, 1, 4096);
}

TEST_F(heapContract, KeepsOtherRegionsWhenOneIsGivenBack)
{
    void* regions[5];
    for (void*& region : regions) {
        region = heapAllocate(Heap, 10'000);
        ASSERT_NE(region, nullptr);
        std::memset(region, 7, 10'000);
    }
    for (const size_t freed : {2u, 0u, 4u})
        heapFree(Heap, regions[freed]);
    EXPECT_TRUE(HoldsOnly(regions[1], 10'000, 7));
    EXPECT_TRUE(HoldsOnly(regions[3], 10'000, 7));
    heapFree(Heap, regions[3]);
    heapFree(Heap, regions[1]);
}

TEST_F(heapContract, TakesFreedMemoryAgainForAsLongAsOneLikes)
{
    for (int round = 0; round < 100; round++) {
        void* const region = heapAllocate(Heap, 16u << 20);
        ASSERT_NE(region, nullptr) << round;
        heapFree(Heap, region);
    }
}

TEST_F(heapContract, EndsWithRegionsStillTaken)
{
    for (const size_t bytes : Sizes)
        ASSERT_NE(heapAllocate(Heap, bytes), nullptr);
    heapDestroy(Heap);
    Heap = nullptr;
}

TEST_F(heapContract, IsApartFromOtherHeaps)
{
    heapHandle* const other = heapCreate(0);
    ASSERT_NE(other, nullptr);
    EXPECT_NE(other, Heap);
    void* const mine = heapAllocate(Heap, 5000);
    void* const theirs = heapAllocate(other, 5000);
    ASSERT_NE(mine, nullptr);
    ASSERT_NE(theirs, nullptr);
    std::memset(mine, 1, 5000);
    std::memset(theirs, 2, 5000);
    heapDestroy(other);
    EXPECT_TRUE(HoldsOnly(mine, 5000, 1));
}

}  // namespace
