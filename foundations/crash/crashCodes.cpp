#include "foundations/crash/crashCodes.h"

#include "platform/crash.h"

namespace {

struct nameRow {
    uint32_t Code;
    std::string_view Name;
};

constexpr nameRow Names[] = {
    {0x000006F4, " RPC_X_NULL_REF_POINTER"},
    {crashAccessViolation, " EXCEPTION_ACCESS_VIOLATION"},
    {0xC000008C, " EXCEPTION_ARRAY_BOUNDS_EXCEEDED"},
    {crashBreakpointMet, " EXCEPTION_BREAKPOINT"},
    {0x80000002, " EXCEPTION_DATATYPE_MISALIGNMENT"},
    {0xC000008D, " EXCEPTION_FLT_DENORMAL_OPERAND"},
    {0xC000008E, " EXCEPTION_FLT_DIVIDE_BY_ZERO"},
    {0xC000008F, " EXCEPTION_FLT_INEXACT_RESULT"},
    {0xC0000090, " EXCEPTION_FLT_INVALID_OPERATION"},
    {0xC0000091, " EXCEPTION_FLT_OVERFLOW"},
    {0xC0000092, " EXCEPTION_FLT_STACK_CHECK"},
    {0xC0000093, " EXCEPTION_FLT_UNDERFLOW"},
    {0xC000001D, " EXCEPTION_ILLEGAL_INSTRUCTION"},
    {crashInPageError, " EXCEPTION_IN_PAGE_ERROR"},
    {0xC0000094, " EXCEPTION_INT_DIVIDE_BY_ZERO"},
    {0xC0000095, " EXCEPTION_INT_OVERFLOW"},
    {0xC0000026, " EXCEPTION_INVALID_DISPOSITION"},
    {0xC0000025, " EXCEPTION_NONCONTINUABLE_EXCEPTION"},
    {0xC0000096, " EXCEPTION_PRIV_INSTRUCTION"},
    {0x80000004, " EXCEPTION_SINGLE_STEP"},
    {crashStackOverflow, " EXCEPTION_STACK_OVERFLOW"},
    {0xC00002B4, " STATUS_FLOAT_MULTIPLE_FAULTS"},
    {0xC00002B5, " STATUS_FLOAT_MULTIPLE_TRAPS"},
    {0xC0000374, " STATUS_HEAP_CORRUPTION"},
    {crashCompilerException, " Microsoft Visual C++ compiler exception"},
    {crashAborted, " SIGABRT"},
    {crashBadSystemCall, " SIGSYS"},
};

}  // namespace

std::string_view crashCodeName(uint32_t code)
{
    for (const nameRow& row : Names)
        if (row.Code == code)
            return row.Name;
    return " Unknown exception";
}
