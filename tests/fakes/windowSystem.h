// The window system of the fake platform: it records each call and does the work on the desk.
#pragma once

#include "platform/window.h"

#include <string>

namespace fakes {

class scriptedWindows : public windowSystem
{
public:
    explicit scriptedWindows(windowReceiver receiver);
    ~scriptedWindows() override;

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
    const windowReceiver Receiver;
};

// Records a call of the interface thread and asks the script; true when the call is to do its work.
bool windowEnter(const char* function, windowId window, const std::string& arguments = {});
bool windowEnter(const char* function);

}  // namespace fakes
