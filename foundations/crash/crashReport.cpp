#include "foundations/crash/crashReport.h"

#include "foundations/crash/crashHandler.h"
#include "foundations/heap/mem.h"
#include "platform/thread.h"

#include <utility>

namespace {

// Longer chains of exceptions are loops.
constexpr unsigned MostChained = 16;

// Runs a section so that its end is not the report's.
template <class sectionStep>
void Section(crashFile& file, sectionStep step)
{
    crashRecord fault;
    if (crashGuarded([](void* held) { (*static_cast<sectionStep*>(held))(); }, &step, fault))
        return;
    file.Text("\r\nThis section met an exception itself: ");
    file.Number(fault.Code, 16, 8);
    file.Text(" at ");
    file.Hex(fault.Address);
    file.Text(crashLineEnd);
}

void WriteSystem(crashFile& file)
{
    char processor[crashProcessorRoom];
    crashProcessor(processor);
    char system[256] = {};
    crashSystemName(system, sizeof system);
    file.Text("System information:\r\n  CPU: ");
    file.Text(processor);
    file.Text("\r\n  OS: ");
    file.Text(system[0] != '\0' ? system : "Unknown");
    file.Text("\r\n\r\n");
}

void WriteVersion(crashFile& file)
{
    if (AppVersion[0] == '\0')
        return;
    file.Text("Application version: ");
    file.Text(AppVersion);
    file.Text(crashLineEnd);
}

void SortModules(crashSnapshot& snapshot)
{
    // A bubble sort: nothing else sorts in place without help, and there are a hundred at most.
    for (unsigned end = snapshot.ModuleCount; end > 1; --end) {
        for (unsigned i = 1; i < end; ++i) {
            if (snapshot.Modules[i].Range.Base < snapshot.Modules[i - 1].Range.Base)
                std::swap(snapshot.Modules[i], snapshot.Modules[i - 1]);
        }
    }
}

void TakeSnapshot(crashFile& file, crashSnapshot& snapshot)
{
    const uint32_t error = crashSnapshotTake(snapshot);
    if (error != 0) {
        file.Text(crashSeparatorLine);
        file.Text("Couldn't create the process snapshot!!!\r\n  Error code ");
        file.Number(error);
        file.Text(" / ");
        file.Number(error, 16, 8);
        file.Text(crashLineEnd);
    }
    SortModules(snapshot);
}

void WriteModule(crashFile& file, const crashModule& module)
{
    file.Text("    ");
    file.Hex(module.Range.Base);
    file.Text(" - ");
    file.Hex(module.Range.Base + module.Range.Size);
    file.Text(" - ");
    file.Text(module.Name);

    char path[crashPathRoom];
    const size_t length = crashModulePath(module, path, sizeof path);
    uint16_t version[4] = {};
    if (length > 0 && crashFileVersion(path, version)) {
        file.Text(" - Ver ");
        for (unsigned i = 0; i < 4; ++i) {
            file.Text(i > 0 ? "." : "");
            file.Number(version[i]);
        }
    }
    file.Text(" - ");
    file.Text({path, length});
    file.Text(crashLineEnd);
}

void WriteModules(crashFile& file, const crashSnapshot& snapshot)
{
    file.Text("Loaded modules:\r\n");
    for (unsigned i = 0; i < snapshot.ModuleCount; ++i)
        WriteModule(file, snapshot.Modules[i]);
}

void WriteThread(crashFile& file, const crashFacts& facts, const crashThread& thread)
{
    file.Text(crashSeparatorLine);
    file.Text("Thread ID: ");
    file.Number(thread.Id, 16, 8);
    file.Text(" / ");
    file.Number(thread.Id, 10, 10);
    file.Text("  Pri: ");
    file.Number(thread.Priority, 10, 2);
    crashContext context;
    if (crashThreadContext(thread.Id, context))
        crashWriteContext(file, facts, context, crashStackWords);
    file.Text(crashLineEnd);
}

void WriteFaultContext(crashFile& file, const crashFacts& facts, const crashEvent& event)
{
    file.Text("\r\nException context:");
    crashContext context;
    crashContextOf(event, context);
    crashWriteContext(file, facts, context, crashStackWords);
}

void WriteThreads(crashFile& file, const crashFacts& facts)
{
    for (unsigned i = 0; i < facts.Snapshot.ThreadCount; ++i) {
        const crashThread& thread = facts.Snapshot.Threads[i];
        if (thread.Id != threadId())
            Section(file, [&] { WriteThread(file, facts, thread); });
    }
}

}  // namespace

const crashModule* crashFacts::ModuleAt(uint64_t address) const
{
    for (unsigned i = 0; i < Snapshot.ModuleCount; ++i) {
        if (Snapshot.Modules[i].Range.Has(address))
            return &Snapshot.Modules[i];
    }
    return nullptr;
}

void crashReport(crashFile& file, const crashEvent& event)
{
    crashFacts facts;
    Section(file, [&] { WriteSystem(file); });
    Section(file, [&] { WriteVersion(file); });
    Section(file, [&] { facts.Symbols = crashSymbolsStart(); });
    Section(file, [&] { TakeSnapshot(file, facts.Snapshot); });
    Section(file, [&] { WriteModules(file, facts.Snapshot); });
    WriteThreads(file, facts);
    crashRecord record;
    for (unsigned i = 0; i < MostChained && crashRecordOf(event, i, record); ++i)
        Section(file, [&] { crashWriteException(file, facts, record); });
    Section(file, [&] { WriteFaultContext(file, facts, event); });
    if (facts.Symbols)
        Section(file, [] { crashSymbolsEnd(); });
    file.Text(crashSeparatorLine);
    file.Text("Memory management:\r\n");
    Section(file, [&] { memReport(file); });
}
