// The windows of user32. A windowId is the HWND; the pointer of whoever made the window is its user data, and
// its extra bytes hold the receiver.
#pragma once

#include "platform/window.h"

#include <string>
#include <windows.h>

class systemWindows : public windowSystem
{
public:
    systemWindows(std::string_view className, windowReceiver receiver);
    ~systemWindows() override;

    windowId Create(const windowCreate& create, uint32_t& error) override;
    void Destroy(windowId window) override;
    void* Object(windowId window) override;
    void SetObject(windowId window, void* object) override;
    uint32_t Style(windowId window) override;
    void SetStyle(windowId window, uint32_t style) override;
    void SetSizeRange(windowId window, const windowExtent& least, const windowExtent& most) override;
    void SetTitle(windowId window, std::string_view title) override;
    windowEdges FrameOf(windowId window, const windowEdges& client, uint32_t dpi) override;
    bool Place(windowId window, windowOrder order, const windowEdges& frame, uint32_t flags) override;
    bool ClientArea(windowId window, windowEdges& area) override;
    void Show(windowId window, windowShow how) override;
    void Raise(windowId window) override;
    void Enable(windowId window, bool on) override;
    void SetFocus(windowId window) override;
    windowId Focus() override;
    void SetCapture(windowId window) override;
    void ReleaseCapture() override;
    windowId Capture() override;

    void AskPaint(windowId window) override;
    void PaintDone(windowId window) override;
    void PaintNow(windowId window) override;
    uint32_t DPI(windowId window) override;

    bool Post(windowId window, uint32_t number, uint64_t first, int64_t second) override;
    int64_t Send(windowId window, uint32_t number, uint64_t first, int64_t second) override;
    windowTake Peek(windowMessage& message) override;
    windowTake Wait(windowMessage& message) override;
    void Dispatch(const windowMessage& message) override;
    int64_t Default(const windowMessage& message) override;

    cursorId SystemCursor(windowCursor which) override;
    cursorId MakeCursor(const windowCursorShape& shape) override;
    void DestroyCursor(cursorId cursor) override;
    void SetCursor(cursorId cursor) override;
    iconId ProgramIcon() override;
    iconId MakeIcon(const windowIconShape& shape) override;
    void DestroyIcon(iconId icon) override;
    void SetIcon(windowId window, iconId icon) override;

    bool WorkAreaOf(windowId window, windowArea& area) override;
    bool WorkAreaAt(int32_t x, int32_t y, windowArea& area) override;
    windowArea DesktopWorkArea() override;

    void AskGestures(windowId window) override;
    bool GestureRead(int64_t second, windowGesture& gesture) override;
    void GestureClose(int64_t second) override;

    std::optional<std::string> ClipboardText(windowId window) override;
    bool SetClipboardText(windowId window, std::string_view text) override;
    void Alert(const std::string& title, const std::string& text) override;

private:
    const std::u16string ClassName;
    const windowReceiver Receiver;
    const HINSTANCE Instance;
    const ATOM Class;
};

inline HWND systemWindow(windowId window)
{
    return reinterpret_cast<HWND>(window);
}

inline windowId systemWindowId(HWND window)
{
    return reinterpret_cast<windowId>(window);
}

// What can be read of a UTF-8 text, up to its first fault: a text to show is better cut than missing.
std::u16string systemText(std::string_view text);
