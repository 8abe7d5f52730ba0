#include "platform/crash.h"

#include "tests/fakes/core.h"
#include "tests/fakes/fakeCrash.h"

#include <algorithm>
#include <cstring>

struct crashEvent {
};

namespace {

struct crashState {
    fakeCrashFacts Facts;
    crashReporter Reporter = nullptr;
    std::vector<std::string> Open;     // paths of the files being written, by handle
    std::vector<std::string> Reading;  // what is left of the files being read, by handle less ReadFirst
};

// Handles of files to read, apart from those to write.
constexpr intptr_t ReadFirst = 1000;

crashState& state()
{
    static crashState& only = *new crashState;
    return only;
}

size_t copyText(const std::string& text, char* target, size_t room)
{
    const size_t length = std::min(text.size(), room - 1);
    std::copy_n(text.begin(), length, target);
    target[length] = '\0';
    return length;
}

}  // namespace

void fakes::resetCrash()
{
    state() = {};
}

fakeCrashFacts& fakeCrash()
{
    return state().Facts;
}

bool fakeCrashHappens()
{
    if (state().Reporter == nullptr)
        return false;
    state().Reporter(crashEvent{});
    return true;
}

bool crashRecordOf(const crashEvent&, unsigned index, crashRecord& record)
{
    if (index >= fakeCrash().Records.size())
        return false;
    record = fakeCrash().Records[index];
    return true;
}

void crashContextOf(const crashEvent&, crashContext& context)
{
    if (fakeCrash().ContextFaults)
        throw fakeCrashFault{{0xC0000005, 1, 0x1234, 0, {}}};
    context = fakeCrash().Context;
}

bool crashThreadContext(uint32_t thread, crashContext& context)
{
    const auto found = fakeCrash().Contexts.find(thread);
    if (found == fakeCrash().Contexts.end())
        return false;
    context = found->second;
    return true;
}

void crashWatch(crashReporter reporter)
{
    fakes::enter("crashWatch");
    state().Reporter = reporter;
}

void crashUnwatch()
{
    fakes::enter("crashUnwatch");
    state().Reporter = nullptr;
}

void crashBreak()
{
    fakes::enter("crashBreak");
}

bool crashGuarded(void (*step)(void* argument), void* argument, crashRecord& fault)
{
    try {
        step(argument);
        return true;
    } catch (const fakeCrashFault& met) {
        fault = met.Record;
        return false;
    }
}

crashThreadStack::crashThreadStack() = default;
crashThreadStack::~crashThreadStack() = default;

crashRange crashProgram()
{
    return fakeCrash().Program;
}

uint32_t crashSnapshotTake(crashSnapshot& snapshot)
{
    const fakeCrashFacts& facts = fakeCrash();
    snapshot.ModuleCount = 0;
    snapshot.ThreadCount = 0;
    if (facts.SnapshotError != 0)
        return facts.SnapshotError;
    for (const crashModule& module : facts.Modules)
        snapshot.Modules[snapshot.ModuleCount++] = module;
    for (const crashThread& thread : facts.Threads)
        snapshot.Threads[snapshot.ThreadCount++] = thread;
    return 0;
}

size_t crashModulePath(const crashModule& module, char* target, size_t room)
{
    return copyText(fakeCrash().Paths[module.Range.Base], target, room);
}

bool crashFileVersion(const char* path, uint16_t (&version)[4])
{
    const auto found = fakeCrash().Versions.find(path);
    if (found == fakeCrash().Versions.end())
        return false;
    std::copy_n(found->second.begin(), 4, version);
    return true;
}

bool crashSymbolsStart()
{
    fakes::enter("crashSymbolsStart");
    return fakeCrash().SymbolsWork;
}

void crashSymbolsEnd()
{
    fakes::enter("crashSymbolsEnd");
}

bool crashSymbolAt(const crashSnapshot&, uint64_t address, crashSymbol& symbol)
{
    const auto found = fakeCrash().Symbols.find(address);
    if (found == fakeCrash().Symbols.end())
        return false;
    symbol = found->second;
    return true;
}

bool crashLineAt(uint64_t address, crashLine& line)
{
    const auto found = fakeCrash().Lines.find(address);
    if (found == fakeCrash().Lines.end())
        return false;
    line = found->second;
    return true;
}

void crashSystemName(char* target, size_t room)
{
    copyText(fakeCrash().SystemName, target, room);
}

size_t crashDocuments(char* target, size_t room)
{
    return fakeCrash().Documents.size() + 1 < room ? copyText(fakeCrash().Documents, target, room) : 0;
}

char crashSeparator()
{
    return '/';
}

size_t crashProgramPath(char* target, size_t room)
{
    return fakeCrash().ProgramPath.size() < room ? copyText(fakeCrash().ProgramPath, target, room) : 0;
}

crashTime crashNow()
{
    return fakeCrash().Now;
}

intptr_t crashFileCreate(const char* path)
{
    fakes::enter("crashFileCreate", path);
    if (!fakeCrash().Creates)
        return crashNoFile;
    fakeCrash().Written[path] = "";
    state().Open.emplace_back(path);
    return static_cast<intptr_t>(state().Open.size() - 1);
}

bool crashFileWrite(intptr_t file, const char* bytes, size_t count)
{
    if (fakes::ask("crashFileWrite").Scripted)
        return false;
    fakeCrash().Written[state().Open.at(static_cast<size_t>(file))].append(bytes, count);
    return true;
}

intptr_t crashFileOpen(const char* path)
{
    const auto found = fakeCrash().Files.find(path);
    if (found == fakeCrash().Files.end())
        return crashNoFile;
    state().Reading.push_back(found->second);
    return ReadFirst + static_cast<intptr_t>(state().Reading.size() - 1);
}

size_t crashFileRead(intptr_t file, char* target, size_t room)
{
    std::string& left = state().Reading.at(static_cast<size_t>(file - ReadFirst));
    const size_t count = std::min(left.size(), room);
    std::copy_n(left.begin(), count, target);
    left.erase(0, count);
    return count;
}

void crashFileClose(intptr_t file)
{
    fakes::enter("crashFileClose", file < ReadFirst ? state().Open.at(static_cast<size_t>(file)) : "");
}

void crashTell(const char* caption, const char* text)
{
    fakeCrash().Told.push_back(std::string(caption) + ": " + text);
}

void crashTellByProgram()
{
    fakes::enter("crashTellByProgram");
}

bool crashMessageOf(int, char**, const char*&, const char*&)
{
    return false;
}
