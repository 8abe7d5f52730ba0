// An exception and its parameters.
#include "foundations/crash/crashCodes.h"
#include "foundations/crash/crashReport.h"
#include "platform/debug.h"

#include <algorithm>

namespace {

template <class valueType>
bool Read(uint64_t address, valueType& value)
{
    return debugRead(reinterpret_cast<const void*>(address), &value, sizeof value);
}

void WriteOperation(crashFile& file, uint64_t operation)
{
    file.Text("    Operation: ");
    switch (operation) {
    case 0:
        file.Text("Read");
        break;
    case 1:
        file.Text("Write");
        break;
    case 8:
        file.Text("Data Execution Prevention");
        break;
    default:
        file.Text("Unknown (");
        file.Number(operation);
        file.Text(")");
    }
    file.Text(crashLineEnd);
}

// How many parameters were shown.
unsigned WriteAccess(crashFile& file, const crashRecord& record)
{
    WriteOperation(file, record.Parameters[0]);
    file.Text("    Adress:    ");
    file.Hex(record.Parameters[1]);
    file.Text(crashLineEnd);
    if (record.Code != crashInPageError || record.ParameterCount < 3)
        return 2;
    file.Text("    NTSTATUS:  ");
    file.Hex(record.Parameters[2]);
    file.Text(crashLineEnd);
    return 3;
}

void WriteArrow(crashFile& file, uint64_t address)
{
    file.Text(" -> ");
    file.Hex(address);
}

// A name that another program's memory holds, byte by byte: it may end where memory does.
void WriteName(crashFile& file, uint64_t address)
{
    constexpr unsigned Longest = 1024;
    file.Text(" -> ");
    char letter = '\0';
    for (unsigned i = 0; i < Longest && Read(address + i, letter) && letter != '\0'; ++i)
        file.Text({&letter, 1});
}

// The tables of a throw: from its description to the types that would catch it, each given as an offset from
// the base of the module; of these the first, and of that the type's own description with its name.
void WriteThrownType(crashFile& file, uint64_t info, uint64_t base)
{
    constexpr unsigned TypesInInfo = 12;
    constexpr unsigned FirstInTypes = 4;
    constexpr unsigned DescriptionInType = 4;
    constexpr unsigned NameInDescription = 16;

    uint64_t place = info + TypesInInfo;
    for (const unsigned next : {FirstInTypes, DescriptionInType, NameInDescription}) {
        uint32_t offset = 0;
        if (!Read(place, offset))
            return;
        WriteArrow(file, base + offset);
        place = base + offset + next;
    }
    WriteName(file, place);
}

unsigned WriteThrow(crashFile& file, const crashFacts& facts, const crashRecord& record)
{
    const uint64_t info = record.Parameters[2];
    const uint64_t base = record.ParameterCount > 3 ? record.Parameters[3] : 0;
    file.Text("    Info version:    ");
    file.Hex(record.Parameters[0]);
    file.Text("\r\n    Throwing object: ");
    file.Hex(record.Parameters[1]);
    file.Text("\r\n    Exception info:  ");
    file.Hex(info);
    WriteThrownType(file, info, base);
    file.Text("\r\n    Module:          ");
    file.Hex(base);
    if (const crashModule* module = facts.ModuleAt(base)) {
        file.Text(" - ");
        file.Text(module->Name);
    }
    file.Text(crashLineEnd);
    return std::min(record.ParameterCount, 4u);
}

unsigned WriteKnownParameters(crashFile& file, const crashFacts& facts, const crashRecord& record)
{
    const bool access = record.Code == crashAccessViolation || record.Code == crashInPageError;
    if (access && record.ParameterCount >= 2)
        return WriteAccess(file, record);
    const bool thrown = record.Code == crashCompilerException && record.ParameterCount >= 3;
    if (thrown && record.Parameters[0] == crashCompilerMagic)
        return WriteThrow(file, facts, record);
    return 0;
}

}  // namespace

void crashWriteException(crashFile& file, const crashFacts& facts, const crashRecord& record)
{
    file.Text(crashSeparatorLine);
    file.Text("Exception: ");
    file.Number(record.Code, 16, 8);
    file.Text(crashCodeName(record.Code));
    file.Text(record.Flags == crashNonContinuable ? ", Non-continuable\r\n" : ", Continuable\r\n");
    file.Text("Address: ");
    file.Hex(record.Address);
    if (const crashModule* module = facts.ModuleAt(record.Address)) {
        file.Text(" - ");
        file.Text(module->Name);
        file.Text(" + ");
        file.Hex(record.Address - module->Range.Base);
    }
    file.Text("\r\nParameters:\r\n");

    const unsigned count = std::min(record.ParameterCount, crashParametersMost);
    for (unsigned i = WriteKnownParameters(file, facts, record); i < count; ++i) {
        file.Text("    Param ");
        file.Number(i + 1);
        file.Text(": ");
        file.Hex(record.Parameters[i]);
        file.Text(crashLineEnd);
    }
}
