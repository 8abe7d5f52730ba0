// What a signal means in the codes of exceptions.
#include "platform/linux/crashEvent.h"

#include "platform/debug.h"

#include <cerrno>

namespace {

constexpr uint32_t NonContinuable = 1;

constexpr uint32_t Misalignment = 0x80000002;
constexpr uint32_t SingleStep = 0x80000004;
constexpr uint32_t IllegalInstruction = 0xC000001D;
constexpr uint32_t PrivilegedInstruction = 0xC0000096;
constexpr uint32_t InvalidOperation = 0xC0000090;

struct codeRow {
    int SignalCode;
    uint32_t Code;
};

constexpr codeRow Arithmetic[] = {
    {FPE_INTDIV, 0xC0000094}, {FPE_INTOVF, 0xC0000095}, {FPE_FLTDIV, 0xC000008E}, {FPE_FLTOVF, 0xC0000091},
    {FPE_FLTUND, 0xC0000093}, {FPE_FLTRES, 0xC000008F}, {FPE_FLTSUB, 0xC000008C},
};

// What the processor says of a fault that memory caused.
constexpr uint64_t FaultByWrite = 0x02;
constexpr uint64_t FaultByFetch = 0x10;

// How the parameters of an access violation name what was tried.
constexpr uint64_t TriedRead = 0, TriedWrite = 1, TriedExecute = 8;

// How far from the stack pointer an overflow is met: a large frame skips some pages.
constexpr uint64_t OverflowReach = uint64_t{64} * 1024;

#if defined(__x86_64__)

uint64_t ProgramCounter(const ucontext_t& machine)
{
    return static_cast<uint64_t>(machine.uc_mcontext.gregs[REG_RIP]);
}

uint64_t StackPointer(const ucontext_t& machine)
{
    return static_cast<uint64_t>(machine.uc_mcontext.gregs[REG_RSP]);
}

uint64_t Tried(const ucontext_t& machine)
{
    const auto fault = static_cast<uint64_t>(machine.uc_mcontext.gregs[REG_ERR]);
    if (fault & FaultByFetch)
        return TriedExecute;
    return fault & FaultByWrite ? TriedWrite : TriedRead;
}

#else

uint64_t ProgramCounter(const ucontext_t&)
{
    return 0;
}

uint64_t StackPointer(const ucontext_t&)
{
    return 0;
}

uint64_t Tried(const ucontext_t&)
{
    return TriedRead;
}

#endif

bool IsFault(const crashEvent& event)
{
    // Signals that a process sends have codes of zero and below.
    return event.Info->si_code > 0;
}

bool IsOverflow(const crashEvent& event, uint64_t address)
{
    const uint64_t stack = StackPointer(*event.Context);
    const uint64_t away = address > stack ? address - stack : stack - address;
    char byte;
    return stack != 0 && away < OverflowReach &&
           !debugRead(reinterpret_cast<const void*>(address), &byte, sizeof byte);
}

void ReadMemoryFault(const crashEvent& event, crashRecord& record)
{
    if (!IsFault(event))
        return;
    // An address that no pointer can have is not told.
    const uint64_t address =
        event.Info->si_code == SI_KERNEL ? ~uint64_t{0} : reinterpret_cast<uint64_t>(event.Info->si_addr);
    record.ParameterCount = 2;
    record.Parameters[0] = Tried(*event.Context);
    record.Parameters[1] = address;
    if (event.Signal == SIGSEGV && IsOverflow(event, address))
        record.Code = crashStackOverflow;
    if (record.Code == crashInPageError) {
        record.ParameterCount = 3;
        record.Parameters[2] = static_cast<uint64_t>(event.Info->si_errno != 0 ? event.Info->si_errno : EIO);
    }
}

uint32_t ArithmeticCode(int signalCode)
{
    for (const codeRow& row : Arithmetic)
        if (row.SignalCode == signalCode)
            return row.Code;
    return InvalidOperation;
}

uint32_t CodeOf(const crashEvent& event)
{
    const int reason = event.Info->si_code;
    switch (event.Signal) {
    case SIGSEGV:
        return crashAccessViolation;
    case SIGBUS:
        return reason == BUS_ADRALN ? Misalignment : crashInPageError;
    case SIGFPE:
        return ArithmeticCode(reason);
    case SIGILL:
        return reason == ILL_PRVOPC || reason == ILL_PRVREG ? PrivilegedInstruction : IllegalInstruction;
    case SIGTRAP:
        return reason == TRAP_TRACE ? SingleStep : crashBreakpointMet;
    case SIGSYS:
        return crashBadSystemCall;
    default:
        return crashAborted;
    }
}

}  // namespace

bool crashComesAgain(const crashEvent& event)
{
    const bool repeats =
        event.Signal == SIGSEGV || event.Signal == SIGBUS || event.Signal == SIGFPE || event.Signal == SIGILL;
    return repeats && IsFault(event);
}

bool crashRecordOf(const crashEvent& event, unsigned index, crashRecord& record)
{
    if (index > 0)
        return false;
    record = {};
    record.Code = CodeOf(event);
    record.Flags = event.Signal == SIGTRAP ? 0 : NonContinuable;
    record.Address = ProgramCounter(*event.Context);
    if (record.Code == crashBreakpointMet && IsFault(event) && record.Address > 0) {
        // The processor stands behind the instruction, which has one byte.
        --record.Address;
    }
    if (record.Code == crashAccessViolation || record.Code == crashInPageError)
        ReadMemoryFault(event, record);
    return true;
}
