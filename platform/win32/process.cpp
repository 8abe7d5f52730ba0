#include "platform/process.h"

#include "platform/win32/commandLine.h"
#include "platform/win32/path.h"
#include "platform/win32/standardHandles.h"
#include "platform/win32/text.h"

#include <cstdio>
#include <fcntl.h>
#include <io.h>
#include <limits>
#include <windows.h>

namespace {

// What a killed process ends with; -1 as an exit code is the contract's word for it.
constexpr UINT killedCode = std::numeric_limits<UINT>::max();

HANDLE systemProcess(processHandle* process)
{
    return reinterpret_cast<HANDLE>(process);
}

HANDLE launch(const std::u16string& program, std::u16string commandLine)
{
    const standardHandles handles;
    STARTUPINFOEXW startup = {};
    startup.StartupInfo.cb = sizeof startup;
    handles.AddTo(startup);
    PROCESS_INFORMATION started = {};
    if (CreateProcessW(textUnits(program), textUnits(commandLine.data()), nullptr, nullptr,
                       handles.Any() ? TRUE : FALSE, EXTENDED_STARTUPINFO_PRESENT, nullptr, nullptr,
                       &startup.StartupInfo, &started) == FALSE)
        return nullptr;
    CloseHandle(started.hThread);
    return started.hProcess;
}

}  // namespace

std::string processPath()
{
    std::u16string path(MAX_PATH, u'\0');
    while (true) {
        const DWORD room = static_cast<DWORD>(path.size());
        const DWORD length = GetModuleFileNameW(nullptr, textUnits(path.data()), room);
        if (length == 0)
            return {};
        if (length < room)
            return textTo8(path);
        // The system cuts the path to the room and does not tell how much it needs.
        path.resize(path.size() * 2);
    }
}

std::string processCommandLine()
{
    return textTo8(reinterpret_cast<const char16_t*>(GetCommandLineW()));
}

void processInputBytes()
{
    _setmode(_fileno(stdin), _O_BINARY);
}

processHandle* processStart(const std::vector<std::string>& arguments)
{
    std::optional<std::u16string> commandLine = commandLineOf(arguments);
    if (!commandLine)
        return nullptr;
    const std::optional<std::u16string> program =
        pathForSystem(textTo16(arguments.front()).value_or(std::u16string()));
    if (!program || commandLineRunsShell(*program))
        return nullptr;
    return static_cast<processHandle*>(launch(*program, std::move(*commandLine)));
}

void processKill(processHandle* process)
{
    TerminateProcess(systemProcess(process), killedCode);
}

int processWait(processHandle* process)
{
    DWORD code = killedCode;
    const bool ended = WaitForSingleObject(systemProcess(process), INFINITE) == WAIT_OBJECT_0 &&
                       GetExitCodeProcess(systemProcess(process), &code) != FALSE;
    CloseHandle(systemProcess(process));
    // A process that crashed ends with its exception's code, which has the upper bit set like our own.
    constexpr DWORD largestOwnCode = std::numeric_limits<int>::max();
    return ended && code <= largestOwnCode ? static_cast<int>(code) : -1;
}
