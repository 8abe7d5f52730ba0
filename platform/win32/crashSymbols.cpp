#include "platform/win32/crashSymbols.h"

#include "platform/crash.h"
#include "platform/win32/crashExports.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <windows.h>

#include <dbghelp.h>

namespace {

// The thread that has the library, or 0. Not a lock: whoever cannot have it goes on without.
std::atomic<DWORD> Owner{0};

bool acquire()
{
    constexpr ULONGLONG patienceMs = 3000;
    const ULONGLONG begun = GetTickCount64();
    const DWORD self = GetCurrentThreadId();
    while (true) {
        DWORD owner = 0;
        if (Owner.compare_exchange_strong(owner, self))
            return true;
        // A crash within the crash: the outer one will not end before this one.
        if (owner == self || GetTickCount64() - begun >= patienceMs)
            return false;
        Sleep(1);
    }
}

void copyCut(char* target, size_t room, const char* text)
{
    const size_t length = std::min(std::strlen(text), room - 1);
    std::memcpy(target, text, length);
    target[length] = '\0';
}

bool libraryNames(uint64_t address, crashSymbol& symbol)
{
    if (!crashSymbolsMine())
        return false;
    // The name stands behind the structure, whose last member is its first letter.
    alignas(SYMBOL_INFO) char buffer[sizeof(SYMBOL_INFO) + sizeof symbol.Name] = {};
    SYMBOL_INFO* const info = reinterpret_cast<SYMBOL_INFO*>(buffer);
    info->SizeOfStruct = sizeof *info;
    info->MaxNameLen = sizeof symbol.Name;
    DWORD64 displacement = 0;
    if (SymFromAddr(GetCurrentProcess(), address, &displacement, info) == FALSE)
        return false;
    // It takes what a file exports for all that there is, and a function of no name for the one before it.
    // For the program's own file it is better known.
    if ((info->Flags & SYMFLAG_EXPORT) != 0 && crashProgram().Has(address))
        return false;
    copyCut(symbol.Name, sizeof symbol.Name, info->Name);
    symbol.Displacement = displacement;
    return true;
}

}  // namespace

bool crashSymbolsMine()
{
    return Owner.load() == GetCurrentThreadId();
}

bool crashSymbolsStart()
{
    if (!acquire())
        return false;
    SymSetOptions(SYMOPT_DEFERRED_LOADS | SYMOPT_FAIL_CRITICAL_ERRORS | SYMOPT_LOAD_LINES |
                  SYMOPT_NO_PROMPTS | SYMOPT_UNDNAME);
    if (SymInitialize(GetCurrentProcess(), nullptr, TRUE) != FALSE)
        return true;
    Owner = 0;
    return false;
}

void crashSymbolsEnd()
{
    SymCleanup(GetCurrentProcess());
    Owner = 0;
}

bool crashSymbolAt(const crashSnapshot&, uint64_t address, crashSymbol& symbol)
{
    return libraryNames(address, symbol) || crashExportAt(address, symbol);
}

bool crashLineAt(uint64_t address, crashLine& line)
{
    if (!crashSymbolsMine())
        return false;
    IMAGEHLP_LINE64 info = {};
    info.SizeOfStruct = sizeof info;
    DWORD displacement = 0;
    if (SymGetLineFromAddr64(GetCurrentProcess(), address, &displacement, &info) == FALSE)
        return false;
    copyCut(line.File, sizeof line.File, info.FileName);
    line.Line = info.LineNumber;
    line.Displacement = displacement;
    return true;
}
