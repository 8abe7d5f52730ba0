// A program that ends badly, in the way that its first word says. Its second is "watched" for one with the
// crash report, "bare" for one without. Further words are the way's own.
#include "foundations/crash/crashHandler.h"
#include "foundations/heap/mem.h"
#include "platform/crash.h"
#include "platform/debug.h"
#include "platform/thread.h"

#include <array>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

// Their names are looked for in the reports, so they are plain and never made part of another function.
#define VICTIM extern "C" __attribute__((noinline, noclone, used))

namespace {

// What the compiler cannot know.
volatile uintptr_t Nothing = 0;
volatile int Zero = 0;

// Code of a function that comes back at once, as data.
unsigned char Data[16] = {0xC3};

void* Allocated(uint64_t size)
{
    return memAlloc(size);
}

// The words of the header in front of an allocation (mem.h): next, previous, block, site.
uint64_t* Header(void* allocation)
{
    return static_cast<uint64_t*>(allocation) - 8;
}

}  // namespace

VICTIM int victimReadsNull()
{
    return *reinterpret_cast<volatile int*>(Nothing) + 1;
}

VICTIM int victimWritesNull()
{
    *reinterpret_cast<volatile int*>(Nothing) = 1;
    return 1;
}

VICTIM int victimRunsData()
{
    reinterpret_cast<void (*)()>(reinterpret_cast<uintptr_t>(Data) + Nothing)();
    return 1;
}

VICTIM int victimCallsNull()
{
    reinterpret_cast<void (*)()>(Nothing)();
    return 1;
}

VICTIM int victimDividesByZero()
{
    return 7 / Zero;
}

VICTIM int victimOverflows(int depth)
{
    if (Zero != 0)
        return 0;
    volatile char room[256];
    room[static_cast<size_t>(depth) % sizeof room] = 1;
    return victimOverflows(depth + 1) + room[0];
}

VICTIM int victimThrowsStandard()
{
    throw std::runtime_error("nobody expects this");
}

VICTIM int victimThrowsInt()
{
    throw 42;
}

VICTIM int victimThrowsAndCatches()
{
    try {
        victimThrowsStandard();
    } catch (const std::exception&) {
        try {
            victimThrowsInt();
        } catch (int) {
            return 0;
        }
    }
    return 1;
}

VICTIM int victimAborts()
{
    std::abort();
}

VICTIM int victimBreaks()
{
    debugBreak();
    return 1;
}

// --- The checked heap

VICTIM int victimFreesTwice()
{
    void* const one = Allocated(100);
    Allocated(100);
    memFree(one);
    memFree(one);
    return 1;
}

VICTIM int victimFreesMiddle()
{
    memFree(static_cast<char*>(Allocated(1000)) + 64);
    return 1;
}

VICTIM int victimFreesStranger()
{
    Allocated(100);
    memFree(Data);
    return 1;
}

// Writes behind an allocation, over the header of the next.
VICTIM int victimOverruns()
{
    void* const one = Allocated(64);
    Allocated(64);
    std::memset(static_cast<char*>(one), 0x5A, 64 + 16);
    memFree(one);
    Allocated(64);
    return 1;
}

// Writes in front of an allocation, over its own header.
VICTIM int victimUnderruns()
{
    Allocated(64);
    void* const two = Allocated(64);
    Header(two)[0] = 0x1234;
    Allocated(64);
    return 1;
}

VICTIM int victimBreaksChain()
{
    Allocated(64);
    void* const two = Allocated(64);
    Header(two)[1] = 0x1234;
    Allocated(64);
    return 1;
}

VICTIM int victimBreaksBlock()
{
    // The block's own header says where its first zone is.
    void* const one = Allocated(64);
    reinterpret_cast<uint64_t*>(Header(one)[2])[2] = 0x1235;
    Allocated(64);
    return 1;
}

VICTIM int victimReallocatesDamaged()
{
    void* const one = Allocated(64);
    Allocated(64);
    Header(one)[0] += 64;
    memRealloc(one, 4000, 64);
    return 1;
}

// --- Threads

VICTIM int victimCrashesOnWorker()
{
    std::thread([] {
        const crashThreadStack stack;
        threadName("worker");
        victimReadsNull();
    }).join();
    return 1;
}

VICTIM int victimOverflowsOnWorker()
{
    std::thread([] {
        const crashThreadStack stack;
        threadName("worker");
        victimOverflows(0);
    }).join();
    return 1;
}

VICTIM void victimWaits(std::atomic<int>* waiting)
{
    ++*waiting;
    while (Zero == 0)
        threadSleep(20);
}

// Crashes while others wait, each in a function that its report can name.
VICTIM int victimCrashesAmongOthers()
{
    std::atomic<int> waiting{0};
    std::vector<std::thread> others;
    for (int i = 0; i < 3; ++i)
        others.emplace_back(victimWaits, &waiting);
    while (waiting < 3)
        threadSleep(1);
    threadSleep(20);
    return victimReadsNull();
}

VICTIM int victimCrashesTwiceAtOnce()
{
    std::atomic<int> ready{0};
    const auto crash = [&ready] {
        const crashThreadStack stack;
        ++ready;
        while (ready < 2) {
        }
        victimReadsNull();
    };
    std::thread one(crash), two(crash);
    one.join();
    two.join();
    return 1;
}

// --- The reporter itself

// Loses its frame, so that whoever follows the calls by what such files tell of them reads where nothing is.
VICTIM int victimLosesItsFrame()
{
#if defined(__x86_64__) && defined(__ELF__)
    __asm__ volatile("push %%rbp\n\t"
                     ".cfi_adjust_cfa_offset 8\n\t"
                     ".cfi_rel_offset rbp, 0\n\t"
                     "mov %%rsp, %%rbp\n\t"
                     ".cfi_def_cfa_register rbp\n\t"
                     "mov $0x5A5A0000, %%rbp\n\t"
                     "movl $1, 0\n\t"
                     "pop %%rbp\n\t"
                     ".cfi_def_cfa rsp, 0" ::
                         : "memory");
#endif
    return 1;
}

namespace {

struct wayRow {
    const char* Name;
    int (*Go)();
};

constexpr wayRow Ways[] = {
    {"readsNull", victimReadsNull},
    {"writesNull", victimWritesNull},
    {"runsData", victimRunsData},
    {"callsNull", victimCallsNull},
    {"dividesByZero", victimDividesByZero},
    {"overflows", [] { return victimOverflows(0); }},
    {"throwsStandard", victimThrowsStandard},
    {"throwsInt", victimThrowsInt},
    {"throwsAndCatches", victimThrowsAndCatches},
    {"aborts", victimAborts},
    {"breaks", victimBreaks},
    {"freesTwice", victimFreesTwice},
    {"freesMiddle", victimFreesMiddle},
    {"freesStranger", victimFreesStranger},
    {"overruns", victimOverruns},
    {"underruns", victimUnderruns},
    {"breaksChain", victimBreaksChain},
    {"breaksBlock", victimBreaksBlock},
    {"reallocatesDamaged", victimReallocatesDamaged},
    {"crashesOnWorker", victimCrashesOnWorker},
    {"overflowsOnWorker", victimOverflowsOnWorker},
    {"crashesAmongOthers", victimCrashesAmongOthers},
    {"crashesTwiceAtOnce", victimCrashesTwiceAtOnce},
    {"losesItsFrame", victimLosesItsFrame},
};

}  // namespace

int main(int count, char** words)
{
    if (count < 3) {
        std::fprintf(stderr, "usage: crashVictim WAY watched|bare\n");
        return 2;
    }
    std::unique_ptr<crashHandler> handler;
    if (std::strcmp(words[2], "watched") == 0)
        handler = std::make_unique<crashHandler>("9.8.7.6");
    for (const wayRow& way : Ways) {
        if (std::strcmp(way.Name, words[1]) == 0)
            return way.Go();
    }
    std::fprintf(stderr, "crashVictim: no way \"%s\"\n", words[1]);
    return 2;
}
