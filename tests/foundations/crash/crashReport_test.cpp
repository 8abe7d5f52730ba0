// Whole reports of crashes that tests make up.
#include "foundations/crash/crashHandler.h"
#include "foundations/crash/crashReport.h"
#include "foundations/heap/mem.h"
#include "platform/thread.h"
#include "tests/fakes/fakeCrash.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>

using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

constexpr char Dashes[] =
    "--------------------------------------------------------------------------------\r\n";

crashModule Module(uint64_t base, uint64_t size, const char* name)
{
    crashModule module;
    module.Range = {base, size};
    std::strncpy(module.Name, name, sizeof module.Name - 1);
    return module;
}

crashSymbol Symbol(const char* name, uint64_t displacement)
{
    crashSymbol symbol;
    std::strncpy(symbol.Name, name, sizeof symbol.Name - 1);
    symbol.Displacement = displacement;
    return symbol;
}

class crashReportTest : public testing::Test
{
protected:
    void SetUp() override
    {
        fakeReset();
        std::fill(std::begin(AppVersion), std::end(AppVersion), '\0');
        crashRecord record;
        record.Code = 0xC0000005;
        record.Flags = 1;
        record.Address = 0x400123;
        fakeCrash().Records = {record};
        fakeCrash().Modules = {Module(0x400000, 0x10000, "sky.exe")};
        fakeCrash().Paths[0x400000] = "C:\\sky\\sky.exe";
    }

    crashRecord& Record() { return fakeCrash().Records.at(0); }

    // The report of the exception, by the road that a real one takes.
    std::string Text(const char* version = nullptr)
    {
        fakeCrash().Written.clear();
        const crashHandler handler(version);
        EXPECT_TRUE(fakeCrashHappens());
        return fakeCrash().Written.empty() ? "" : fakeCrash().Written.begin()->second;
    }

    // Of the report, what stands between two texts.
    std::string Between(const std::string& begin, const std::string& end)
    {
        const std::string text = Text();
        const size_t from = text.find(begin);
        return from == std::string::npos
                   ? "no " + begin
                   : text.substr(from + begin.size(), text.find(end, from) - from - begin.size());
    }
};

}  // namespace

TEST_F(crashReportTest, BeginsWithTheSystem)
{
    const std::string text = Text();
    EXPECT_THAT(text, StartsWith("System information:\r\n  CPU: "));
    EXPECT_THAT(text, HasSubstr("\r\n  OS: at least Windows 10\r\n\r\nLoaded modules:\r\n"));
}

TEST_F(crashReportTest, DoesNotGuessTheSystem)
{
    fakeCrash().SystemName = "";
    EXPECT_THAT(Text(), HasSubstr("\r\n  OS: Unknown\r\n\r\n"));
}

TEST_F(crashReportTest, TellsTheVersionThatItWasGiven)
{
    EXPECT_THAT(Text("1.2.3"), HasSubstr("\r\n\r\nApplication version: 1.2.3\r\nLoaded modules:\r\n"));
}

TEST_F(crashReportTest, CutsAVersionThatIsTooLong)
{
    EXPECT_THAT(Text(std::string(100, 'v').c_str()),
                HasSubstr("Application version: " + std::string(63, 'v') + "\r\n"));
}

TEST_F(crashReportTest, ListsModulesByAddressWithVersionAndPath)
{
    fakeCrash().Modules = {Module(0x7000, 0x500, "b.dll"), Module(0x9000, 0x100, "c.dll"),
                           Module(0x1000, 0x10, "a.dll")};
    fakeCrash().Paths = {{0x7000, "C:\\b.dll"}, {0x9000, "C:\\c.dll"}};
    fakeCrash().Versions["C:\\b.dll"] = {10, 0, 65535, 7};
    EXPECT_EQ(Between("Loaded modules:\r\n", Dashes),
              "    0000000000001000 - 0000000000001010 - a.dll - \r\n"
              "    0000000000007000 - 0000000000007500 - b.dll - Ver 10.0.65535.7 - C:\\b.dll\r\n"
              "    0000000000009000 - 0000000000009100 - c.dll - C:\\c.dll\r\n");
}

TEST_F(crashReportTest, GoesOnWithoutASnapshot)
{
    fakeCrash().SnapshotError = 299;
    const std::string text = Text();
    EXPECT_THAT(text, HasSubstr(std::string(Dashes) +
                                "Couldn't create the process snapshot!!!\r\n"
                                "  Error code 299 / 0000012B\r\nLoaded modules:\r\n" +
                                Dashes + "Exception: "));
    EXPECT_THAT(text, HasSubstr("Memory management:\r\n"));
}

TEST_F(crashReportTest, ShowsTheOtherThreads)
{
    // The one that crashed has a section of its own.
    fakeCrash().Threads = {{0x1A2B, 8}, {static_cast<uint32_t>(threadId()), 8}, {77, 15}};
    fakeCrash().Contexts[77].StackPointer = 0;
    const std::string text = Text();
    EXPECT_THAT(text,
                HasSubstr(std::string(Dashes) + "Thread ID: 00001A2B / 0000006699  Pri: 08\r\n" + Dashes +
                          "Thread ID: 0000004D / 0000000077  Pri: 15\r\n\r\n    Stack 0000000000000000\r\n"
                          "    Backtrace\r\n      (No symbols)\r\n\r\n" +
                          Dashes + "Exception: "));
}

TEST_F(crashReportTest, WritesAViolationWithWhatWasTried)
{
    struct row {
        uint64_t Operation;
        std::string Text;
    };
    Record().ParameterCount = 2;
    Record().Parameters[1] = 0xABC;
    for (const row& each :
         {row{0, "Read"}, row{1, "Write"}, row{8, "Data Execution Prevention"}, row{3, "Unknown (3)"}}) {
        Record().Parameters[0] = each.Operation;
        EXPECT_EQ(Between(Dashes, "\r\nException context:"),
                  "Exception: C0000005 EXCEPTION_ACCESS_VIOLATION, Non-continuable\r\n"
                  "Address: 0000000000400123 - sky.exe + 0000000000000123\r\nParameters:\r\n    Operation: " +
                      each.Text + "\r\n    Adress:    0000000000000ABC\r\n");
    }
}

TEST_F(crashReportTest, ShowsParametersThatItDoesNotKnowByNumber)
{
    Record().ParameterCount = 3;
    Record().Parameters[2] = 0x33;
    EXPECT_THAT(Text(),
                HasSubstr("    Adress:    0000000000000000\r\n    Param 3: 0000000000000033\r\n\r\n"));
    Record().ParameterCount = 1;
    Record().Parameters[0] = 0x11;
    EXPECT_EQ(Between("Parameters:\r\n", "\r\nException context:"), "    Param 1: 0000000000000011\r\n");
}

TEST_F(crashReportTest, AnInPageErrorHasItsStatus)
{
    Record().Code = 0xC0000006;
    Record().ParameterCount = 3;
    Record().Parameters[2] = 0xC000009C;
    EXPECT_EQ(
        Between("Parameters:\r\n", "\r\nException context:"),
        "    Operation: Read\r\n    Adress:    0000000000000000\r\n    NTSTATUS:  00000000C000009C\r\n");
}

TEST_F(crashReportTest, FollowsTheTablesOfAThrow)
{
    // A description, its list of types, the first type and that type's own description, by offsets from the
    // base.
    alignas(8) unsigned char tables[96] = {};
    const auto base = reinterpret_cast<uint64_t>(tables);
    const auto put = [&tables](size_t at, uint32_t value) { std::memcpy(tables + at, &value, sizeof value); };
    put(12, 16);
    put(16 + 4, 32);
    put(32 + 4, 48);
    std::memcpy(tables + 48 + 16, ".?AVsurprise@@", 15);

    Record().Code = 0xE06D7363;
    Record().Flags = 0;
    Record().ParameterCount = 4;
    Record().Parameters[0] = 0x19930520;
    Record().Parameters[1] = 0x5000;
    Record().Parameters[2] = base;
    Record().Parameters[3] = base;
    fakeCrash().Program = {base, sizeof tables};
    fakeCrash().Modules.push_back(Module(base, sizeof tables, "thrower.dll"));
    const auto hex = [](uint64_t value) {
        char text[17];
        std::snprintf(text, sizeof text, "%016llX", static_cast<unsigned long long>(value));
        return std::string(text);
    };
    EXPECT_EQ(
        Between(", Continuable\r\nAddress: 0000000000400123 - sky.exe + 0000000000000123\r\nParameters:\r\n",
                "\r\nException context:"),
        "    Info version:    0000000019930520\r\n    Throwing object: 0000000000005000\r\n"
        "    Exception info:  " +
            hex(base) + " -> " + hex(base + 16) + " -> " + hex(base + 32) + " -> " + hex(base + 48) +
            " -> .?AVsurprise@@\r\n    Module:          " + hex(base) + " - thrower.dll\r\n");
}

TEST_F(crashReportTest, ShowsChainedExceptionsOneAfterTheOther)
{
    crashRecord second;
    second.Code = 0xC0000094;
    second.Address = 0x99;
    fakeCrash().Records.push_back(second);
    EXPECT_THAT(Text(), HasSubstr("Parameters:\r\n" + std::string(Dashes) +
                                  "Exception: C0000094 EXCEPTION_INT_DIVIDE_BY_ZERO, Continuable\r\n"
                                  "Address: 0000000000000099\r\nParameters:\r\n\r\nException context:"));
}

TEST_F(crashReportTest, EndsALoopOfExceptions)
{
    fakeCrash().Records.assign(100, Record());
    const std::string text = Text();
    size_t count = 0;
    for (size_t at = 0; (at = text.find("\r\nException: ", at)) != std::string::npos; ++at)
        ++count;
    EXPECT_EQ(count, 16u);
}

TEST_F(crashReportTest, WritesEachGroupOfRegistersThatItHas)
{
    crashContext& context = fakeCrash().Context;
    for (unsigned i = 0; i < 15; ++i)
        context.Integers[i] = i + 1;
    for (unsigned i = 0; i < 4; ++i)
        context.Segments[i] = static_cast<uint16_t>(0x20 + i);
    for (unsigned i = 0; i < 6; ++i)
        context.Debug[i] = 0xD0 + i;
    context.ProgramCounter = 0x400123;
    context.ProcessorFlags = 0x10246;
    context.CodeSegment = 0x33;
    context.StackSegment = 0x2B;
    context.Vectors[10].High = 0xA;
    context.HasIntegers = context.HasSegments = context.HasDebug = context.HasControl = context.HasVectors =
        true;
    const std::string text = Between("Exception context:", "    Stack ");
    EXPECT_THAT(text,
                StartsWith("\r\n\r\n    Integer registers:\r\n"
                           "      RAX=0000000000000001  RBX=0000000000000002  RCX=0000000000000003\r\n"
                           "      RDX=0000000000000004  RSI=0000000000000005  RDI=0000000000000006\r\n"
                           "      RBP=0000000000000007  R8 =0000000000000008  R9 =0000000000000009\r\n"
                           "      R10=000000000000000A  R11=000000000000000B  R12=000000000000000C\r\n"
                           "      R13=000000000000000D  R14=000000000000000E  R15=000000000000000F\r\n"
                           "    Segment registers:\r\n      DS=0020  ES=0021  FS=0022  GS=0023\r\n"
                           "    Debug registers:\r\n"
                           "      DR0=00000000000000D0  DR1=00000000000000D1  DR2=00000000000000D2\r\n"
                           "      DR3=00000000000000D3  DR6=00000000000000D4  DR7=00000000000000D5\r\n"
                           "    Control registers:\r\n      RSP=0000000000000000  RIP=0000000000400123\r\n"
                           "      EFLAGS=00010246  CS=0033  SS=002B\r\n"
                           "    Floating point registers:\r\n"
                           "      XMM0 =00000000000000000000000000000000  XMM1 ="));
    EXPECT_THAT(text, HasSubstr("\r\n      XMM10=000000000000000A0000000000000000  XMM11="));
    context = {};
    EXPECT_EQ(Between("Exception context:", "    Stack "), "\r\n\r\n");
}

TEST_F(crashReportTest, MarksWordsOfTheStackThatPointIntoModules)
{
    uint64_t stack[34] = {1, 0x400000, 0x40FFFF, 0x410000, 0x3FFFFF};
    fakeCrash().Context.StackPointer = reinterpret_cast<uint64_t>(stack);
    const std::string text = Between("    Stack ", "    Backtrace");
    EXPECT_EQ(text.substr(16, 2 + 4 + 4 * 18 + 2 + 4 + 18),
              "\r\n      0000000000000001 *0000000000400000 *000000000040FFFF  0000000000410000"
              "\r\n      00000000003FFFFF");
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 9);  // 32 words in rows of four
}

TEST_F(crashReportTest, EndsTheStackWhereMemoryEnds)
{
    uint64_t stack[8] = {};
    fakeCrash().Context.StackPointer = reinterpret_cast<uint64_t>(stack);
    fakeUnreadable(stack + 1, 8);
    EXPECT_THAT(Between("    Stack ", "    Backtrace"), EndsWith("\r\n      0000000000000000\r\n"));
}

TEST_F(crashReportTest, NamesTheCalls)
{
    crashContext& context = fakeCrash().Context;
    for (const uint64_t frame : {0x400123ULL, 0x400456ULL, 0x400789ULL, 0x77ULL, 0x400999ULL})
        context.Frames[context.FrameCount++] = frame;
    // A call's return address may lie behind its function.
    fakeCrash().Symbols = {{0x400123, Symbol("inner", 3)}, {0x400455, Symbol("middle", 0xFF)}};
    crashLine line;
    std::strcpy(line.File, "sky.cpp");
    line.Line = 12;
    line.Displacement = 4;
    fakeCrash().Lines[0x400455] = line;
    EXPECT_EQ(Between("    Backtrace\r\n", Dashes),
              "      inner + 0000000000000003 0000000000400123\r\n"
              "      middle + 0000000000000100 0000000000400456\r\n"
              "          sky.cpp:12 + 5\r\n"
              "      sky.exe + 0000000000000789 0000000000400789\r\n"
              "      No symbol info for address 0000000000000077 0000000000000077\r\n"
              "      sky.exe + 0000000000000999 0000000000400999\r\n");
}

TEST_F(crashReportTest, TellsModulesWhereNothingNamesFunctions)
{
    fakeCrash().SymbolsWork = false;
    fakeCrash().Context.Frames[0] = 0x400123;
    fakeCrash().Context.FrameCount = 1;
    fakeCrash().Symbols = {{0x400123, Symbol("inner", 3)}};
    EXPECT_EQ(Between("    Backtrace\r\n", Dashes), "      sky.exe + 0000000000000123 0000000000400123\r\n");
    EXPECT_EQ(fakeCallCount("crashSymbolsEnd"), 0u);
}

TEST_F(crashReportTest, EndsTheSymbolsThatItStarted)
{
    Text();
    EXPECT_EQ(fakeCallCount("crashSymbolsStart"), 1u);
    EXPECT_EQ(fakeCallCount("crashSymbolsEnd"), 1u);
}

TEST_F(crashReportTest, EndsWithTheHeap)
{
    EXPECT_THAT(Text(), EndsWith("\r\nNo memory in use\r\n"));
    void* const held = memAlloc(100);
    EXPECT_THAT(Text(), HasSubstr("Memory management:\r\nReference address "));
    EXPECT_THAT(Text(), HasSubstr("\r\nAllocated zones 1 / "));
    memFree(held);
}

TEST_F(crashReportTest, ASectionThatFaultsItselfDoesNotEndTheReport)
{
    fakeCrash().ContextFaults = true;
    EXPECT_THAT(Text(),
                HasSubstr("\r\nException context:\r\nThis section met an exception itself: C0000005 at "
                          "0000000000001234\r\n" +
                          std::string(Dashes) + "Memory management:\r\nReference"));
}
