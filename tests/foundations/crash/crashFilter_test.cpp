#include "foundations/crash/crashFilter.h"

#include "foundations/crash/crashCodes.h"

#include <gtest/gtest.h>

#include <string>

namespace {

constexpr crashRange Program{0x400000, 0x1000};
constexpr uint64_t Inside = 0x400FFF;
constexpr uint64_t Outside = 0x401000;

crashRecord At(uint32_t code, uint64_t address, uint32_t flags = 0)
{
    crashRecord record;
    record.Code = code;
    record.Flags = flags;
    record.Address = address;
    return record;
}

crashRecord Thrown(uint64_t information, uint32_t parameters = 3)
{
    crashRecord record = At(0xE06D7363, Outside, 1);
    record.ParameterCount = parameters;
    record.Parameters[0] = 0x19930520;
    record.Parameters[2] = information;
    return record;
}

}  // namespace

TEST(crashFilter, LeavesOutWhatSystemsAndCompilersSayToThemselves)
{
    for (const uint32_t code :
         {0x40010006u, 0x40000000u, 0x7FFFFFFFu, 0x406D1388u, 1717u,       0xC00006B5u, 0x800706B5u,
          1722u,       1733u,       1818u,       0x0EEDFADEu, 0x80010000u, 0x8001FFFFu, 0xB0010108u,
          0x80004005u, 0x80040155u, 0xC0000008u, 0xE0434352u, 0x20474343u, 0x21474343u, 0x22474343u}) {
        SCOPED_TRACE(code);
        EXPECT_FALSE(crashCounts(At(code, Inside, 1), Program, false));
        EXPECT_FALSE(crashCounts(At(code, Inside, 1), Program, true));
    }
}

TEST(crashFilter, CountsWhatIsOnlyNearThose)
{
    for (const uint32_t code :
         {0x80000003u, 0x3FFFFFFFu, 0xC06D1388u, 1716u, 1718u, 1723u, 0x800106BAu + 0x10000, 0x0EEDFADDu,
          0x80020000u, 0xC0010000u, 0x80004004u, 0x80040154u, 0xC0000009u, 0xE0434353u, 0x20474344u, 0x6F4u,
          0xC00000FDu, 0xE0000006u}) {
        SCOPED_TRACE(code);
        EXPECT_TRUE(crashCounts(At(code, Outside), Program, false));
    }
}

TEST(crashFilter, AViolationThatCanGoOnCountsInTheProgramAlone)
{
    EXPECT_TRUE(crashCounts(At(0xC0000005, Inside), Program, false));
    EXPECT_TRUE(crashCounts(At(0xC0000005, Program.Base), Program, false));
    EXPECT_FALSE(crashCounts(At(0xC0000005, Outside), Program, false));
    EXPECT_FALSE(crashCounts(At(0xC0000005, Program.Base - 1), Program, false));
    // Other flags than the one say that it can go on, too.
    EXPECT_FALSE(crashCounts(At(0xC0000005, Outside, 2), Program, false));
}

TEST(crashFilter, AViolationThatCannotGoOnCountsEverywhere)
{
    EXPECT_TRUE(crashCounts(At(0xC0000005, Outside, 1), Program, false));
    EXPECT_TRUE(crashCounts(At(0xC0000005, 0, 1), Program, false));
}

TEST(crashFilter, AThrowCountsIfItsDescriptionLiesInTheProgram)
{
    EXPECT_TRUE(crashCounts(Thrown(Inside), Program, false));
    EXPECT_FALSE(crashCounts(Thrown(Outside), Program, false));
    EXPECT_FALSE(crashCounts(Thrown(Inside, 2), Program, false));
}

TEST(crashFilter, CountsTheDoubtfulOnesTooWhenAllAreAskedFor)
{
    EXPECT_TRUE(crashCounts(At(0xC0000005, Outside), Program, true));
    EXPECT_TRUE(crashCounts(Thrown(Outside), Program, true));
}

TEST(crashCodes, NamesWhatItKnows)
{
    EXPECT_EQ(crashCodeName(0xC0000005), " EXCEPTION_ACCESS_VIOLATION");
    EXPECT_EQ(crashCodeName(0x6F4), " RPC_X_NULL_REF_POINTER");
    EXPECT_EQ(crashCodeName(0xC0000374), " STATUS_HEAP_CORRUPTION");
    EXPECT_EQ(crashCodeName(0xC00002B5), " STATUS_FLOAT_MULTIPLE_TRAPS");
    EXPECT_EQ(crashCodeName(0xC0000004), " Unknown exception");
}
