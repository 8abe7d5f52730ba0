#include "tests/platform/contract.h"
#include "tests/platform/native/child.h"
#include "tests/platform/win32/crashWatched.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <thread>

// The system has it; the compiler's headers do not.
extern "C" __declspec(dllimport) void WINAPI RtlRaiseException(EXCEPTION_RECORD* record);

namespace {

using win32Crash = contractTest;

constexpr int SeenAsExpected = 43;

TEST_F(win32Crash, ShowsItsBreakpointAndGoesOn)
{
    const watched watch;
    crashBreak();
    std::thread(crashBreak).join();
    ASSERT_EQ(watch.Seen().size(), 2u);
    for (const crashRecord& record : watch.Seen()) {
        EXPECT_EQ(record.Code, crashBreakpointMet);
        EXPECT_EQ(record.Flags, 0u);
        EXPECT_TRUE(crashProgram().Has(record.Address));
    }
}

TEST_F(win32Crash, GoesOnFromABreakpointThatNobodyWatches)
{
    crashBreak();
    {
        const watched watch;
    }
    crashBreak();
}

TEST_F(win32Crash, TellsWhatItWasChainedFrom)
{
    const watched watch;
    const resuming others;
    EXCEPTION_RECORD first = {};
    first.ExceptionCode = 0xE0005678;
    first.NumberParameters = 2;
    first.ExceptionInformation[1] = 17;
    EXCEPTION_RECORD second = {};
    second.ExceptionCode = OwnCode;
    second.ExceptionRecord = &first;
    RtlRaiseException(&second);
    ASSERT_EQ(watch.Seen().size(), 2u);
    EXPECT_EQ(watch.Seen()[0].Code, OwnCode);
    EXPECT_EQ(watch.Seen()[1].Code, 0xE0005678);
    ASSERT_EQ(watch.Seen()[1].ParameterCount, 2u);
    EXPECT_EQ(watch.Seen()[1].Parameters[1], 17u);
}

TEST_F(win32Crash, KeepsTheReasonOfAFailure)
{
    const watched watch([](const crashEvent&) { SetLastError(ERROR_GEN_FAILURE); });
    SetLastError(ERROR_FILE_NOT_FOUND);
    crashBreak();
    EXPECT_EQ(GetLastError(), static_cast<DWORD>(ERROR_FILE_NOT_FOUND));
}

TEST_F(win32Crash, KeepsTheSystemsDialogsAwayForItsTime)
{
    // Windows never takes the one about alignment back.
    const UINT former = SetErrorMode(SEM_NOOPENFILEERRORBOX);
    {
        const watched watch;
        EXPECT_EQ(GetErrorMode(), 0x8007u);
    }
    EXPECT_EQ(SetErrorMode(former) | SEM_NOALIGNMENTFAULTEXCEPT,
              static_cast<UINT>(SEM_NOOPENFILEERRORBOX | SEM_NOALIGNMENTFAULTEXCEPT));
}

TEST_F(win32Crash, LeavesTheHandlerOfAbortAsItWas)
{
    const auto own = [](int) {};
    const auto former = std::signal(SIGABRT, own);
    {
        const watched watch;
    }
    EXPECT_EQ(std::signal(SIGABRT, former), static_cast<void (*)(int)>(own));
}

void EndAsExpected(bool expected)
{
    std::_Exit(expected ? SeenAsExpected : 1);
}

TEST_F(win32Crash, SeesAnAbortAndLetsItEnd)
{
    const auto abortWatched = [] {
        crashWatch([](const crashEvent& event) {
            crashRecord record;
            if (crashRecordOf(event, 0, record) && record.Code == crashAborted && record.Flags == 1)
                std::fputs("seen", stderr);
        });
        std::abort();
    };
    EXPECT_EXIT(abortWatched(), testing::ExitedWithCode(3), "seen");
}

// The program's own functions in the calls that led to an event.
unsigned OwnCalls(const crashContext& context)
{
    unsigned count = 0;
    for (unsigned at = 0; at < context.FrameCount; ++at)
        count += crashProgram().Has(context.Frames[at]) ? 1u : 0u;
    return count;
}

TEST_F(win32Crash, TellsWhereAnAbortCameFrom)
{
    const auto reporter = [](const crashEvent& event) {
        crashRecord record;
        crashContext context;
        const bool started = crashSymbolsStart();
        crashRecordOf(event, 0, record);
        crashContextOf(event, context);
        // The first is the library's function that calls the handler.
        EndAsExpected(started && context.Frames[0] == record.Address &&
                      context.ProgramCounter == record.Address && !crashProgram().Has(record.Address) &&
                      OwnCalls(context) > 2);
    };
    EXPECT_EXIT((crashWatch(reporter), std::abort()), testing::ExitedWithCode(SeenAsExpected), "");
}

TEST_F(win32Crash, FollowsTheCallsBehindACallToNowhere)
{
    const auto reporter = [](const crashEvent& event) {
        crashContext context;
        const bool started = crashSymbolsStart();
        crashContextOf(event, context);
        EndAsExpected(started && context.FrameCount > 2 && context.Frames[0] == 0 &&
                      crashProgram().Has(context.Frames[1]) && OwnCalls(context) > 2);
    };
    EXPECT_EXIT((crashWatch(reporter), CallNowhere()), testing::ExitedWithCode(SeenAsExpected), "");
}

// With larger frames it is the library's probe that meets the end of the stack.
template <size_t Bytes>
[[gnu::noinline]] int UseUpMore(int depth)
{
    volatile char some[Bytes];
    some[0] = static_cast<char>(depth);
    return depth < 0 ? 0 : UseUpMore<Bytes>(depth + 1) + some[0];
}

template <size_t Bytes>
void OverflowWatched()
{
    crashWatch([](const crashEvent& event) {
        crashRecord record;
        crashContext context;
        const bool started = crashSymbolsStart();
        crashContextOf(event, context);
        EndAsExpected(crashRecordOf(event, 0, record) && record.Code == crashStackOverflow && started &&
                      context.FrameCount == crashFramesMost && context.Frames[100] == context.Frames[101]);
    });
    KeepStackForReport();
    UseUpMore<Bytes>(0);
}

TEST_F(win32Crash, HasRoomToReportAnOverflowOfTheStack)
{
    EXPECT_EXIT(OverflowWatched<100>(), testing::ExitedWithCode(SeenAsExpected), "");
    EXPECT_EXIT(OverflowWatched<6000>(), testing::ExitedWithCode(SeenAsExpected), "");
}

CHILD_TEST(BreaksForADebugger)
{
    crashBreak();
    childEnd(true);
}

// What a debugger of another process of this program sees.
class debugger
{
public:
    explicit debugger(const std::string& child)
    {
        std::string command = '"' + processPath() + "\" --gtest_filter=DISABLED_child." + child +
                              " --gtest_also_run_disabled_tests --gtest_brief=1";
        STARTUPINFOA startup = {};
        startup.cb = sizeof startup;
        PROCESS_INFORMATION started = {};
        if (CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, DEBUG_ONLY_THIS_PROCESS, nullptr,
                           nullptr, &startup, &started) == FALSE)
            return;
        CloseHandle(started.hThread);
        CloseHandle(started.hProcess);
        constexpr DWORD patienceMs = 10'000;
        DEBUG_EVENT event;
        while (!HasEnded && WaitForDebugEvent(&event, patienceMs) != FALSE)
            ContinueDebugEvent(event.dwProcessId, event.dwThreadId, Answer(event));
    }

    unsigned OwnBreakpoints = 0;
    bool HasEnded = false;
    DWORD EndCode = 0;

private:
    DWORD Answer(const DEBUG_EVENT& event)
    {
        if (event.dwDebugEventCode == CREATE_PROCESS_DEBUG_EVENT) {
            Program = {reinterpret_cast<uint64_t>(event.u.CreateProcessInfo.lpBaseOfImage),
                       crashProgram().Size};
            CloseHandle(event.u.CreateProcessInfo.hFile);
        }
        if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT) {
            HasEnded = true;
            EndCode = event.u.ExitProcess.dwExitCode;
        }
        if (event.dwDebugEventCode != EXCEPTION_DEBUG_EVENT)
            return DBG_CONTINUE;
        const EXCEPTION_RECORD& record = event.u.Exception.ExceptionRecord;
        if (record.ExceptionCode != EXCEPTION_BREAKPOINT)
            return DBG_EXCEPTION_NOT_HANDLED;
        // The system breaks once by itself, in its own library.
        if (Program.Has(reinterpret_cast<uint64_t>(record.ExceptionAddress)))
            ++OwnBreakpoints;
        return DBG_CONTINUE;
    }

    crashRange Program;
};

TEST_F(win32Crash, BreaksIntoADebuggerAndGoesOn)
{
    const debugger seen("BreaksForADebugger");
    EXPECT_TRUE(seen.HasEnded);
    EXPECT_EQ(seen.OwnBreakpoints, 1u);
    EXPECT_EQ(seen.EndCode, static_cast<DWORD>(ChildGood));
}

}  // namespace
