// The display's events become messages in the queue, and notices that something is to be compared.
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowMonitors.h"

#include <algorithm>

#include <xcb/xinput.h>

namespace {

constexpr uint8_t SentBit = 0x80;  // by another program, not by the server
constexpr uint32_t WheelNotch = 120;
constexpr int FixedPointBits = 16;
constexpr size_t MostGestures = 256;

enum : uint8_t {
    buttonLeft = 1,
    buttonMiddle = 2,
    buttonRight = 3,
    buttonWheelUp = 4,
    buttonWheelDown = 5,
};

struct buttonRow {
    uint8_t Button;
    uint32_t Keys;
    uint32_t Down;
    uint32_t Up;
};

constexpr buttonRow Buttons[] = {
    {buttonLeft, keysLeft, msgLeftDown, msgLeftUp},
    {buttonMiddle, keysMiddle, msgMiddleDown, msgMiddleUp},
    {buttonRight, keysRight, msgRightDown, msgRightUp},
};

struct keysRow {
    uint16_t State;
    uint32_t Keys;
};

constexpr keysRow KeysRows[] = {
    {XCB_BUTTON_MASK_1, keysLeft},   {XCB_BUTTON_MASK_2, keysMiddle},     {XCB_BUTTON_MASK_3, keysRight},
    {XCB_MOD_MASK_SHIFT, keysShift}, {XCB_MOD_MASK_CONTROL, keysControl},
};

uint32_t keysOf(uint16_t state)
{
    uint32_t keys = 0;
    for (const keysRow& row : KeysRows)
        keys |= (state & row.State) != 0 ? row.Keys : 0;
    return keys;
}

template <typename event>
const event& as(const xcb_generic_event_t& any)
{
    return reinterpret_cast<const event&>(any);
}

}  // namespace

void windowBackend::Translate(const xcb_generic_event_t& event)
{
    if (event.response_type == XCB_PROPERTY_NOTIFY)
        OnProperty(as<xcb_property_notify_event_t>(event));
    if (Keys.Heed(event) || Clipboard.Heed(event))
        return;
    switch (event.response_type & ~SentBit) {
    case XCB_KEY_PRESS:
        return OnKey(as<xcb_key_press_event_t>(event), true);
    case XCB_KEY_RELEASE:
        return OnKey(as<xcb_key_press_event_t>(event), false);
    case XCB_BUTTON_PRESS:
        return OnButton(as<xcb_button_press_event_t>(event), true);
    case XCB_BUTTON_RELEASE:
        return OnButton(as<xcb_button_press_event_t>(event), false);
    case XCB_MOTION_NOTIFY:
        return OnMotion(as<xcb_motion_notify_event_t>(event));
    case XCB_ENTER_NOTIFY:
        return OnCrossing(as<xcb_enter_notify_event_t>(event), true);
    case XCB_LEAVE_NOTIFY:
        return OnCrossing(as<xcb_enter_notify_event_t>(event), false);
    case XCB_FOCUS_IN:
        return OnFocus(as<xcb_focus_in_event_t>(event), true);
    case XCB_FOCUS_OUT:
        return OnFocus(as<xcb_focus_in_event_t>(event), false);
    case XCB_EXPOSE:
        return OnExpose(as<xcb_expose_event_t>(event));
    case XCB_MAP_NOTIFY:
        return OnMapped(as<xcb_map_notify_event_t>(event).window, true);
    case XCB_UNMAP_NOTIFY:
        return OnMapped(as<xcb_unmap_notify_event_t>(event).window, false);
    case XCB_CONFIGURE_NOTIFY:
        if (const windowRecord* const record = FindNative(as<xcb_configure_notify_event_t>(event).window))
            Notice(record->Id, noticePlace);
        return;
    case XCB_CLIENT_MESSAGE:
        return OnClient(as<xcb_client_message_event_t>(event));
    case XCB_GE_GENERIC:
        return OnTouch(as<xcb_ge_generic_event_t>(event));
    default:
        return;
    }
}

void windowBackend::QueueInput(const windowMessage& message)
{
    Queue.Append({message, windowOrigin::Input});
}

void windowBackend::OnKey(const xcb_key_press_event_t& event, bool isDown)
{
    windowRecord* const record = FindNative(event.event);
    LastTime = event.time;
    std::u16string text;
    const uint32_t key = isDown ? Keys.Press(event.detail, text) : Keys.Release(event.detail);
    if (record == nullptr)
        return;
    if (isDown)
        NoteUserTime(*record, event.time);
    QueueInput(MessageOf(record->Id, isDown ? msgKeyDown : msgKeyUp, key, 1));
    for (const char16_t unit : text)
        QueueInput(MessageOf(record->Id, msgChar, unit, 1));
}

void windowBackend::OnButton(const xcb_button_press_event_t& event, bool isDown)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    EnterMouse(*record);
    const uint32_t keys = keysOf(event.state);
    const int64_t point = windowPoint(event.event_x, event.event_y);
    if (event.detail == buttonWheelUp || event.detail == buttonWheelDown) {
        const uint32_t turn = event.detail == buttonWheelUp ? WheelNotch : 0 - WheelNotch;
        if (isDown)
            QueueInput(MessageOf(record->Id, msgMouseWheel, keys | turn << 16, point));
        return;
    }
    const auto* const row = std::find_if(std::begin(Buttons), std::end(Buttons),
                                         [&](const buttonRow& each) { return each.Button == event.detail; });
    if (row == std::end(Buttons))
        return;
    if (isDown) {
        NoteUserTime(*record, event.time);
        QueueInput(MessageOf(record->Id, row->Down, keys | row->Keys, point));
    } else {
        QueueInput(MessageOf(record->Id, row->Up, keys & ~row->Keys, point));
    }
}

void windowBackend::OnMotion(const xcb_motion_notify_event_t& event)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    EnterMouse(*record);
    QueueInput(
        MessageOf(record->Id, msgMouseMove, keysOf(event.state), windowPoint(event.event_x, event.event_y)));
}

// Coming in is a move. So is going out, for one that holds the capture and would hear nothing more.
void windowBackend::OnCrossing(const xcb_enter_notify_event_t& event, bool isIn)
{
    windowRecord* const record = FindNative(event.event);
    if (record == nullptr || event.mode != XCB_NOTIFY_MODE_NORMAL)
        return;
    LastTime = event.time;
    MouseX = event.root_x;
    MouseY = event.root_y;
    if (isIn)
        EnterMouse(*record);
    if (isIn || Captured == record->Id)
        QueueInput(MessageOf(record->Id, msgMouseMove, keysOf(event.state),
                             windowPoint(event.event_x, event.event_y)));
}

// The cursor is the program's, whichever of its windows the mouse comes to.
void windowBackend::EnterMouse(windowRecord& record)
{
    MouseWindow = record.Id;
    if (record.Cursor == Cursor)
        return;
    record.Cursor = Cursor;
    xcb_change_window_attributes(Display.Connection, record.Window, XCB_CW_CURSOR, &Cursor);
}

void windowBackend::OnFocus(const xcb_focus_in_event_t& event, bool isIn)
{
    const windowRecord* const record = FindNative(event.event);
    // A grab takes the keys for a moment and gives them back; the pointer's focus is nobody's.
    const bool isOfGrab = event.mode == XCB_NOTIFY_MODE_GRAB || event.mode == XCB_NOTIFY_MODE_UNGRAB;
    if (record == nullptr || isOfGrab || event.detail >= XCB_NOTIFY_DETAIL_POINTER ||
        event.detail == XCB_NOTIFY_DETAIL_INFERIOR)
        return;
    if (isIn) {
        FocusHeld = record->Id;
    } else if (FocusHeld == record->Id) {
        FocusHeld = 0;
    }
    Notice(0, noticeFocus);
}

void windowBackend::OnExpose(const xcb_expose_event_t& event)
{
    windowRecord* const record = FindNative(event.window);
    if (record == nullptr)
        return;
    if (record->Exposed == nullptr)
        record->PaintAsked = true;
    else
        record->Exposed(record->ExposedContext, event.x, event.y, event.width, event.height);
}

void windowBackend::OnMapped(xcb_window_t window, bool isMapped)
{
    windowRecord* const record = FindNative(window);
    if (record == nullptr)
        return;
    record->Mapped = isMapped;
    Notice(record->Id, noticePlace);
    if (!isMapped)
        return;
    if (record->FocusWhenMapped)
        AskFocus(*record);
    if (record->Id == Captured && GrabAt != 0)
        TryGrab();
}

void windowBackend::OnProperty(const xcb_property_notify_event_t& event)
{
    LastTime = event.time;
    TimesHeard += event.window == Clipboard.Window() ? 1u : 0u;
    if (event.window == Display.Screen->root && event.atom == XCB_ATOM_RESOURCE_MANAGER)
        return NoticeScaling();
    const bool isState = event.atom == Display.Atom(atomNetState) || event.atom == Display.Atom(atomWMState);
    const windowRecord* const record = FindNative(event.window);
    if (isState && record != nullptr)
        Notice(record->Id, noticePlace);
}

void windowBackend::NoticeScaling()
{
    const uint32_t dpi = windowDesktopDPI(Display);
    if (dpi == DesktopDPI)
        return;
    DesktopDPI = dpi;
    for (const auto& [id, record] : Records) {
        if (record->PerMonitor)
            Queue.Append({MessageOf(id, noticeDPI, dpi | dpi << 16, 0), windowOrigin::Notice});
    }
}

void windowBackend::OnClient(const xcb_client_message_event_t& event)
{
    if (event.type != Display.Atom(atomProtocols) || event.format != 32)
        return;
    const windowRecord* const record = FindNative(event.window);
    const xcb_atom_t protocol = event.data.data32[0];
    if (protocol == Display.Atom(atomPing)) {
        xcb_client_message_event_t answer = event;
        answer.window = Display.Screen->root;
        xcb_send_event(Display.Connection, 0, answer.window,
                       XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT | XCB_EVENT_MASK_SUBSTRUCTURE_NOTIFY,
                       reinterpret_cast<const char*>(&answer));
    } else if (protocol == Display.Atom(atomDeleteWindow) && record != nullptr) {
        QueueInput(MessageOf(record->Id, msgSysCommand, commandClose, 0));
    }
}

// The window manager gives the focus to whom the user turned to last.
void windowBackend::NoteUserTime(windowRecord& record, uint32_t time)
{
    const windowRecord* const managed = ManagedOf(&record);
    const uint32_t times[] = {time};
    if (managed != nullptr)
        Display.SetWords(managed->Window, Display.Atom(atomNetUserTime), XCB_ATOM_CARDINAL, times);
}

void windowBackend::AskGestures(windowId window)
{
    struct {
        xcb_input_event_mask_t Head;
        uint32_t Mask;
    } asked{};
    const windowRecord* const record = Find(window);
    if (record == nullptr || InputOpcode == 0)
        return;
    asked.Head.deviceid = XCB_INPUT_DEVICE_ALL_MASTER;
    asked.Head.mask_len = 1;
    asked.Mask = XCB_INPUT_XI_EVENT_MASK_TOUCH_BEGIN | XCB_INPUT_XI_EVENT_MASK_TOUCH_UPDATE |
                 XCB_INPUT_XI_EVENT_MASK_TOUCH_END;
    xcb_input_xi_select_events(Display.Connection, record->Window, 1, &asked.Head);
    xcb_flush(Display.Connection);
}

void windowBackend::OnTouch(const xcb_ge_generic_event_t& event)
{
    using phase = windowTouch::phase;
    if (InputOpcode == 0 || event.extension != InputOpcode || event.event_type < XCB_INPUT_TOUCH_BEGIN ||
        event.event_type > XCB_INPUT_TOUCH_END)
        return;
    const auto& touched = reinterpret_cast<const xcb_input_touch_begin_event_t&>(event);
    windowRecord* const record = FindNative(touched.event);
    if (record == nullptr)
        return;
    LastTime = touched.time;
    const phase which = event.event_type == XCB_INPUT_TOUCH_BEGIN ? phase::Begin
                        : event.event_type == XCB_INPUT_TOUCH_END ? phase::End
                                                                  : phase::Move;
    const windowTouch touch{which, touched.detail, touched.time, touched.root_x >> FixedPointBits,
                            touched.root_y >> FixedPointBits};
    if (which == phase::Begin)
        NoteUserTime(*record, touched.time);
    std::vector<windowTouched> meant;
    record->Touches.Feed(touch, meant);
    for (const windowTouched& each : meant)
        QueueTouched(*record, each, touched.time);
}

// A tap is a click: the server makes none of touches that somebody listens to.
void windowBackend::QueueTouched(windowRecord& record, const windowTouched& touched, uint32_t time)
{
    windowMessage message{record.Id, msgGesture, 0, 0, time, touched.Gesture.X, touched.Gesture.Y};
    if (touched.Kind == windowTouched::kind::Gesture) {
        if (Gestures.size() >= MostGestures)
            Gestures.erase(Gestures.begin());
        message.Second = ++LastGesture;
        Gestures.emplace(LastGesture, touched.Gesture);
        return QueueInput(message);
    }
    const bool isLeft = touched.Kind == windowTouched::kind::LeftClick;
    const windowEdges& area = record.Area;
    message.Second = windowPoint(touched.Gesture.X - area.Left, touched.Gesture.Y - area.Top);
    message.Number = msgMouseMove;
    QueueInput(message);
    message.Number = isLeft ? msgLeftDown : msgRightDown;
    message.First = isLeft ? keysLeft : keysRight;
    QueueInput(message);
    message.Number = isLeft ? msgLeftUp : msgRightUp;
    message.First = 0;
    QueueInput(message);
}

bool windowBackend::GestureRead(int64_t second, windowGesture& gesture)
{
    const auto found = Gestures.find(second);
    if (found == Gestures.end())
        return false;
    gesture = found->second;
    return true;
}

void windowBackend::GestureClose(int64_t second)
{
    Gestures.erase(second);
}
