#include "platform/crash.h"

#include "platform/win32/crashEvent.h"
#include "platform/win32/crashGuard.h"

#include <algorithm>
#include <atomic>
#include <csignal>
#include <cstdlib>

namespace {

using signalHandler = void (*)(int);

std::atomic<crashReporter> Reporter{nullptr};
PVOID Handler = nullptr;
UINT FormerErrorMode = 0;
int FormerLibraryMode = 0;
signalHandler FormerAbort = SIG_DFL;

// The one breakpoint of crashBreak: its address tells it from all others.
[[gnu::naked, gnu::noinline]] void breakHere()
{
    asm("int3\n\tret");
}

bool isOurBreak(const EXCEPTION_RECORD& record)
{
    return record.ExceptionCode == EXCEPTION_BREAKPOINT &&
           record.ExceptionAddress == reinterpret_cast<void*>(breakHere);
}

LONG answer(EXCEPTION_POINTERS& pointers)
{
    if (crashGuardTakes(pointers))
        return EXCEPTION_CONTINUE_EXECUTION;
    const bool ours = isOurBreak(*pointers.ExceptionRecord);
    if (const crashReporter report = Reporter.load())
        report({pointers});
    if (!ours)
        return EXCEPTION_CONTINUE_SEARCH;
    // Behind the instruction, which is one byte long.
    pointers.ContextRecord->Rip = reinterpret_cast<DWORD64>(breakHere) + 1;
    return EXCEPTION_CONTINUE_EXECUTION;
}

LONG CALLBACK OnException(EXCEPTION_POINTERS* pointers)
{
    // Exceptions also come where somebody is between a failure and the question for its reason.
    const DWORD error = GetLastError();
    const LONG result = answer(*pointers);
    SetLastError(error);
    return result;
}

// Where the caller of a function goes on that has just captured its own context.
void returnToCaller(CONTEXT& context)
{
    DWORD64 base = 0;
    RUNTIME_FUNCTION* const function = RtlLookupFunctionEntry(context.Rip, &base, nullptr);
    if (function == nullptr)
        return;
    void* handlerData = nullptr;
    DWORD64 frame = 0;
    RtlVirtualUnwind(UNW_FLAG_NHANDLER, base, context.Rip, function, &context, &handlerData, &frame, nullptr);
}

// The program's end without an exception. The library ends it when this has returned.
void OnAbort(int)
{
    // The stack of this function would show nothing but what it makes itself.
    CONTEXT context;
    RtlCaptureContext(&context);
    returnToCaller(context);
    EXCEPTION_RECORD record = {};
    record.ExceptionCode = crashAborted;
    record.ExceptionFlags = EXCEPTION_NONCONTINUABLE;
    record.ExceptionAddress = reinterpret_cast<void*>(context.Rip);
    // The library forgets a handler before it calls it, and behind a guard the program goes on.
    std::signal(SIGABRT, OnAbort);
    crashGuardLeave(crashRecordFrom(record));
    EXCEPTION_POINTERS pointers = {&record, &context};
    if (const crashReporter report = Reporter.load())
        report({pointers});
}

}  // namespace

crashRecord crashRecordFrom(const EXCEPTION_RECORD& record)
{
    crashRecord result;
    result.Code = record.ExceptionCode;
    // The system has further flags, which tell how the exception came about.
    result.Flags = record.ExceptionFlags & EXCEPTION_NONCONTINUABLE;
    result.Address = reinterpret_cast<uint64_t>(record.ExceptionAddress);
    result.ParameterCount = std::min<uint32_t>(record.NumberParameters, crashParametersMost);
    std::copy_n(record.ExceptionInformation, result.ParameterCount, result.Parameters);
    return result;
}

bool crashRecordOf(const crashEvent& event, unsigned index, crashRecord& record)
{
    const EXCEPTION_RECORD* system = event.Pointers.ExceptionRecord;
    for (unsigned step = 0; step < index && system != nullptr; ++step)
        system = system->ExceptionRecord;
    if (system == nullptr)
        return false;
    record = crashRecordFrom(*system);
    return true;
}

void crashWatch(crashReporter reporter)
{
    crashGuardPrepare();
    Reporter = reporter;
    FormerErrorMode = SetErrorMode(SEM_FAILCRITICALERRORS | SEM_NOGPFAULTERRORBOX |
                                   SEM_NOALIGNMENTFAULTEXCEPT | SEM_NOOPENFILEERRORBOX);
    FormerLibraryMode = _set_error_mode(_OUT_TO_STDERR);
    FormerAbort = std::signal(SIGABRT, OnAbort);
    const crashThreadStack stackOfTheFirstThread;
    Handler = AddVectoredExceptionHandler(1, OnException);
}

void crashUnwatch()
{
    // Also called where nobody watched, because a debugger does.
    if (Reporter.exchange(nullptr) == nullptr)
        return;
    RemoveVectoredExceptionHandler(Handler);
    std::signal(SIGABRT, FormerAbort == SIG_ERR ? SIG_DFL : FormerAbort);
    _set_error_mode(FormerLibraryMode);
    SetErrorMode(FormerErrorMode);
    Handler = nullptr;
}

void crashBreak()
{
    if (Reporter.load() != nullptr || IsDebuggerPresent() != FALSE)
        breakHere();
}
