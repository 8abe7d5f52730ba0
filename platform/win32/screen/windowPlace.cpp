#include "platform/win32/screen/windowSystem.h"

// Where windows are, and which of them is shown, active, and has the keys and the mouse.

static_assert(static_cast<int>(windowShow::Hide) == SW_HIDE);
static_assert(static_cast<int>(windowShow::Maximise) == SW_MAXIMIZE);
static_assert(static_cast<int>(windowShow::Activate) == SW_SHOW);
static_assert(static_cast<int>(windowShow::Minimise) == SW_MINIMIZE);
static_assert(static_cast<int>(windowShow::NoActivate) == SW_SHOWNA);
static_assert(static_cast<int>(windowShow::Restore) == SW_RESTORE);

windowEdges systemWindows::FrameOf(windowId window, const windowEdges& client, uint32_t dpi)
{
    const DWORD extended = static_cast<DWORD>(GetWindowLongPtrW(systemWindow(window), GWL_EXSTYLE));
    RECT frame = {client.Left, client.Top, client.Right, client.Bottom};
    if (IsWindow(systemWindow(window)) == FALSE ||
        AdjustWindowRectExForDpi(&frame, Style(window), FALSE, extended, dpi) == FALSE)
        return client;
    return {frame.left, frame.top, frame.right, frame.bottom};
}

bool systemWindows::Place(windowId window, windowOrder order, const windowEdges& frame, uint32_t flags)
{
    HWND after = order == windowOrder::Topmost ? HWND_TOPMOST : HWND_NOTOPMOST;
    if (order == windowOrder::Keep) {
        after = nullptr;
        flags |= placeKeepOrder;
    }
    return SetWindowPos(systemWindow(window), after, frame.Left, frame.Top, frame.Right - frame.Left,
                        frame.Bottom - frame.Top, flags) != FALSE;
}

bool systemWindows::ClientArea(windowId window, windowEdges& area)
{
    RECT client = {};
    POINT origin = {};
    if (GetClientRect(systemWindow(window), &client) == FALSE ||
        ClientToScreen(systemWindow(window), &origin) == FALSE)
        return false;
    area = {origin.x, origin.y, origin.x + client.right, origin.y + client.bottom};
    return true;
}

void systemWindows::Show(windowId window, windowShow how)
{
    ShowWindow(systemWindow(window), static_cast<int>(how));
}

void systemWindows::Raise(windowId window)
{
    BringWindowToTop(systemWindow(window));
}

void systemWindows::Enable(windowId window, bool on)
{
    EnableWindow(systemWindow(window), on ? TRUE : FALSE);
}

void systemWindows::SetFocus(windowId window)
{
    // None would take the focus away from the program.
    if (window != 0)
        ::SetFocus(systemWindow(window));
}

windowId systemWindows::Focus()
{
    return systemWindowId(GetFocus());
}

void systemWindows::SetCapture(windowId window)
{
    if (window != 0)
        ::SetCapture(systemWindow(window));
}

void systemWindows::ReleaseCapture()
{
    ::ReleaseCapture();
}

windowId systemWindows::Capture()
{
    return systemWindowId(GetCapture());
}
