// A platform made of memory, for tests: it records every call in order, plays back scripted failures, and has
// a clock that tests move by hand.
//
// One process has one fake platform. Reset it in each test's set-up. The functions here may be called from
// any thread; those of the seam headers keep the promises of their contracts.
#pragma once

#include "platform/clock.h"
#include "platform/file.h"
#include "platform/locale.h"
#include "platform/registry.h"

#include <cstdint>
#include <functional>
#include <map>
#include <string>
#include <vector>

// Back to an empty disk, an empty registry, no script, no calls, a clock at 1 s and the date 2026-11-20.
// Open handles are forgotten: closing one is harmless, any other use fails. Private heaps are forgotten too,
// but stay usable for whoever holds one; they only count no more.
void fakeReset();

// --- Calls
// -----------------------------------------------------------------------------------------------------------

// Every call of a seam function since the reset or the last clearing, in order, as the function's name, a
// blank, and its arguments that matter: "fileOpen /a.txt write exclusive", "heapAllocate 1048576",
// "threadSleep 20", "threadWaitUntil 2000000000". Calls on a handle name what was opened: "fileWrite /a.txt 0
// 12" (offset, count), "fileLockRange /a.txt 0 100 wait", "registrySet Software\Name value", "shellOpen
// mailto:a@b.example". Pure questions
// (clock, locale, heapSize, processPath, debugAttached, debugRead, threadYield, threadId, wordWait, wordWake)
// are not recorded.
std::vector<std::string> fakeCalls();
void fakeClearCalls();

// How many recorded calls begin with this text.
size_t fakeCallCount(const std::string& beginning);

// Runs a closure inside the `nth` call (from 1, counted from now) of a seam function, before it does its work
// and without any lock of the fake held. Inside threadWaitUntil it runs without the caller's lock as well,
// and the call then returns without waiting.
void fakeOnCall(const std::string& function, unsigned nth, std::function<void()> closure);

// --- Failures
// --------------------------------------------------------------------------------------------------------

// Lets calls of a seam function fail: after `skip` that work, `times` calls. A pointer comes back null, a
// bool false, an optional and a text empty, a registryStatus Failed, a fileStatus as `Status` says. With the
// status Ok fileRead and fileWrite tell that all was done and do nothing, for counts too large to be real.
struct fakeFailure {
    unsigned Skip = 0;
    unsigned Times = 1;
    fileStatus Status = fileStatus::Failed;
};
void fakeFail(const std::string& function, const fakeFailure& failure = {});

// Lets the next fileWrite or fileRead stop after `bytes` bytes with Ok.
void fakeShort(const std::string& function, uint32_t bytes);

// --- Debugger
// --------------------------------------------------------------------------------------------------------

// What debugBreak throws here, so that a test can watch a fatal fault and live on.
struct fakeBreak {
};

// Whether debugBreak throws (as after a reset) or returns, as it does when a developer goes on.
void fakeBreakReturns(bool returns);

// All texts given to debugWrite, one after the other.
std::string fakeDebugText();

void fakeDebugAttached(bool attached);

// Lets debugRead fail for any read that touches this range.
void fakeUnreadable(const void* address, size_t bytes);

// --- Time and threads
// ------------------------------------------------------------------------------------------------

// Moves the steady clock and wakes all timed waits and sleeps that have come to their time.
void fakeClockMove(int64_t nanoseconds);
void fakeClockToday(const clockDate& today);

// Whether threadSleep moves the clock itself and returns (as after a reset), or waits for fakeClockMove.
void fakeSleepMovesClock(bool moves);

// How many threads wait in threadWaitUntil or threadSleep at this moment.
unsigned fakeClockWaiters();

// --- Heap
// ------------------------------------------------------------------------------------------------------------

// How many bytes heapSize tells beyond what was asked for, from the next region on. 0 after a reset.
void fakeHeapSlack(size_t bytes);
unsigned fakeHeapCount();    // private heaps that live
unsigned fakeHeapRegions();  // regions taken from them

// --- Files
// -----------------------------------------------------------------------------------------------------------

// The disk: paths with "/" or "\" alike, distinct by case. The roots "/" and "C:\" are there from the start.
void fakeFilePut(const std::u16string& path, const std::string& bytes);  // with its folders
bool fakeFileHas(const std::u16string& path);
std::string fakeFileBytes(const std::u16string& path);  // empty when there is none
unsigned fakeFileHandles();                             // open at this moment

struct fakeRange {
    uint64_t Offset;
    uint64_t Length;
};
std::vector<fakeRange> fakeFileLocks(const std::u16string& path);

// --- Registry
// --------------------------------------------------------------------------------------------------------

struct fakeValue {
    registryType Type;
    std::vector<uint8_t> Data;
};
void fakeRegistryPut(const std::string& path, const std::string& name, const fakeValue& value);
std::map<std::string, fakeValue>
fakeRegistryValues(const std::string& path);  // empty when there is no such key
unsigned fakeRegistryHandles();

// --- Locale
// ----------------------------------------------------------------------------------------------------------

// Texts that localeText and localeErrorText give; all are empty after a reset.
void fakeLocale(localeItem item, unsigned index, const std::string& text);
void fakeErrorText(uint32_t code, const std::string& text);

// --- Processes
// -------------------------------------------------------------------------------------------------------

// The exit code of the next process started; each ends at once.
void fakeProcessExit(int code);
