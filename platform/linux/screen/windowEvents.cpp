// The display's events become messages in the queue, and notices that something is to be compared.
#include "platform/linux/screen/windowBackend.h"
#include "platform/linux/screen/windowMonitors.h"

namespace {

constexpr uint8_t SentBit = 0x80;  // by another program, not by the server

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
