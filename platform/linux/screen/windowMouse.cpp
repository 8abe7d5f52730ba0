// The capture and the cursor.
#include "platform/clock.h"
#include "platform/linux/crashTell.h"
#include "platform/linux/screen/windowBackend.h"

namespace {

constexpr int64_t GrabPauseNs = 20'000'000;
constexpr int GrabTries = 50;

}  // namespace

void windowBackend::SetCapture(windowId window)
{
    const windowRecord* const record = Find(window);
    if (record == nullptr || Captured == window)
        return;
    DropCapture(window);
    if (Captured != window || (Find(window)->Style & stylePopup) == 0)
        return;
    // A pressed button holds the mouse by itself. Only a menu must hear of presses that begin elsewhere.
    GrabsLeft = GrabTries;
    TryGrab();
}

void windowBackend::ReleaseCapture()
{
    if (Captured != 0)
        DropCapture(0);
}

void windowBackend::DropCapture(windowId to)
{
    const windowId old = Captured;
    Captured = to;
    EndGrab();
    Tell(old, msgCaptureChanged, 0, static_cast<int64_t>(to));
    if (Find(Captured) == nullptr)
        Captured = 0;
}

// The server refuses while the window is not on the screen or somebody else holds the mouse.
void windowBackend::TryGrab()
{
    GrabAt = 0;
    const windowRecord* const record = Find(Captured);
    if (record == nullptr || Grabbed || GrabsLeft-- <= 0)
        return;
    constexpr uint16_t heard = XCB_EVENT_MASK_BUTTON_PRESS | XCB_EVENT_MASK_BUTTON_RELEASE |
                               XCB_EVENT_MASK_POINTER_MOTION | XCB_EVENT_MASK_ENTER_WINDOW |
                               XCB_EVENT_MASK_LEAVE_WINDOW;
    const xcbReply<xcb_grab_pointer_reply_t> reply(xcb_grab_pointer_reply(
        Display.Connection,
        xcb_grab_pointer(Display.Connection, 0, record->Window, heard, XCB_GRAB_MODE_ASYNC,
                         XCB_GRAB_MODE_ASYNC, XCB_WINDOW_NONE, XCB_CURSOR_NONE, XCB_CURRENT_TIME),
        nullptr));
    Grabbed = reply && reply->status == XCB_GRAB_STATUS_SUCCESS;
    if (Grabbed)
        crashMouseHeldBy(xcb_get_file_descriptor(Display.Connection));
    else
        GrabAt = clockSteadyNs() + GrabPauseNs;
}

void windowBackend::EndGrab()
{
    GrabAt = 0;
    if (!Grabbed)
        return;
    Grabbed = false;
    crashMouseHeldBy(-1);
    xcb_ungrab_pointer(Display.Connection, XCB_CURRENT_TIME);
    xcb_flush(Display.Connection);
}

cursorId windowBackend::SystemCursor(windowCursor which)
{
    uint32_t error = 0;
    return Open(error) ? Cursors.System(which) : 0;
}

cursorId windowBackend::MakeCursor(const windowCursorShape& shape)
{
    uint32_t error = 0;
    return Open(error) ? Cursors.Make(shape) : 0;
}

void windowBackend::DestroyCursor(cursorId cursor)
{
    if (Display.IsOpen())
        Cursors.Destroy(static_cast<xcb_cursor_t>(cursor));
}

void windowBackend::SetCursor(cursorId cursor)
{
    Cursor = static_cast<xcb_cursor_t>(cursor);
    if (windowRecord* const record = Find(MouseWindow))
        EnterMouse(*record);
    if (Display.IsOpen())
        xcb_flush(Display.Connection);
}
