#include "tests/platform/contract.h"
#include "tests/platform/win32/crashWatched.h"

#include <cstdlib>
#include <thread>

namespace {

using win32CrashGuard = contractTest;

int* volatile Nowhere = nullptr;
volatile int Zero = 0;

void Read(void*)
{
    static_cast<void>(*const_cast<volatile int*>(Nowhere));
}

void Write(void*)
{
    *const_cast<volatile int*>(Nowhere) = 1;
}

void Call(void*)
{
    CallNowhere();
}

void Divide(void*)
{
    Zero = 7 / Zero;
}

void Abort(void*)
{
    std::abort();
}

void Raise(void*)
{
    RaiseException(OwnCode, EXCEPTION_NONCONTINUABLE, 0, nullptr);
}

// Reads backwards from an address that is not there, as a copy of overlapping memory does.
void ReadBackwards(void*)
{
    asm volatile("std");
    Read(nullptr);
}

// The pages tell when they are touched, once.
void TouchGuardPage(void*)
{
    static_cast<void>(*static_cast<volatile char*>(
        VirtualAlloc(nullptr, 1, MEM_COMMIT | MEM_RESERVE, PAGE_READWRITE | PAGE_GUARD)));
}

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winfinite-recursion"
[[gnu::noinline]] int UseUpTheStack(int depth)
{
    volatile char some[1000];
    some[0] = static_cast<char>(depth);
    return UseUpTheStack(depth + 1) + some[0];
}
#pragma GCC diagnostic pop

constexpr uint64_t PageBytes = 4096;

void Overflow(void*)
{
    UseUpTheStack(0);
}

struct faultRow {
    void (*Step)(void*);
    uint32_t Code;
    uint32_t Flags;
    std::vector<uint64_t> Parameters;
};

const faultRow Faults[] = {
    {Read, crashAccessViolation, 0, {0, 0}},
    {Write, crashAccessViolation, 0, {1, 0}},
    {Call, crashAccessViolation, 0, {8, 0}},
    {Divide, 0xC0000094, 0, {}},
    {ReadBackwards, crashAccessViolation, 0, {0, 0}},
    {Abort, crashAborted, 1, {}},
    {Raise, OwnCode, 1, {}},
};

void ExpectFault(const faultRow& row)
{
    crashRecord fault;
    EXPECT_FALSE(crashGuarded(row.Step, nullptr, fault));
    EXPECT_EQ(fault.Code, row.Code);
    EXPECT_EQ(fault.Flags, row.Flags);
    EXPECT_EQ(std::vector(fault.Parameters, fault.Parameters + fault.ParameterCount), row.Parameters);
}

bool DirectionIsUp()
{
    constexpr uint64_t directionFlag = 0x400;
    return (__builtin_ia32_readeflags_u64() & directionFlag) == 0;
}

TEST_F(win32CrashGuard, GoesOnBehindFaultsOfAGuardedStepAgainAndAgain)
{
    const watched watch;
    for (int round = 0; round < 2; ++round) {
        for (const faultRow& row : Faults) {
            SCOPED_TRACE(row.Code);
            ExpectFault(row);
            EXPECT_TRUE(DirectionIsUp());
        }
    }
    EXPECT_TRUE(watch.Seen().empty());
}

TEST_F(win32CrashGuard, GoesOnBehindFaultsOfAGuardedStepOnAnyThread)
{
    const watched watch;
    std::thread([] {
        for (const faultRow& row : Faults)
            ExpectFault(row);
    }).join();
    EXPECT_TRUE(watch.Seen().empty());
}

TEST_F(win32CrashGuard, TellsOfAGuardedBreakpointAndGuardPage)
{
    const watched watch;
    crashRecord fault;
    EXPECT_FALSE(crashGuarded([](void*) { crashBreak(); }, nullptr, fault));
    EXPECT_EQ(fault.Code, crashBreakpointMet);
    EXPECT_FALSE(crashGuarded(TouchGuardPage, nullptr, fault));
    EXPECT_EQ(fault.Code, static_cast<uint32_t>(STATUS_GUARD_PAGE_VIOLATION));
    EXPECT_TRUE(watch.Seen().empty());
}

TEST_F(win32CrashGuard, GuardsStepsWithinSteps)
{
    const watched watch;
    const auto outer = [](void*) {
        ExpectFault(Faults[0]);
        crashRecord unused;
        EXPECT_TRUE(crashGuarded([](void*) {}, nullptr, unused));
        Divide(nullptr);
    };
    ExpectFault({outer, 0xC0000094, 0, {}});
    EXPECT_TRUE(watch.Seen().empty());
}

TEST_F(win32CrashGuard, GuardsNoStepThatHasEnded)
{
    const watched watch;
    const resuming others;
    crashRecord fault;
    EXPECT_TRUE(crashGuarded([](void*) {}, nullptr, fault));
    ExpectFault(Faults[0]);
    RaiseException(OwnCode, 0, 0, nullptr);
    ASSERT_EQ(watch.Seen().size(), 1u);
    EXPECT_EQ(watch.Seen()[0].Code, OwnCode);
}

TEST_F(win32CrashGuard, LeavesAGuardedStepItsOwnExceptions)
{
    const watched watch;
    crashRecord fault;
    bool caught = false;
    const auto step = [](void* argument) {
        OutputDebugStringA("told\n");
        try {
            throw 1;
        } catch (int) {
            *static_cast<bool*>(argument) = true;
        }
    };
    EXPECT_TRUE(crashGuarded(step, &caught, fault));
    EXPECT_TRUE(caught);
}

TEST_F(win32CrashGuard, GuardsOneThreadOnly)
{
    const watched watch;
    crashRecord fault;
    EXPECT_TRUE(crashGuarded([](void*) { std::thread(crashBreak).join(); }, nullptr, fault));
    ASSERT_EQ(watch.Seen().size(), 1u);
    EXPECT_EQ(watch.Seen()[0].Code, crashBreakpointMet);
}

TEST_F(win32CrashGuard, GoesOnBehindAGuardedOverflowOfTheStack)
{
    const watched watch;
    std::thread([] {
        const crashThreadStack stack;
        KeepStackForReport();
        // Each is met where the last was, with as much room behind it.
        uint64_t end = 0;
        for (int round = 0; round < 3; ++round) {
            crashRecord fault;
            EXPECT_FALSE(crashGuarded(Overflow, nullptr, fault));
            EXPECT_EQ(fault.Code, crashStackOverflow);
            if (round > 0) {
                EXPECT_EQ(fault.Parameters[1] / PageBytes, end);
            }
            end = fault.Parameters[1] / PageBytes;
        }
    }).join();
    EXPECT_TRUE(watch.Seen().empty());
}

}  // namespace
