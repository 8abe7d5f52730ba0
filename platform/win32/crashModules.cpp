#include "platform/crash.h"
#include "platform/win32/systemHandle.h"

#include <algorithm>
#include <cstring>
#include <psapi.h>

// Of the snapshot's functions those for ANSI texts have no names of their own.
#undef UNICODE
#include <tlhelp32.h>

namespace {

crashModule moduleOf(const MODULEENTRY32& entry)
{
    crashModule module;
    module.Range = {reinterpret_cast<uint64_t>(entry.modBaseAddr), entry.modBaseSize};
    std::memcpy(module.Name, entry.szModule, strnlen(entry.szModule, sizeof module.Name - 1));
    return module;
}

void addModules(HANDLE system, crashSnapshot& snapshot)
{
    MODULEENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Module32First(system, &entry); more != FALSE; more = Module32Next(system, &entry)) {
        if (snapshot.ModuleCount == crashModulesMost)
            return;
        snapshot.Modules[snapshot.ModuleCount++] = moduleOf(entry);
    }
}

// The system tells of all that run.
void addThreads(HANDLE system, crashSnapshot& snapshot)
{
    const DWORD process = GetCurrentProcessId();
    THREADENTRY32 entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Thread32First(system, &entry); more != FALSE; more = Thread32Next(system, &entry)) {
        if (snapshot.ThreadCount == crashThreadsMost)
            return;
        if (entry.th32OwnerProcessID == process)
            snapshot.Threads[snapshot.ThreadCount++] = {entry.th32ThreadID,
                                                        static_cast<uint32_t>(entry.tpBasePri)};
    }
}

}  // namespace

crashRange crashProgram()
{
    MODULEINFO info = {};
    if (GetModuleInformation(GetCurrentProcess(), GetModuleHandleA(nullptr), &info, sizeof info) == FALSE)
        return {};
    return {reinterpret_cast<uint64_t>(info.lpBaseOfDll), info.SizeOfImage};
}

uint32_t crashSnapshotTake(crashSnapshot& snapshot)
{
    snapshot.ModuleCount = 0;
    snapshot.ThreadCount = 0;
    constexpr DWORD parts = TH32CS_SNAPMODULE | TH32CS_SNAPTHREAD | TH32CS_SNAPHEAPLIST;
    DWORD error = ERROR_SUCCESS;
    do {
        const systemHandle system(CreateToolhelp32Snapshot(parts, GetCurrentProcessId()));
        if (system.IsOpen()) {
            addModules(system.Get(), snapshot);
            addThreads(system.Get(), snapshot);
            return ERROR_SUCCESS;
        }
        error = GetLastError();
        // Modules came or went while the system looked.
    } while (error == ERROR_BAD_LENGTH);
    return error;
}

size_t crashModulePath(const crashModule& module, char* target, size_t room)
{
    const DWORD length =
        GetModuleFileNameA(reinterpret_cast<HMODULE>(module.Range.Base), target, static_cast<DWORD>(room));
    if (length < room)
        return length;
    // A path that the system had to cut it does not close everywhere.
    target[room - 1] = '\0';
    return room - 1;
}

bool crashFileVersion(const char* path, uint16_t (&version)[4])
{
    constexpr DWORD most = 8 * 1024;
    alignas(VS_FIXEDFILEINFO) char block[most];
    DWORD unused = 0;
    const DWORD bytes = GetFileVersionInfoSizeA(path, &unused);
    if (bytes == 0 || bytes > most || GetFileVersionInfoA(path, 0, bytes, block) == FALSE)
        return false;
    void* found = nullptr;
    UINT size = 0;
    if (VerQueryValueA(block, "\\", &found, &size) == FALSE || size < sizeof(VS_FIXEDFILEINFO))
        return false;
    const VS_FIXEDFILEINFO& info = *static_cast<const VS_FIXEDFILEINFO*>(found);
    version[0] = HIWORD(info.dwFileVersionMS);
    version[1] = LOWORD(info.dwFileVersionMS);
    version[2] = HIWORD(info.dwFileVersionLS);
    version[3] = LOWORD(info.dwFileVersionLS);
    return true;
}
