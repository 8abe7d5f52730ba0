// Registers and calls of a thread that a signal stopped.
#include "platform/debug.h"
#include "platform/linux/crashEvent.h"

#include <cstring>

#include <unwind.h>

namespace {

constexpr uint64_t WordSize = sizeof(uint64_t);

struct walk {
    crashContext& Context;
    uint64_t First;      // the program counter at which the signal came
    bool Begun = false;  // the handler's own calls come before
};

_Unwind_Reason_Code OnFrame(_Unwind_Context* frame, void* argument)
{
    walk& calls = *static_cast<walk*>(argument);
    crashContext& context = calls.Context;
    const uint64_t address = _Unwind_GetIP(frame);
    calls.Begun = calls.Begun || address == calls.First;
    // The first function of a thread returns to nowhere.
    if (calls.Begun && (address != 0 || context.FrameCount == 0))
        context.Frames[context.FrameCount++] = address;
    return context.FrameCount < crashFramesMost ? _URC_NO_REASON : _URC_END_OF_STACK;
}

void Walk(void* calls)
{
    _Unwind_Backtrace(OnFrame, calls);
}

// On a damaged stack the calls end where they lead out of memory.
void WalkFrom(uint64_t first, crashContext& context)
{
    walk calls{context, first};
    crashRecord fault;
    crashGuarded(Walk, &calls, fault);
    if (!calls.Begun)
        context.Frames[context.FrameCount++] = first;
}

}  // namespace

#if defined(__x86_64__)

namespace {

constexpr int Integers[] = {REG_RAX, REG_RBX, REG_RCX, REG_RDX, REG_RSI, REG_RDI, REG_RBP, REG_R8,
                            REG_R9,  REG_R10, REG_R11, REG_R12, REG_R13, REG_R14, REG_R15};

// What the system packs into one word: CS, GS, FS and, on those that tell it, SS.
constexpr unsigned GsShift = 16, FsShift = 32, SsShift = 48;

uint16_t Packed(uint64_t word, unsigned shift)
{
    return static_cast<uint16_t>(word >> shift);
}

// The same in all threads of a program.
void ReadDataSegments(crashContext& context)
{
    __asm__("mov %%ds, %0" : "=r"(context.Segments[0]));
    __asm__("mov %%es, %0" : "=r"(context.Segments[1]));
}

// A call to where nothing can run leaves no frame there that could be unwound. What it pushed leads on.
bool IsNowhere(const greg_t* registers)
{
    constexpr greg_t FaultByFetch = 0x10;
    constexpr greg_t PageFault = 14;
    char byte;
    return (registers[REG_TRAPNO] == PageFault && (registers[REG_ERR] & FaultByFetch) != 0) ||
           !debugRead(reinterpret_cast<const void*>(registers[REG_RIP]), &byte, sizeof byte);
}

}  // namespace

void crashReadRegisters(const ucontext_t& machine, crashContext& context)
{
    const greg_t* const registers = machine.uc_mcontext.gregs;
    unsigned index = 0;
    for (const int number : Integers)
        context.Integers[index++] = static_cast<uint64_t>(registers[number]);
    const auto segments = static_cast<uint64_t>(registers[REG_CSGSFS]);
    ReadDataSegments(context);
    context.Segments[2] = Packed(segments, FsShift);
    context.Segments[3] = Packed(segments, GsShift);
    context.CodeSegment = Packed(segments, 0);
    context.StackSegment = Packed(segments, SsShift);
    context.StackPointer = static_cast<uint64_t>(registers[REG_RSP]);
    context.ProgramCounter = static_cast<uint64_t>(registers[REG_RIP]);
    context.ProcessorFlags = static_cast<uint32_t>(registers[REG_EFL]);
    context.HasIntegers = context.HasSegments = context.HasControl = true;
    if (machine.uc_mcontext.fpregs == nullptr)
        return;
    index = 0;
    for (auto& vector : context.Vectors) {
        const auto& held = machine.uc_mcontext.fpregs->_xmm[index++].element;
        vector.Low = uint64_t{held[1]} << 32 | held[0];
        vector.High = uint64_t{held[3]} << 32 | held[2];
    }
    context.HasVectors = true;
}

void crashReadCalls(ucontext_t& machine, crashContext& context)
{
    greg_t* const registers = machine.uc_mcontext.gregs;
    const greg_t counter = registers[REG_RIP];
    const greg_t stack = registers[REG_RSP];
    context.FrameCount = 0;
    uint64_t first = static_cast<uint64_t>(counter);
    uint64_t pushed = 0;
    if (IsNowhere(registers) && debugRead(reinterpret_cast<const void*>(stack), &pushed, sizeof pushed)) {
        context.Frames[context.FrameCount++] = first;
        registers[REG_RIP] = static_cast<greg_t>(pushed);
        registers[REG_RSP] = stack + static_cast<greg_t>(WordSize);
        first = pushed;
    }
    WalkFrom(first, context);
    registers[REG_RIP] = counter;
    registers[REG_RSP] = stack;
}

#else

void crashReadRegisters(const ucontext_t&, crashContext&) {}

void crashReadCalls(ucontext_t&, crashContext& context)
{
    context.FrameCount = 0;
    WalkFrom(0, context);
}

#endif
