// Where a thread stands: registers, stack, calls.
#include "foundations/crash/crashReport.h"
#include "platform/debug.h"

namespace {

struct registerName {
    std::string_view Name;
    unsigned Digits;
};

constexpr registerName Integers[] = {{"RAX", 16}, {"RBX", 16}, {"RCX", 16}, {"RDX", 16}, {"RSI", 16},
                                     {"RDI", 16}, {"RBP", 16}, {"R8 ", 16}, {"R9 ", 16}, {"R10", 16},
                                     {"R11", 16}, {"R12", 16}, {"R13", 16}, {"R14", 16}, {"R15", 16}};
constexpr registerName Segments[] = {{"DS", 4}, {"ES", 4}, {"FS", 4}, {"GS", 4}};
constexpr registerName Debugs[] = {{"DR0", 16}, {"DR1", 16}, {"DR2", 16},
                                   {"DR3", 16}, {"DR6", 16}, {"DR7", 16}};

constexpr unsigned WordSize = sizeof(uint64_t);
constexpr unsigned WordsInRow = 4;

// Registers in rows, each with its name.
template <size_t count, class valueType>
void WriteRegisters(crashFile& file, std::string_view title, const registerName (&names)[count],
                    const valueType (&values)[count], size_t inRow)
{
    file.Text(title);
    for (size_t i = 0; i < count; ++i) {
        file.Text(i % inRow == 0 ? "\r\n      " : "  ");
        file.Text(names[i].Name);
        file.Text("=");
        file.Number(values[i], 16, names[i].Digits);
    }
    file.Text(crashLineEnd);
}

void WriteControl(crashFile& file, const crashContext& context)
{
    file.Text("    Control registers:\r\n      RSP=");
    file.Hex(context.StackPointer);
    file.Text("  RIP=");
    file.Hex(context.ProgramCounter);
    file.Text("\r\n      EFLAGS=");
    file.Number(context.ProcessorFlags, 16, 8);
    file.Text("  CS=");
    file.Number(context.CodeSegment, 16, 4);
    file.Text("  SS=");
    file.Number(context.StackSegment, 16, 4);
    file.Text(crashLineEnd);
}

void WriteVectors(crashFile& file, const crashContext& context)
{
    constexpr unsigned InRow = 2;
    file.Text("    Floating point registers:");
    unsigned number = 0;
    for (const auto& vector : context.Vectors) {
        file.Text(number % InRow == 0 ? "\r\n      XMM" : "  XMM");
        file.Number(number);
        file.Text(number < 10 ? " =" : "=");
        file.Hex(vector.High);
        file.Hex(vector.Low);
        ++number;
    }
    file.Text(crashLineEnd);
}

// Words that point into a module stand out: most of them are return addresses.
void WriteStack(crashFile& file, const crashFacts& facts, uint64_t address, unsigned words)
{
    file.Text("    Stack ");
    file.Hex(address);
    for (unsigned i = 0; i < words; ++i, address += WordSize) {
        uint64_t word = 0;
        if (!debugRead(reinterpret_cast<const void*>(address), &word, sizeof word))
            break;
        if (i % WordsInRow == 0)
            file.Text("\r\n    ");
        file.Text(facts.ModuleAt(word) ? " *" : "  ");
        file.Hex(word);
    }
    file.Text(crashLineEnd);
}

void WritePlace(crashFile& file, const crashFacts& facts, uint64_t address)
{
    if (const crashModule* module = facts.ModuleAt(address)) {
        file.Text(module->Name);
        file.Text(" + ");
        file.Hex(address - module->Range.Base);
    } else {
        file.Text("No symbol info for address ");
        file.Hex(address);
    }
}

// `behind` is how far in front of the address the instruction is that stands there.
void WriteFrame(crashFile& file, const crashFacts& facts, uint64_t address, unsigned behind)
{
    crashSymbol symbol;
    file.Text("      ");
    if (facts.Symbols && crashSymbolAt(facts.Snapshot, address - behind, symbol)) {
        file.Text(symbol.Name);
        file.Text(" + ");
        file.Hex(symbol.Displacement + behind);
    } else {
        WritePlace(file, facts, address);
    }
    file.Text(" ");
    file.Hex(address);
    file.Text(crashLineEnd);

    crashLine line;
    if (facts.Symbols && crashLineAt(address - behind, line)) {
        file.Text("          ");
        file.Text(line.File);
        file.Text(":");
        file.Number(line.Line);
        file.Text(" + ");
        file.Number(line.Displacement + behind);
        file.Text(crashLineEnd);
    }
}

void WriteCalls(crashFile& file, const crashFacts& facts, const crashContext& context)
{
    file.Text("    Backtrace\r\n");
    if (context.FrameCount == 0)
        file.Text("      (No symbols)\r\n");
    for (unsigned i = 0; i < context.FrameCount; ++i) {
        // A call may be its function's last instruction, so the address it returns to may lie in the next
        // one.
        WriteFrame(file, facts, context.Frames[i], i > 0 ? 1 : 0);
    }
}

}  // namespace

void crashWriteContext(crashFile& file, const crashFacts& facts, const crashContext& context,
                       unsigned stackWords)
{
    file.Text("\r\n\r\n");
    if (context.HasIntegers)
        WriteRegisters(file, "    Integer registers:", Integers, context.Integers, 3);
    if (context.HasSegments)
        WriteRegisters(file, "    Segment registers:", Segments, context.Segments, 4);
    if (context.HasDebug)
        WriteRegisters(file, "    Debug registers:", Debugs, context.Debug, 3);
    if (context.HasControl)
        WriteControl(file, context);
    if (context.HasVectors)
        WriteVectors(file, context);
    WriteStack(file, facts, context.StackPointer, stackWords);
    WriteCalls(file, facts, context);
}
