// Allocations that cannot be had.
#include "tests/foundations/heap/heapTest.h"

namespace {

class memAllocFailureTest : public heapTest
{
};

}  // namespace

TEST_F(memAllocFailureTest, GivesNullWhenNoPrivateHeapCanBeMade)
{
    for (const bool soft : {true, false}) {
        SCOPED_TRACE(soft);
        fakeFail("heapCreate");
        EXPECT_EQ(memAlloc(1, soft), nullptr);
        EXPECT_EQ(fakeDebugText(), "");
    }
    void* const pointer = memAlloc(1);
    EXPECT_NE(pointer, nullptr);
    memFree(pointer);
}

TEST_F(memAllocFailureTest, GivesNullWhenItIsSoftAndNoBlockCanBeHad)
{
    void* const first = memAlloc(1);
    fakeFail("heapAllocate");
    EXPECT_EQ(memAlloc(mebibyte, true), nullptr);
    EXPECT_EQ(failureText(), "");
    EXPECT_EQ(heapProblem(), "");
    void* const second = memAlloc(mebibyte, true);
    EXPECT_NE(second, nullptr);
    memFree(first);
    memFree(second);
}

TEST_F(memAllocFailureTest, IsFatalWhenItIsNotSoftAndNoBlockCanBeHad)
{
    void* const first = memAlloc(1);
    fakeFail("heapAllocate");
    EXPECT_EQ(faultOf([] { memAlloc(mebibyte); }), "memAlloc_Int - Could not obtain a new memory block\r\n");
    EXPECT_EQ(failureText(), "Out of memory!");
    EXPECT_EQ(heapProblem(), "");
    memFree(first);
}

TEST_F(memAllocFailureTest, KeepsThePrivateHeapForLaterWhenItsFirstBlockCannotBeHad)
{
    fakeFail("heapAllocate");
    EXPECT_EQ(memAlloc(1, true), nullptr);
    EXPECT_EQ(fakeHeapCount(), 1u);
    memFree(memAlloc(1));
    EXPECT_EQ(fakeCallCount("heapCreate"), 1u);
}

TEST_F(memAllocFailureTest, IsFatalForASizeThatHasNoZone)
{
    struct row {
        uint64_t Bytes;
        const char* Text;
    };
    constexpr row Rows[] = {
        {UINT64_MAX, "memAlloc_Int - Requested size overflow - 64"},
        {UINT64_MAX - 62, "memAlloc_Int - Requested size overflow - 64"},
        {UINT64_MAX - 63, "memAlloc_Int - Requested size overflow - 0"},
        {UINT64_MAX - 126, "memAlloc_Int - Requested size overflow - 0"},
    };
    void* const first = memAlloc(1);
    for (const row& each : Rows) {
        for (const bool soft : {true, false}) {
            SCOPED_TRACE(each.Bytes);
            EXPECT_EQ(faultOf([&] { memAlloc(each.Bytes, soft); }), std::string(each.Text) + "\r\n");
            EXPECT_EQ(failureText(), each.Text);
        }
    }
    memFree(first);
}

TEST_F(memAllocFailureTest, CannotHaveABlockWhoseSizeOverflows)
{
    void* const first = memAlloc(1);
    for (const uint64_t bytes : {UINT64_MAX - 127, UINT64_MAX - mebibyte, UINT64_MAX - mebibyte - 100}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(memAlloc(bytes, true), nullptr);
        EXPECT_EQ(faultOf([&] { memAlloc(bytes); }),
                  "memAlloc_Int - Could not obtain a new memory block\r\n");
    }
    EXPECT_EQ(fakeCallCount("heapAllocate"), 1u);
    EXPECT_EQ(heapProblem(), "");
    memFree(first);
}

TEST_F(memAllocFailureTest, GivesNullAndGoesOnWhenADeveloperDoes)
{
    fakeBreakReturns(true);
    void* const first = memAlloc(1);
    EXPECT_EQ(memAlloc(UINT64_MAX), nullptr);
    fakeFail("heapAllocate");
    EXPECT_EQ(memAlloc(mebibyte), nullptr);
    EXPECT_EQ(fakeCallCount("debugBreak"), 2u);
    EXPECT_EQ(heapProblem(), "");
    memFree(first);
}
