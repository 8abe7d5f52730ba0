// The script of the fake platform: what it records, what it runs, and what it lets fail.

#include "platform/debug.h"
#include "platform/process.h"
#include "platform/thread.h"
#include "tests/fakes/fakes.h"

#include <gmock/gmock.h>

#include <thread>

namespace {

using testing::ElementsAre;

class fakeScript : public testing::Test
{
protected:
    void SetUp() override { fakeReset(); }
};

TEST_F(fakeScript, RecordsCallsInOrderWithTheirArguments)
{
    fileHandle handle = fileNone;
    uint32_t done = 0;
    fileCreate(u"/\u00E9.txt", {.Write = true, .Exclusive = true}, handle);
    fileWrite(handle, 5, "abc", 3, done);
    fileLockRange(handle, 0, 100, true);
    fileClose(handle);
    threadSleep(20);
    processWait(processStart({"program", "one", "two"}));
    EXPECT_THAT(fakeCalls(),
                ElementsAre("fileCreate /\u00E9.txt write exclusive", "fileWrite /\u00E9.txt 5 3",
                            "fileLockRange /\u00E9.txt 0 100 wait", "fileClose /\u00E9.txt", "threadSleep 20",
                            "processStart program one two", "processWait"));
}

TEST_F(fakeScript, RecordsNoQuestions)
{
    clockSteadyNs();
    clockTodayUTC();
    localeText(localeItem::DecimalPoint);
    localeErrorText(2);
    threadYield();
    threadId();
    debugAttached();
    processPath();
    int value = 5;
    int copy = 0;
    EXPECT_TRUE(debugRead(&value, &copy, sizeof(value)));
    EXPECT_TRUE(fakeCalls().empty());
}

TEST_F(fakeScript, CountsCallsByTheirBeginning)
{
    threadSleep(20);
    threadSleep(21);
    threadSleep(5);
    EXPECT_EQ(fakeCallCount("threadSleep"), 3u);
    EXPECT_EQ(fakeCallCount("threadSleep 2"), 2u);
    EXPECT_EQ(fakeCallCount("sleep"), 0u);
    fakeClearCalls();
    EXPECT_EQ(fakeCallCount("threadSleep"), 0u);
}

TEST_F(fakeScript, RunsAClosureInsideTheCallThatItNames)
{
    std::vector<size_t> seen;
    threadSleep(1);
    fakeOnCall("threadSleep", 2, [&] { seen.push_back(fakeCallCount("threadSleep")); });
    fakeOnCall("threadSleep", 2, [&] { seen.push_back(100); });
    threadSleep(1);
    EXPECT_TRUE(seen.empty());
    threadSleep(1);
    threadSleep(1);
    EXPECT_THAT(seen, ElementsAre(3, 100));
}

TEST_F(fakeScript, LetsAClosureUseThePlatform)
{
    fakeOnCall("fileOpen", 1, [] {
        fakeFilePut(u"/a", "text");
        fakeFail("fileOpen", {.Status = fileStatus::Sharing});
    });
    fileHandle handle = fileNone;
    EXPECT_EQ(fileOpen(u"/a", {}, handle), fileStatus::Sharing);
    EXPECT_EQ(fileOpen(u"/a", {}, handle), fileStatus::Ok);
}

TEST_F(fakeScript, FailsAfterSomeCallsForSomeCalls)
{
    fakeFail("fileExists", {.Skip = 2, .Times = 2});
    fakeFail("fileExists", {.Skip = 1});
    fakeFilePut(u"/a", "");
    std::vector<bool> results;
    for (int call = 0; call < 7; ++call)
        results.push_back(fileExists(u"/a"));
    EXPECT_THAT(results, ElementsAre(true, true, false, false, true, false, true));
}

TEST_F(fakeScript, FailsInTheWayOfEachType)
{
    for (const char* function : {"heapCreate", "fileSizeOf", "registryCreate", "localeText", "processStart"})
        fakeFail(function);
    fakeFilePut(u"/a", "text");
    fakeLocale(localeItem::DecimalPoint, 0, ",");
    EXPECT_EQ(fileSizeOf(u"/a"), std::nullopt);
    EXPECT_EQ(registryCreate("Key"), nullptr);
    EXPECT_EQ(localeText(localeItem::DecimalPoint), "");
    EXPECT_EQ(processStart({"program"}), nullptr);
    EXPECT_EQ(localeText(localeItem::DecimalPoint), ",");
}

TEST_F(fakeScript, IsEmptyAfterAReset)
{
    bool ran = false;
    fakeFail("fileExists");
    fakeOnCall("fileExists", 1, [&] { ran = true; });
    fakeFilePut(u"/a", "text");
    fakeReset();
    EXPECT_FALSE(fileExists(u"/a"));
    EXPECT_TRUE(fileExists(u"/"));
    EXPECT_FALSE(ran);
    EXPECT_EQ(fakeCalls().size(), 2u);
}

TEST_F(fakeScript, BreaksByAThrowUnlessADeveloperGoesOn)
{
    EXPECT_THROW(debugBreak(), fakeBreak);
    fakeBreakReturns(true);
    EXPECT_NO_THROW(debugBreak());
    fakeReset();
    EXPECT_THROW(debugBreak(), fakeBreak);
}

TEST_F(fakeScript, CollectsWhatTheDebuggerIsTold)
{
    debugWrite("one\r\n");
    debugWrite("two");
    EXPECT_EQ(fakeDebugText(), "one\r\ntwo");
    EXPECT_FALSE(debugAttached());
    fakeDebugAttached(true);
    EXPECT_TRUE(debugAttached());
}

TEST_F(fakeScript, CannotReadWhatIsScriptedOrImpossible)
{
    const char memory[32] = "what is to be read";
    char copy[32] = {};
    fakeUnreadable(memory + 8, 4);
    EXPECT_TRUE(debugRead(memory, copy, 8));
    EXPECT_TRUE(debugRead(memory + 12, copy, 8));
    EXPECT_FALSE(debugRead(memory, copy, 9));
    EXPECT_FALSE(debugRead(memory + 11, copy, 1));
    EXPECT_FALSE(debugRead(memory + 4, copy, 20));
    EXPECT_FALSE(debugRead(nullptr, copy, 1));
    EXPECT_FALSE(debugRead(reinterpret_cast<const void*>(~uintptr_t{7}), copy, 16));
    EXPECT_FALSE(debugRead(memory, copy, SIZE_MAX));
}

TEST_F(fakeScript, EndsProcessesWithTheirExitCodes)
{
    fakeProcessExit(7);
    processHandle* const one = processStart({"one"});
    processHandle* const two = processStart({"two"});
    processKill(one);
    EXPECT_EQ(processWait(two), 0);
    EXPECT_EQ(processWait(one), 7);
    EXPECT_EQ(processStart({}), nullptr);
}

TEST_F(fakeScript, SpeaksTheLanguageThatItIsGiven)
{
    fakeLocale(localeItem::MonthFull, 3, "avril");
    fakeErrorText(2, "Nothing there.\r\n");
    EXPECT_EQ(localeText(localeItem::MonthFull, 3), "avril");
    EXPECT_EQ(localeText(localeItem::MonthFull, 4), "");
    EXPECT_EQ(localeErrorText(2), "Nothing there.\r\n");
    EXPECT_EQ(localeErrorText(3), "");
}

}  // namespace
