#include "platform/win32/crashGuard.h"

#include "platform/win32/crashEvent.h"

#include <atomic>
#include <malloc.h>

namespace {

// One step that runs, on its thread's stack.
struct guardFrame {
    guardFrame* Outer;
    crashRecord* Fault;
    void* Place[5];  // as the compiler's own jump keeps it
};

// Where each thread has its innermost guard. The compiler's thread-local variables would be allocated from
// the heap at their first use, which may be inside a crash.
std::atomic<DWORD> Slot{TLS_OUT_OF_INDEXES};

guardFrame* innermost()
{
    return static_cast<guardFrame*>(TlsGetValue(Slot.load()));
}

// Software raises the others to tell somebody something, and goes on behind them.
bool isFault(DWORD code)
{
    constexpr DWORD severityWarning = 0x80000000;  // and the errors above
    constexpr DWORD compilerException = 0xE06D7363;
    return code >= severityWarning && code != compilerException;
}

// Takes the guard off, so that what happens behind it is not its own any more.
void fill(const guardFrame& guard, const crashRecord& record)
{
    TlsSetValue(Slot.load(), guard.Outer);
    *guard.Fault = record;
}

[[noreturn]] void land(guardFrame* guard)
{
    __builtin_longjmp(guard->Place, 1);
}

// Has the thread go on in land(), as if it had been called where the thread stands.
void redirect(CONTEXT& context, guardFrame* guard)
{
    // A function expects the stack as a call leaves it: room for four arguments, and the return address
    // below.
    constexpr DWORD64 stackAlignment = 16;
    constexpr DWORD64 argumentsAndReturn = 4 * sizeof(DWORD64) + sizeof(DWORD64);
    constexpr DWORD directionFlag = 0x400;
    context.Rsp = context.Rsp / stackAlignment * stackAlignment - argumentsAndReturn;
    context.Rcx = reinterpret_cast<DWORD64>(guard);
    context.Rip = reinterpret_cast<DWORD64>(land);
    context.EFlags &= ~directionFlag;
}

}  // namespace

void crashGuardPrepare()
{
    if (Slot.load() == TLS_OUT_OF_INDEXES)
        Slot = TlsAlloc();
}

bool crashGuardTakes(EXCEPTION_POINTERS& pointers)
{
    guardFrame* const guard = innermost();
    if (guard == nullptr || !isFault(pointers.ExceptionRecord->ExceptionCode))
        return false;
    fill(*guard, crashRecordFrom(*pointers.ExceptionRecord));
    redirect(*pointers.ContextRecord, guard);
    return true;
}

void crashGuardLeave(const crashRecord& record)
{
    guardFrame* const guard = innermost();
    if (guard == nullptr)
        return;
    fill(*guard, record);
    land(guard);
}

bool crashGuarded(void (*step)(void* argument), void* argument, crashRecord& fault)
{
    guardFrame guard = {innermost(), &fault, {}};
    if (__builtin_setjmp(guard.Place) != 0) {
        // The page that tells of the end of the stack is used up.
        if (fault.Code == crashStackOverflow)
            _resetstkoflw();
        return false;
    }
    TlsSetValue(Slot.load(), &guard);
    step(argument);
    TlsSetValue(Slot.load(), guard.Outer);
    return true;
}
