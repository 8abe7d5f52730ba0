#include "platform/crash.h"
#include "platform/debug.h"
#include "platform/win32/crashEvent.h"
#include "platform/win32/crashSymbols.h"
#include "platform/win32/systemHandle.h"

#include <algorithm>
#include <dbghelp.h>
#include <iterator>

namespace {

bool hasGroup(const CONTEXT& system, DWORD group)
{
    return (system.ContextFlags & group) == group;
}

void copyRegisters(const CONTEXT& system, crashContext& context)
{
    context.HasIntegers = hasGroup(system, CONTEXT_INTEGER);
    context.HasSegments = hasGroup(system, CONTEXT_SEGMENTS);
    context.HasDebug = hasGroup(system, CONTEXT_DEBUG_REGISTERS);
    context.HasControl = hasGroup(system, CONTEXT_CONTROL);
    context.HasVectors = hasGroup(system, CONTEXT_FLOATING_POINT);

    const DWORD64 integers[] = {system.Rax, system.Rbx, system.Rcx, system.Rdx, system.Rsi,
                                system.Rdi, system.Rbp, system.R8,  system.R9,  system.R10,
                                system.R11, system.R12, system.R13, system.R14, system.R15};
    std::copy(std::begin(integers), std::end(integers), context.Integers);
    const WORD segments[] = {system.SegDs, system.SegEs, system.SegFs, system.SegGs};
    std::copy(std::begin(segments), std::end(segments), context.Segments);
    const DWORD64 debug[] = {system.Dr0, system.Dr1, system.Dr2, system.Dr3, system.Dr6, system.Dr7};
    std::copy(std::begin(debug), std::end(debug), context.Debug);
    context.StackPointer = system.Rsp;
    context.ProgramCounter = system.Rip;
    context.ProcessorFlags = system.EFlags;
    context.CodeSegment = system.SegCs;
    context.StackSegment = system.SegSs;
    for (size_t at = 0; at < std::size(context.Vectors); ++at) {
        const M128A& vector = system.FltSave.XmmRegisters[at];
        context.Vectors[at] = {static_cast<uint64_t>(vector.High), vector.Low};
    }
}

void addFrame(crashContext& context, uint64_t address)
{
    if (context.FrameCount < crashFramesMost)
        context.Frames[context.FrameCount++] = address;
}

bool isCode(uint64_t address)
{
    constexpr DWORD executable =
        PAGE_EXECUTE | PAGE_EXECUTE_READ | PAGE_EXECUTE_READWRITE | PAGE_EXECUTE_WRITECOPY;
    MEMORY_BASIC_INFORMATION range = {};
    return VirtualQuery(reinterpret_cast<const void*>(address), &range, sizeof range) != 0 &&
           (range.Protect & executable) != 0;
}

// Leaves what the system knows nothing of: a call through a bad pointer, whose return address is on top of
// the stack, or the library's probe of the stack, which meets most overflows and has two registers above it.
bool returnFromUnknown(CONTEXT& system)
{
    DWORD64 words[3] = {};
    if (!debugRead(reinterpret_cast<const void*>(system.Rsp), words, sizeof words))
        return false;
    const DWORD64* const caller = std::find_if(std::begin(words), std::end(words), isCode);
    if (caller == std::end(words))
        return false;
    system.Rip = *caller;
    system.Rsp += static_cast<DWORD64>(caller + 1 - words) * sizeof *caller;
    return true;
}

// Of a copy, for the walk writes into it.
void walk(HANDLE thread, CONTEXT system, crashContext& context)
{
    const HANDLE process = GetCurrentProcess();
    if (SymFunctionTableAccess64(process, system.Rip) == nullptr) {
        addFrame(context, system.Rip);
        if (!returnFromUnknown(system))
            return;
    }
    STACKFRAME64 frame = {};
    frame.AddrPC = {system.Rip, 0, AddrModeFlat};
    frame.AddrStack = {system.Rsp, 0, AddrModeFlat};
    frame.AddrFrame = {system.Rbp, 0, AddrModeFlat};
    while (context.FrameCount < crashFramesMost &&
           StackWalk64(IMAGE_FILE_MACHINE_AMD64, process, thread, &frame, &system, nullptr,
                       SymFunctionTableAccess64, SymGetModuleBase64, nullptr) != FALSE &&
           frame.AddrPC.Offset != 0)
        addFrame(context, frame.AddrPC.Offset);
}

void fill(HANDLE thread, const CONTEXT& system, crashContext& context)
{
    context = {};
    copyRegisters(system, context);
    if (context.HasControl && crashSymbolsMine())
        walk(thread, system, context);
}

}  // namespace

void crashContextOf(const crashEvent& event, crashContext& context)
{
    fill(GetCurrentThread(), *event.Pointers.ContextRecord, context);
}

bool crashThreadContext(uint32_t thread, crashContext& context)
{
    const systemHandle handle(OpenThread(THREAD_GET_CONTEXT | THREAD_QUERY_INFORMATION, FALSE, thread));
    CONTEXT system = {};
    system.ContextFlags = CONTEXT_ALL;
    if (!handle.IsOpen() || GetThreadContext(handle.Get(), &system) == FALSE)
        return false;
    fill(handle.Get(), system, context);
    return true;
}

crashThreadStack::crashThreadStack()
{
    // The system keeps so much of the thread's own stack for those who handle its overflow.
    constexpr ULONG forTheReport = 128 * 1024;
    ULONG bytes = forTheReport;
    SetThreadStackGuarantee(&bytes);
}

crashThreadStack::~crashThreadStack() = default;
