// The signals that end a program, on their own stacks.
#include "platform/crash.h"

#include "platform/debug.h"
#include "platform/linux/crashEvent.h"

#include <atomic>
#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <iterator>

#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

constexpr int Signals[] = {SIGSEGV, SIGBUS, SIGFPE, SIGILL, SIGTRAP, SIGABRT, SIGSYS};

// A report takes about 60 kB; under a sanitizer a multiple of it.
constexpr size_t StackBytes = size_t{512} * 1024;
constexpr size_t ClosedBytes = 4096;

struct jump {
    sigjmp_buf Place;
    crashRecord* Fault;
};

// Plain words of a thread, which a handler can reach at any time.
thread_local jump* Guard = nullptr;
thread_local bool Passing = false;

struct sigaction Former[std::size(Signals)];
std::atomic<crashReporter> Reporter{nullptr};

// The first thread may run to the very end of the process, so its stack is never given back.
std::atomic<crashThreadStack*> FirstStack{nullptr};

// Gives the signal back to whoever had it before us. A fault comes again by itself when its instruction is
// tried again, exactly as it was met; any other signal is sent anew.
void End(const crashEvent& event)
{
    for (size_t i = 0; i < std::size(Signals); ++i) {
        if (Signals[i] == event.Signal)
            sigaction(event.Signal, &Former[i], nullptr);
    }
    if (!crashComesAgain(event))
        syscall(SYS_tgkill, getpid(), gettid(), event.Signal);
}

void OnSignal(int number, siginfo_t* info, void* context)
{
    const int error = errno;
    const crashEvent event{number, info, static_cast<ucontext_t*>(context)};
    if (Guard != nullptr && info->si_code > 0) {
        crashRecordOf(event, 0, *Guard->Fault);
        siglongjmp(Guard->Place, 1);
    }
    if (const crashReporter reporter = Reporter.load())
        reporter(event);
    if (!Passing || number != SIGTRAP)
        End(event);
    errno = error;
}

}  // namespace

void crashContextOf(const crashEvent& event, crashContext& context)
{
    crashReadRegisters(*event.Context, context);
    crashReadCalls(*event.Context, context);
}

void crashWatch(crashReporter reporter)
{
    if (FirstStack.load() == nullptr)
        FirstStack = new crashThreadStack;
    Reporter = reporter;
    crashThreadsWatch();
    struct sigaction action = {};
    action.sa_sigaction = OnSignal;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK | SA_NODEFER;
    sigemptyset(&action.sa_mask);
    for (size_t i = 0; i < std::size(Signals); ++i)
        sigaction(Signals[i], &action, &Former[i]);
}

void crashUnwatch()
{
    if (Reporter.exchange(nullptr) == nullptr)
        return;
    for (size_t i = 0; i < std::size(Signals); ++i)
        sigaction(Signals[i], &Former[i], nullptr);
}

void crashBreak()
{
    if (Reporter.load() == nullptr && !debugAttached())
        return;
    Passing = true;
    debugBreak();
    Passing = false;
}

bool crashGuarded(void (*step)(void* argument), void* argument, crashRecord& fault)
{
    jump place;
    jump* const outer = Guard;
    place.Fault = &fault;
    const bool whole = sigsetjmp(place.Place, 1) == 0;
    if (whole) {
        Guard = &place;
        step(argument);
    }
    Guard = outer;
    return whole;
}

crashThreadStack::crashThreadStack()
{
    void* const memory = mmap(nullptr, ClosedBytes + StackBytes, PROT_READ | PROT_WRITE,
                              MAP_PRIVATE | MAP_ANONYMOUS | MAP_STACK | MAP_NORESERVE, -1, 0);
    if (memory == MAP_FAILED)
        return;
    mprotect(memory, ClosedBytes, PROT_NONE);
    stack_t mine = {};
    mine.ss_sp = static_cast<char*>(memory) + ClosedBytes;
    mine.ss_size = StackBytes;
    stack_t former = {};
    if (sigaltstack(&mine, &former) != 0) {
        munmap(memory, ClosedBytes + StackBytes);
        return;
    }
    Memory = memory;
    if ((former.ss_flags & SS_DISABLE) == 0) {
        Former = former.ss_sp;
        FormerBytes = former.ss_size;
    }
}

crashThreadStack::~crashThreadStack()
{
    if (Memory == nullptr)
        return;
    stack_t former = {};
    former.ss_sp = Former;
    former.ss_size = FormerBytes;
    former.ss_flags = Former != nullptr ? 0 : SS_DISABLE;
    sigaltstack(&former, nullptr);
    munmap(Memory, ClosedBytes + StackBytes);
}
