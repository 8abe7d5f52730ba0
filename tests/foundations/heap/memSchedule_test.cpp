// Long random lives of the heap, looked over after every step.
#include "tests/foundations/heap/heapTest.h"

#include <algorithm>
#include <random>

namespace {

class memScheduleTest : public heapTest
{
};

struct owned {
    uint8_t* Bytes;
    uint64_t Size;
    uint8_t Seed;

    uint8_t At(uint64_t index) const { return static_cast<uint8_t>(Seed + index * 31 + (index >> 8)); }
};

class life
{
public:
    life(unsigned seed, uint64_t largest) : Random(seed), Largest(largest) {}

    void Step()
    {
        const uint64_t choice = Below(10);
        if (Owned.empty() || choice < 4)
            Allocate();
        else if (choice < 7)
            Reallocate();
        else
            Free();
    }

    void End()
    {
        while (!Owned.empty())
            Free();
    }

private:
    uint64_t Below(uint64_t end) { return std::uniform_int_distribution<uint64_t>(0, end - 1)(Random); }

    // Mostly small, sometimes up to the largest.
    uint64_t AnySize() { return 1 + Below(Below(4) == 0 ? Largest : 700); }

    owned& Any() { return Owned[Below(Owned.size())]; }

    void Fill(const owned& each)
    {
        for (uint64_t i = 0; i < each.Size; ++i)
            each.Bytes[i] = each.At(i);
    }

    void Check(const owned& each, uint64_t bytes)
    {
        for (uint64_t i = 0; i < bytes; ++i)
            ASSERT_EQ(each.Bytes[i], each.At(i)) << "byte " << i << " of " << each.Size;
    }

    void Allocate()
    {
        const uint64_t size = AnySize();
        uint8_t* const bytes = static_cast<uint8_t*>(memAlloc(size, Below(2) == 0));
        ASSERT_NE(bytes, nullptr);
        ASSERT_EQ(addressOf(bytes) % 64, 0u);
        Owned.push_back({bytes, size, static_cast<uint8_t>(Below(256))});
        Fill(Owned.back());
    }

    void Reallocate()
    {
        owned& each = Any();
        const uint64_t size = AnySize();
        const uint64_t keep = Below(3) == 0 ? 0 : Below(each.Size + 100);
        uint8_t* const former = each.Bytes;
        each.Bytes = static_cast<uint8_t*>(memRealloc(former, size, keep));
        ASSERT_NE(each.Bytes, nullptr);
        Check(each, std::min({each.Bytes == former ? each.Size : keep, each.Size, size}));
        each.Size = size;
        Fill(each);
    }

    void Free()
    {
        owned& each = Any();
        Check(each, each.Size);
        memFree(each.Bytes);
        each = Owned.back();
        Owned.pop_back();
    }

    std::mt19937 Random;
    uint64_t Largest;
    std::vector<owned> Owned;
};

}  // namespace

TEST_F(memScheduleTest, StaysConsistentThroughThousandsOfSteps)
{
    struct row {
        unsigned Seed, Steps;
        uint64_t Largest;
        size_t Slack;
    };
    constexpr row Rows[] = {{1, 3000, 5000, 0},
                            {2, 3000, 100000, 0},
                            {3, 1000, 700000, 100},
                            {4, 400, 2500000, 4096},
                            {5, 3000, 64, 1}};
    for (const row& each : Rows) {
        SCOPED_TRACE(each.Seed);
        fakeHeapSlack(each.Slack);
        life heap(each.Seed, each.Largest);
        for (unsigned step = 0; step < each.Steps; ++step) {
            heap.Step();
            ASSERT_EQ(heapProblem(), "") << "step " << step;
            ASSERT_FALSE(HasFatalFailure()) << "step " << step;
        }
        EXPECT_THAT(report(), testing::EndsWith("  No errors\r\n"));
        heap.End();
        ASSERT_EQ(statisticsNow(), (statistics{}));
    }
    EXPECT_EQ(fakeDebugText(), "");
}
