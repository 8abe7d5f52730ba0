#include "foundations/crash/crashFilter.h"

#include "foundations/crash/crashCodes.h"

#include <algorithm>
#include <iterator>

namespace {

constexpr uint32_t Informational = 1;  // the severity in the two upper bits

// An interface that a remote side does not know, in any facility (RPC_S_UNKNOWN_IF).
constexpr uint32_t UnknownInterface = 1717;

// Codes of calls between objects (RPC_E_...), whatever the bits for customer and reserved say.
constexpr uint32_t ObjectCallMask = 0xCFFF0000;
constexpr uint32_t ObjectCall = 0x80010000;

constexpr uint32_t Ignored[] = {
    1722,        // RPC_S_SERVER_UNAVAILABLE
    1733,        // RPC_S_INVALID_TAG
    1818,        // RPC_S_CALL_CANCELLED
    0x0EEDFADE,  // thrown by another language's run-time
    0x80004005,  // E_FAIL
    0x80040155,  // REGDB_E_IIDNOTREG
    0xC0000008,  // STATUS_INVALID_HANDLE, raised for a debugger
    0xE0434352,  // thrown by managed code
    // Thrown, unwound and forced through by this program's own compiler. What nobody catches ends in
    // std::terminate.
    0x20474343,
    0x21474343,
    0x22474343,
};

bool IsIgnored(uint32_t code)
{
    return code >> 30 == Informational || (code & 0xFFFF) == UnknownInterface ||
           (code & ObjectCallMask) == ObjectCall ||
           std::find(std::begin(Ignored), std::end(Ignored), code) != std::end(Ignored);
}

}  // namespace

bool crashCounts(const crashRecord& record, const crashRange& program, bool all)
{
    if (IsIgnored(record.Code))
        return false;
    if (all)
        return true;
    if (record.Code == crashAccessViolation && record.Flags != crashNonContinuable)
        return program.Has(record.Address);
    if (record.Code == crashCompilerException)
        return record.ParameterCount > 2 && program.Has(record.Parameters[2]);
    return true;
}
