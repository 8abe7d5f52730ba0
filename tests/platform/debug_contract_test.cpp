#include "platform/debug.h"

#include "tests/platform/contract.h"

#include <cstdint>
#include <string>
#include <vector>

namespace {

using debugContract = contractTest;

TEST_F(debugContract, TakesAnyTextToShow)
{
    for (const std::string& text :
         {std::string(), std::string("one line\r\n"), std::string("\xC2\xB5 \xFF\xFE"),
          std::string("a\0b", 3), std::string(600, '.') + "\r\n"})
        debugWrite(text);
}

TEST_F(debugContract, TellsTheSameOfTheDebuggerTwice)
{
    EXPECT_EQ(debugAttached(), debugAttached());
}

TEST_F(debugContract, CopiesTheProgramsOwnMemory)
{
    std::vector<uint8_t> source(3'000'000);
    for (size_t i = 0; i < source.size(); i++)
        source[i] = static_cast<uint8_t>(i * 7);
    for (const size_t bytes : {size_t{1}, size_t{4095}, size_t{4097}, source.size()}) {
        SCOPED_TRACE(bytes);
        std::vector<uint8_t> target(bytes);
        ASSERT_TRUE(debugRead(source.data(), target.data(), bytes));
        EXPECT_TRUE(std::equal(target.begin(), target.end(), source.begin()));
    }
}

TEST_F(debugContract, LeavesWhatLiesBehindTheTargetAlone)
{
    const char source[] = "abcdef";
    char target[] = "......";
    ASSERT_TRUE(debugRead(source + 1, target + 1, 2));
    EXPECT_STREQ(target, ".bc...");
}

TEST_F(debugContract, TellsThatMemoryCannotBeRead)
{
    struct row {
        uintptr_t Address;
        size_t Bytes;
    };
    const row rows[] = {
        {0, 1}, {8, 8}, {UINTPTR_MAX - 3, 4}, {UINTPTR_MAX - 3, 16}, {0x8000'0000'0000'0000u, 8}};
    for (const row& each : rows) {
        SCOPED_TRACE(each.Address);
        char target[16];
        // An address of nothing at all is the point of this test.
        EXPECT_FALSE(debugRead(reinterpret_cast<const void*>(each.Address), target, each.Bytes));
    }
}

}  // namespace
