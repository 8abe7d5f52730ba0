#include "platform/debug.h"

#include "platform/heap.h"
#include "tests/platform/native/child.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

TEST(debugNative, EndsTheProcessAtABreakpointThatNobodyHandles)
{
    EXPECT_DEATH(debugBreak(), "");
}

CHILD_TEST(BreaksIntoTheDebugger)
{
    debugBreak();
    childEnd(true);
}

TEST(debugNative, EndsTheProcessAgainstItsWill)
{
    EXPECT_EQ(childRun("BreaksIntoTheDebugger"), -1);
}

TEST(debugNative, TellsThatMemoryIsGone)
{
    constexpr size_t Bytes = 16u << 20;
    heapHandle* const heap = heapCreate(0);
    ASSERT_NE(heap, nullptr);
    char* const region = static_cast<char*>(heapAllocate(heap, Bytes));
    ASSERT_NE(region, nullptr);
    std::memset(region, 'x', Bytes);
    char target[16] = {};
    EXPECT_TRUE(debugRead(region, target, sizeof(target)));
    EXPECT_EQ(target[15], 'x');
    heapDestroy(heap);
    EXPECT_FALSE(debugRead(region, target, sizeof(target)));
    EXPECT_FALSE(debugRead(region + Bytes / 2, target, sizeof(target)));
}

}  // namespace
