// The heap on the real platform: real regions, real threads, and the real end of the program.
#include "foundations/heap/mem.h"

#include "foundations/heap/memHeap.h"
#include "foundations/heap/memReportSink.h"
#include "platform/debug.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

class stringSink final : public memReportSink
{
public:
    std::string Out;

private:
    bool Write(const char* bytes, size_t count) override
    {
        Out.append(bytes, count);
        return true;
    }
};

std::string report()
{
    stringSink sink;
    memReport(sink);
    return sink.Out;
}

struct buffer {
    char* Bytes = nullptr;
    uint64_t Size = 0;
};

bool holds(const buffer& each, char mark, uint64_t bytes)
{
    for (uint64_t i = 0; i < bytes; ++i)
        if (each.Bytes[i] != mark)
            return false;
    return true;
}

// Some steps of one thread, which marks all its memory with its own letter. False when another's shows up.
bool live(char mark, unsigned steps)
{
    std::mt19937 random(static_cast<std::mt19937::result_type>(mark));
    std::array<buffer, 8> buffers;
    bool sound = true;
    for (unsigned step = 0; step < steps; ++step) {
        buffer& each = buffers[random() % buffers.size()];
        const uint64_t size = random() % 4 == 0 ? 0 : 1 + random() % 20000;
        sound = holds(each, mark, each.Size) && sound;
        char* const former = each.Bytes;
        each.Bytes = static_cast<char*>(memRealloc(former, size, each.Size));
        sound = holds(each, mark, std::min(each.Size, size)) && sound;
        each.Size = size;
        if (size > 0)
            std::memset(each.Bytes, mark, size);
    }
    for (const buffer& each : buffers) {
        sound = holds(each, mark, each.Size) && sound;
        memFree(each.Bytes);
    }
    return sound;
}

// What a program does that ends by a second free; the run-time library must not stay in its way.
void freeTwice()
{
    void* const wall = memAlloc(100);
    void* const pointer = memAlloc(100);
    void* const end = memAlloc(100);
    memFree(pointer);
    memFree(pointer);
    memFree(end);
    memFree(wall);
}

// Whether the platform shows its texts for the developer on standard error.
bool debugTextIsVisible()
{
    testing::internal::CaptureStderr();
    debugWrite("seen");
    return testing::internal::GetCapturedStderr() == "seen";
}

}  // namespace

TEST(memOnTheRealPlatform, AllocatesResizesAndFrees)
{
    char* const small = static_cast<char*>(memAlloc(100));
    ASSERT_NE(small, nullptr);
    EXPECT_EQ(memAddress(small) % 64, 0u);
    std::memset(small, 's', 100);
    void* const wall = memAlloc(1);
    char* const large = static_cast<char*>(memRealloc(small, 3'000'000, 100));
    EXPECT_EQ(std::string(large, 100), std::string(100, 's'));
    std::memset(large, 'l', 3'000'000);
    EXPECT_THAT(report(), testing::EndsWith("  No errors\r\n"));
    memFree(large);
    memFree(wall);
    EXPECT_THAT(report(), testing::EndsWith("No memory in use\r\n"));
    EXPECT_EQ(memHeap.Heap, nullptr);
}

TEST(memOnTheRealPlatform, GivesNullForMoreThanThereIsWhenItIsSoft)
{
    EXPECT_EQ(memAlloc(uint64_t{1} << 62, true), nullptr);
    memFree(memAlloc(1));
    EXPECT_EQ(memHeap.Heap, nullptr);
}

TEST(memOnTheRealPlatform, ServesSeveralThreadsAtOnce)
{
    std::atomic<bool> sound = true;
    {
        std::vector<std::jthread> threads;
        for (const char mark : {'a', 'b', 'c', 'd'})
            threads.emplace_back([mark, &sound] {
                if (!live(mark, 1500))
                    sound = false;
            });
    }
    EXPECT_TRUE(sound);
    EXPECT_THAT(report(), testing::EndsWith("No memory in use\r\n"));
    EXPECT_EQ(memHeap.Blocks.Bytes, 0u);
    EXPECT_EQ(memHeap.Zones.Bytes, 0u);
}

TEST(memOnTheRealPlatform, CanBeReportedWhileOtherThreadsGoOn)
{
    std::atomic<bool> done = false;
    std::jthread other([&done] {
        live('x', 1500);
        done = true;
    });
    unsigned reports = 0;
    while (!done || reports == 0) {
        EXPECT_THAT(report(), testing::StartsWith("Reference address "));
        ++reports;
    }
}

TEST(memOnTheRealPlatformDeathTest, EndsTheProgramOnASecondFree)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Elsewhere only a debugger sees the text.
    testing::Matcher<const std::string&> told = testing::_;
    if (debugTextIsVisible())
        told = testing::ContainsRegex("memFree_Int - Memory zone at [0-9A-F]{16} already freed\n"
                                      "            - Next zone [0-9A-F]{16}, Prev zone [0-9A-F]{16}\n"
                                      "            - Zone size 00000000000000000192\n"
                                      "            - Block [0-9A-F]{16}, Size [0-9]{20}\n");
    EXPECT_DEATH(freeTwice(), told);
}
