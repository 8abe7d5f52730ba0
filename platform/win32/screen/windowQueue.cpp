#include "platform/win32/screen/windowSystem.h"

// Messages: the queue is the system's own.

namespace {

windowMessage messageOf(const MSG& message)
{
    return {.Window = systemWindowId(message.hwnd),
            .Number = message.message,
            .First = message.wParam,
            .Second = message.lParam,
            .Time = message.time,
            .ScreenX = message.pt.x,
            .ScreenY = message.pt.y};
}

}  // namespace

void systemWindows::AskPaint(windowId window)
{
    // Here and below: to the system, no window is all windows of all programs.
    if (window != 0)
        InvalidateRect(systemWindow(window), nullptr, FALSE);
}

void systemWindows::PaintDone(windowId window)
{
    if (window != 0)
        ValidateRect(systemWindow(window), nullptr);
}

void systemWindows::PaintNow(windowId window)
{
    UpdateWindow(systemWindow(window));
}

bool systemWindows::Post(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    return window != 0 && PostMessageW(systemWindow(window), number, first, second) != FALSE;
}

int64_t systemWindows::Send(windowId window, uint32_t number, uint64_t first, int64_t second)
{
    return SendMessageW(systemWindow(window), number, first, second);
}

windowTake systemWindows::Peek(windowMessage& message)
{
    MSG taken;
    if (PeekMessageW(&taken, nullptr, 0, 0, PM_REMOVE) == FALSE)
        return windowTake::None;
    if (taken.message == WM_QUIT) {
        // It is for whoever waits.
        PostQuitMessage(static_cast<int>(taken.wParam));
        return windowTake::None;
    }
    message = messageOf(taken);
    return windowTake::Taken;
}

windowTake systemWindows::Wait(windowMessage& message)
{
    MSG taken;
    const BOOL result = GetMessageW(&taken, nullptr, 0, 0);
    if (result == -1)
        return windowTake::Failed;
    if (result == 0)
        return windowTake::None;
    message = messageOf(taken);
    return windowTake::Taken;
}

void systemWindows::Dispatch(const windowMessage& message)
{
    MSG taken = {};
    taken.hwnd = systemWindow(message.Window);
    taken.message = message.Number;
    taken.wParam = message.First;
    taken.lParam = message.Second;
    taken.time = message.Time;
    taken.pt = {message.ScreenX, message.ScreenY};
    TranslateMessage(&taken);
    DispatchMessageW(&taken);
}

int64_t systemWindows::Default(const windowMessage& message)
{
    return DefWindowProcW(systemWindow(message.Window), message.Number, message.First, message.Second);
}
