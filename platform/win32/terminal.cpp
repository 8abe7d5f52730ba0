#include "platform/terminal.h"

#include <windows.h>

bool terminalReady()
{
    const HANDLE output = GetStdHandle(STD_OUTPUT_HANDLE);
    DWORD mode = 0;
    if (!GetConsoleMode(output, &mode))
        return false;
    SetConsoleOutputCP(CP_UTF8);
    return SetConsoleMode(output, mode | ENABLE_VIRTUAL_TERMINAL_PROCESSING) != FALSE;
}

terminalSize terminalNow()
{
    CONSOLE_SCREEN_BUFFER_INFO info;
    if (!GetConsoleScreenBufferInfo(GetStdHandle(STD_OUTPUT_HANDLE), &info))
        return {};
    const int columns = info.srWindow.Right - info.srWindow.Left + 1;
    const int rows = info.srWindow.Bottom - info.srWindow.Top + 1;
    if (columns < 1 || rows < 1)
        return {};
    return {static_cast<uint16_t>(columns), static_cast<uint16_t>(rows)};
}
