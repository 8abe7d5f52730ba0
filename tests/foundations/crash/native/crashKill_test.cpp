// Programs that end badly, one for each way, and the reports that they leave.
#include "platform/clock.h"
#include "platform/thread.h"
#include "tests/foundations/crash/native/crashText.h"
#include "tests/foundations/crash/native/victimRun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

using testing::AnyOf;
using testing::Contains;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

namespace {

// A report takes some hundredths of a second; the machine may have other things to do.
constexpr int64_t LongestReport = 10000;  // ms

std::filesystem::path Documents()
{
    static const std::filesystem::path folder =
        std::filesystem::temp_directory_path() /
        ("skyreckoning crash " + std::to_string(threadId()) + " " + std::to_string(clockSteadyNs()));
    return folder;
}

std::string ReadFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// All files that were left, in the order of their names.
std::vector<std::string> Reports()
{
    std::vector<std::filesystem::path> paths;
    for (const auto& entry : std::filesystem::directory_iterator(Documents()))
        paths.push_back(entry.path());
    std::sort(paths.begin(), paths.end());
    std::vector<std::string> reports;
    for (const auto& path : paths)
        reports.push_back(ReadFile(path));
    return reports;
}

class crashKillTest : public testing::Test
{
protected:
    void SetUp() override { std::filesystem::create_directory(Documents()); }
    void TearDown() override
    {
        std::error_code ignored;
        std::filesystem::remove_all(Documents(), ignored);
    }

    // Lets the victim end as it would by itself, and then under watch.
    void Kill(const std::string& way)
    {
        const std::string documents = Documents().string();
        Bare = victimRun(way, false, documents);
        EXPECT_THAT(Reports(), SizeIs(0u)) << "without a watch";
        Watched = victimRun(way, true, documents);
        EXPECT_EQ(Watched.Status, Bare.Status);
        EXPECT_LT(Watched.Milliseconds, LongestReport);
    }

    // The one report that a kill leaves.
    crashText Report(const std::string& way)
    {
        Kill(way);
        const std::vector<std::string> reports = Reports();
        EXPECT_THAT(reports, SizeIs(1u));
        return reports.empty() ? crashText{} : crashTextOf(reports[0]);
    }

    victimEnd Bare, Watched;
};

bool IsVictim(const std::string& module)
{
    return module == "crashVictim" || module == "crashVictim.exe";
}

// What every report of every kill has to say.
void ExpectWhole(const crashText& report, const std::string& function)
{
    EXPECT_EQ(report.Fault, "");
    EXPECT_NE(report.Processor, "");
    EXPECT_THAT(report.System, AnyOf("at least Windows 10", StartsWith("Linux ")));
    EXPECT_EQ(report.Version, "9.8.7.6");
    EXPECT_TRUE(std::is_sorted(report.Modules.begin(), report.Modules.end(),
                               [](const auto& a, const auto& b) { return a.Base < b.Base; }));
    EXPECT_EQ(std::count_if(report.Modules.begin(), report.Modules.end(),
                            [](const auto& module) { return IsVictim(module.Name); }),
              1);
    for (const crashTextModule& module : report.Modules) {
        EXPECT_LT(module.Base, module.End) << module.Name;
        EXPECT_TRUE(std::filesystem::exists(module.Path)) << module.Path;
    }
    EXPECT_THAT(report.Exceptions, SizeIs(1u));
    EXPECT_THAT(report.Crashed.Calls, Contains(function));
    EXPECT_THAT(report.Crashed.Registers, HasSubstr("RIP="));
    EXPECT_THAT(report.Memory, StartsWith("Reference address "));
}

void ExpectInVictim(const crashText& report)
{
    const crashTextException& one = report.Exceptions.at(0);
    EXPECT_TRUE(IsVictim(one.Module)) << one.Module;
    const auto module = std::find_if(report.Modules.begin(), report.Modules.end(),
                                     [](const auto& each) { return IsVictim(each.Name); });
    ASSERT_NE(module, report.Modules.end());
    EXPECT_EQ(module->Base + one.Offset, one.Address);
    EXPECT_LT(one.Address, module->End);
}

// --- Faults of the processor

TEST_F(crashKillTest, TellsOfAReadFromNull)
{
    const crashText report = Report("readsNull");
    ExpectWhole(report, "victimReadsNull");
    ExpectInVictim(report);
    EXPECT_EQ(report.Exceptions.at(0).Code, "C0000005");
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_ACCESS_VIOLATION");
    EXPECT_THAT(report.Exceptions.at(0).Parameters,
                ElementsAre("Operation: Read", "Adress:    0000000000000000"));
    EXPECT_EQ(report.Crashed.Calls.at(0), "victimReadsNull");
    EXPECT_THAT(report.Crashed.Calls, Contains("main"));
    EXPECT_THAT(report.Memory, HasSubstr("No memory in use\r\n"));
}

TEST_F(crashKillTest, TellsOfAWriteToNull)
{
    const crashText report = Report("writesNull");
    ExpectWhole(report, "victimWritesNull");
    ExpectInVictim(report);
    EXPECT_THAT(report.Exceptions.at(0).Parameters,
                ElementsAre("Operation: Write", "Adress:    0000000000000000"));
}

TEST_F(crashKillTest, TellsOfDataThatIsRun)
{
    const crashText report = Report("runsData");
    ExpectWhole(report, "victimRunsData");
    ExpectInVictim(report);
    EXPECT_EQ(report.Exceptions.at(0).Parameters.at(0), "Operation: Data Execution Prevention");
}

TEST_F(crashKillTest, TellsOfACallOfNullWhereItIsACrash)
{
    const std::string documents = Documents().string();
    const victimEnd end = victimRun("callsNull", true, documents);
    EXPECT_EQ(end.Status, victimRun("callsNull", false, documents).Status);
    // Where the system calls this a fault that the program could go on from, it lies outside the program's
    // own file, and is no crash by that.
    for (const std::string& bytes : Reports()) {
        const crashText report = crashTextOf(bytes);
        ExpectWhole(report, "victimCallsNull");
        EXPECT_EQ(report.Exceptions.at(0).Address, 0u);
        EXPECT_EQ(report.Exceptions.at(0).Module, "");
    }
}

TEST_F(crashKillTest, TellsOfADivisionByZero)
{
    const crashText report = Report("dividesByZero");
    ExpectWhole(report, "victimDividesByZero");
    ExpectInVictim(report);
    EXPECT_EQ(report.Exceptions.at(0).Code, "C0000094");
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_INT_DIVIDE_BY_ZERO");
}

TEST_F(crashKillTest, TellsOfABreakpoint)
{
    const crashText report = Report("breaks");
    ExpectWhole(report, "victimBreaks");
    ExpectInVictim(report);
    EXPECT_EQ(report.Exceptions.at(0).Code, "80000003");
    EXPECT_EQ(report.Exceptions.at(0).Flags, "Continuable");
}

TEST_F(crashKillTest, TellsOfAStackThatIsUsedUp)
{
    if (!victimSeesOverflow())
        GTEST_SKIP() << "this system ends a program before it can look at its stack";
    const crashText report = Report("overflows");
    ExpectWhole(report, "victimOverflows");
    ExpectInVictim(report);
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_STACK_OVERFLOW");
    EXPECT_EQ(report.Crashed.Calls.size(), 256u);
}

// --- The library's ends

TEST_F(crashKillTest, ThrowingAndCatchingIsNoCrash)
{
    Kill("throwsAndCatches");
    EXPECT_EQ(Watched.Status, 0u);
    EXPECT_THAT(Reports(), SizeIs(0u));
}

TEST_F(crashKillTest, TellsWhatAnUncaughtExceptionSays)
{
    Kill("throwsStandard");
    const std::vector<std::string> reports = Reports();
    ASSERT_THAT(reports, SizeIs(2u));
    // One with what the exception says, and one with where it was.
    EXPECT_THAT(reports[0], StartsWith("System information:\r\n  CPU: "));
    EXPECT_THAT(reports[0], HasSubstr("\r\n\r\nMemory map\n"));
    EXPECT_THAT(reports[0], EndsWith("\r\n" + std::string(80, '-') + "\r\nnobody expects this\r\n"));
    const crashText report = crashTextOf(reports[1]);
    ExpectWhole(report, "victimThrowsStandard");
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_BREAKPOINT");
}

TEST_F(crashKillTest, TellsOfAnUncaughtInt)
{
    const crashText report = Report("throwsInt");
    ExpectWhole(report, "victimThrowsInt");
    EXPECT_EQ(report.Exceptions.at(0).Name, " SIGABRT");
}

TEST_F(crashKillTest, TellsOfAnAbort)
{
    const crashText report = Report("aborts");
    ExpectWhole(report, "victimAborts");
    EXPECT_EQ(report.Exceptions.at(0).Name, " SIGABRT");
}

// --- The checked heap

struct heapRow {
    const char *Way, *Function, *Finding;
};

class crashHeapKillTest : public crashKillTest, public testing::WithParamInterface<heapRow>
{
};

TEST_P(crashHeapKillTest, TellsWhatTheHeapFound)
{
    const heapRow& row = GetParam();
    const crashText report = Report(row.Way);
    ExpectWhole(report, row.Function);
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_BREAKPOINT");
    EXPECT_THAT(report.Memory, HasSubstr(row.Finding));
}

constexpr heapRow HeapRows[] = {
    {"freesTwice", "victimFreesTwice", " already freed"},
    {"freesMiddle", "victimFreesMiddle", "memFree_Int - Trying to free an invalid memory zone at "},
    {"freesStranger", "victimFreesStranger", "memFree - No block for "},
    {"overruns", "victimOverruns", "    Invalid header of the next memory zone - 5A5A5A5A5A5A5A5A"},
    {"underruns", "victimUnderruns", "Invalid pointer to next memory zone or invalid memory zone size"},
    {"breaksChain", "victimBreaksChain", "    Invalid header of the next memory zone - 0000000000001234"},
    {"breaksBlock", "victimBreaksBlock", "  Corrupted memory block header"},
    {"reallocatesDamaged", "victimReallocatesDamaged", "memRealloc - Invalid pointer to next memory zone"},
};

INSTANTIATE_TEST_SUITE_P(crashKill, crashHeapKillTest, testing::ValuesIn(HeapRows),
                         [](const auto& row) { return std::string(row.param.Way); });

// --- Threads

TEST_F(crashKillTest, TellsOfACrashOnAWorker)
{
    const crashText report = Report("crashesOnWorker");
    ExpectWhole(report, "victimReadsNull");
    EXPECT_EQ(report.Crashed.Calls.at(0), "victimReadsNull");
    EXPECT_THAT(report.Threads, Contains(testing::Field(&crashTextThread::Calls, Contains("main"))));
}

TEST_F(crashKillTest, TellsOfAWorkersStackThatIsUsedUp)
{
    if (!victimSeesOverflow())
        GTEST_SKIP() << "this system ends a program before it can look at its stack";
    const crashText report = Report("overflowsOnWorker");
    ExpectWhole(report, "victimOverflows");
    EXPECT_EQ(report.Exceptions.at(0).Name, " EXCEPTION_STACK_OVERFLOW");
}

TEST_F(crashKillTest, ShowsWhereEveryOtherThreadStands)
{
    const crashText report = Report("crashesAmongOthers");
    ExpectWhole(report, "victimReadsNull");
    const auto waits = [](const crashTextThread& thread) {
        return std::find(thread.Calls.begin(), thread.Calls.end(), "victimWaits") != thread.Calls.end();
    };
    EXPECT_EQ(std::count_if(report.Threads.begin(), report.Threads.end(), waits), 3);
    for (const crashTextThread& thread : report.Threads)
        EXPECT_THAT(thread.Registers, HasSubstr("RSP="));
}

TEST_F(crashKillTest, TwoThreadsThatCrashAtOnceLeaveTwoReports)
{
    const victimEnd end = victimRun("crashesTwiceAtOnce", true, Documents().string());
    EXPECT_EQ(end.Status, victimRun("crashesTwiceAtOnce", false, Documents().string()).Status);
    const std::vector<std::string> reports = Reports();
    ASSERT_THAT(reports, SizeIs(2u));
    for (const std::string& bytes : reports)
        ExpectWhole(crashTextOf(bytes), "victimReadsNull");
}

// --- The reporter

TEST_F(crashKillTest, AReportThatMeetsADamagedStackGoesOn)
{
    if (victimRun("losesItsFrame", false, Documents().string()).Status == 1)
        GTEST_SKIP() << "calls are followed in another way here";
    const crashText report = Report("losesItsFrame");
    EXPECT_EQ(report.Fault, "");
    EXPECT_EQ(report.Exceptions.at(0).Code, "C0000005");
    EXPECT_EQ(report.Crashed.Calls.at(0), "victimLosesItsFrame");
    EXPECT_THAT(report.Memory, HasSubstr("No memory in use"));
}

TEST_F(crashKillTest, LeavesCrashesToADebugger)
{
    const victimEnd end = victimRun("readsNull", true, Documents().string(), victimUnder::Debugger);
    EXPECT_EQ(end.Status, victimRun("readsNull", false, Documents().string()).Status);
    EXPECT_THAT(Reports(), SizeIs(0u));
}

TEST_F(crashKillTest, SaysThatAReportCannotBeWritten)
{
    const std::string missing = (Documents() / "not there").string();
    const victimEnd end = victimRun("readsNull", true, missing);
    EXPECT_EQ(end.Status, victimRun("readsNull", false, missing).Status);
    EXPECT_THAT(Reports(), SizeIs(0u));
    if (!end.Told.empty()) {
        EXPECT_THAT(end.Told, HasSubstr("Could not create exception report file!: " + missing));
    }
}

TEST_F(crashKillTest, ALongPathEndsInAsMuchOfItsNameAsFits)
{
    // A name that cannot be in any folder, so nothing is written, but the path is told.
    const std::string start = Documents().string();
    const std::string folder = start + std::string(4090 - start.size(), 'x');
    const victimEnd end = victimRun("readsNull", true, folder);
    EXPECT_EQ(end.Status, victimRun("readsNull", false, folder).Status);
    EXPECT_THAT(Reports(), SizeIs(0u));
    if (!end.Told.empty()) {
        EXPECT_THAT(end.Told, HasSubstr(folder.substr(folder.size() - 20)));
        EXPECT_THAT(end.Told, EndsWith("x" + victimRoot().substr(0, 1) + "_Exc\n"));
    }
}

TEST_F(crashKillTest, WithoutDocumentsTheReportIsForTheRoot)
{
    const victimEnd end = victimRun("readsNull", true, "");
    EXPECT_THAT(Reports(), SizeIs(0u));
    if (end.Told.empty())
        GTEST_SKIP() << "this system does not tell where";
    const size_t at = end.Told.find(": ");
    ASSERT_NE(at, std::string::npos);
    const std::string path = end.Told.substr(at + 2, end.Told.find('\n') - at - 2);
    EXPECT_THAT(path, StartsWith(victimRoot() + "crashVictim_"));
    // Whoever owns the root may have got it.
    std::filesystem::remove(path);
}

}  // namespace
