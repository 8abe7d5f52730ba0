#include "platform/stop.h"

#include <atomic>
#include <windows.h>

namespace {

std::atomic<bool> Asked{false};
std::atomic<bool> Watching{false};

BOOL WINAPI OnControl(DWORD event)
{
    // Told a second time, the program is ended by the handler that the system has for everyone.
    if (Asked.exchange(true))
        return FALSE;
    // After these the process ends as soon as its handler returns, so it is held here while the program ends
    // by itself; the system puts a limit to that.
    if (event == CTRL_CLOSE_EVENT || event == CTRL_LOGOFF_EVENT || event == CTRL_SHUTDOWN_EVENT)
        Sleep(INFINITE);
    return TRUE;
}

}  // namespace

void stopWatch()
{
    if (!Watching.exchange(true))
        SetConsoleCtrlHandler(OnControl, TRUE);
}

bool stopAsked()
{
    return Asked.load();
}
