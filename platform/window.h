// Top-level windows, their messages, input, cursors, monitors and the clipboard.
//
// The thread that calls Create first is the interface thread. All operations belong to it, but for Post,
// Send, AskPaint, Object and Alert, which any thread may call. A window that was destroyed, or never was, is
// harmless: every call on it fails or does nothing. Positions and sizes are pixels of the screen, and a size
// is at most 16384 by 16384.
//
// A call that changes a window (Create, Place, Show, Raise, Enable, SetFocus, Destroy, ...) sends the
// messages that tell of the change before it returns; each is a call of the receiver on the interface thread.
// What the user or the system changes comes by the queue, in the order in which it happened.
#pragma once

#include "platform/windowMessages.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Handles a message; what it gives depends on the message. Called on the interface thread alone.
using windowReceiver = int64_t (*)(const windowMessage& message);

// Bits of a window's style.
enum : uint32_t {
    styleMaximiseBox = 0x10000,
    styleMinimiseBox = 0x20000,
    styleResizable = 0x40000,
    styleSystemMenu = 0x80000,  // with a title bar, and a button that closes
    stylePopup = 0x80000000,    // no frame at all: the frame's rectangle is the client area
};

// Bits of the extended style.
enum : uint32_t {
    styleNoParentNotify = 0x4,
    styleTopmost = 0x8,
    styleTool = 0x80,        // not on the taskbar
    styleTaskbar = 0x40000,  // on the taskbar
};

struct windowCreate {
    uint32_t Style = 0;
    uint32_t StyleExtended = 0;
    windowId Owner = 0;       // the new window stays above it, and goes when it goes
    bool PerMonitor = false;  // its DPI is that of the monitor it is on; that of others is always 96
};

// Flags of Place.
enum : uint32_t {
    placeKeepSize = 1,
    placeKeepPosition = 2,
    placeKeepOrder = 4,
    placeNoActivate = 16,
    placeFrameChanged = 32,  // the style was changed
};

enum class windowOrder : uint8_t {
    Keep,
    Topmost,     // above all that are not
    NotTopmost,  // below those that are
};

// How a window is shown.
enum class windowShow : uint8_t {
    Hide = 0,
    Maximise = 3,
    Activate = 5,  // as large as it was
    Minimise = 6,
    NoActivate = 8,  // the active window stays so
    Restore = 9,     // neither minimised nor maximised, and active
};

enum class windowCursor : uint8_t {
    No,
    Hand,
    SizeAll,
    SizeUpDown,
    SizeLeftRight,
    Arrow,
    Text,
    SizeFalling,  // from top left to bottom right
    SizeRising,
};

using cursorId = uint64_t;  // 0 is none

// 32 by 32 pixels, a row in each word, the leftmost pixel in the highest bit. A pixel is And over the screen,
// then Xor: 1 and 0 let the screen through, 0 and 0 is black, 0 and 1 white.
struct windowCursorShape {
    uint32_t HotX = 0;
    uint32_t HotY = 0;
    uint32_t And[32] = {};
    uint32_t Xor[32] = {};
};

using iconId = uint64_t;  // 0 is none

// The picture of a window where windows are listed: 0xAARRGGBB, rows from the top, not multiplied by alpha.
struct windowIconShape {
    static constexpr uint32_t LargestSide = 256;

    uint32_t Width = 0;
    uint32_t Height = 0;
    std::vector<uint32_t> Pixels;

    bool IsValid() const
    {
        return Width > 0 && Height > 0 && Width <= LargestSide && Height <= LargestSide &&
               Pixels.size() == size_t{Width} * Height;
    }
};

enum class windowGestureKind : uint32_t {
    Begin = 1,  // the first finger is down
    End = 2,    // the last one is up
    Zoom = 3,
    Pan = 4,  // fingers move, or press for long and then move
    Rotate = 5,
    TwoFingerTap = 6,
    PressAndTap = 7,
};

struct windowGesture {
    windowGestureKind Kind = windowGestureKind::Begin;
    bool First = false;    // the first message of its kind
    uint32_t Id = 0;       // of the gesture
    int32_t X = 0, Y = 0;  // on the screen
};

struct windowArea {
    int32_t Left = 0, Top = 0, Right = 0, Bottom = 0;  // right and bottom are just outside
};

// What a wait or a look for a message gave.
enum class windowTake : uint8_t {
    Taken,
    None,    // of a look: the queue is empty; of a wait: the program was told to end
    Failed,  // the system is gone, and nothing that was posted is left
};

class windowSystem
{
public:
    windowSystem() = default;
    windowSystem(const windowSystem&) = delete;
    windowSystem& operator=(const windowSystem&) = delete;

    // Forgets all windows that are left. Nothing is sent.
    virtual ~windowSystem() = default;

    // --- Windows

    // A hidden window of size 0, titled "Untitled"; 0 when the system refuses, and then `error` is its code
    // for it.
    virtual windowId Create(const windowCreate& create, uint32_t& error) = 0;

    // Takes the windows that it owns with it. On the interface thread; it sends no msgClose.
    virtual void Destroy(windowId window) = 0;

    // A pointer that belongs to whoever made the window; null until it is set.
    virtual void* Object(windowId window) = 0;
    virtual void SetObject(windowId window, void* object) = 0;

    virtual uint32_t Style(windowId window) = 0;
    virtual void SetStyle(windowId window, uint32_t style) = 0;

    // The sizes of the client area that the user may choose; 0 is no limit. Backends that ask for limits by
    // message need not listen.
    virtual void SetSizeRange(windowId window, const windowExtent& least, const windowExtent& most) = 0;

    virtual void SetTitle(windowId window, std::string_view title) = 0;

    // Turns a client area into the frame that surrounds it, for a window of this kind at this DPI. Where
    // frames are drawn by someone else, the two are the same.
    virtual windowEdges FrameOf(windowId window, const windowEdges& client, uint32_t dpi) = 0;

    // Sets the place of the frame, its order, or both; flags say what stays.
    virtual bool Place(windowId window, windowOrder order, const windowEdges& frame, uint32_t flags) = 0;

    // The client area's place on the screen; false without a window.
    virtual bool ClientArea(windowId window, windowEdges& area) = 0;

    // A window that was hidden is asked to paint.
    virtual void Show(windowId window, windowShow how) = 0;
    virtual void Raise(windowId window) = 0;  // above all but the topmost, and active

    // A disabled window gets no mouse and no keys, and never the focus.
    virtual void Enable(windowId window, bool on) = 0;

    virtual void SetFocus(windowId window) = 0;
    virtual windowId Focus() = 0;  // of this program's windows; 0 when it has not got the focus

    // Mouse messages go to one window, wherever the mouse is: as long as a button is down that went down in
    // it; for a popup always, so that it sees presses outside of it.
    virtual void SetCapture(windowId window) = 0;
    virtual void ReleaseCapture() = 0;
    virtual windowId Capture() = 0;

    // --- Painting

    // Asks for a msgPaint, soon; several requests make one.
    virtual void AskPaint(windowId window) = 0;

    // Says that what was asked for is done: no msgPaint comes until the next request. Until then it comes
    // again and again.
    virtual void PaintDone(windowId window) = 0;

    // Sends the msgPaint that was asked for, now. Nothing when none was.
    virtual void PaintNow(windowId window) = 0;

    virtual uint32_t DPI(windowId window) = 0;  // 96 where a pixel is a pixel

    // --- Messages

    // Appends to the interface thread's queue; false when that is full or the window is gone. Any thread.
    virtual bool Post(windowId window, uint32_t number, uint64_t first, int64_t second) = 0;

    // Has the receiver called on the interface thread and waits for its result; 0 when the window is gone.
    // Called there it is a plain call. What is sent overtakes what is posted. Any thread.
    virtual int64_t Send(windowId window, uint32_t number, uint64_t first, int64_t second) = 0;

    // Takes the next message from the queue. Sent messages are handled inside; Wait waits for one, without
    // using the processor.
    virtual windowTake Peek(windowMessage& message) = 0;
    virtual windowTake Wait(windowMessage& message) = 0;

    // Gives the message to the receiver. Of a msgKeyDown that makes characters the msgChar come next.
    virtual void Dispatch(const windowMessage& message) = 0;

    // What the system does with a message that the receiver leaves to it.
    virtual int64_t Default(const windowMessage& message) = 0;

    // --- Cursors

    virtual cursorId SystemCursor(windowCursor which) = 0;
    virtual cursorId MakeCursor(const windowCursorShape& shape) = 0;
    virtual void DestroyCursor(cursorId cursor) = 0;
    virtual void SetCursor(cursorId cursor) = 0;  // in the window that the mouse is in

    // --- Icons

    // The icon that the program's file brings along, which is not to be destroyed. 0 where files have none.
    virtual iconId ProgramIcon() = 0;
    // 0 for a shape that is not valid, and when the system has no room.
    virtual iconId MakeIcon(const windowIconShape& shape) = 0;
    virtual void DestroyIcon(iconId icon) = 0;               // of no window any more
    virtual void SetIcon(windowId window, iconId icon) = 0;  // 0 takes it away

    // --- Monitors

    // The part of the monitor, free of taskbars, that the window or the point is on; false when it is on
    // none.
    virtual bool WorkAreaOf(windowId window, windowArea& area) = 0;
    virtual bool WorkAreaAt(int32_t x, int32_t y, windowArea& area) = 0;
    virtual windowArea DesktopWorkArea() = 0;  // of the first monitor

    // --- Touch

    virtual void AskGestures(windowId window) = 0;  // of all kinds

    // Reads what a msgGesture brought. GestureClose ends it; a message that goes to Default is ended there.
    virtual bool GestureRead(int64_t second, windowGesture& gesture) = 0;
    virtual void GestureClose(int64_t second) = 0;

    // --- Beside the windows

    // UTF-8. Nothing when there is no text there, or its owner does not answer within a second.
    virtual std::optional<std::string> ClipboardText(windowId window) = 0;
    virtual bool SetClipboardText(windowId window, std::string_view text) = 0;

    // Shows a text in a window of the system's own, and waits until it was read. Any thread. On a machine
    // without a screen it goes to the error output.
    virtual void Alert(const std::string& title, const std::string& text) = 0;
};

// The system's windows. Never null, also where there is no screen: Create then fails. `className` is how the
// system tells this program's windows from others.
std::unique_ptr<windowSystem> windowSystemMake(std::string_view className, windowReceiver receiver);
