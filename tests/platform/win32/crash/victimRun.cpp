#include "tests/foundations/crash/native/victimRun.h"

#include "platform/clock.h"
#include "platform/process.h"
#include "platform/win32/text.h"

#include <optional>
#include <windows.h>

namespace {

constexpr char FoldersKey[] = "Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\Shell Folders";
constexpr char DocumentsValue[] = "Personal";

// The user's documents are elsewhere while it lives.
class documentsMoved
{
public:
    explicit documentsMoved(const std::string& folder)
    {
        RegCreateKeyExA(HKEY_CURRENT_USER, FoldersKey, 0, nullptr, 0, KEY_ALL_ACCESS, nullptr, &Key, nullptr);
        char text[4096];
        DWORD size = sizeof text - 1;
        if (RegGetValueA(Key, nullptr, DocumentsValue, RRF_RT_REG_SZ, nullptr, text, &size) == ERROR_SUCCESS)
            Former = text;
        if (folder.empty())
            RegDeleteValueA(Key, DocumentsValue);
        else
            Set(folder);
    }
    ~documentsMoved()
    {
        if (Former)
            Set(*Former);
        else
            RegDeleteValueA(Key, DocumentsValue);
        RegCloseKey(Key);
    }
    documentsMoved(const documentsMoved&) = delete;
    documentsMoved& operator=(const documentsMoved&) = delete;

private:
    void Set(const std::string& folder)
    {
        RegSetValueExA(Key, DocumentsValue, 0, REG_SZ, reinterpret_cast<const BYTE*>(folder.c_str()),
                       static_cast<DWORD>(folder.size() + 1));
    }

    HKEY Key = nullptr;
    std::optional<std::string> Former;
};

std::string VictimPath()
{
    const std::string own = processPath();
    return own.substr(0, own.rfind('\\') + 1) + "crashVictim.exe";
}

// Lets every exception go on as it would without a debugger.
void Follow()
{
    DEBUG_EVENT event = {};
    bool started = false;
    while (WaitForDebugEvent(&event, INFINITE) != FALSE) {
        DWORD answer = DBG_CONTINUE;
        if (event.dwDebugEventCode == EXCEPTION_DEBUG_EVENT) {
            // The first breakpoint is the loader's own.
            const bool loader =
                !started && event.u.Exception.ExceptionRecord.ExceptionCode == EXCEPTION_BREAKPOINT;
            answer = loader ? DBG_CONTINUE : DBG_EXCEPTION_NOT_HANDLED;
            started = started || loader;
        }
        ContinueDebugEvent(event.dwProcessId, event.dwThreadId, answer);
        if (event.dwDebugEventCode == EXIT_PROCESS_DEBUG_EVENT)
            return;
    }
}

}  // namespace

victimEnd victimRun(const std::string& way, bool watched, const std::string& documents, victimUnder under)
{
    const documentsMoved moved(documents);
    const int64_t start = clockSteadyNs();
    std::u16string words =
        textTo16("\"" + VictimPath() + "\" " + way + (watched ? " watched" : " bare")).value();
    STARTUPINFOW startup = {};
    startup.cb = sizeof startup;
    PROCESS_INFORMATION started = {};
    const DWORD flags = under == victimUnder::Debugger ? DEBUG_ONLY_THIS_PROCESS : 0;
    victimEnd end;
    if (CreateProcessW(nullptr, textUnits(words.data()), nullptr, nullptr, FALSE, flags, nullptr, nullptr,
                       &startup, &started) == FALSE)
        return end;
    if (under == victimUnder::Debugger)
        Follow();
    WaitForSingleObject(started.hProcess, INFINITE);
    DWORD code = 0;
    GetExitCodeProcess(started.hProcess, &code);
    CloseHandle(started.hThread);
    CloseHandle(started.hProcess);
    end.Status = code;
    end.Milliseconds = (clockSteadyNs() - start) / 1000000;
    return end;
}

bool victimSeesOverflow()
{
    return false;
}

std::string victimRoot()
{
    return "\\";
}
