// The windows of this system. One class, in several files:
//
//     windowSystem                                         making and ending
//     windowDescribe                                       what others are told of a window
//     windowPump, windowPaint                              the queue, and the message that comes last
//     windowEvents, windowUser, windowGestures             the display's events become messages
//     windowInput                                          who gets them
//     windowPlace, windowShow, windowOrder, windowFocus    what a program asks for
//     windowMouse, windowClipboardText, windowAlert        the same
//     windowActual                                         what became of it
//
// What the receiver is told may end any window, so a record is looked up anew behind every Tell.
#pragma once

#include "platform/linux/screen/windowClicks.h"
#include "platform/linux/screen/windowClipboard.h"
#include "platform/linux/screen/windowCursors.h"
#include "platform/linux/screen/windowDisplay.h"
#include "platform/linux/screen/windowKeys.h"
#include "platform/linux/screen/windowQueue.h"
#include "platform/linux/screen/windowRecord.h"
#include "platform/window.h"

#include <xcb/xcb.h>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <thread>
#include <unordered_map>
#include <vector>

// Notices: the windows are to be told what changed.
enum : uint32_t {
    noticePlace = 0xFFFF0001,
    noticeFocus = 0xFFFF0002,
    noticeDPI = 0xFFFF0003,
};

class windowBackend final : public windowSystem
{
public:
    windowBackend(std::string_view className, windowReceiver receiver);
    ~windowBackend() override;

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
    windowId Focus() override { return FocusTold; }
    void SetCapture(windowId window) override;
    void ReleaseCapture() override;
    windowId Capture() override { return Captured; }
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

    // Null for none. On the interface thread.
    windowRecord* Find(windowId window);
    const windowDisplay& Screen() const { return Display; }
    windowBackend* Next = nullptr;  // of all that are alive

private:
    // Where a window really is and how it is shown.
    struct actual {
        windowEdges Area{};
        bool Minimised = false;
        bool Maximised = false;
        bool IsManaged = false;  // a window manager runs
    };

    // Making and ending.
    bool Open(uint32_t& error);
    void OpenTouch();
    void MakeWindow(windowRecord& record);
    void DescribeWindow(const windowRecord& record);
    void EndWindow(windowId window);
    windowRecord* FindNative(xcb_window_t window);
    windowRecord* ManagedOf(windowRecord* record);
    std::vector<windowId> OwnedBy(windowId owner) const;

    // Calls the receiver; false when the window is gone afterwards.
    bool Tell(windowId window, uint32_t number, uint64_t first, int64_t second);
    windowMessage MessageOf(windowId window, uint32_t number, uint64_t first, int64_t second) const;

    // The queue.
    bool ReadEvents();
    bool TakeQueued(windowMessage& message);
    bool TakePaint(windowMessage& message);
    void TakeNotice(const windowMessage& notice);
    bool RunDue();
    int MillisecondsToDue() const;
    void Notice(windowId window, uint32_t number);
    void NoticeScaling();
    uint32_t ServerTime();

    // Handles events until the condition holds; false when the time is over first.
    bool AwaitEvents(int64_t milliseconds, const std::function<bool()>& isTrue);
    bool PollEvents(int64_t untilNs);

    // Events become messages.
    void Translate(const xcb_generic_event_t& event);
    void OnKey(const xcb_key_press_event_t& event, bool isDown);
    void OnButton(const xcb_button_press_event_t& event, bool isDown);
    void OnMotion(const xcb_motion_notify_event_t& event);
    void OnCrossing(const xcb_enter_notify_event_t& event, bool isIn);
    void OnFocus(const xcb_focus_in_event_t& event, bool isIn);
    void OnExpose(const xcb_expose_event_t& event);
    void OnMapped(xcb_window_t window, bool isMapped);
    void OnProperty(const xcb_property_notify_event_t& event);
    void OnClient(const xcb_client_message_event_t& event);
    void OnTouch(const xcb_ge_generic_event_t& event);
    void QueueTouched(windowRecord& record, const windowTouched& touched, uint32_t time);
    void QueueInput(const windowMessage& message);
    void NoteUserTime(windowRecord& record, uint32_t time);
    void EnterMouse(windowRecord& record);

    // Who gets input, when it is taken; false when nobody does.
    bool ResolveInput(windowMessage& message);
    bool ResolveMouse(windowMessage& message);
    bool ResolveKey(windowMessage& message);
    void ResolvePress(windowMessage& message);

    // Places.
    void MoveTo(windowRecord& record, const windowEdges& area);
    void TellPlace(windowId window, const windowEdges& old, bool sizeAnyway);
    void ExpectPlace(windowRecord& record);
    void Configure(const windowRecord& record);
    void SetSizeHints(const windowRecord& record);
    void SetTopmost(windowRecord& record, bool on);
    void AskState(const windowRecord& record, bool on, windowAtom first, windowAtom second);
    void UpdateModal();
    bool Ask(const windowRecord& record, actual& state) const;
    void Reconcile(windowId window, bool patient);
    void TakeOver(windowId window, const actual& state);
    void Settle(const windowRecord& record, actual& state);
    bool TellStateCommand(windowId window, const actual& state);
    windowEdges WorkEdgesOf(const windowRecord& record);

    // Showing.
    void Hide(windowId window);
    bool Appear(windowId window, windowShow how);
    void MapWindow(windowRecord& record, windowShow how);
    void Maximise(windowId window);
    void Minimise(windowId window);
    void Restore(windowId window);
    void SettleState(windowId window, bool minimised, bool maximised);
    void Stack(windowRecord& record);

    // Focus.
    void Activate(windowId window);
    void AskFocus(windowRecord& record);
    void TellFocus(windowId window);
    void PassFocusOn(windowId from);
    void ReconcileFocus();
    bool CanHaveFocus(const windowRecord* record) const;
    void ActivateModal(windowId window);

    // Mouse.
    void TryGrab();
    void EndGrab();
    void DropCapture(windowId to);

    const std::string ClassName;
    const windowReceiver Receiver;
    std::thread::id Interface;

    windowDisplay Display;
    windowQueue Queue;
    windowKeys Keys;
    windowCursors Cursors;
    std::map<iconId, windowIconShape> Icons;
    iconId LastIcon = 0;
    windowClipboard Clipboard;
    windowClicks Clicks;

    // Changed on the interface thread, under the lock; read by others under the lock.
    std::mutex RecordsMutex;
    std::map<windowId, std::unique_ptr<windowRecord>> Records;
    std::unordered_map<xcb_window_t, windowId> Natives;

    uint32_t LastTime = 0;    // the server's
    uint64_t TimesHeard = 0;  // how often it was told when asked for
    int32_t MouseX = 0, MouseY = 0;
    uint64_t LastOrder = 0;
    windowId LastPainted = 0;
    windowId MouseWindow = 0;
    windowId KeyWindow = 0;  // the last key went down in it
    xcb_cursor_t Cursor = XCB_CURSOR_NONE;
    uint32_t DesktopDPI = 96;
    uint8_t InputOpcode = 0;

    windowId FocusTold = 0;
    windowId FocusHeld = 0;  // what the server says; never a menu

    windowId Captured = 0;
    bool Grabbed = false;
    int64_t GrabAt = 0;  // when to try again; 0 for not at all
    int GrabsLeft = 0;

    bool TellsStateCommand = false;  // a command that was carried out already
    std::map<int64_t, windowGesture> Gestures;
    int64_t LastGesture = 0;
};
